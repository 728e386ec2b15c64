#include "PallisandeKit/Analyses/BandWeights.h"

namespace Pallisande {

namespace {

constexpr std::array<BandWeights::Preset, 3> allPresets { BandWeights::Preset::none,
    BandWeights::Preset::repetitionsAnd100, BandWeights::Preset::graduated };

} // namespace

BandWeights BandWeights::of(Preset preset)
{
    // Rows in the order of the presets, columns in the order of the bands.
    static constexpr int percents[3][9] {
        { 100, 100, 100, 100, 100, 100, 100, 100, 100 },
        { 30, 30, 30, 30, 100, 100, 100, 100, 100 },
        { 10, 20, 25, 30, 60, 70, 80, 100, 100 },
    };
    BandWeights weights;
    for (const auto band : allMatchBands)
        weights.percent[band] = percents[static_cast<std::size_t>(preset)][static_cast<std::size_t>(band)];
    return weights;
}

std::optional<BandWeights::Preset> BandWeights::matchingPreset() const
{
    for (const auto preset : allPresets) {
        if (percent == of(preset).percent)
            return preset;
    }
    return std::nullopt;
}

std::optional<MatchBand> BandWeights::firstInvalidBand() const
{
    static constexpr Base::Decimal hundred = 100;
    for (const auto band : allMatchBands) {
        const auto* const weight = percent.find(band);
        if (weight && (weight->isNegative() || *weight > hundred))
            return band;
    }
    return std::nullopt;
}

std::string_view label(BandWeights::Preset preset)
{
    constexpr std::array<std::string_view, 3> labels { "None: every word at the full rate (example)",
        "Repetitions and 100% matches only (example)", "Graduated by band (example)" };
    return labels[static_cast<std::size_t>(preset)];
}

} // namespace Pallisande
