#include "TamberlinKit/Readers/PdfReader.h"

#include "Base/ChildProcess.h"
#include "Base/DurableFile.h"
#include "Base/Text.h"
#include "TamberlinKit/Batch/CountBatch.h"
#include "TamberlinKit/Readers/PdfPages.h"
#include "TamberlinKit/Readers/ReadDocument.h"
#include "Tests/Support/Folders.h"
#include "Tests/Support/PdfMaker.h"
#include "Tests/TamberlinKit/OfficeFiles.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <filesystem>
#include <sys/resource.h>
#include <thread>

using namespace Tamberlin;
using namespace std::chrono_literals;
using ::Test::lines, ::Test::linesAt, ::Test::PdfMaker, ::Test::textAt;

namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

class PdfReader : public testing::Test {
protected:
    Extracted read(
        const std::string& bytes, const PdfOptions& options = {}, const std::stop_token& cancel = {}) const
    {
        const auto path = m_folder / "n.pdf";
        ::Test::writeFile(path, bytes);
        return readDocument(path, cancel, options);
    }
    Lines linesOf(const std::string& content) const { return lines(read(PdfMaker { { content } }.bytes())); }

    std::string refusal(const std::string& bytes, const PdfOptions& options = {}) const
    {
        try {
            read(bytes, options);
            return "(not refused)";
        } catch (const ReadError& error) {
            return error.what();
        }
    }

    // Options under which a script reads PDFs.
    PdfOptions scripted(const std::string& script) const
    {
        const auto path = m_folder / "pallisande-document-reader";
        ::Test::writeFile(path, "#!/bin/sh\n" + script);
        fs::permissions(path, fs::perms::owner_all);
        return { .helpers = m_folder.path() };
    }

    ::Test::TemporaryFolder m_folder;
};

const auto hello = PdfMaker { { textAt(72, 700, "Hello world") } }.bytes();

TEST_F(PdfReader, tellsWordsByTheGapsBetweenLetters)
{
    const auto shown
        = [](const std::string& operators) { return "BT /H 12 Tf 1 0 0 1 72 700 Tm " + operators + " ET"; };
    const std::pair<std::string, std::string> cases[] {
        { shown("[(Kern)80(ed w)-30(or)20(ds)-250(apart)]TJ"), "Kerned words apart" },
        { shown("3 Tc (spaced letters) Tj"), "spaced letters" },
        { shown("8 Tc (ab) Tj"), "a b" },
        { shown("(a)Tj 10 0 Td (far)Tj 100 Tz 18 0 Td (b)Tj"), "a far b" },
        { shown("(bold)Tj 1 0 0 1 72.3 700 Tm (bold)Tj"), "bold" },
        { shown("(b)Tj 1 0 0 1 72.3 700 Tm (b)Tj 1 0 0 1 78.7 700 Tm (e)Tj 1 0 0 1 79 700 Tm (e)Tj"), "be" },
        { shown("(x)Tj /H 7 Tf 5 Ts (2)Tj 0 Ts /H 12 Tf ( and y)Tj"), "x2 and y" },
        { shown("(a )Tj 1 0 0 1 78.7 700 Tm (b )Tj 1 0 0 1 85.4 700 Tm (c)Tj"), "abc" },
        { shown("(caf)Tj (e)Tj 1 0 0 1 89.4 700 Tm (\xB4)Tj"), "cafe\u0301" },
        { shown("/Span<</ActualText<FEFF00E9>>>BDC (xyz)Tj EMC (t\xE9)Tj"), "été" },
        { shown("(seen)Tj 3 Tr 1 0 0 1 200 700 Tm (scanned)Tj 1 0 0 1 900 700 Tm (outside)Tj"),
            "seen|scanned" },
        { shown("/U 12 Tf (Anal BC DE)Tj"), "fi\u05DB\u05D0\u05DD 日本 가나" },
        { textAt(72, 700, "1.") + textAt(100, 700, "Label of a list"), "1. Label of a list" },
        { textAt(72, 700, "a cell") + textAt(172, 700, "another"), "a cell|another" },
        { textAt(150, 700, "drawn") + textAt(72, 700, "not in order") + textAt(139, 700, "it"),
            "not in order it drawn" },
        { "q 0 1 -1 0 300 100 cm " + textAt(0, 0, "turned") + textAt(0, -14, "left") + "Q", "turned left" },
    };
    for (const auto& [content, expected] : cases) {
        std::string text;
        for (const auto& segment : read(PdfMaker { { content } }.bytes()).segments)
            text += (text.empty() ? "" : "|") + std::string(std::string_view(segment.text));
        EXPECT_EQ(text, expected) << content;
    }
}

