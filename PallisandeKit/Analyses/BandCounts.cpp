#include "PallisandeKit/Analyses/BandCounts.h"

#include "Base/Checked.h"

namespace Pallisande {

void add(BandMap<std::int64_t>& total, const BandMap<std::int64_t>& metric)
{
    metric.forEach(
        [&](MatchBand band, std::int64_t count) { total[band] = Base::Checked::add(total[band], count); });
}

void BandCounts::add(const BandCounts& other)
{
    Pallisande::add(words, other.words);
    Pallisande::add(segments, other.segments);
    Pallisande::add(characters, other.characters);
}

std::int64_t sum(const BandMap<std::int64_t>& metric)
{
    std::int64_t total = 0;
    metric.forEach([&](MatchBand, std::int64_t count) { total = Base::Checked::add(total, count); });
    return total;
}

} // namespace Pallisande
