#pragma once

#include "PallisandeKit/Analyses/MatchBand.h"

#include <tuple>

namespace Pallisande {

// What a client's rate is per.
enum class RateUnit { word, character };
constexpr std::array<std::string_view, 2> caseNames(RateUnit) { return { "word", "character" }; }

// Which side's count is billed: the bands of the source, or the delivered translation without bands.
enum class WordBasis { source, target };
constexpr std::array<std::string_view, 2> caseNames(WordBasis) { return { "source", "target" }; }

// The counts of one analysis. A band that isn't there counts as 0. Segments are shown and checked, never
// billed.
struct BandCounts {
    BandMap<std::int64_t> words;
    BandMap<std::int64_t> segments;
    BandMap<std::int64_t> characters;

    std::int64_t count(MatchBand band, RateUnit unit) const
    {
        return (unit == RateUnit::character ? characters : words).valueOr(band, 0);
    }

    void add(const BandCounts& other);

    bool operator==(const BandCounts&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("words", &BandCounts::words, Base::Missing::fails),
            Base::field("segments", &BandCounts::segments, Base::Missing::fails),
            Base::field("characters", &BandCounts::characters, Base::Missing::fails),
        };
    }
};
static_assert(Base::listsEveryMember<BandCounts>);

// Adds one metric to another, band by band.
void add(BandMap<std::int64_t>& total, const BandMap<std::int64_t>& metric);

// The sum of one metric over all bands.
std::int64_t sum(const BandMap<std::int64_t>& metric);

} // namespace Pallisande
