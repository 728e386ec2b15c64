#include "PrintedSamples.h"

#include "Base/Base64.h"
#include "Base/ChildProcess.h"
#include "Base/Json.h"
#include "Printing/LogoImage.h"
#include "Printing/PdfDocument.h"
#include "Printing/PrintingError.h"

#include <gtest/gtest.h>

#include <QBuffer>
#include <QImage>

#include <filesystem>
#include <optional>
#include <tuple>

using namespace Pallisande;

namespace {

std::size_t countOf(std::string_view text, std::string_view part)
{
    std::size_t count = 0;
    for (auto at = text.find(part); at != text.npos; at = text.find(part, at + part.size()))
        ++count;
    return count;
}

// What a program of the system writes when it reads the PDF; nothing where it isn't installed.
std::optional<std::string> readBy(
    const std::string& program, const std::vector<std::string>& arguments, const std::string& pdf)
{
    const auto path = std::filesystem::path("/usr/bin") / program;
    if (!std::filesystem::exists(path))
        return std::nullopt;
    auto result = Base::runChild(path, arguments, pdf);
    EXPECT_EQ(result.code, 0) << result.errors;
    return std::move(result.output);
}

std::string base64Image(const QImage& image, const char* format)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    image.save(&buffer, format);
    return Base::toBase64(bytes.toStdString());
}

std::string refusal(const Tamberlin::PrintedDocument& document)
{
    try {
        makePdf(document);
        return "(not refused)";
    } catch (const PrintingError& error) {
        return error.what();
    }
}

Base::ChildResult print(const std::string& input, const std::vector<std::string>& arguments = {})
{
    return Base::runChild(Base::programFolder() / "pallisande-print", arguments, input);
}

const std::string unreadableLogo = "The logo isn’t a readable PNG or JPEG image.";

} // namespace

TEST(PdfDocument, isAFileForArchives)
{
    auto document = invoiceOf(60);
    document.metadataTitle = "Invoice <A & B> %1\x01";
    QImage logo(300, 100, QImage::Format_ARGB32);
    logo.fill(QColor(20, 60, 110, 100)); // Its transparency must not reach the file.
    document.logo = base64Image(logo, "png");
    const auto pdf = makePdf(document);
    EXPECT_TRUE(pdf.starts_with("%PDF-1.4"));
    EXPECT_EQ(countOf(pdf, "/GTS_PDFA1"), 1u);
    EXPECT_EQ(countOf(pdf, "Invoice &lt;A &amp; B&gt; %1</rdf:li>"), 1u);
    EXPECT_EQ(countOf(pdf, "/Type /Page\n"), layOut(document).pages.size());
    EXPECT_GE(countOf(pdf, "/FontFile2"), 2u);
    EXPECT_EQ(countOf(pdf, "/Type /FontDescriptor"), countOf(pdf, "/FontFile2"));
    for (const auto* opacity : { "/ca ", "/CA " })
        EXPECT_EQ(countOf(pdf, opacity), countOf(pdf, opacity + std::string("1.0"))) << opacity;
    EXPECT_EQ(countOf(pdf, "/SMask"), countOf(pdf, "/SMask /None"));
    if (const auto fonts = readBy("pdffonts", { "-" }, pdf)) {
        EXPECT_EQ(countOf(*fonts, " yes no  yes "), countOf(*fonts, "CID TrueType")) << *fonts;
    }
    if (const auto sizes = readBy("pdfinfo", { "-" }, pdf)) {
        EXPECT_NE(sizes->find("(A4)"), std::string::npos) << *sizes;
        EXPECT_NE(sizes->find("Creator:         Pallisande\n"), std::string::npos) << *sizes;
    }
}

TEST(PdfDocument, canBeReadLineByLine)
{
    auto document = invoiceOf(2);
    document.paper = Tamberlin::Paper::letter;
    document.title = "Credit note";
    document.subtitle = "Corrects the office’s first invoice"; // No ligature for ffi and fi.
    document.rows[0].amount = "−120.1";
    const auto text = readBy("pdftotext", { "-raw", "-", "-" }, makePdf(document));
    if (!text)
        GTEST_SKIP() << "pdftotext isn’t installed.";
    EXPECT_EQ(*text,
        R"(Maria Harrow
14 Mill Lane
Bath BA1 2QF
Maria Harrow · 14 Mill Lane · Bath BA1 2QF
Nordlicht Verlag GmbH
Speicherstraße 12
20457 Hamburg
Invoice INV-2026-007
Date 2 February 2026
Credit note
Corrects the office’s first invoice
Description Quantity Unit Price Amount (EUR)
Chapter 1 1,000 words 0.12 −120.1
Chapter 2 1,000 words 0.12 120.2
en → de, detail 2
Subtotal 513.60
VAT 21% 107.86
Total EUR 621.46
Payable within 30 days.
IBAN GB33 BUKB 2020 1555 5555 55
BIC BUKBGB22
Maria Harrow · Tax no. GB 123 4567 89 INV-2026-007 · Page 1 of 1
)"
        "\f");
}

