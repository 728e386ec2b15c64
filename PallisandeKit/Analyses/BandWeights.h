#pragma once

#include "Base/Decimal.h"
#include "PallisandeKit/Analyses/MatchBand.h"

#include <optional>
#include <string_view>
#include <tuple>

namespace Pallisande {

// The share of the full rate, in percent, that each band is billed at for one client.
struct BandWeights {
    BandMap<Base::Decimal> percent; // A band that isn't there is billed at 100.
    bool floor75 = false; // Matches under 75% are billed as new words, whatever their percent says.

    // Example tables; there is no standard one, weights are what was agreed with each client.
    enum class Preset { none, repetitionsAnd100, graduated };

    static BandWeights of(Preset preset);

    Base::Decimal percentOf(MatchBand band) const { return percent.valueOr(band, 100); }

    // The first preset with exactly these percents; the floor isn't compared.
    std::optional<Preset> matchingPreset() const;

    // The first band whose percent lies outside 0 to 100.
    std::optional<MatchBand> firstInvalidBand() const;

    bool operator==(const BandWeights&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("percent", &BandWeights::percent, Base::Missing::fails),
            Base::field("floor75", &BandWeights::floor75, Base::Missing::fails),
        };
    }
};
static_assert(Base::listsEveryMember<BandWeights>);

constexpr std::array<std::string_view, 3> caseNames(BandWeights::Preset)
{
    return { "none", "repetitionsAnd100", "graduated" };
}

std::string_view label(BandWeights::Preset preset);

} // namespace Pallisande
