#include "PrintedSamples.h"

#include "Printing/DocumentLayout.h"
#include "Printing/PagePainter.h"

#include <gtest/gtest.h>

#include <QFontDatabase>
#include <QGlyphRun>
#include <QPainter>
#include <QRawFont>

#include <algorithm>
#include <map>
#include <set>

using namespace Pallisande;
using Tamberlin::PrintedDocument;

namespace {

std::string textOf(const PlacedLine& line)
{
    const auto set = line.set();
    return line.text->text().mid(set.textStart(), set.textLength()).trimmed().toStdString();
}

// The lines of each page, in the order in which they are drawn.
std::vector<std::vector<std::string>> pagesOf(const DocumentLayout& layout)
{
    std::vector<std::vector<std::string>> pages;
    for (const auto& page : layout.pages) {
        auto& texts = pages.emplace_back();
        for (const auto& line : page.lines)
            texts.push_back(textOf(line));
    }
    return pages;
}

bool has(const std::vector<std::string>& texts, const std::string& text)
{
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

// What the line's glyphs cover on the page.
QRectF inkOf(const PlacedLine& line)
{
    QRectF ink;
    const auto set = line.set();
    for (const auto& run : set.glyphRuns()) {
        const auto glyphs = run.glyphIndexes();
        const auto positions = run.positions();
        for (qsizetype index = 0; index < glyphs.size(); ++index) {
            const QRectF box = run.rawFont().boundingRect(glyphs[index]);
            if (!box.isEmpty())
                ink |= box.translated(positions[index]);
        }
    }
    return ink.translated(line.left, line.baseline - set.ascent());
}

PrintedDocument documentWith(int rows, void (*change)(PrintedDocument& document))
{
    auto document = invoiceOf(rows);
    change(document);
    return document;
}

std::string repeated(const std::string& text, int count)
{
    std::string result;
    for (int index = 0; index < count; ++index)
        result += text;
    return result;
}

const std::pair<const char*, PrintedDocument> difficultDocuments[] {
    { "short", invoiceOf(2) },
    { "no rows", invoiceOf(0) },
    { "long", invoiceOf(120) },
    { "Letter", documentWith(40, [](auto& document) { document.paper = Tamberlin::Paper::letter; }) },
    { "long recipient",
        documentWith(3,
            [](auto& document) {
                document.recipient.assign(
                    90, "Federal Institute for Materials Research, Department of Translation");
            }) },
    { "many facts",
        documentWith(3,
            [](auto& document) {
                document.facts.assign(80, { "A rather long label of a fact", repeated("W", 70) });
            }) },
    { "long sender",
        documentWith(3, [](auto& document) { document.senderDetails.assign(30, "14 Mill Lane"); }) },
    { "long words",
        documentWith(3,
            [](auto& document) {
                document.rows[0].title = repeated("Donaudampfschifffahrt", 12);
                document.rows[1].amount = document.rows[1].quantity = repeated("123,456,", 9);
                document.rows[1].unit = "standard lines of 55 characters";
                document.totals[1].label = repeated("reverse charge ", 30);
                document.footerLeft = repeated("tax ", 80);
                document.senderLine = repeated("sender ", 40);
            }) },
    { "a row higher than a page",
        documentWith(
            3, [](auto& document) { document.rows[1].title = repeated("An absurdly long title. ", 500); }) },
    { "heads higher than a page",
        documentWith(3,
            [](auto& document) {
                document.heads.quantity = repeated("quantity ", 2000);
                document.carriedForward = repeated("carried ", 1000);
                document.footerRight = repeated("right ", 3000);
            }) },
    { "long remarks",
        documentWith(3,
            [](auto& document) { document.remarks.assign(7, repeated("A remark that goes on. ", 100)); }) },
    { "other scripts",
        documentWith(3,
            [](auto& document) {
                document.recipient
                    = { "دار النشر العربية", "السيد أحمد منصور", "株式会社翻訳出版センター", "สำนักพิมพ์" };
                document.rows[0].title
                    = "รายงานประจำปี ภาษาไทย (ส่วนที่ 2) นี้เป็นข้อความยาวที่ต้องตัดบรรทัดหลายครั้งเพราะยาวมากจริงๆ";
                document.rows[0].detail = "תרגום הדוח השנתי";
                document.rows[1].title = "नमस्ते दुनिया 한국어";
            }) },
};

} // namespace

TEST(DocumentLayout, keepsEveryLineInsideTheMarginsAndApartFromOthers)
{
    for (const auto& [name, document] : difficultDocuments) {
        SCOPED_TRACE(name);
        const auto layout = layOut(document);
        const auto& sheet = layout.sheet;
        const QRectF printed(
            QPointF(sheet.left - 5, sheet.top - 5), QPointF(sheet.right + 5, sheet.bottom + 5));
        for (const auto& page : layout.pages) {
            std::vector<QRectF> inks;
            for (const auto& line : page.lines) {
                const QRectF ink = inkOf(line);
                EXPECT_TRUE(ink.isEmpty() || printed.contains(ink)) << textOf(line);
                const bool overlaps = std::any_of(
                    inks.begin(), inks.end(), [&](const QRectF& other) { return other.intersects(ink); });
                EXPECT_FALSE(overlaps) << textOf(line);
                inks.push_back(ink);
            }
        }
    }
}

TEST(DocumentLayout, losesNoLineOfAText)
{
    for (const auto& [name, document] : difficultDocuments) {
        SCOPED_TRACE(name);
        std::map<std::shared_ptr<const QTextLayout>, std::set<int>> placed;
        std::string everything;
        for (const auto& page : layOut(document).pages) {
            for (const auto& line : page.lines) {
                if (line.line == 0)
                    everything += line.text->text().toStdString() + "\n";
                placed[line.text].insert(line.line);
            }
        }
        for (const auto& [text, lines] : placed) {
            if (text->text().startsWith("right ")) // A footer that would take up the page is cut.
                continue;
            EXPECT_EQ(lines.size(), static_cast<std::size_t>(text->lineCount()))
                << text->text().toStdString();
        }
        for (const auto& row : document.rows) {
            for (const auto& cell : { row.title, row.detail, row.quantity, row.unit, row.price, row.amount })
                EXPECT_NE(everything.find(cell), std::string::npos) << cell;
        }
        for (const auto& line : document.recipient)
            EXPECT_NE(everything.find(line), std::string::npos) << line;
    }
}

TEST(DocumentLayout, carriesTheSumOverEachPageAndRepeatsTheHeads)
{
    const auto document = invoiceOf(120);
    const auto pages = pagesOf(layOut(document));
    ASSERT_GT(pages.size(), 3u);
    std::size_t row = 0;
    for (std::size_t page = 0; page < pages.size(); ++page) {
        SCOPED_TRACE(page);
        const auto& texts = pages[page];
        EXPECT_TRUE(has(texts, "Amount (EUR)"));
        EXPECT_EQ(has(texts, "Brought forward"), page > 0);
        EXPECT_EQ(page > 0 && has(texts, "sum " + std::to_string(row)), page > 0);
        while (row < document.rows.size() && has(texts, document.rows[row].amount)) {
            const auto& detail = document.rows[row].detail;
            EXPECT_TRUE(detail.empty() || has(texts, detail)) << "parted from its row: " << detail;
            ++row;
        }
        const bool last = page + 1 == pages.size();
        EXPECT_EQ(has(texts, "Carried forward"), !last);
        EXPECT_EQ(!last && has(texts, "sum " + std::to_string(row)), !last);
        const auto number = "Page " + std::to_string(page + 1) + " of " + std::to_string(pages.size());
        EXPECT_TRUE(has(texts, "INV-2026-007 · " + number));
    }
    EXPECT_EQ(row, document.rows.size());
}

TEST(DocumentLayout, keepsTheTotalsTogetherAndWithTheLastRow)
{
    for (int count = 1; count <= 60; ++count) {
        SCOPED_TRACE(count);
        const auto document = invoiceOf(count);
        for (const auto& texts : pagesOf(layOut(document))) {
            const bool withTotal = has(texts, "Total EUR");
            EXPECT_EQ(withTotal, has(texts, "Subtotal"));
            EXPECT_EQ(withTotal, has(texts, document.rows.back().amount));
        }
    }
}

TEST(DocumentLayout, breaksUnitsSoonerThanFigures)
{
    auto document = invoiceOf(1);
    document.rows[0] = { .title = "Annual report",
        .quantity = "1,234,567,890.125",
        .unit = "standard lines of 55 characters",
        .price = "0.123456",
        .amount = "999,999,999,999.99" };
    for (const auto paper : { Tamberlin::Paper::a4, Tamberlin::Paper::letter }) {
        document.paper = paper;
        const auto texts = pagesOf(layOut(document))[0];
        for (const auto& figure :
            { document.rows[0].quantity, document.rows[0].price, document.rows[0].amount })
            EXPECT_TRUE(has(texts, figure)) << figure;
    }
}

TEST(DocumentLayout, putsTheRecipientIntoTheWindowOfTheEnvelope)
{
    const struct {
        Tamberlin::Paper paper;
        double top;
    } cases[] { { Tamberlin::Paper::a4, 45 }, { Tamberlin::Paper::letter, 44 } };
    for (const auto& [paper, top] : cases) {
        auto document = invoiceOf(1);
        document.paper = paper;
        const auto layout = layOut(document);
        const QRectF window(layout.sheet.left - 5, millimetres(top), millimetres(85), millimetres(45));
        for (const auto& line : layout.pages[0].lines) {
            const bool isAddress
                = textOf(line) == document.senderLine || has(document.recipient, textOf(line));
            EXPECT_EQ(window.intersects(inkOf(line)), isAddress) << textOf(line);
        }
    }
}

TEST(DocumentLayout, startsTextsAtTheRightWhenTheyAreWrittenFromThere)
{
    auto document = invoiceOf(1);
    document.remarks = { "يرجى الدفع خلال 30 يومًا من تاريخ الفاتورة.", "Payable within 30 days." };
    const auto layout = layOut(document);
    std::map<std::string, QRectF> areas;
    for (const auto& line : layout.pages[0].lines)
        areas[textOf(line)] = line.area();
    EXPECT_NEAR(areas[document.remarks[1]].left(), layout.sheet.left, 5);
    EXPECT_NEAR(areas[document.remarks[0]].right(), layout.sheet.left + millimetres(125), 5);
}

TEST(DocumentLayout, choosesTheEastAsianFaceByTheLanguage)
{
    const std::pair<const char*, const char*> cases[] { { "ja", "Noto Sans CJK JP" },
        { "en", "Noto Sans CJK JP" }, { "zh", "Noto Sans CJK SC" }, { "zh-Hans", "Noto Sans CJK SC" },
        { "zh-Hant", "Noto Sans CJK TC" }, { "zh-TW", "Noto Sans CJK TC" }, { "zh-HK", "Noto Sans CJK HK" },
        { "ko", "Noto Sans CJK KR" } };
    for (const auto& [language, family] : cases) {
        SCOPED_TRACE(language);
        if (!QFontDatabase::hasFamily(family))
            GTEST_SKIP() << family << " isn’t installed.";
        const auto layout = layOut({ .language = language, .title = "直骨" });
        const auto runs = layout.pages[0].lines[0].text->glyphRuns();
        ASSERT_EQ(runs.size(), 1);
        EXPECT_EQ(runs[0].rawFont().familyName().toStdString(), family);
    }
}

TEST(DocumentLayout, namesEachCharacterThatNoFontHas)
{
    auto document = invoiceOf(1);
    document.title = "Invoice \uF8FF\u0378";
    document.rows[0].detail = "\u0378 again, and \U000F0001";
    EXPECT_EQ(layOut(document).missingCharacters, "\u0378\U000F0001\uF8FF");
}

TEST(DocumentLayout, passesOverCharactersThatLeaveNoMark)
{
    auto document = invoiceOf(1);
    document.title = "a\tb\x01\u200B\u00AD\uFE0F\u200D\u2060\uFEFF\u202F\u2007c";
    const auto layout = layOut(document);
    EXPECT_EQ(layout.missingCharacters, "");
    for (const auto& line : layout.pages[0].lines)
        EXPECT_EQ(line.text->text().indexOf(QChar(1)), -1); // It would be drawn as a box.
}

TEST(PagePainter, drawsInsideTheMarginsOfWhateverItIsGiven)
{
    const auto layout = layOut(invoiceOf(3));
    QImage image(420, 594, QImage::Format_RGB32); // A4 at two pixels a millimetre.
    image.fill(Qt::white);
    {
        QPainter painter(&image);
        drawPage(layout, 0, painter, image.rect());
    }
    const QRect printed(40, 40, 420 - 40 - 36, 594 - 40 - 40);
    QRect ink;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (image.pixel(x, y) != 0xffffffff)
                ink |= QRect(x, y, 1, 1);
        }
    }
    EXPECT_TRUE(printed.adjusted(-1, -1, 1, 1).contains(ink));
    EXPECT_GT(ink.width() * 100, printed.width() * 98);
    EXPECT_GT(ink.height() * 100, printed.height() * 95);
}