TEST(PdfDocument, namesTheCharactersThatAreWritten)
{
    const std::tuple<const char*, const char*, const char*> cases[] {
        { "two words", "<0020>", "<0009>" }, { "日", "<65E5>", "<2F47>" }, // Not the radical.
        { "長", "<9577>", "<2ED1>" },
        { "بب", "<0628>", "<FE91>" }, // Not its shape at the beginning of a word.
    };
    for (const auto& [written, name, wrongName] : cases) {
        SCOPED_TRACE(written);
        const Tamberlin::PrintedDocument document { .title = written };
        if (!layOut(document).missingCharacters.empty())
            continue; // No installed font has them.
        const auto pdf = makePdf(document);
        EXPECT_GE(countOf(pdf, name), 1u);
        EXPECT_EQ(countOf(pdf, wrongName), 0u);
    }
}

TEST(PdfDocument, isRefusedWithMoreTextThanCanBeSet)
{
    auto document = invoiceOf(1);
    document.remarks = { "Terms: " + std::string(20'000, 'x') };
    EXPECT_EQ(refusal(document), "The text “Terms: xxxxxxxxxxxxxxxxxxxxxxx…” is too long to be printed.");
}

TEST(PdfDocument, isRefusedWithCharactersThatNoFontHas)
{
    auto document = invoiceOf(1);
    document.remarks = { "\uF8FF and \u0378" };
    EXPECT_EQ(refusal(document),
        "No installed font has the characters “\uF8FF\u0378”; they would print as empty boxes.");
}

TEST(PdfDocument, isRefusedWithALogoThatCantBeRead)
{
    QImage image(8, 8, QImage::Format_RGB32);
    image.fill(Qt::red);
    auto damaged = *Base::fromBase64(base64Image(image, "png"));
    damaged.resize(damaged.size() / 2);
    auto huge = *Base::fromBase64(base64Image(image, "png"));
    huge.replace(16, 8, std::string("\x00\x00\x20\x00\x00\x00\x20\x00", 8)); // 8192 × 8192 in its head.
    const std::pair<const char*, std::string> cases[] { { "no Base64", "?" }, { "empty", "" },
        { "another format", base64Image(image, "bmp") }, { "damaged", Base::toBase64(damaged) },
        { "more than 20 megapixels", Base::toBase64(huge) } };
    for (const auto& [name, logo] : cases) {
        SCOPED_TRACE(name);
        auto document = invoiceOf(1);
        document.logo = logo;
        EXPECT_EQ(refusal(document), unreadableLogo);
    }
}

TEST(LogoImage, standsOnWhiteAndFitsItsRoom)
{
    const struct {
        int width, height;
        double printedWidth, printedHeight; // In millimetres.
    } cases[] {
        { 2000, 400, 50, 10 }, { 400, 2000, 4, 20 },
        { 72, 36, 25.4, 12.7 }, // A small one isn’t enlarged beyond a point for a pixel.
    };
    for (const auto& [width, height, printedWidth, printedHeight] : cases) {
        SCOPED_TRACE(width);
        QImage image(width, height, QImage::Format_ARGB32);
        image.fill(QColor(0, 0, 0, 0));
        const QImage logo = readLogo(base64Image(image, "png"));
        EXPECT_FALSE(logo.hasAlphaChannel());
        EXPECT_EQ(logo.pixel(0, 0), 0xffffffff);
        EXPECT_NEAR(logoSize(logo).width(), millimetres(printedWidth), 2);
        EXPECT_NEAR(logoSize(logo).height(), millimetres(printedHeight), 2);
    }
    QImage blue(10, 10, QImage::Format_RGB32);
    blue.fill(Qt::blue);
    EXPECT_GT(qBlue(readLogo(base64Image(blue, "jpeg")).pixel(5, 5)), 240);
}

TEST(PrintProgram, writesThePdfOrOneSentence)
{
    const auto printed = print(Base::toJson(invoiceOf(1)));
    EXPECT_EQ(printed.code, 0);
    EXPECT_TRUE(printed.output.starts_with("%PDF"));
    EXPECT_EQ(printed.errors, "");

    auto withBoxes = invoiceOf(1);
    withBoxes.title = "\u0378";
    auto withDamagedLogo = invoiceOf(1);
    withDamagedLogo.logo = Base::toBase64("\x89PNG\r\n\x1a\nxxxx");
    const struct {
        std::string input;
        std::vector<std::string> arguments;
        int code;
        std::string errors;
    } cases[] {
        { Base::toJson(withBoxes), {}, 3,
            "No installed font has the characters “\u0378”; they would print as empty boxes.\n" },
        { Base::toJson(withDamagedLogo), {}, 3, unreadableLogo + "\n" },
        { std::string(17 << 20, ' '), {}, 2, "The document is larger than 16 MB.\n" },
        { R"({"rows": [{"title": 3}]})", {}, 2,
            "The document can’t be read: rows[0].title: Unexpected number.\n" },
        { "{}", { "invoice.json" }, 2,
            "pallisande-print takes no arguments but --version: it reads a document as JSON from standard "
            "input "
            "and writes a PDF to standard output.\n" },
    };
    for (const auto& [input, arguments, code, errors] : cases) {
        SCOPED_TRACE(errors);
        const auto result = print(input, arguments);
        EXPECT_EQ(result.code, code);
        EXPECT_EQ(result.output, "");
        EXPECT_EQ(result.errors, errors);
    }
}
