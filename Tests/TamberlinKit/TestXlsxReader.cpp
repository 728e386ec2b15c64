#include "TamberlinKit/Readers/Readers.h"
#include "TamberlinKit/Readers/XlsxSheet.h"
#include "Tests/TamberlinKit/OfficeFiles.h"

#include <gtest/gtest.h>

using namespace Tamberlin;
using ::Test::Files, ::Test::lines, ::Test::refusal, ::Test::relationships, ::Test::zipOf;
using Lines = std::vector<std::string>;
using ::Test::operator+;

namespace {

// A workbook; the first of its relationships are those of its sheets. `sheets` is the content of its list.
Files workbook(
    const std::string& sheets, std::vector<std::string> worksheets, const std::string& sharedStrings = "")
{
    Files files { relationships("", { { "officeDocument", "/xl/w.xml" } }),
        { "xl/w.xml", "<workbook><sheets>" + sheets + "</sheets></workbook>" },
        { "xl/strings.xml", "<sst>" + sharedStrings + "</sst>" } };
    std::vector<std::pair<std::string, std::string>> targets;
    for (auto& content : worksheets) {
        const auto name = "s" + std::to_string(targets.size() + 1) + ".xml";
        targets.emplace_back("worksheet", name);
        files.emplace_back("xl/" + name, "<worksheet>" + content + "</worksheet>");
    }
    targets.emplace_back("sharedStrings", "strings.xml");
    files.push_back(relationships("xl/w.xml", targets));
    return files;
}

// A workbook of one sheet.
Files oneSheet(const std::string& content, const std::string& sharedStrings = "")
{
    return workbook("<sheet name='S' sheetId='1' r:id='worksheet1'/>", { content }, sharedStrings);
}

Extracted read(const Files& files) { return readXlsx(zipOf(files), "n.xlsx", {}); }

TEST(XlsxReader, cellsWithTextBecomeSegmentsAndTheOthersANote)
{
    const std::string strings = "<si><t>zero</t></si><si><r><t>rich </t></r><r><rPr/><t>text</t></r></si>"
                                "<si><t>課</t><rPh><t>カ</t></rPh><phoneticPr/></si><si/>"
                                "<si><t>a_x000D_b _x005F_x0041_ _xD83D__xDE00_ _x0001_ _xZZZZ_</t></si>";
    struct {
        std::string cells;
        Lines expected;
        std::string note;
    } const cases[] {
        { "<c t='s'><v>1</v></c><c t='s'><v>0</v></c><c t='s'><v>0</v></c>",
            { "body: rich text", "body: zero", "body: zero" }, "" },
        { "<c t='s'><v>2</v></c><c t='s'><v>3</v></c><c t='s'><v>5</v></c><c t='s'><v>-1</v></c><c t='s'/>",
            { "body: 課" }, "" },
        { "<c t='s'><v>4</v></c>", { "body: a\rb _x0041_ 😀  _xZZZZ_" }, "" },
        { "<c t='inlineStr'><is><r><t>in</t></r><r><t>line</t></r><rPh><t>no</t></rPh></is></c>",
            { "body: inline" }, "" },
        { "<c t='str'><f>A1&amp;\"x\"</f><v>result</v></c><c t='str'><f>A1</f><v></v></c>",
            { "body: result" }, "" },
        { "<c s='1'/><c><v>1.5</v></c>", {},
            "1 cell with a number, date, truth value or error isn’t counted." },
        { "<c t='n'><v>1</v></c><c t='b'><v>1</v></c><c t='e'><f>1/0</f><v>#DIV/0!</v></c><c "
          "t='d'><v>2026-01-01</v></c>",
            {}, "4 cells with numbers, dates, truth values or errors aren’t counted." },
    };
    for (const auto& [cells, expected, note] : cases) {
        SCOPED_TRACE(cells);
        const auto extracted = read(oneSheet("<sheetData><row>" + cells + "</row></sheetData>", strings));
        EXPECT_EQ(lines(extracted), expected);
        EXPECT_EQ(extracted.notes, note.empty() ? Lines() : Lines { note });
        EXPECT_EQ(extracted.pages, std::nullopt);
    }
}

TEST(XlsxReader, hiddenSheetsRowsAndColumnsAreHiddenText)
{
    const auto cell = [](const std::string& place, const std::string& text) {
        return "<c " + place + " t='str'><v>" + text + "</v></c>";
    };
    const auto extracted = read(workbook(
        "<sheet r:id='worksheet3'/><sheet state='veryHidden' r:id='worksheet1'/><sheet state='visible' "
        "r:id='worksheet2'/><sheet r:id='worksheet3'/>",
        { "<sheetData><row>" + cell("", "very") + "</row></sheetData>",
            "<cols><col min='2' max='3' hidden='1'/><col min='4' max='5' hidden='0'/><col min='28' "
            "max='99999' "
            "hidden='true'/><col min='9' max='7' hidden='1'/></cols><sheetData><row>"
                + cell("r='A1'", "A") + cell("", "B") + cell("r='C1'", "C") + cell("", "D")
                + cell("r='AA1'", "AA") + cell("r='XFD1'", "XFD") + "</row><row hidden='1'>" + cell("", "row")
                + "</row><row>" + cell("", "A3") + "</row></sheetData>",
            "<sheetData><row>" + cell("", "first") + "</row></sheetData>" }));
    EXPECT_EQ(lines(extracted),
        Lines({ "body: first", "hidden: very", "body: A", "hidden: B", "hidden: C", "body: D", "body: AA",
            "hidden: XFD", "hidden: row", "body: A3" }));
}

TEST(XlsxReader, codesOfHeadersAndFootersAreNoText)
{
    using Sections = std::array<std::string, 3>;
    struct {
        std::string written;
        Sections expected;
    } const cases[] {
        { "Title", { "", "Title", "" } },
        { "&LLeft&CMiddle&RRight &amp", { "Left", "Middle", "Right mp" } },
        { "&L&\"Arial,Bold\"&12Page &P of &N&R&D &T", { "Page  of ", "", " " } },
        { "&CR&&D &K01+034blue&KFF0000red &P+1!", { "", "R&D bluered !", "" } },
        { "&L&G&A&F&Z&B&I&U&E&S&X&Yx\ny", { "x\ny", "", "" } },
        { "&L&\"Arial", {} },
        { "&Lx&", { "x", "", "" } },
        { "&K0", {} },
    };
    for (const auto& [written, expected] : cases)
        EXPECT_EQ(headerSections(written), expected) << written;
}

TEST(XlsxReader, whatStandsAroundTheCells)
{
    const std::string header
        = "<headerFooter><oddHeader>&amp;LLeft&amp;RRight</oddHeader><evenHeader>even</evenHeader>"
          "<firstFooter>first</firstFooter></headerFooter>";
    const std::string sheet = "<sheetData><row><c t='str'><v>cell</v></c></row></sheetData><customSheetViews>"
        + header + "</customSheetViews>" + header
        + "<oleObjects><mc:AlternateContent><mc:Choice><oleObject/></mc:Choice>"
          "<mc:Fallback><oleObject/></mc:Fallback></mc:AlternateContent></oleObjects>";
    const std::string drawing
        = "<xdr:wsDr><xdr:sp><xdr:txBody><a:p><a:r><a:t>box</a:t></a:r></a:p></xdr:txBody></xdr:sp>"
          "<xdr:sp textlink='$A$1'><a:p><a:fld type='TxLink'><a:t>cell</a:t></a:fld></a:p></xdr:sp>"
          "<xdr:pic/><xdr:pic/><xdr:graphicFrame><c:chart r:id='chart1'/></xdr:graphicFrame></xdr:wsDr>";
    const Files around {
        relationships(
            "xl/s1.xml", { { "drawing", "d.xml" }, { "comments", "c.xml" }, { "threadedComment", "t.xml" } }),
        { "xl/d.xml", drawing }, relationships("xl/d.xml", { { "chart", "chart.xml" } }),
        { "xl/chart.xml",
            "<c:chartSpace><c:title><c:rich><a:p><a:r><a:t>Sales</a:t></a:r></a:p></c:rich></"
            "c:title><c:cat><c:strRef>"
            "<c:strCache><c:pt><c:v>cell</c:v></c:pt></c:strCache></c:strRef></c:cat></c:chartSpace>" },
        { "xl/c.xml",
            "<comments><authors><author>Ana</author><author>tc={1}</author></authors><commentList><comment "
            "authorId='0'>"
            "<text><r><t>Ana:</t></r><r><t>\nold</t></r></text></comment><comment "
            "authorId='1'><text><t>[Threaded "
            "comment]</t></text></comment></commentList></comments>" },
        { "xl/t.xml",
            "<ThreadedComments><threadedComment><text>question</text></"
            "threadedComment><threadedComment><text>answer</text>"
            "</threadedComment></ThreadedComments>" }
    };
    const auto extracted = read(oneSheet(sheet) + around);
    EXPECT_EQ(lines(extracted),
        Lines({ "body: cell", "headersFooters: Left", "headersFooters: Right", "textBoxes: box",
            "textBoxes: Sales", "comments: Ana:\nold", "comments: question", "comments: answer" }));
    EXPECT_EQ(extracted.notes, Lines { "Text in 2 pictures and 1 embedded object isn’t counted." });

    auto flags = sheet;
    const std::string plain = "<headerFooter>";
    flags.replace(flags.rfind(plain), plain.size(), "<headerFooter differentFirst='1' differentOddEven='1'>");
    EXPECT_EQ(lines(read(workbook("<sheet state='hidden' r:id='worksheet1'/>", { flags }) + around)),
        Lines(
            { "hidden: cell", "hidden: Left", "hidden: Right", "hidden: even", "hidden: first", "hidden: box",
                "hidden: Sales", "comments: Ana:\nold", "comments: question", "comments: answer" }));
    // A thread that is only told of isn't lost.
    auto withoutThreads = around;
    withoutThreads[0] = relationships("xl/s1.xml", { { "comments", "c.xml" } });
    EXPECT_EQ(lines(read(oneSheet("") + withoutThreads)),
        Lines({ "comments: Ana:\nold", "comments: [Threaded comment]" }));
}

TEST(XlsxReader, damageLeavesWhatCameBeforeItAndANote)
{
    auto files = oneSheet(
        "<row><c t='s'><v>0</v></c><c t='s'><v>1</v></c></row>", "<si><t>kept</t></si><si><t>cut & lost");
    const auto extracted = read(files);
    EXPECT_EQ(lines(extracted), Lines { "body: kept" });
    EXPECT_EQ(
        extracted.notes, Lines { "Part of n.xlsx couldn’t be read (not well-formed (invalid token))." });
}

TEST(XlsxReader, refusesWhatIsNoWorkbook)
{
    const std::string noArchive = "“n” isn’t a Excel (.xlsx) file that can be read (it isn’t a zip package).";
    EXPECT_EQ(refusal(readXlsx, ""), noArchive);
    EXPECT_EQ(refusal(readXlsx, ::Test::compoundFile("EncryptedPackage")),
        noArchive + " It is protected with a password: remove the password and count it again.");
    EXPECT_EQ(refusal(readXlsx, zipOf({ { "xl/workbook.bin", "" } })),
        "“n” isn’t a Excel (.xlsx) file that can be read (it has no workbook).");
    std::stop_source stop;
    stop.request_stop();
    EXPECT_THROW(readXlsx(zipOf(oneSheet("")), "n", stop.get_token()), Cancelled);
}

} // namespace