TEST_F(PdfReader, readsFromRightToLeft)
{
    // Small letters of this font are Hebrew. Some programs draw them from the left, as they stand; some in
    // the order in which they are read, each to the left of the last.
    EXPECT_EQ(linesOf(textAt(72, 700, "cba 25 fed", 12, 'U')),
        Lines { "body: \u05D3\u05D4\u05D5 25 \u05D0\u05D1\u05D2" });
    EXPECT_EQ(
        linesOf(
            "BT /U 12 Tf 1 0 0 1 200 700 Tm (a)Tj 1 0 0 1 192.8 700 Tm (b)Tj 1 0 0 1 178.4 700 Tm (c)Tj ET"),
        Lines { "body: \u05D0\u05D1 \u05D2" });
    EXPECT_EQ(
        linesOf(textAt(72, 700, "The word") + textAt(126, 700, "dc ba", 12, 'U') + textAt(166, 700, "here")),
        Lines { "body: The word \u05D0\u05D1 \u05D2\u05D3 here" });
}

TEST_F(PdfReader, findsColumnsAndParagraphs)
{
    const auto left
        = linesAt(72, 700,
              { "The first column has lines that are", "about as long as each other, and", "it ends here." })
        + linesAt(84, 658,
            {
                "An indented line starts another",
            })
        + linesAt(72, 644, { "paragraph, whose last sentence", "goes on in the second col-" });
    const auto right = linesAt(320, 700,
        { "umn of this page.", "A line that would have fitted above,", "so that it is another paragraph." });
    const Lines expected {
        "body: The first column has lines that are about as long as each other, and it ends here.",
        "body: An indented line starts another paragraph, whose last sentence goes on in the second column "
        "of this page.",
        "body: A line that would have fitted above, so that it is another paragraph."
    };
    EXPECT_EQ(linesOf(left + right), expected);

    // Drawn from the bottom up, a line at a time, there is only geometry to go by.
    Lines drawn;
    const auto all = left + right;
    for (std::size_t start = 0, end = 0; (end = all.find('\n', start)) != all.npos; start = end + 1)
        drawn.insert(drawn.begin(), all.substr(start, end + 1 - start));
    EXPECT_EQ(linesOf(fmt::format("{}", fmt::join(drawn, ""))), expected);

    EXPECT_EQ(
        linesOf(textAt(72, 700, "A heading in bold letters", 12, 'B')
            + linesAt(72, 686, { "Text below it that is longer than it", "and goes on." })
            + linesAt(72, 640, { "\x95 an item of a list with two lines", "  hanging", "\x95 another" })),
        (Lines { "body: A heading in bold letters", "body: Text below it that is longer than it and goes on.",
            "body: • an item of a list with two lines hanging", "body: • another" }));
}

