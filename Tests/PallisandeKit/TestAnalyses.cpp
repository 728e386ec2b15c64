#include "PallisandeKit/Analyses/Analysis.h"
#include "PallisandeKit/Analyses/BandWeights.h"

#include "Base/Checked.h"
#include "Tests/Support/Samples.h"

#include <gtest/gtest.h>

#include <string>

using namespace Pallisande;
using namespace Test;

namespace {

using Preset = BandWeights::Preset;

TEST(MatchBands, haveTheirLabelsAndLowestPercent)
{
    const struct {
        MatchBand band;
        std::string name, label;
        std::optional<int> minimum;
    } cases[] {
        { MatchBand::perfect, "perfect", "Perfect / X-translated", {} },
        { MatchBand::context, "context", "Context match (101%)", {} },
        { MatchBand::repetitions, "repetitions", "Repetitions", {} },
        { MatchBand::exact, "exact", "100%", 100 },
        { MatchBand::fuzzy95, "fuzzy95", "95–99%", 95 },
        { MatchBand::fuzzy85, "fuzzy85", "85–94%", 85 },
        { MatchBand::fuzzy75, "fuzzy75", "75–84%", 75 },
        { MatchBand::fuzzy50, "fuzzy50", "50–74%", 50 },
        { MatchBand::noMatch, "noMatch", "No match", 0 },
    };
    std::size_t place = 0;
    for (const auto& [band, name, words, minimum] : cases) {
        EXPECT_EQ(allMatchBands[place++], band);
        EXPECT_EQ(Base::caseName(band), name);
        EXPECT_EQ(label(band), words);
        EXPECT_EQ(minimumPercent(band), minimum);
    }
    EXPECT_EQ(place, allMatchBands.size());
}

TEST(MatchBands, arePlacedByPercentAndKnowTheirStandardRange)
{
    const struct {
        std::int64_t percent;
        MatchBand band;
    } cases[] { { INT64_MIN, MatchBand::noMatch }, { 0, MatchBand::noMatch }, { 49, MatchBand::noMatch },
        { 50, MatchBand::fuzzy50 }, { 74, MatchBand::fuzzy50 }, { 75, MatchBand::fuzzy75 },
        { 84, MatchBand::fuzzy75 }, { 85, MatchBand::fuzzy85 }, { 94, MatchBand::fuzzy85 },
        { 95, MatchBand::fuzzy95 }, { 99, MatchBand::fuzzy95 }, { 100, MatchBand::exact },
        { 101, MatchBand::exact }, { INT64_MAX, MatchBand::exact } };
    for (const auto& [percent, band] : cases)
        EXPECT_EQ(bandForPercent(percent), band) << percent;

    int standard = 0;
    for (const auto band : allMatchBands) {
        for (int minimum = -1; minimum <= 102; ++minimum) {
            for (int maximum = minimum; maximum <= 102; ++maximum)
                standard += isStandardRange(band, minimum, maximum) ? 1 : 0;
        }
    }
    EXPECT_EQ(standard, 4);
    EXPECT_TRUE(isStandardRange(MatchBand::fuzzy95, 95, 99) && isStandardRange(MatchBand::fuzzy85, 85, 94)
        && isStandardRange(MatchBand::fuzzy75, 75, 84) && isStandardRange(MatchBand::fuzzy50, 50, 74));
}

TEST(BandCounts, aMissingBandCountsNothingAndSegmentsAreNeverBilled)
{
    BandCounts counts;
    counts.words[MatchBand::exact] = 5;
    counts.segments[MatchBand::exact] = 2;
    EXPECT_EQ(counts.count(MatchBand::exact, RateUnit::word), 5);
    EXPECT_EQ(counts.count(MatchBand::exact, RateUnit::character), 0);
    EXPECT_EQ(counts.count(MatchBand::noMatch, RateUnit::word), 0);

    BandCounts zero;
    zero.words[MatchBand::exact] = 0;
    EXPECT_NE(zero, BandCounts()); // As dictionaries compare: one has the key.
}

TEST(BandWeights, presetsAreTheTablesThatTheirLabelsSay)
{
    const struct {
        Preset preset;
        std::string label;
        int percents[9];
    } cases[] {
        { Preset::none, "None: every word at the full rate (example)",
            { 100, 100, 100, 100, 100, 100, 100, 100, 100 } },
        { Preset::repetitionsAnd100, "Repetitions and 100% matches only (example)",
            { 30, 30, 30, 30, 100, 100, 100, 100, 100 } },
        { Preset::graduated, "Graduated by band (example)", { 10, 20, 25, 30, 60, 70, 80, 100, 100 } },
    };
    for (const auto& [preset, words, percents] : cases) {
        const auto weights = BandWeights::of(preset);
        EXPECT_EQ(label(preset), words);
        EXPECT_FALSE(weights.floor75);
        for (const auto band : allMatchBands)
            EXPECT_EQ(weights.percent.valueOr(band, -1), percents[static_cast<std::size_t>(band)])
                << label(band);
    }
}

TEST(BandWeights, matchAPresetOnlyWithAllNineBands)
{
    for (const auto preset : { Preset::none, Preset::repetitionsAnd100, Preset::graduated }) {
        auto weights = BandWeights::of(preset);
        weights.floor75 = true;
        EXPECT_EQ(weights.matchingPreset(), preset);
        weights.percent[MatchBand::noMatch] = decimal("100.00");
        EXPECT_EQ(weights.matchingPreset(), preset);
        weights.percent[MatchBand::noMatch] = decimal("99.99");
        EXPECT_EQ(weights.matchingPreset(), std::nullopt);
    }
    BandWeights eight;
    for (const auto band : allMatchBands) {
        if (band != MatchBand::fuzzy75)
            eight.percent[band] = 100;
    }
    EXPECT_EQ(eight.matchingPreset(), std::nullopt);
    EXPECT_EQ(eight.percentOf(MatchBand::fuzzy75), Base::Decimal(100));
    EXPECT_EQ(BandWeights().matchingPreset(), std::nullopt);
}

TEST(BandWeights, theFirstBandOutsideZeroToAHundredIsReported)
{
    EXPECT_EQ(BandWeights().firstInvalidBand(), std::nullopt);
    const struct {
        std::string percent;
        bool isValid;
    } cases[] { { "0", true }, { "-0", true }, { "100", true }, { "12.5", true }, { "-0.01", false },
        { "100.01", false }, { "100.0000000000000000000000000001", false } };
    for (const auto& [percent, isValid] : cases) {
        BandWeights weights;
        weights.percent[MatchBand::fuzzy85] = decimal(percent);
        EXPECT_EQ(weights.firstInvalidBand().has_value(), !isValid) << percent;
        weights.percent[MatchBand::noMatch] = 120;
        EXPECT_EQ(weights.firstInvalidBand(), isValid ? MatchBand::noMatch : MatchBand::fuzzy85) << percent;
    }
}

TEST(AnalysisSources, sayHowFarTheyCanBeTrusted)
{
    const struct {
        AnalysisSource source;
        std::string label, verification;
    } cases[] {
        { AnalysisSource::phraseCSV, "Phrase TMS analysis (CSV)", "Built from the published layout" },
        { AnalysisSource::phraseJSON, "Phrase TMS analysis (JSON)", "Built from the published layout" },
        { AnalysisSource::memoQCSV, "memoQ statistics (CSV)", "Tested on documented layouts" },
        { AnalysisSource::tradosXML, "Trados Studio analysis (XML)", "Tested on documented layouts" },
        { AnalysisSource::mappedCSV, "Spreadsheet with mapped columns", "Columns mapped by you" },
        { AnalysisSource::tamberlinCount, "Files counted by Pallisande", "Counted from the files" },
        { AnalysisSource::manual, "Typed in", "Typed in" },
    };
    for (const auto& [source, words, trust] : cases) {
        EXPECT_EQ(label(source), words);
        EXPECT_EQ(label(verification(source)), trust);
    }
}

TEST(ImportNotes, areShownAsSentences)
{
    const struct {
        ImportNote note;
        std::string sentence;
    } cases[] {
        { InternalFuzzyAsNew { 1234567 }, "Internal fuzzy matches (1234567 words) are billed as No match." },
        { InternalFuzzyOutsideTotal { 3 },
            "Internal fuzzy matches (3 words) are reported outside the file’s total and were left out." },
        { MergedCategory { "Fuzzy 70–79%", MatchBand::fuzzy50, 8 },
            "“Fuzzy 70–79%” (8 words) is counted with 50–74%." },
        { IgnoredCategory { "Tags", 0 }, "“Tags” (0 words) isn’t billed." },
        { NoCharacters {}, "This report has no character counts." },
        { UnverifiedLayout { "Trados Studio" },
            "Trados Studio import: tested on documented layouts, not yet on a real export. Check the totals "
            "against "
            "the report." },
        { UnreadableFile { "a.pdf", "It is empty." }, "“a.pdf” wasn’t counted: It is empty." },
        { TextNote { "As {it} stands" }, "As {it} stands" },
    };
    for (const auto& [note, words] : cases)
        EXPECT_EQ(sentence(note), words);
    EXPECT_NE(ImportNote(InternalFuzzyAsNew { 3 }), ImportNote(InternalFuzzyOutsideTotal { 3 }));
}

TEST(Analysis, comparesWhatIsStatedWithTheBandsWithoutTolerance)
{
    auto compared = analysis({ { MatchBand::exact, 40 }, { MatchBand::noMatch, 60 } });
    EXPECT_TRUE(compared.sumChecks().empty()); // Nothing stated, nothing to compare.
    EXPECT_EQ(compared.rows[0].difference(), std::nullopt);

    compared.rows.push_back({ .file = "b.docx" });
    compared.rows[1].counts.words[MatchBand::noMatch] = 7;
    compared.rows[0].statedWords = 100;
    compared.statedTotalWords = 106;
    const SumCheck report { std::nullopt, 107, 106 };
    EXPECT_EQ(compared.sumChecks(), (std::vector<SumCheck> { { "manual.docx", 100, 100 }, report }));
    EXPECT_EQ(compared.mismatches(), std::vector { report });
    EXPECT_EQ(compared.mismatchCount(), 1);
    EXPECT_EQ(report.sentence(), "Whole report: the bands add up to 107 words, the report says 106");

    compared.rows[1].statedWords = 9;
    compared.statedTotalWords = 107;
    EXPECT_EQ(compared.rows[1].difference(), -2);
    EXPECT_EQ(compared.mismatches(), (std::vector<SumCheck> { { "b.docx", 7, 9 } }));
    EXPECT_EQ(compared.mismatchCount(), 1);
    EXPECT_EQ(compared.mismatches()[0].sentence(), "b.docx: the bands add up to 7 words, the report says 9");
    EXPECT_EQ(sum(compared.totals().words), 107);
}

TEST(Analysis, totalsAddEveryBandAndMetricOfAllRows)
{
    Analysis analysis;
    for (int row = 1; row <= 3; ++row) {
        auto& counts = analysis.rows.emplace_back().counts;
        counts.words[MatchBand::exact] = row;
        counts.segments[MatchBand::exact] = 10 * row;
        if (row == 2)
            counts.characters[MatchBand::noMatch] = -5;
    }
    BandCounts expected;
    expected.words[MatchBand::exact] = 6;
    expected.segments[MatchBand::exact] = 60;
    expected.characters[MatchBand::noMatch] = -5;
    EXPECT_EQ(analysis.totals(), expected);
}

TEST(CountBound, admitsNothingThatCouldOverflowASum)
{
    constexpr auto largest = Base::Checked::largestCount;
    const auto rowOf = [](std::int64_t words, std::optional<std::int64_t> stated = {}) {
        AnalysisRow row { .statedWords = stated };
        row.counts.words[MatchBand::exact] = words;
        return row;
    };
    CountBound bound;
    EXPECT_TRUE(bound.admits(rowOf(largest - 1, largest)));
    EXPECT_TRUE(bound.admits(rowOf(1))); // What is stated isn't added.
    EXPECT_FALSE(bound.admits(rowOf(1)));
    for (const auto& row : { rowOf(largest + 1), rowOf(INT64_MAX), rowOf(INT64_MIN), rowOf(0, INT64_MIN) })
        EXPECT_FALSE(CountBound().admits(row));
    CountBound signedBound;
    EXPECT_TRUE(signedBound.admits(rowOf(largest)));
    EXPECT_FALSE(
        signedBound.admits(rowOf(-1))); // Sizes are added, so that no order of the sums passes the bound.

    Analysis analysis { .rows = { rowOf(5) }, .statedTotalWords = largest + 1 };
    EXPECT_FALSE(CountBound().admits(analysis));
}

} // namespace
