#include "PallisandeKit/Analyses/MatchBand.h"

namespace Pallisande {

namespace {

struct Range {
    std::int64_t minimum, maximum;
};

std::optional<Range> standardRange(MatchBand band)
{
    switch (band) {
    case MatchBand::fuzzy95:
        return Range { 95, 99 };
    case MatchBand::fuzzy85:
        return Range { 85, 94 };
    case MatchBand::fuzzy75:
        return Range { 75, 84 };
    case MatchBand::fuzzy50:
        return Range { 50, 74 };
    default:
        return std::nullopt;
    }
}

} // namespace

std::string_view label(MatchBand band)
{
    constexpr std::array<std::string_view, 9> labels { "Perfect / X-translated", "Context match (101%)",
        "Repetitions", "100%", "95–99%", "85–94%", "75–84%", "50–74%", "No match" };
    return labels[static_cast<std::size_t>(band)];
}

std::optional<int> minimumPercent(MatchBand band)
{
    if (const auto range = standardRange(band))
        return static_cast<int>(range->minimum);
    if (band == MatchBand::exact)
        return 100;
    if (band == MatchBand::noMatch)
        return 0;
    return std::nullopt;
}

MatchBand bandForPercent(std::int64_t percent)
{
    for (const auto band : { MatchBand::exact, MatchBand::fuzzy95, MatchBand::fuzzy85, MatchBand::fuzzy75,
             MatchBand::fuzzy50 }) {
        if (percent >= *minimumPercent(band))
            return band;
    }
    return MatchBand::noMatch;
}

bool isStandardRange(MatchBand band, std::int64_t minimum, std::int64_t maximum)
{
    const auto range = standardRange(band);
    return range && range->minimum == minimum && range->maximum == maximum;
}

} // namespace Pallisande
