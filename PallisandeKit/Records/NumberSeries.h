#pragma once

#include "Base/Fields.h"

#include <cstdint>
#include <map>
#include <string>
#include <tuple>

namespace Pallisande {

// One gapless series of document numbers. A series that doesn't print the year never starts again: its second
// INV-001 would be a different document under a number already used.
struct NumberSeries {
    std::string prefix;
    bool includeYear = true;
    bool resetEachYear = true;
    std::int64_t digits = 3; // The counter's least width.
    std::map<std::int64_t, std::int64_t> next; // Per year, or under 0; a missing entry means 1.

    struct Issued {
        std::int64_t sequence;
        std::string number;
    };

    // The number that a document dated in `year` would get next.
    Issued upcoming(std::int64_t year) const;
    // Takes that number.
    Issued issue(std::int64_t year);

    std::string format(std::int64_t sequence, std::int64_t year) const;
    // Under which key of `next` a document of that year is counted.
    std::int64_t key(std::int64_t year) const { return includeYear && resetEachYear ? year : 0; }

    bool operator==(const NumberSeries&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("prefix", &NumberSeries::prefix),
            Base::field("includeYear", &NumberSeries::includeYear),
            Base::field("resetEachYear", &NumberSeries::resetEachYear),
            Base::field("digits", &NumberSeries::digits),
            Base::field("next", &NumberSeries::next),
        };
    }
};
static_assert(Base::listsEveryMember<NumberSeries>);

} // namespace Pallisande
