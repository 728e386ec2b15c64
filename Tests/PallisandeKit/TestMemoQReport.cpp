#include "PallisandeKit/Analyses/MemoQReport.h"

#include "PallisandeKit/Analyses/PhraseReport.h"
#include "Tests/PallisandeKit/ExpectedReports.h"
#include "Tests/Support/Samples.h"

#include <string>
#include <string_view>
#include <vector>

using namespace Pallisande;
using Test::moment, Test::fileText, Test::sentences;

namespace {

const std::string unverified = sentence(UnverifiedLayout { "memoQ" });
const std::string noCharacters = sentence(NoCharacters {});

Analysis read(std::string_view data)
{
    const DelimitedTable table(data);
    EXPECT_TRUE(MemoQReport::recognizes(table) && !PhraseReport::recognizes(table));
    return MemoQReport::read(table, "report.csv", moment().now);
}

std::string refusal(std::string_view data)
{
    try {
        read(data);
        return "(not refused)";
    } catch (const ImportError& error) {
        return error.what();
    }
}

// A report of all information with these bands, of each the segments, words and characters.
std::string allInformation(const std::vector<std::string>& bands, const std::vector<std::string>& files)
{
    std::string bandLine = ";", metricLine = "File;Char/Word";
    for (const auto& band : bands) {
        bandLine += ";" + band + ";;";
        metricLine += ";Segments;Words;Characters";
    }
    std::string text = bandLine + "\r\n" + metricLine + "\r\n";
    for (const auto& file : files)
        text += file + "\r\n";
    return text;
}

// A block of a displayed report: categories and their words.
std::string block(std::string_view scope, const std::vector<std::pair<std::string, int>>& categories,
    std::string_view headers = "Type;Segments;Source words;Source chars;Percent")
{
    std::string text = "Analysis\nScope;" + std::string(scope) + "\nResources;Every TM, \"Homogeneity\"\n"
        + std::string(headers) + "\n";
    for (const auto& [label, words] : categories)
        text += label + ";1;" + std::to_string(words) + ";" + std::to_string(words * 5) + ";0.00\n";
    return text + "\n-----------\n\n";
}

const std::string title = "Statistics for project Test\n\n";

// Categories that add up to `noMatch` + 30.
std::vector<std::pair<std::string, int>> categories(int noMatch)
{
    return { { "All", noMatch + 30 }, { "X-translated", 1 }, { "Repetition", 2 }, { "101%", 3 },
        { "100%", 4 }, { "95%-99%", 5 }, { "85%-94%", 6 }, { "75%-84%", 9 }, { "50%-74%", 0 },
        { "Fragments", 0 }, { "No match", noMatch } };
}

TEST(MemoQReport, readsEveryRealReportAsExpected)
{
    const auto reports = ::Test::expectedReports("memoq/");
    if (reports.empty())
        GTEST_SKIP() << "no samples of real reports";
    for (const auto& [path, expected] : reports) {
        SCOPED_TRACE(path);
        const auto analysis = read(fileText(::Test::reportSamples() / path));
        EXPECT_EQ(analysis.source, AnalysisSource::memoQCSV);
        EXPECT_EQ(verification(analysis.source), Verification::documentedLayoutsOnly);
        EXPECT_EQ(analysis.name, "report.csv");
        EXPECT_EQ(analysis.importedAt, moment().now);
        EXPECT_TRUE(analysis.mismatches().empty());
        auto notes = std::vector { unverified };
        if (path.find("trados-compatible") != path.npos)
            notes.push_back(noCharacters);
        EXPECT_EQ(sentences(analysis), notes);

        auto rows = expected.rows.empty() ? expected.blocks : expected.rows;
        if (expected.rows.empty() && rows.size() > 1) {
            EXPECT_EQ(analysis.statedTotalWords, ::Test::roundedHalfUp(rows.front().statedWords));
            rows.erase(rows.begin());
        }
        const auto fileOfBlock = path.find("english") != path.npos ? "GD_Trados_prep_en.docx"
            : path.find("german") != path.npos                     ? "Statistiken für das Projekt Test 2"
                                                                   : "Statystyki dla pliku(ów) sample.txt";
        ASSERT_EQ(analysis.rows.size(), rows.size());
        for (std::size_t place = 0; place < rows.size(); ++place) {
            ::Test::expectFigures(analysis.rows[place], rows[place]);
            EXPECT_EQ(analysis.rows[place].file, expected.rows.empty() ? fileOfBlock : rows[place].file);
        }
    }
    EXPECT_EQ(reports.size(), 8u);
    const auto file = [](const char* name) { return fileText(::Test::reportSamples() / "memoq" / name); };
    EXPECT_EQ(read(file("all-information-comma-utf8.csv")).targetLanguage, "fre-CA");
    // One document in two flavours.
    const auto one = read(file("all-information-de-path-decimal-comma.csv")).rows[0];
    const auto other = read(file("trados-compatible-semicolon.csv")).rows[0];
    for (const auto band : allMatchBands) {
        EXPECT_EQ(one.counts.words.valueOr(band, 0), other.counts.words.valueOr(band, 0));
        EXPECT_EQ(one.counts.segments.valueOr(band, 0), other.counts.segments.valueOr(band, 0));
    }
    EXPECT_EQ(one.statedCharacters, other.statedCharacters);
}

TEST(MemoQReport, everyCategoryIsInABandOrInANote)
{
    const auto analysis = read(allInformation({ "X-translated", "Locked", "80% - 89%", "Fragments", "Total" },
        { "[ger] C:\\a.docx;5,5;1;10;50;1;20;100;1;30;150;1;4;20;4;64;320",
            ";;1;\"1.000\";;;x;;1;-1;2;;12O;;;;", // A dot that groups, no number twice, a count below zero.
            ";;;;;;;;", "Total;5,5;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0;0",
            "Total;;1;1010;50;1;20;100;2;29;152;1;4;20;4;65;320" }));
    ASSERT_EQ(analysis.rows.size(), 3u); // The line of sums that somebody added isn't a file.
    EXPECT_EQ(analysis.rows[0].file, "[ger] C:\\a.docx");
    EXPECT_EQ(analysis.rows[0].counts.words,
        (BandMap<std::int64_t> { { MatchBand::perfect, 30 }, { MatchBand::fuzzy75, 30 } }));
    EXPECT_EQ(analysis.rows[0].counts.segments.valueOr(MatchBand::perfect, 0), 2);
    EXPECT_EQ(analysis.rows[0].counts.characters.valueOr(MatchBand::perfect, 0), 150);
    EXPECT_EQ(analysis.rows[0].statedSegments, 4);
    EXPECT_EQ(analysis.rows[0].statedCharacters, 320);
    EXPECT_EQ(analysis.rows[1].file, "File 2");
    EXPECT_EQ(analysis.rows[1].counts.words.valueOr(MatchBand::perfect, 0), 1000);
    EXPECT_EQ(analysis.rows[1].counts.words.valueOr(MatchBand::fuzzy75, 0), -1);
    EXPECT_EQ(analysis.rows[1].statedWords, std::nullopt);
    EXPECT_EQ(analysis.rows[2].file, "Total");
    EXPECT_EQ(analysis.targetLanguage, ""); // One row doesn't say.
    EXPECT_EQ(sentences(analysis),
        (std::vector<std::string> { unverified, "“80% - 89%” (29 words) is counted with 75–84%.",
            "“Locked” (20 words) is counted with Perfect / X-translated.",
            "“Fragments” (4 words) isn’t billed.",
            "Counts that couldn’t be read as numbers and were left out: 2." }));
    // The fragments are in the file's total, and the report's differs too.
    const auto mismatches = analysis.mismatches();
    ASSERT_EQ(mismatches.size(), 2u);
    EXPECT_EQ(mismatches[0], (SumCheck { "[ger] C:\\a.docx", 60, 64 }));
    EXPECT_EQ(mismatches[1], (SumCheck { std::nullopt, 1059, 65 }));
}

TEST(MemoQReport, columnsAreFoundByNameUnderTheirBand)
{
    const auto analysis = read(
        "sep=\t\n\t\tNo match\t\t\t\t\tTotal\t\t\nFile\tChar/Word\tTags\t Words\tSource chars\tSegments\t"
        "Words\tWords\tAsian characters\tSegments\na.txt\t5\t9\t7\t35\t2\t6\t7\t8\t2\t\nb.txt\t5\t9\t3\n");
    ASSERT_EQ(analysis.rows.size(), 2u);
    EXPECT_EQ(analysis.rows[0].counts.words.valueOr(MatchBand::noMatch, 0), 7);
    EXPECT_EQ(analysis.rows[0].counts.segments.valueOr(MatchBand::noMatch, 0), 2);
    EXPECT_EQ(analysis.rows[0].counts.characters.valueOr(MatchBand::noMatch, 0), 35);
    EXPECT_EQ(analysis.rows[0].statedWords, 7);
    EXPECT_EQ(analysis.rows[0].statedSegments, 2);
    EXPECT_EQ(analysis.rows[0].statedCharacters, std::nullopt);
    EXPECT_EQ(analysis.rows[1].counts.words.valueOr(MatchBand::noMatch, 0), 3);
    EXPECT_EQ(analysis.rows[1].statedWords, std::nullopt);
    // A doubt about the letters of file names is told.
    EXPECT_EQ(sentences(read(allInformation({ "No match" }, { "gr\xFC\xDF.txt;5;1;2;3" }))).size(), 2u);
}

TEST(MemoQReport, aDisplayedReportIsNeverAddedTwice)
{
    const std::string counts
        = "Counts\nScope;Project\nType;Segments;Source words;Source chars;Percent\nAll;4;100;500;100\n"
          "Repetition;1;2;10;0\nLocked;0;0;0;0\n\n";
    const auto first = "\"a;b (2).docx\" (\"C:\\x\\a;b (2).docx\")",
               second = "c (1).docx (C:\\y\\c (1).docx)";
    const auto text = title + counts + block("Project", categories(70)) + counts
        + block(first, categories(25)) + counts + block(second, categories(16));
    auto analysis = read(text);
    ASSERT_EQ(analysis.rows.size(), 2u);
    EXPECT_EQ(analysis.rows[0].file, "a;b (2).docx");
    EXPECT_EQ(analysis.rows[1].file, "c (1).docx");
    EXPECT_EQ(analysis.rows[0].statedWords, 55);
    EXPECT_EQ(analysis.rows[0].counts.words,
        (BandMap<std::int64_t> { { MatchBand::perfect, 1 }, { MatchBand::repetitions, 2 },
            { MatchBand::context, 3 }, { MatchBand::exact, 4 }, { MatchBand::fuzzy95, 5 },
            { MatchBand::fuzzy85, 6 }, { MatchBand::fuzzy75, 9 }, { MatchBand::fuzzy50, 0 },
            { MatchBand::noMatch, 25 } }));
    EXPECT_EQ(analysis.statedTotalWords, 100);
    EXPECT_EQ(analysis.mismatches(), (std::vector { SumCheck { std::nullopt, 101, 100 } }));
    EXPECT_EQ(sentences(analysis), std::vector { unverified });

    analysis = read(title + block("Project", categories(70))); // One block is the single row.
    ASSERT_EQ(analysis.rows.size(), 1u);
    EXPECT_EQ(analysis.rows[0].file, "Statistics for project Test");
    EXPECT_EQ(analysis.statedTotalWords, std::nullopt);
    EXPECT_TRUE(analysis.mismatches().empty());

    analysis = read(block(first, categories(25)) + block(second, categories(16))); // Nothing but files.
    EXPECT_EQ(analysis.rows.size(), 2u);
    EXPECT_EQ(analysis.statedTotalWords, std::nullopt);
}

TEST(MemoQReport, unknownCategoriesAreTakenByTheirPlaceAndNamed)
{
    std::vector<std::pair<std::string, int>> foreign { { "Összes", 40 }, { "X-fordított", 1 },
        { "Ismétlés", 2 }, { "101%", 3 }, { "100%", 4 }, { "95%-99%", 5 }, { "70%-94%", 6 },
        { "Töredékek", 7 }, { "Gépi", 8 }, { "Nincs találat", 19 } };
    const auto analysis = read(
        "Statisztika\n\n" + block("Projekt", foreign, "Típus;Szegmensek;Forrásszavak;Karakterek;Százalék"));
    ASSERT_EQ(analysis.rows.size(), 1u);
    EXPECT_EQ(analysis.rows[0].counts.words,
        (BandMap<std::int64_t> { { MatchBand::perfect, 1 }, { MatchBand::repetitions, 2 },
            { MatchBand::context, 3 }, { MatchBand::exact, 4 }, { MatchBand::fuzzy95, 5 },
            { MatchBand::fuzzy50, 6 }, { MatchBand::noMatch, 19 } }));
    EXPECT_EQ(analysis.rows[0].statedWords, 40);
    EXPECT_EQ(analysis.rows[0].statedCharacters, 200);
    EXPECT_EQ(sentences(analysis),
        (std::vector<std::string> { unverified, "“70%-94%” (6 words) is counted with 50–74%.",
            "“Ismétlés” (2 words) is counted with Repetitions.",
            "“Nincs találat” (19 words) is counted with No match.",
            "“X-fordított” (1 words) is counted with Perfect / X-translated.",
            "“Töredékek” (7 words) isn’t billed.",
            "“Gépi” (8 words) isn’t a known category and was left out." }));
    // Asian characters, counted apart, stand before those of all.
    const auto asian = read(title
        + "Analysis\nScope;Project\nTyp;Sz;Szavak;Nem ázsiai;Ázsiai;Karakterek;Címkék;Százalék\n"
          "Összes;1;294;3;291;300;0;100\n100%;1;200;3;197;204;0;70\n50%-74%;1;94;0;94;96;0;30\n");
    EXPECT_EQ(asian.rows[0].statedWords, 294);
    EXPECT_EQ(asian.rows[0].statedCharacters, 300);
    EXPECT_EQ(asian.rows[0].counts.characters.valueOr(MatchBand::fuzzy50, 0), 96);
}

TEST(MemoQReport, otherTablesAreNotTakenForIts)
{
    const auto percentages = block("Project", categories(1));
    const std::string cases[] {
        "",
        "\n\n",
        "File;Char/Word;Segments;Words\na;5;1;2\n", // Without the line of bands.
        ";;Best;;\nFile;Char/Word;Segments;Words;\na;5;1;2\n", // A band that isn't known.
        ";;No match;;Total;\nFile;Char/Word;Segments;Words;Segments;Tags\na;5;1;2;1;0\n", // A total without
                                                                                          // words.
        ";;Total;;\nFile;Char/Word;Segments;Words;\na;5;1;2\n",
        ",,Repetitions,,No Match,\nFile,Chars/Word,Segments,Words,Segments,Words\na,5,1,2,1,2\n",
        "Initial;Segments;Words\nTotal count;5;36\nICE match;2;29\n95-99% Fuzzy match;2;3\n100%;1;4\n",
        "File;a.docx\n" + percentages.substr(percentages.find('\n') + 1), // No heading.
        "Counts\nScope;Project\nType;Segments;Source words\nAll;4;100\nRepetition;1;2\nLocked;0;0\n",
        "Analysis\nAll;1;2\n100%;1;2\n50%-74%;1;2\nNo match;1;2\n",
    };
    for (const auto& text : cases)
        EXPECT_FALSE(MemoQReport::recognizes(DelimitedTable(text))) << text;
    // Phrase has the headings of the Trados-compatible flavour too; the languages of a file tell.
    const std::string headings
        = ";;;No Match;;;Total\nFile;Tagging Errors;Chars/Word;Segments;Words;Percent;Words\n";
    for (const auto& [file, isPhrase] : std::initializer_list<std::pair<std::string, bool>> {
             { "a.docx | en>de_at", true }, { "C:\\a | en\\b>de", false }, { "a | en>c.docx", false },
             { "a | en", false }, { "a.docx", false }, { "", false } }) {
        const auto text = headings + "\n" + file + ";0;5;1;2;100;2\n";
        EXPECT_EQ(MemoQReport::recognizes(DelimitedTable(text)), !isPhrase) << file;
        EXPECT_EQ(PhraseReport::recognizes(DelimitedTable(text)), isPhrase) << file;
    }
}

TEST(MemoQReport, absurdOrEmptyReportsAreRefused)
{
    const std::string absurd = "“report.csv” states counts that are too large to be right.";
    const std::string half = "5000000000000000", tooLarge = "9007199254740992", thirty(30, '9');
    for (const std::string band : { "No match", "Fragments", "80%-89%" }) {
        const auto file = [&](const std::string& words) { return "a;5;1;" + words + ";1"; };
        EXPECT_EQ(refusal(allInformation({ band, "100%" }, { file(tooLarge) })), absurd) << band;
        EXPECT_EQ(refusal(allInformation({ band, "100%" }, { file("-" + thirty) })), absurd) << band;
        EXPECT_EQ(refusal(allInformation({ band, "100%" }, { file(half), file(half) })), absurd) << band;
        EXPECT_EQ(refusal(allInformation({ band, "100%" }, { file(half), "b" })), "(not refused)") << band;
    }
    EXPECT_EQ(refusal(allInformation({ "100%", "Total" }, { "a;5;1;2;3;1;" + thirty + ";3" })), absurd);
    EXPECT_EQ(refusal(allInformation({ "100%", "Total" }, {})), "“report.csv” has no files in its analysis.");
    EXPECT_EQ(refusal(allInformation({ "100%", "Total" }, { ";;;;", "" })),
        "“report.csv” has no files in its analysis.");
}

} // namespace
