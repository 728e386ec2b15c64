#include "PallisandeKit/Records/NumberSeries.h"

#include "Base/Checked.h"

#include <fmt/format.h>

#include <algorithm>

namespace Pallisande {

namespace {

constexpr std::int64_t widestCounter
    = 19; // No counter has more digits; a wider setting would only add zeros.

} // namespace

std::string NumberSeries::format(std::int64_t sequence, std::int64_t year) const
{
    const auto width = static_cast<int>(std::clamp<std::int64_t>(digits, 0, widestCounter));
    return includeYear ? fmt::format("{}{}-{:0{}}", prefix, year, sequence, width)
                       : fmt::format("{}{:0{}}", prefix, sequence, width);
}

NumberSeries::Issued NumberSeries::upcoming(std::int64_t year) const
{
    const auto entry = next.find(key(year));
    const auto sequence = entry == next.end() ? 1 : entry->second;
    return { sequence, format(sequence, year) };
}

NumberSeries::Issued NumberSeries::issue(std::int64_t year)
{
    auto issued = upcoming(year);
    next[key(year)] = Base::Checked::add(issued.sequence, 1);
    return issued;
}

} // namespace Pallisande
