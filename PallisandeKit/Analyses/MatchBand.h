#pragma once

#include "Base/EnumMap.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace Pallisande {

// How well a translation memory matches a segment. Every report and count is reduced to these nine bands; the
// order here is the order in which they are shown, walked and sorted.
enum class MatchBand { perfect, context, repetitions, exact, fuzzy95, fuzzy85, fuzzy75, fuzzy50, noMatch };

constexpr std::array<std::string_view, 9> caseNames(MatchBand)
{
    return { "perfect", "context", "repetitions", "exact", "fuzzy95", "fuzzy85", "fuzzy75", "fuzzy50",
        "noMatch" };
}

inline constexpr std::array<MatchBand, 9> allMatchBands { MatchBand::perfect, MatchBand::context,
    MatchBand::repetitions, MatchBand::exact, MatchBand::fuzzy95, MatchBand::fuzzy85, MatchBand::fuzzy75,
    MatchBand::fuzzy50, MatchBand::noMatch };

std::string_view label(MatchBand band); // "95–99%"

// The lowest match percentage of a band; nothing for the bands that aren't percentage ranges.
std::optional<int> minimumPercent(MatchBand band);

MatchBand bandForPercent(std::int64_t percent);

// Whether `minimum` to `maximum` is the standard range of a fuzzy band: 95–99, 85–94, 75–84 or 50–74.
bool isStandardRange(MatchBand band, std::int64_t minimum, std::int64_t maximum);

template <typename Value> using BandMap = Base::EnumMap<MatchBand, Value>;

} // namespace Pallisande
