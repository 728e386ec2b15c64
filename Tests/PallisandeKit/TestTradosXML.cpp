#include "PallisandeKit/Analyses/TradosXML.h"

#include "Base/Json.h"
#include "Tests/Support/Folders.h"
#include "Tests/Support/Samples.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

using namespace Pallisande;
using Test::moment, Test::fileText;

namespace {

// What is known of the real reports beside the project, as far as these tests use it.
struct ExpectedRow {
    std::string file;
    BandMap<Base::Decimal> words; // Reports of other tools have fractions.
    BandMap<Base::Decimal> segments;
    BandMap<Base::Decimal> characters;
    std::optional<Base::Decimal> statedWords;
    std::optional<Base::Decimal> statedSegments;
    std::optional<Base::Decimal> statedCharacters;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("file", &ExpectedRow::file),
            Base::field("words", &ExpectedRow::words),
            Base::field("segments", &ExpectedRow::segments),
            Base::field("characters", &ExpectedRow::characters),
            Base::field("statedWords", &ExpectedRow::statedWords),
            Base::field("statedSegments", &ExpectedRow::statedSegments),
            Base::field("statedCharacters", &ExpectedRow::statedCharacters),
        };
    }
};

struct Expected {
    std::string message;
    std::string targetLanguage;
    std::vector<ExpectedRow> rows;
    std::optional<std::int64_t> statedTotalWords;
    std::vector<ImportNote> notes;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("message", &Expected::message),
            Base::field("targetLanguage", &Expected::targetLanguage),
            Base::field("rows", &Expected::rows),
            Base::field("statedTotalWords", &Expected::statedTotalWords),
            Base::field("notes", &Expected::notes),
        };
    }
};

Analysis read(std::string_view data) { return TradosXML::read(data, "report.xml", moment().now); }

std::string refusal(std::string_view data)
{
    try {
        read(data);
        return "(not refused)";
    } catch (const ImportError& error) {
        return error.what();
    }
}

// A report of files with these contents of their `analyse` sections.
std::string report(const std::vector<std::string>& files, std::string_view batch = "")
{
    std::string text = R"(<task name="analyse"><taskInfo><language name="French"/></taskInfo>)";
    for (std::size_t number = 1; number <= files.size(); ++number)
        text += "<file name=\"f" + std::to_string(number) + ".docx\"><analyse>" + files[number - 1]
            + "</analyse></file>";
    text.append("<batchTotal><analyse>").append(batch).append("</analyse></batchTotal></task>");
    return text;
}

std::vector<std::string> sentences(const Analysis& analysis)
{
    std::vector<std::string> sentences;
    for (const auto& note : analysis.notes)
        sentences.push_back(sentence(note));
    return sentences;
}

const std::string unverified = sentence(UnverifiedLayout { "Trados Studio" });
const std::string noCharacters = sentence(NoCharacters {});

std::filesystem::path samples() { return std::filesystem::path(PALLISANDE_SAMPLES) / "reports"; }

void expectSame(const BandMap<std::int64_t>& counts, const BandMap<Base::Decimal>& expected)
{
    for (const auto band : allMatchBands)
        EXPECT_EQ(Base::Decimal(counts.valueOr(band, 0)), expected.valueOr(band, 0)) << label(band);
}

std::optional<Base::Decimal> asDecimal(std::optional<std::int64_t> count)
{
    return count ? std::optional(Base::Decimal(*count)) : std::nullopt;
}

TEST(TradosXML, readsEveryRealReportAsExpected)
{
    if (!std::filesystem::exists(samples() / "expected.json"))
        GTEST_SKIP() << "no samples of real reports";
    const auto expectations
        = Base::fromJson<std::map<std::string, Expected>>(fileText(samples() / "expected.json"), {});
    int reports = 0;
    for (const auto& [path, expected] : expectations) {
        if (!path.starts_with("trados/"))
            continue;
        SCOPED_TRACE(path);
        ++reports;
        const auto name = path.substr(path.find('/') + 1);
        try {
            const auto analysis = TradosXML::read(fileText(samples() / path), name, moment().now);
            EXPECT_EQ(expected.message, "");
            EXPECT_EQ(analysis.source, AnalysisSource::tradosXML);
            EXPECT_EQ(analysis.name, name);
            EXPECT_EQ(analysis.importedAt, moment().now);
            EXPECT_EQ(analysis.sourceLanguage, "");
            EXPECT_EQ(analysis.targetLanguage, expected.targetLanguage);
            EXPECT_EQ(analysis.statedTotalWords, expected.statedTotalWords);
            EXPECT_EQ(analysis.notes, expected.notes);
            EXPECT_TRUE(analysis.mismatches().empty()); // Real reports add up.
            ASSERT_EQ(analysis.rows.size(), expected.rows.size());
            for (std::size_t place = 0; place < analysis.rows.size(); ++place) {
                const auto& row = analysis.rows[place];
                EXPECT_EQ(row.file, expected.rows[place].file);
                expectSame(row.counts.words, expected.rows[place].words);
                expectSame(row.counts.segments, expected.rows[place].segments);
                expectSame(row.counts.characters, expected.rows[place].characters);
                EXPECT_EQ(asDecimal(row.statedWords), expected.rows[place].statedWords);
                EXPECT_EQ(asDecimal(row.statedSegments), expected.rows[place].statedSegments);
                EXPECT_EQ(asDecimal(row.statedCharacters), expected.rows[place].statedCharacters);
            }
        } catch (const ImportError& error) {
            EXPECT_EQ(error.what(), expected.message);
        }
    }
    EXPECT_EQ(reports, 9);
}

