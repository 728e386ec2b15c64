#include "PallisandeKit/Analyses/Importer.h"

#include "Tests/Support/Folders.h"
#include "Tests/Support/Samples.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <sys/stat.h>

using namespace Pallisande;
using Test::moment, Test::TemporaryFolder, Test::writeFile;
using namespace std::string_literals;

namespace {

const std::string report = "<task><file name='a'><analyse><new words='5'/></analyse></file></task>";

std::string outcome(const std::string& name, std::string_view data)
{
    const auto result = Importer::import(data, name, moment().now);
    if (const auto* failed = std::get_if<ImportFailed>(&result))
        return failed->message;
    if (const auto* needed = std::get_if<NeedsMapping>(&result))
        return needed->reason;
    return "read " + std::get<Analysis>(result).name;
}

std::string loading(const std::filesystem::path& path)
{
    try {
        return std::to_string(Importer::load(path).size()) + " bytes";
    } catch (const ImportError& error) {
        return error.what();
    }
}

TEST(Importer, goesByTheExtensionAndThenByTheHead)
{
    const auto spreadsheet = [](const std::string& name) {
        return "Pallisande reads spreadsheets saved as CSV. Open “" + name
            + "” in Excel or Numbers, export it as CSV, and import that file.";
    };
    const auto forReading = [](const std::string& name) {
        return "“" + name
            + "” is a report for reading, not for importing. In Trados save the analysis as XML; in memoQ or "
              "Phrase "
              "export it as CSV.";
    };
    const auto noTable = [](const std::string& name) {
        return "“" + name + "” is no analysis report that Pallisande knows, and no table of counts.";
    };
    const auto noPhrase = [](const std::string& name) {
        return "“" + name
            + "” isn’t a Phrase analysis (no “analyseLanguageParts”). In Phrase, open the analysis and "
              "download "
              "it as JSON or CSV.";
    };
    const std::string memoQ = ";;101%;;Total;\nFile;Char/Word;Segments;Words;Segments;Words\na;5;1;2;1;2\n";
    const std::string phrase = ";;;100%;;Total;\nFile;Tagging "
                               "Errors;Chars/Word;Segments;Words;Segments;Words\na | en>de;0;5;1;2;1;2\n";
    const std::string pdf
        = "A PDF report can’t be imported. Export the analysis as XML (Trados), CSV (memoQ, Phrase) "
          "or JSON (Phrase).";
    const struct {
        std::string name, data, outcome;
    } cases[] {
        { "a.xlsx", report, spreadsheet("a.xlsx") },
        { "a.XLS", "", spreadsheet("a.XLS") },
        { "a.b.xlsm", "{", spreadsheet("a.b.xlsm") },
        { "a.htm", report, forReading("a.htm") },
        { "a.html", "", forReading("a.html") },
        { "a.mht", "", forReading("a.mht") },
        { "Ä.MHTML", "", forReading("Ä.MHTML") },
        { "a.pdf", report, pdf },
        { "a.PDF", "%PDF-1.7", pdf },
        { "a.xml", report, "read a.xml" },
        { "a.XML", report, "read a.XML" },
        { "a.sdlxml", report, "read a.sdlxml" },
        { "a.xml", "{}", "“a.xml” isn’t readable XML (not well-formed (invalid token))." },
        { "a.txt", "\xEF\xBB\xBF\r\n <?xml version='1.0'?>",
            "“a.txt” isn’t readable XML (XML or text declaration not "
            "at start of entity)." },
        { "a.txt", "\xEF\xBB\xBF<?xml version='1.0'?>" + report, "read a.txt" },
        { "report", "\n\t " + report, "read report" },
        { ".xml", report, "read .xml" },
        { "a.json", report, "read a.json" },
        { "a.json", "File;New\na;1",
            "“a.json” couldn’t be read as a Phrase analysis: Not readable as JSON (syntax error at "
            "byte 0)." },
        { "a.txt", "  [1]", noPhrase("a.txt") },
        { "a", "\xEF\xBB\xBF{}", noPhrase("a") },
        { "a.JSON", "{\"analyseLanguageParts\": []}", "“a.JSON” has no files in its analysis." },
        { "a.csv", "File;Words", noTable("a.csv") },
        { "a.csv", "File;New\na;1",
            "The columns of “a.csv” aren’t those of a report that Pallisande knows. Say what each "
            "of them holds." },
        { "a.csv", memoQ, "read a.csv" },
        { "a.csv", phrase, "read a.csv" },
        { "a.csv", report, "read a.csv" },
        { "a", "", noTable("a") },
        { "a.txt", std::string(600, ' ') + report,
            noTable("a.txt") }, // Only the first 600 bytes are looked at.
        { "a.txt", std::string(599, ' ') + report, "read a.txt" },
        { "a.txt", "\xFF\xFE<\0"s, noTable("a.txt") },
    };
    for (const auto& [name, data, expected] : cases)
        EXPECT_EQ(outcome(name, data), expected) << name;
}

TEST(Importer, loadsExactlyFiftyMebibytesAndNoByteMore)
{
    const TemporaryFolder folder;
    const auto path = folder / "a.xml";
    writeFile(path, "");
    std::filesystem::resize_file(path, 52'428'800); // A hole: it takes no space.
    EXPECT_EQ(loading(path), "52428800 bytes");
    EXPECT_TRUE(outcome("a.xml", Importer::load(path)).starts_with("“a.xml” isn’t readable XML ("));
    std::filesystem::resize_file(path, 52'428'801);
    EXPECT_EQ(loading(path), "“a.xml” is larger than 50 MB, which is too big for an analysis report.");
}

TEST(Importer, whatIsNoReadableFileCouldNotBeOpened)
{
    const TemporaryFolder folder;
    std::filesystem::create_directory(folder / "folder.xml");
    ASSERT_EQ(mkfifo((folder / "pipe.xml").c_str(), 0600), 0);
    std::filesystem::create_symlink("nowhere", folder / "broken.xml");
    std::filesystem::create_symlink("loop.xml", folder / "loop.xml");
    EXPECT_EQ(loading(folder / "folder.xml"), "“folder.xml” couldn’t be opened: not a regular file");
    EXPECT_EQ(loading(folder / "pipe.xml"), "“pipe.xml” couldn’t be opened: not a regular file");
    for (const std::string name : { "missing.xml", "broken.xml", "loop.xml", "missing/a.xml" })
        EXPECT_TRUE(loading(folder / name)
                        .starts_with("“" + name.substr(name.find('/') == std::string::npos ? 0 : 8)
                            + "” couldn’t be opened: "))
            << loading(folder / name);

    writeFile(folder / "real.xml", report);
    std::filesystem::create_symlink("real.xml", folder / "link.xml");
    EXPECT_EQ(loading(folder / "link.xml"), std::to_string(report.size()) + " bytes");
}

TEST(Importer, namesThatAreNoUtf8AreShownRepaired)
{
    EXPECT_EQ(Importer::displayName("/a/b\xFF.xml"), "b\uFFFD.xml");
    const TemporaryFolder folder;
    EXPECT_TRUE(loading(folder / "b\xFF.xml").starts_with("“b\uFFFD.xml” couldn’t be opened: "));
}

} // namespace