TEST_F(PdfReader, tellsAboutPagesAndPictures)
{
    PdfMaker pdf { .pixels = std::string(40 * 40, 'x'), .pixelWidth = 40 };
    for (int page = 1; page <= 4; ++page)
        pdf.pages.push_back(textAt(72, 800, "The running head") + textAt(300, 30, fmt::format("{}", page))
            + textAt(72, 400, fmt::format("This is text of page {}.", page))
            + (page < 3 ? "q 99 0 0 99 9 99 cm /I Do Q" : ""));
    pdf.pages.push_back("q 99 0 0 99 9 99 cm /I Do Q");
    pdf.pages.push_back("");
    pdf.pages.push_back("%" + std::string(300'000, ' '));
    Extracted expected { .name = "n.pdf",
        .format = FileFormat::pdf,
        .notes = { "3 pages have no text; scanned text can be read with text recognition.",
            "Text in 1 picture isn’t counted." },
        .approximate = true,
        .pages = 7 };
    for (const auto* const number : { "1", "2", "3", "4" }) {
        expected.segments.push_back({ "The running head", Part::headersFooters });
        expected.segments.push_back({ number, Part::headersFooters });
        expected.segments.push_back({ "This is text of page " + std::string(number) + "." });
    }
    for (const unsigned threads : { 1u, 2u, 5u, 20u }) {
        const auto extracted = read(pdf.bytes(), { .threads = threads });
        EXPECT_EQ(lines(extracted), lines(expected)) << threads;
        EXPECT_EQ(extracted.notes, expected.notes);
        EXPECT_EQ(extracted.pages, 7);
        EXPECT_TRUE(extracted.approximate);
    }
}

TEST_F(PdfReader, refusesWithASentence)
{
    const auto whole = pdfLastFrame({ .pageCount = 1 });
    ::Test::writeFile(m_folder / "answer", whole + "more");
    ::Test::writeFile(m_folder / "half", whole.substr(0, whole.size() - 1));
    const std::string damaged = "“n.pdf” isn’t a PDF that can be read (it may be damaged).",
                      givenUp = "“n.pdf” couldn’t be read: it may be damaged (reading it was given up).",
                      tooLong = "“n.pdf” takes too long to read.";
    EXPECT_EQ(refusal(""), damaged);
    EXPECT_EQ(refusal("plain text"), damaged);
    EXPECT_EQ(refusal(PdfMaker().bytes()), damaged) << "no pages";
    EXPECT_EQ(
        refusal(hello, { .outputBytes = 20 }), "“n.pdf” has more than 0 MB of text, which no PDF needs.");
    EXPECT_EQ(refusal(hello, { .helpers = m_folder / "nowhere" }),
        "“n.pdf” couldn’t be read: the program “pallisande-document-reader” couldn’t be started (No such "
        "file or "
        "directory).");
    EXPECT_EQ(refusal(hello, scripted("kill -SEGV $$")), givenUp);
    EXPECT_EQ(refusal(hello, scripted("kill -XCPU $$")), tooLong);
    EXPECT_EQ(refusal(hello, scripted("exit 0")), givenUp);
    EXPECT_EQ(refusal(hello, scripted("cat " + (m_folder / "half").string())), givenUp);
    EXPECT_EQ(refusal(hello, scripted("cat " + (m_folder / "answer").string())), givenUp);
    EXPECT_EQ(
        refusal(hello, scripted("exec yes p")), "“n.pdf” has more than 100 MB of text, which no PDF needs.");
    auto slow = scripted("sleep 60");
    slow.time = 200ms;
    EXPECT_EQ(refusal(hello, slow), tooLong);
}

TEST_F(PdfReader, opensWhatNeedsNoPassword)
{
    ::Test::writeFile(m_folder / "plain.pdf", hello);
    const auto encrypted = [&](const std::string& user) {
        const auto path = (m_folder / "locked.pdf").string();
        const auto result = Base::runChild("/usr/bin/qpdf",
            { "--encrypt", user, "owner", "256", "--", (m_folder / "plain.pdf").string(), path }, "");
        return result.end == Base::ChildResult::End::exited && result.code == 0 ? ::Test::fileText(path) : "";
    };
    if (encrypted("").empty())
        GTEST_SKIP() << "qpdf isn't there";
    EXPECT_EQ(lines(read(encrypted(""))), Lines { "body: Hello world" });
    EXPECT_EQ(refusal(encrypted("user")),
        "“n.pdf” is protected with a password: remove the password and count it again.");
}

TEST_F(PdfReader, stopsAtOnce)
{
    std::stop_source stop;
    const auto options = scripted("sleep 60");
    std::jthread stopper([&] {
        std::this_thread::sleep_for(200ms);
        stop.request_stop();
    });
    const auto start = std::chrono::steady_clock::now();
    EXPECT_THROW(read(hello, options, stop.get_token()), Cancelled);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 5s);
    EXPECT_THROW(read(hello, {}, stop.get_token()), Cancelled) << "stopped before it began";
}

TEST_F(PdfReader, recognisesScans)
{
    ::Test::writeFile(m_folder / "text.pdf",
        PdfMaker {
            { linesAt(72, 700, { "Recognition reads what was", "scanned from paper, line by line." }) } }
            .bytes());
    const auto drawn
        = Base::runChild("/usr/bin/pdftoppm", { "-gray", "-r", "200", (m_folder / "text.pdf").string() }, "");
    std::istringstream picture(drawn.output);
    std::string kind;
    int width = 0, height = 0, most = 0;
    picture >> kind >> width >> height >> most;
    if (kind != "P5")
        GTEST_SKIP() << "pdftoppm isn't there";
    PdfMaker scan { .pages = { "q 595 0 0 842 0 0 cm /I Do Q", textAt(72, 700, "Typed."), "" },
        .pixels = drawn.output.substr(static_cast<std::size_t>(picture.tellg()) + 1),
        .pixelWidth = width };
    for (const unsigned threads : { 1u, 2u }) {
        ::Test::writeFile(m_folder / "n.pdf", scan.bytes());
        const auto extracted = countBatch({ m_folder / "n.pdf" },
            { .counting = { .ocrScannedPDFs = true },
                .threads = threads,
                .onRead =
                    [&](const Extracted& file) {
                        if (!file.notes.empty()
                            && file.notes.front().find("no data for any") != std::string::npos)
                            return;
                        EXPECT_EQ(lines(file),
                            (Lines { "body: Recognition reads what was scanned from paper, line by line.",
                                "body: Typed." }));
                        ASSERT_EQ(file.notes.size(), 2u);
                        EXPECT_TRUE(file.notes[0].starts_with("1 page was read with text recognition (eng"))
                            << file.notes[0];
                        EXPECT_EQ(file.notes[1], "1 page has no text that could be recognised.");
                    } },
            {});
        EXPECT_EQ(extracted.failures.size(), 0u);
    }
}

TEST_F(PdfReader, survivesHostileFiles)
{
    const fs::path samples = fs::path(PALLISANDE_SAMPLES) / "documents/hostile";
    std::string deep(3'000'000, '['), bomb;
    std::vector<std::string> files { PdfMaker { { deep } }.bytes(),
        PdfMaker { { "BT /H 1 Tf " + deep } }.bytes(), hello.substr(0, hello.size() / 2) };
    for (int line = 0; line < 300'000; ++line)
        bomb += "BT /H 9 Tf 72 700 Td (all in one place) Tj ET\n";
    files.push_back(PdfMaker { { bomb } }.bytes());
    bomb.clear();
    for (long glyph = 0; glyph < 200'000; ++glyph)
        bomb += fmt::format(
            "BT /U 9 Tf 1 0 0 1 {} {} Tm (a) Tj ET\n", glyph * 7919 % 595, glyph * 104729 % 842);
    files.push_back(PdfMaker { { bomb } }.bytes());
    std::error_code none;
    for (const auto& entry : fs::directory_iterator(samples, none)) {
        if (entry.path().extension() == ".pdf")
            files.push_back(::Test::fileText(entry.path()));
    }
    for (const auto& file : files) {
        const auto start = std::chrono::steady_clock::now();
        const auto result = refusal(file);
        EXPECT_TRUE(result == "(not refused)" || result.starts_with("“n.pdf”")) << result;
        EXPECT_LT(std::chrono::steady_clock::now() - start, 30s) << file.substr(0, 200);
    }
    struct rusage usage { };
    ::getrusage(RUSAGE_CHILDREN, &usage);
    EXPECT_LT(usage.ru_maxrss, 700 * 1024) << "kB, of the largest child";
}

TEST(Sandbox, leavesNothingButReading)
{
    const ::Test::TemporaryFolder folder;
    ::Test::writeFile(folder / "readable", "x");
    const auto result
        = Base::runChild(Base::programFolder() / "sandbox-probe", { folder.path().string() }, "");
    EXPECT_EQ(result.end, Base::ChildResult::End::killedBySignal);
    EXPECT_EQ(result.code, SIGXCPU);
    std::string expected = "read a file of the folder\ntake little memory\nwrite to an open file\n";
    const bool hasLandlock = result.output.find("another file") == std::string::npos;
    if (!hasLandlock) // Older systems; the second ring alone leaves reading.
        expected.insert(expected.find("take"), "read another file\n");
    EXPECT_EQ(result.output, expected);
}

} // namespace