TEST(TradosXML, everyElementGoesIntoItsBand)
{
    const struct {
        std::string element;
        MatchBand band;
        std::string note; // What is said of a band that doesn't carry the category's name.
    } cases[] {
        { "perfect", MatchBand::perfect, "" },
        { "inContextExact", MatchBand::context, "" },
        { "exact", MatchBand::exact, "" },
        { "locked", MatchBand::perfect, "“Locked” (7 words) is counted with Perfect / X-translated." },
        { "crossFileRepeated", MatchBand::repetitions,
            "“Cross-file repetitions” (7 words) is counted with Repetitions." },
        { "repeated", MatchBand::repetitions, "" },
        { "new", MatchBand::noMatch, "" },
        { "fuzzy min='95' max='99'", MatchBand::fuzzy95, "" },
        { "fuzzy min='85' max='94'", MatchBand::fuzzy85, "" },
        { "fuzzy min='75' max='84'", MatchBand::fuzzy75, "" },
        { "fuzzy min='50' max='74'", MatchBand::fuzzy50, "" },
        { "fuzzy min='70' max='79'", MatchBand::fuzzy50, "“Fuzzy 70–79%” (7 words) is counted with 50–74%." },
        { "fuzzy min='100' max='100'", MatchBand::exact, "“Fuzzy 100–100%” (7 words) is counted with 100%." },
        { "fuzzy min='30' max='49'", MatchBand::noMatch,
            "“Fuzzy 30–49%” (7 words) is counted with No match." },
        { "fuzzy min='x'", MatchBand::noMatch, "“Fuzzy 0–0%” (7 words) is counted with No match." },
        { "fuzzy min='+95' max='99'", MatchBand::fuzzy95, "" },
    };
    for (const auto& [element, band, note] : cases) {
        SCOPED_TRACE(element);
        const auto analysis = read(report({ "<" + element + " segments='2' words='7' characters='40'/>" }));
        BandCounts expected;
        expected.words[band] = 7;
        expected.segments[band] = 2;
        expected.characters[band] = 40;
        ASSERT_EQ(analysis.rows.size(), 1u);
        EXPECT_EQ(analysis.rows[0].counts, expected);
        EXPECT_EQ(sentences(analysis),
            note.empty() ? std::vector { unverified } : (std::vector { unverified, note }));
    }
    for (const auto* ignored : { "newBaseline", "newLearnings", "New", "x:new", "segment" })
        EXPECT_EQ(read(report({ std::string("<") + ignored + " words='7'/>" })).rows[0].counts, BandCounts())
            << ignored;
}

TEST(TradosXML, mergedCategoriesAreSummedOverFilesAndSortedByLabel)
{
    const std::string locked = "<locked words='2' characters='1'/>", cross = "<crossFileRepeated words='3'/>";
    const std::string low = "<fuzzy min='70' max='79' words='4'/>",
                      none = "<fuzzy min='60' max='69' words='0'/>";
    EXPECT_EQ(sentences(read(report({ low + locked + none, cross + locked + low + low }))),
        (std::vector<std::string> { unverified,
            "“Cross-file repetitions” (3 words) is counted with Repetitions.",
            "“Fuzzy 70–79%” (12 words) is counted with 50–74%.",
            "“Locked” (4 words) is counted with Perfect / X-translated." }));
}

