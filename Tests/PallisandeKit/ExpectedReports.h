#pragma once

#include "Base/Json.h"
#include "PallisandeKit/Analyses/Analysis.h"
#include "Tests/Support/Folders.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// What is known of the real reports of memoQ and Phrase beside the project.
namespace Test {

inline std::filesystem::path reportSamples() { return std::filesystem::path(PALLISANDE_SAMPLES) / "reports"; }

// A file's figures as they stand in the report: those of Phrase may be fractions.
struct ExpectedFile {
    std::string file, sourceLanguage, targetLanguage;
    Pallisande::BandMap<Base::Decimal> words, segments, characters;
    std::optional<Base::Decimal> statedWords, statedSegments, statedCharacters;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("file", &ExpectedFile::file),
            Base::field("sourceLang", &ExpectedFile::sourceLanguage),
            Base::field("targetLang", &ExpectedFile::targetLanguage),
            Base::field("words", &ExpectedFile::words),
            Base::field("segments", &ExpectedFile::segments),
            Base::field("characters", &ExpectedFile::characters),
            Base::field("statedWords", &ExpectedFile::statedWords),
            Base::field("statedSegments", &ExpectedFile::statedSegments),
            Base::field("statedCharacters", &ExpectedFile::statedCharacters),
        };
    }
};

struct ExpectedReport {
    std::vector<ExpectedFile> rows;
    std::vector<ExpectedFile> blocks; // Of a report as it was displayed; the first is of everything.

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("rows", &ExpectedReport::rows),
            Base::field("analysisBlocks", &ExpectedReport::blocks),
        };
    }
};

// The reports in a folder of samples by their names; none when there are no samples.
inline std::map<std::string, ExpectedReport> expectedReports(std::string_view folder)
{
    if (!std::filesystem::exists(reportSamples() / "expected.json"))
        return {};
    auto reports = Base::fromJson<std::map<std::string, ExpectedReport>>(
        fileText(reportSamples() / "expected.json"), {});
    std::erase_if(reports, [&](const auto& report) { return !report.first.starts_with(folder); });
    return reports;
}

inline std::optional<std::int64_t> roundedHalfUp(const std::optional<Base::Decimal>& count)
{
    return count ? count->rounded(0).toInteger() : std::nullopt;
}

inline void expectFigures(const Pallisande::AnalysisRow& row, const ExpectedFile& expected)
{
    for (const auto band : Pallisande::allMatchBands) {
        const auto same = [&](const auto& counts, const auto& wanted) {
            EXPECT_EQ(counts.valueOr(band, 0), roundedHalfUp(wanted.valueOr(band, 0))) << label(band);
        };
        same(row.counts.words, expected.words);
        if (!expected.segments.isEmpty())
            same(row.counts.segments, expected.segments);
        if (!expected.characters.isEmpty())
            same(row.counts.characters, expected.characters);
    }
    EXPECT_EQ(row.statedWords, roundedHalfUp(expected.statedWords));
    if (expected.statedSegments) {
        EXPECT_EQ(row.statedSegments, roundedHalfUp(expected.statedSegments));
    }
    if (expected.statedCharacters) {
        EXPECT_EQ(row.statedCharacters, roundedHalfUp(expected.statedCharacters));
    }
}

inline std::vector<std::string> sentences(const Pallisande::Analysis& analysis)
{
    std::vector<std::string> sentences;
    for (const auto& note : analysis.notes)
        sentences.push_back(sentence(note));
    return sentences;
}

} // namespace Test
