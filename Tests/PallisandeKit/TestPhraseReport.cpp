#include "PallisandeKit/Analyses/PhraseReport.h"

#include "PallisandeKit/Analyses/CountColumn.h"
#include "PallisandeKit/Analyses/MemoQReport.h"
#include "PallisandeKit/Analyses/PhraseJSON.h"
#include "Tests/PallisandeKit/ExpectedReports.h"
#include "Tests/Support/Samples.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

using namespace Pallisande;
using Test::moment, Test::fileText, Test::sentences;

namespace {

const std::string noCharacters = sentence(NoCharacters {});
const std::string fractions = sentence(fractionalCountsNote());

std::string languages(int count)
{
    return "This report covers " + std::to_string(count)
        + " target languages, and its totals are those of all of them together.";
}

Analysis readTable(std::string_view data)
{
    const DelimitedTable table(data);
    EXPECT_TRUE(PhraseReport::recognizes(table) && !MemoQReport::recognizes(table));
    return PhraseReport::read(table, "report.csv", moment().now);
}

Analysis readJson(std::string_view data) { return PhraseJSON::read(data, "report.json", moment().now); }

std::string refusal(std::string_view json)
{
    try {
        readJson(json);
        return "(not refused)";
    } catch (const ImportError& error) {
        return error.what();
    }
}

// "'" stands for the quotation mark, so that JSON can be read in the tests.
std::string json(std::string text)
{
    std::replace(text.begin(), text.end(), '\'', '"');
    return text;
}

std::string analyse(const std::string& parts)
{
    return json("{'name':'x','analyseLanguageParts':[" + parts + "]}");
}

std::string part(const std::string& languages, const std::string& members)
{
    return "{'sourceLang':'" + languages.substr(0, 2) + "','targetLang':'" + languages.substr(3) + "',"
        + members + "}";
}

// A file as it is exported, with these words by their sources in the band of 75%, and those of the total.
std::string job(const std::string& name, const std::string& words, const std::string& total)
{
    return "{'fileName':'" + name + "','data':{'match75':{'words':" + words + ",'segments':{'sum':1.0},"
        + "'characters':{'sum':9.0,'tm':9.0}},'charsPerWords':7.05,'total':{'words':" + total + "}}}";
}

TEST(PhraseReport, readsEveryRealReportAsExpected)
{
    const auto reports = ::Test::expectedReports("phrase/");
    if (reports.empty())
        GTEST_SKIP() << "no samples of real reports";
    for (const auto& [path, expected] : reports) {
        SCOPED_TRACE(path);
        const auto data = fileText(::Test::reportSamples() / path);
        const bool isJson = path.ends_with(".json");
        const auto analysis = isJson ? readJson(data) : readTable(data);
        EXPECT_EQ(analysis.source, isJson ? AnalysisSource::phraseJSON : AnalysisSource::phraseCSV);
        EXPECT_EQ(verification(analysis.source), Verification::publishedLayout);
        EXPECT_EQ(analysis.importedAt, moment().now);
        EXPECT_TRUE(analysis.mismatches().empty());
        if (expected.rows.empty())
            continue; // The API's answer is compared below.
        ASSERT_EQ(analysis.rows.size(), expected.rows.size());
        for (std::size_t place = 0; place < expected.rows.size(); ++place) {
            ::Test::expectFigures(analysis.rows[place], expected.rows[place]);
            EXPECT_EQ(analysis.rows[place].file, expected.rows[place].file);
        }
    }
    EXPECT_EQ(reports.size(), 7u);

    const struct {
        std::string file, source, target;
        std::vector<std::string> notes;
    } cases[] {
        { "csv-monolingual.csv", "en", "pl", { noCharacters } },
        { "csv-monolingual-extended.csv", "en", "pl", {} },
        { "csv-multilingual-extended.csv", "en", "", { languages(3) } },
        { "csv-2023-fractional.csv", "en_gb", "", { languages(19), fractions, noCharacters } },
        { "csv-2023-non-ascii.csv", "cs_cz", "", { languages(23), fractions, noCharacters } },
        { "json-export-2023.json", "pl_pl", "de_de",
            { "Machine translation matches (351 words) are counted in the bands of their percentages, as the "
              "report "
              "has them." } },
        { "json-api-response-example.json", "ab", "ace_latn", {} },
    };
    for (const auto& [file, source, target, notes] : cases) {
        SCOPED_TRACE(file);
        const auto data = fileText(::Test::reportSamples() / "phrase" / file);
        const auto analysis = file.ends_with(".json") ? readJson(data) : readTable(data);
        EXPECT_EQ(analysis.sourceLanguage, source);
        EXPECT_EQ(analysis.targetLanguage, target);
        EXPECT_EQ(sentences(analysis), notes);
    }
    const auto answer = readJson(fileText(::Test::reportSamples() / "phrase/json-api-response-example.json"));
    ASSERT_EQ(answer.rows.size(), 1u);
    EXPECT_EQ(answer.rows[0].file, "test (9th copy).docx");
    EXPECT_EQ(answer.rows[0].statedWords, 351);
    EXPECT_EQ(answer.rows[0].counts.words.valueOr(MatchBand::noMatch, 0), 351);
    EXPECT_EQ(answer.rows[0].counts.characters.valueOr(MatchBand::noMatch, 0), 1330);
    EXPECT_EQ(sum(answer.rows[0].counts.words), 351);
}

TEST(PhraseReport, fractionsAreRoundedHalfUpAndPointsNeverGroup)
{
    const auto read = [](const std::string& words, const std::string& total) {
        return readTable(";;;100%;;;;Total\nFile;Tagging Errors;Chars/Word;Segments;Words;Placeables;Percent;"
                         "Segments;Words;Placeables;Characters\n\"a; b | c.docx | en_gb>zh_hans\";0;5.5;1;"
            + words + ";0;99.5;1;" + total + ";0;1579\n");
    };
    const struct {
        std::string words;
        std::int64_t counted;
        bool isFraction = true;
    } cases[] { { "6.5", 7 }, { "6.49", 6 }, { "1.125", 1 }, { "1,5", 2 }, { "0", 0, false },
        { "7.0", 7, false }, { "655.50", 656 } };
    for (const auto& [words, counted, isFraction] : cases) {
        const auto analysis = read(words, words);
        EXPECT_EQ(analysis.rows[0].counts.words.valueOr(MatchBand::exact, -1), counted) << words;
        EXPECT_EQ(analysis.rows[0].statedWords, counted) << words;
        EXPECT_EQ(analysis.rows[0].statedCharacters, 1579);
        EXPECT_EQ(sentences(analysis),
            isFraction ? (std::vector { fractions, noCharacters }) : std::vector { noCharacters })
            << words;
    }
    const auto analysis = read("6.5", "8");
    EXPECT_EQ(analysis.mismatches(), (std::vector { SumCheck { "a; b | c.docx | en_gb>zh_hans", 7, 8 } }));
    EXPECT_EQ(analysis.sourceLanguage, "en_gb");
    EXPECT_EQ(analysis.targetLanguage, "zh_hans");
}

TEST(PhraseJSON, wordsAreTakenOnceWhateverMadeTheirMatches)
{
    const auto analysis = readJson("\xEF\xBB\xBF"
        + analyse(part("en>de",
            "'jobs':[" + job("a.docx", "{'sum':10.5,'tm':1.5,'mt':3.0,'nt':4.0,'if':2.0}", "11") + ","
                + job("", "{'tm':1.25,'mt':2.25,'nt':null}", "3.5") + ",{'fileName':'c','data':null},null],"
                + "'data':{'total':{'words':14.5}}")));
    ASSERT_EQ(analysis.rows.size(), 2u);
    EXPECT_EQ(analysis.rows[0].file, "a.docx");
    EXPECT_EQ(analysis.rows[0].counts.words.valueOr(MatchBand::fuzzy75, 0), 11);
    EXPECT_EQ(analysis.rows[0].counts.segments.valueOr(MatchBand::fuzzy75, 0), 1);
    EXPECT_EQ(analysis.rows[0].counts.characters.valueOr(MatchBand::fuzzy75, 0), 9);
    EXPECT_EQ(analysis.rows[0].statedCharacters, std::nullopt);
    EXPECT_EQ(analysis.rows[1].file, "File 2");
    EXPECT_EQ(
        analysis.rows[1].counts.words.valueOr(MatchBand::fuzzy75, 0), 4); // Sums are rounded, not parts.
    EXPECT_EQ(analysis.rows[1].statedWords, 4);
    EXPECT_EQ(analysis.statedTotalWords, 15);
    EXPECT_TRUE(analysis.mismatches().empty());
    EXPECT_EQ(sentences(analysis),
        (std::vector<std::string> { "Machine translation matches (5 words) are counted in the bands of their "
                                    "percentages, as the report has "
                                    "them.",
            "Non-translatables (4 words) are counted in the bands of their percentages, as the report has "
            "them.",
            "Internal fuzzy matches (2 words) are counted in the bands of their percentages, as the report "
            "has them.",
            "Files without counts in this report: 1.", fractions }));

    const auto odd = readJson(analyse(part("en>de", "'data':{'match0':{'words':5},'match90':{'words':7}}")));
    EXPECT_EQ(sentences(odd).at(0), "“match90” (7 words) isn’t a known category and was left out.");
}

TEST(PhraseJSON, languagePartsAreToldApart)
{
    const auto jobs = "'jobs':[" + job("a", "7", "7") + "," + job("b", "8.0", "9") + "]";
    const auto total = ",'data':{'total':{'words':16}}";
    auto analysis = readJson(analyse(part("en>de", jobs + total) + "," + part("en>fr", jobs + total)));
    ASSERT_EQ(analysis.rows.size(), 4u);
    EXPECT_EQ(analysis.rows[1].file, "b | en>de");
    EXPECT_EQ(analysis.rows[2].file, "a | en>fr");
    EXPECT_EQ(analysis.sourceLanguage, "en");
    EXPECT_EQ(analysis.targetLanguage, "");
    EXPECT_EQ(analysis.statedTotalWords, 32);
    EXPECT_EQ(analysis.mismatches(),
        (std::vector<SumCheck> { { "b | en>de", 8, 9 }, { "b | en>fr", 8, 9 }, { std::nullopt, 30, 32 } }));
    EXPECT_EQ(sentences(analysis), std::vector { languages(2) });

    // One language twice; and what isn't stated for every part isn't stated for the report.
    analysis = readJson(analyse(part("en>de", jobs + total) + "," + part("en>de", jobs)));
    EXPECT_EQ(analysis.rows[3].file, "b");
    EXPECT_EQ(analysis.targetLanguage, "de");
    EXPECT_EQ(analysis.statedTotalWords, std::nullopt);
}

TEST(PhraseJSON, theAnswerOfTheAPIIsReadByPart)
{
    const auto data = [](const std::string& available, const std::string& all) {
        return "'data':{'available':" + available + ",'all':{'words':" + all
            + ",'segments':4},'repetitions':{'words':1},'transMemoryMatches':{'match101':{'words':2},'"
              "match100':"
              "{'words':3.5},'match0':{'words':50}},'machineTranslationMatches':{'match100':{'words':4.25}},"
              "'nonTranslatablesMatches':{'match100':{'words':0.25}},'internalFuzzyMatches':{'match85':{'"
              "words':6}}},"
              "'discountedData':{'all':{'words':1},'transMemoryMatches':{'match0':{'words':1}}},";
    };
    const std::string none = "'data':{'available':false,'all':{'words':0.0},'repetitions':{'words':0.0}},";
    const auto jobs = "'jobs':[{'filename':'a'},{'filename':'b'},{},{'filename':'c'},{'filename':'d'}]";
    const auto answer = analyse(part("en>de", data("true", "67") + jobs) + "," + part("en>fr", none + jobs)
        + "," + part("en>it", "'data':null,'jobs':null"));
    for (const auto& text : { answer, json("{'event':'ANALYSIS_CREATED','analyse':") + answer + "}" }) {
        const auto analysis = readJson(text);
        ASSERT_EQ(analysis.rows.size(), 1u);
        EXPECT_EQ(analysis.rows[0].file, "a, b, c and 2 more");
        EXPECT_EQ(analysis.targetLanguage, "de");
        EXPECT_EQ(analysis.rows[0].counts.words,
            (BandMap<std::int64_t> { { MatchBand::context, 2 }, { MatchBand::repetitions, 1 },
                { MatchBand::exact, 8 }, { MatchBand::fuzzy85, 6 }, { MatchBand::noMatch, 50 } }));
        EXPECT_EQ(analysis.rows[0].statedWords, 67);
        EXPECT_EQ(analysis.rows[0].statedSegments, 4);
        EXPECT_TRUE(analysis.mismatches().empty());
        EXPECT_EQ(sentences(analysis),
            (std::vector<std::string> { "Machine translation matches (4 words) are counted in the bands of "
                                        "their percentages, as the report "
                                        "has them.",
                "Internal fuzzy matches (6 words) are counted in the bands of their percentages, as the "
                "report has "
                "them.",
                "Files without counts in this report: 5.", fractions, noCharacters }));
    }
    // Words count even where they are said not to be there.
    EXPECT_EQ(sum(readJson(analyse(part("en>de", data("false", "67") + jobs))).rows[0].counts.words), 67);
}

TEST(PhraseJSON, whatIsNoAnalysisIsRefused)
{
    const std::string noAnalysis
        = "“report.json” isn’t a Phrase analysis (no “analyseLanguageParts”). In Phrase, open "
          "the analysis and download it as JSON or CSV.",
        noFiles = "“report.json” has no files in its analysis.",
        absurd = "“report.json” states counts that are too large to be right.",
        unread = "“report.json” couldn’t be read as a Phrase analysis: ";
    const auto words = [](const std::string& count) {
        return analyse(part("en>de", "'jobs':[" + job("a", "{'sum':" + count + "}", "1") + "]"));
    };
    const struct {
        std::string data, sentence;
    } cases[] {
        { "", unread + "Not readable as JSON (incomplete JSON at byte 0)." },
        { "File;Words\na;1\n", unread + "Not readable as JSON (syntax error at byte 0)." },
        { std::string(600, '['), unread + "Not readable as JSON (too deep at byte 512)." },
        { "{}", noAnalysis },
        { "[]", noAnalysis },
        { json("[{'analyseLanguageParts':[]}]"), noAnalysis },
        { json("{'analyse':{'analyses':[]}}"), noAnalysis },
        { analyse(""), noFiles },
        { analyse("null,{},{'jobs':[{'fileName':'a'}]}"), noFiles },
        { json("{'analyseLanguageParts':{}}"), unread + "Unexpected object." },
        { words("'5'"), unread + "Unexpected text." },
        { words("1e400"), unread + "The number 1e400 doesn’t fit." },
        { words("9007199254740992"), absurd },
        { words("-1e30"), absurd },
        { analyse(part("en>de", "'data':{'total':{'words':9007199254740993}}")), absurd },
        { analyse(
              part("en>de", "'jobs':[" + job("a", "6e15", "6e15") + "," + job("b", "6e15", "6e15") + "]")),
            absurd },
        { words("9007199254740991"), "(not refused)" },
    };
    for (const auto& [data, sentence] : cases)
        EXPECT_EQ(refusal(data), sentence) << data.substr(0, 200);
}

TEST(PhraseJSON, anyBeginningOfAnAnalysisIsRefusedAndNothingWorse)
{
    const auto whole = analyse(part("en>de", "'jobs':[" + job("a", "{'sum':1.5,'mt':1}", "2") + "]"));
    for (std::size_t length = 0; length < whole.size(); ++length)
        ASSERT_TRUE(
            refusal(whole.substr(0, length))
                .starts_with("“report.json” couldn’t be read as a Phrase analysis: Not readable as JSON ("))
            << length;
    EXPECT_EQ(refusal(whole), "(not refused)");
}

} // namespace
