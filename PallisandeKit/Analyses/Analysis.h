#pragma once

#include "Base/Instant.h"
#include "Base/Uuid.h"
#include "PallisandeKit/Analyses/BandCounts.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace Pallisande {

// Where an analysis' numbers came from.
enum class AnalysisSource { phraseCSV, phraseJSON, memoQCSV, tradosXML, mappedCSV, tamberlinCount, manual };
constexpr std::array<std::string_view, 7> caseNames(AnalysisSource)
{
    return { "phraseCSV", "phraseJSON", "memoQCSV", "tradosXML", "mappedCSV", "tamberlinCount", "manual" };
}
std::string_view label(AnalysisSource source);

// How far the reading of a source can be trusted; follows from the source and is never stored.
enum class Verification { publishedLayout, documentedLayoutsOnly, mappedByYou, counted, typed };
constexpr std::array<std::string_view, 5> caseNames(Verification)
{
    return { "publishedLayout", "documentedLayoutsOnly", "mappedByYou", "counted", "typed" };
}
std::string_view label(Verification verification);
Verification verification(AnalysisSource source);

// What is said about how a report was read.
struct InternalFuzzyAsNew {
    static constexpr std::string_view caseName = "internalFuzzyAsNew";
    std::int64_t words = 0;
    bool operator==(const InternalFuzzyAsNew&) const = default;
    static constexpr auto fields()
    {
        return std::tuple { Base::field("words", &InternalFuzzyAsNew::words, Base::Missing::fails) };
    }
};

struct InternalFuzzyOutsideTotal {
    static constexpr std::string_view caseName = "internalFuzzyOutsideTotal";
    std::int64_t words = 0;
    bool operator==(const InternalFuzzyOutsideTotal&) const = default;
    static constexpr auto fields()
    {
        return std::tuple { Base::field("words", &InternalFuzzyOutsideTotal::words, Base::Missing::fails) };
    }
};

// A category that is counted with a band that doesn't carry its name.
struct MergedCategory {
    static constexpr std::string_view caseName = "merged";
    std::string label;
    MatchBand into = MatchBand::noMatch;
    std::int64_t words = 0;
    bool operator==(const MergedCategory&) const = default;
    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("label", &MergedCategory::label, Base::Missing::fails),
            Base::field("into", &MergedCategory::into, Base::Missing::fails),
            Base::field("words", &MergedCategory::words, Base::Missing::fails),
        };
    }
};

struct IgnoredCategory {
    static constexpr std::string_view caseName = "ignored";
    std::string label;
    std::int64_t words = 0;
    bool operator==(const IgnoredCategory&) const = default;
    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("label", &IgnoredCategory::label, Base::Missing::fails),
            Base::field("words", &IgnoredCategory::words, Base::Missing::fails),
        };
    }
};

struct NoCharacters {
    static constexpr std::string_view caseName = "noCharacters";
    bool operator==(const NoCharacters&) const = default;
    static constexpr auto fields() { return std::tuple {}; }
};

struct UnverifiedLayout {
    static constexpr std::string_view caseName = "unverifiedLayout";
    std::string tool;
    bool operator==(const UnverifiedLayout&) const = default;
    static constexpr auto fields()
    {
        return std::tuple { Base::field("_0", &UnverifiedLayout::tool, Base::Missing::fails) };
    }
};

struct UnreadableFile {
    static constexpr std::string_view caseName = "unreadable";
    std::string file;
    std::string reason;
    bool operator==(const UnreadableFile&) const = default;
    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("file", &UnreadableFile::file, Base::Missing::fails),
            Base::field("reason", &UnreadableFile::reason, Base::Missing::fails),
        };
    }
};

struct TextNote {
    static constexpr std::string_view caseName = "text";
    std::string text;
    bool operator==(const TextNote&) const = default;
    static constexpr auto fields()
    {
        return std::tuple { Base::field("_0", &TextNote::text, Base::Missing::fails) };
    }
};

using ImportNote = std::variant<InternalFuzzyAsNew, InternalFuzzyOutsideTotal, MergedCategory,
    IgnoredCategory, NoCharacters, UnverifiedLayout, UnreadableFile, TextNote>;

std::string sentence(const ImportNote& note);

// One file of a report, or the single row of a report that isn't divided by files.
struct AnalysisRow {
    Base::Uuid id;
    std::string file;
    BandCounts counts;
    std::optional<std::int64_t> statedWords; // Totals as the report gives them.
    std::optional<std::int64_t> statedSegments;
    std::optional<std::int64_t> statedCharacters;

    // How many words the bands have more than the report says.
    std::optional<std::int64_t> difference() const;

    bool operator==(const AnalysisRow&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("id", &AnalysisRow::id, Base::Missing::makesId),
            Base::field("file", &AnalysisRow::file),
            Base::field("counts", &AnalysisRow::counts, Base::Missing::fails),
            Base::field("statedWords", &AnalysisRow::statedWords),
            Base::field("statedSegments", &AnalysisRow::statedSegments),
            Base::field("statedCharacters", &AnalysisRow::statedCharacters),
        };
    }
};
static_assert(Base::listsEveryMember<AnalysisRow>);

// A comparison of what bands add up to with a total that the report states.
struct SumCheck {
    std::optional<std::string> file; // Absent: the whole report.
    std::int64_t bandWords = 0;
    std::int64_t statedWords = 0;

    bool fails() const { return bandWords != statedWords; } // No tolerance.
    std::string sentence() const;

    bool operator==(const SumCheck&) const = default;
};

// What a job keeps of one report, one count or one set of typed numbers.
struct Analysis {
    Base::Uuid id;
    AnalysisSource source = AnalysisSource::manual;
    std::string name;
    Base::Instant importedAt;
    std::string sourceLanguage; // Empty when the report doesn't say.
    std::string targetLanguage;
    std::vector<AnalysisRow> rows;
    std::optional<std::int64_t> statedTotalWords;
    std::vector<ImportNote> notes;
    std::optional<std::string> storedCopy; // Path of the report's copy, relative to the library folder.

    BandCounts totals() const;
    std::vector<SumCheck> sumChecks() const;
    std::vector<SumCheck> mismatches() const;
    std::int64_t mismatchCount() const; // Their number, without making them.

    bool operator==(const Analysis&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("id", &Analysis::id, Base::Missing::makesId),
            Base::field("source", &Analysis::source, Base::Missing::fails),
            Base::field("name", &Analysis::name),
            Base::field("importedAt", &Analysis::importedAt, Base::Missing::takesNow),
            Base::field("sourceLanguage", &Analysis::sourceLanguage),
            Base::field("targetLanguage", &Analysis::targetLanguage),
            Base::field("rows", &Analysis::rows, Base::Missing::fails),
            Base::field("statedTotalWords", &Analysis::statedTotalWords),
            Base::field("notes", &Analysis::notes),
            Base::field("storedCopy", &Analysis::storedCopy),
        };
    }
};
static_assert(Base::listsEveryMember<Analysis>);

// Adds up the sizes of counts from outside, so that they can be refused before anything sums them.
class CountBound {
public:
    // False once the words, segments or characters seen so far pass the largest total that is let in.
    bool admits(const AnalysisRow& row);
    bool admits(const Analysis& analysis);

private:
    bool admit(std::int64_t& total, const BandMap<std::int64_t>& counts, std::optional<std::int64_t> stated);

    std::int64_t m_words = 0, m_segments = 0, m_characters = 0;
};

} // namespace Pallisande