TEST(TradosXML, figuresThatAreNoNumbersCountNothing)
{
    const struct {
        std::string words;
        std::int64_t counted;
    } cases[] { { "12", 12 }, { "+12", 12 }, { "-3", -3 }, { "", 0 }, { " 12", 0 }, { "12 ", 0 },
        { "1,200", 0 }, { "1.5", 0 }, { "0x10", 0 }, { "+-3", 0 }, { "+", 0 }, { "１２", 0 },
        { "9007199254740991", 9'007'199'254'740'991 } };
    for (const auto& [words, counted] : cases)
        EXPECT_EQ(read(report({ "<new words='" + words + "' segments='x'/>" }))
                      .rows[0]
                      .counts.words.valueOr(MatchBand::noMatch, -1),
            counted)
            << words;
    const auto row
        = read(report({ "<new segments='x' characters=''/><exact/><total words='5' segments='6'/>" }))
              .rows[0];
    EXPECT_TRUE(row.counts.segments.isEmpty() && row.counts.characters.isEmpty());
    EXPECT_EQ(row.counts.words.valueOr(MatchBand::exact, -1), 0);
    EXPECT_EQ(row.statedWords, 5);
    EXPECT_EQ(row.statedSegments, 6);
    EXPECT_EQ(row.statedCharacters, std::nullopt);
}

TEST(TradosXML, internalFuzzyMatchesGoWhereTheTotalSays)
{
    const auto file = [](int total) {
        return "<new words='900' segments='9' characters='90'/><internalFuzzy min='75' max='84' words='60' "
               "segments='6'"
               " characters='5'/><internalFuzzy min='85' max='94' words='40'/><total words='"
            + std::to_string(total) + "'/>";
    };
    const struct {
        int total;
        std::int64_t words, segments, characters;
        std::string note;
    } cases[] {
        { 1000, 1000, 15, 95, "Internal fuzzy matches (100 words) are billed as No match." },
        { 900, 900, 9, 90,
            "Internal fuzzy matches (100 words) are reported outside the file’s total and were left out." },
        { 950, 900, 9, 90,
            "Internal fuzzy matches (100 words) were left out: the bands don’t add up to the file’s total "
            "with or "
            "without them." },
    };
    for (const auto& [total, words, segments, characters, note] : cases) {
        const auto analysis = read(report({ file(total) }));
        const auto& counts = analysis.rows[0].counts;
        EXPECT_EQ(counts.words.valueOr(MatchBand::noMatch, 0), words);
        EXPECT_EQ(counts.segments.valueOr(MatchBand::noMatch, 0), segments);
        EXPECT_EQ(counts.characters.valueOr(MatchBand::noMatch, 0), characters);
        EXPECT_EQ(sentences(analysis), (std::vector { unverified, note }));
    }
    EXPECT_EQ(sentences(read(report({ file(950), file(900), file(1000), file(1000) }))),
        (std::vector<std::string> { unverified, "Internal fuzzy matches (200 words) are billed as No match.",
            cases[1].note, cases[2].note }));
    // Without a total nothing can be decided, and nothing is said.
    EXPECT_EQ(read(report({ "<new words='5'/><internalFuzzy words='3'/>" }))
                  .rows[0]
                  .counts.words.valueOr(MatchBand::noMatch, 0),
        5);
}

TEST(TradosXML, aReportWithoutCharactersSaysSo)
{
    EXPECT_EQ(
        sentences(read(report({ "<new words='5'/>", "" }))), (std::vector { unverified, noCharacters }));
    EXPECT_EQ(sentences(read(report({ "<new words='5'/>", "<exact characters='0'/>" }))),
        std::vector { unverified });
    // Internal matches that are billed as new bring no characters where there are none.
    const auto analysis = read(report({ "<new words='5'/><internalFuzzy words='3'/><total words='8'/>" }));
    EXPECT_TRUE(analysis.totals().characters.isEmpty());
    EXPECT_EQ(sentences(analysis).back(), noCharacters);
}

TEST(TradosXML, filesAndTheBatchAreToldApartByWhereTheyStand)
{
    const auto analysis
        = read("<task><project name='p'/><language name='Greek (Greece)'/><language name='second'/>"
               "<file><analyse><total words='1'/></analyse></file>"
               "<file><analyse/><analyse/></file><file name=''><analyse/></file><analyse/>"
               "<batchTotal><analyse><total words='9'/></analyse></batchTotal>"
               "<file name='last'><analyse/></file></task>");
    std::vector<std::string> names;
    for (const auto& row : analysis.rows)
        names.push_back(row.file);
    EXPECT_EQ(names, (std::vector<std::string> { "File 1", "File 2", "File 2", "", "File 5", "last" }));
    EXPECT_EQ(analysis.targetLanguage, "Greek (Greece)");
    EXPECT_EQ(analysis.statedTotalWords, 9);
    EXPECT_EQ(read("<analyse/>").statedTotalWords, std::nullopt);
    EXPECT_EQ(read(report({ "" })).statedTotalWords, std::nullopt);
}

TEST(TradosXML, whatIsNoReportIsRefused)
{
    const std::string notAReport
        = "“report.xml” isn’t a Trados Studio analysis report (no “analyse” section). In "
          "Trados, open Reports, choose the Analyze Files report and save it as XML.";
    const struct {
        std::string data, sentence;
    } cases[] {
        { "", "“report.xml” isn’t readable XML (no element found)." },
        { "<task><file></task>", "“report.xml” isn’t readable XML (mismatched tag)." },
        { "<task name='analyse'><file name='x'/><Analyse/></task>", notAReport },
        { "<html/>", notAReport },
        { report({}), "“report.xml” has no files in its analysis." },
        { "<a>" +
                [] {
                    std::string text;
                    for (int level = 0; level < 100; ++level)
                        text += "<a>";
                    return text;
                }(),
            "“report.xml” isn’t readable XML (elements are nested too deeply)." },
    };
    for (const auto& [data, sentence] : cases)
        EXPECT_EQ(refusal(data), sentence) << data.substr(0, 80);
}

TEST(TradosXML, absurdCountsAreRefusedBeforeAnythingAddsThem)
{
    const std::string sentence = "“report.xml” states counts that are too large to be right.";
    const std::string largest = "9223372036854775807", half = "5000000000000000", thirty(30, '9');
    const auto element = [](const std::string& name, const std::string& attribute, const std::string& count) {
        return "<" + name + " " + attribute + "='" + count + "'/>";
    };
    for (const auto* name : { "new", "locked", "fuzzy min='70' max='79'", "internalFuzzy", "total" }) {
        for (const auto* attribute : { "words", "segments", "characters" }) {
            const auto one = element(name, attribute, largest);
            EXPECT_EQ(refusal(report({ one + one })), sentence) << one;
            EXPECT_EQ(refusal(report({ element(name, attribute, "-" + largest) })), sentence) << one;
            EXPECT_EQ(refusal(report({ element(name, attribute, thirty) })), sentence) << one;
            EXPECT_EQ(refusal(report({ "" }, one)), sentence) << one;
            if (std::string_view(name) == "total")
                continue; // Totals are compared, never added.
            const auto big = element(name, attribute, half);
            EXPECT_EQ(refusal(report({ big + big })), sentence) << big;
            EXPECT_EQ(refusal(report({ big, big })), sentence) << big;
            EXPECT_EQ(refusal(report({ big })), "(not refused)") << big;
        }
    }
    EXPECT_EQ(refusal(report({ element("new", "words", half) + element("internalFuzzy", "words", half) })),
        sentence);
}

TEST(TradosXML, readsOtherEncodingsAndMarks)
{
    const auto plain = report({ "<new words='5' characters='30'/>" });
    const auto expected = read(plain).rows[0].counts;
    EXPECT_EQ(
        read("\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n" + plain).rows[0].counts, expected);
    std::string utf16 = "\xFE\xFF";
    for (const char c : plain)
        utf16 += { '\0', c };
    EXPECT_EQ(read(utf16).rows[0].counts, expected);
    EXPECT_EQ(read(plain + "<!-- made by another program -->\n").rows[0].counts, expected);
}

TEST(TradosXML, anyBeginningOfAReportIsRefusedAndNothingWorse)
{
    const auto whole = report({ "<new words='900'/><internalFuzzy words='100'/><total words='1000'/>",
                                  "<fuzzy min='70' max='79' words='1'/>" },
        "<total words='1001'/>");
    for (std::size_t length = 0; length < whole.size(); ++length)
        ASSERT_TRUE(refusal(whole.substr(0, length)).starts_with("“report.xml” isn’t readable XML ("))
            << length;
    ASSERT_EQ(refusal(whole), "(not refused)");
    if (!std::filesystem::exists(samples()))
        GTEST_SKIP() << "no samples of real reports";
    for (const auto& file : std::filesystem::directory_iterator(samples() / "trados")) {
        const auto text = fileText(file.path());
        const auto end = text.rfind('>');
        for (std::size_t length = 0; length <= end; length += 5)
            ASSERT_TRUE(refusal(text.substr(0, length)).starts_with("“report.xml” isn’t readable XML ("))
                << length;
    }
}

} // namespace
