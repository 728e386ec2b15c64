#pragma once

#include "Base/Calendar.h"
#include "PallisandeKit/Rates/ExchangeRate.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Pallisande {

// One day of the European Central Bank's euro reference rates.
struct ECBDay {
    Base::Instant date; // At local noon.
    std::map<std::string, Base::Decimal> perEuro; // Units of each currency for one euro.

    // The cross rate through the euro to 6 places, half away from zero; nothing when a currency isn't there
    // or the value of `from` isn't above zero.
    std::optional<Base::Decimal> rate(const std::string& from, const std::string& to) const;

    bool operator==(const ECBDay&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("date", &ECBDay::date, Base::Missing::fails),
            Base::field("perEuro", &ECBDay::perEuro, Base::Missing::fails),
        };
    }
};
static_assert(Base::listsEveryMember<ECBDay>);

// The stored exchange rates: the ECB's days and what the user typed.
struct RateBook {
    std::vector<ECBDay> ecb; // Sorted by day.
    std::vector<ExchangeRate> typed;
    std::optional<Base::Instant> lastFetched; // When the ECB's file was last read.

    // The rate in force on `day`: of that day or the latest before it, however far back. A typed rate goes
    // before the ECB's unless the ECB's is of a later day. One typed the other way round is turned round.
    std::optional<ExchangeRate> rate(
        const std::string& from, const std::string& to, Base::Instant day, const Base::Moment& moment) const;

    // Takes in the days of a file: they replace stored days of the same date, older ones stay.
    void merge(std::vector<ECBDay> days, const Base::Moment& moment);

    bool operator==(const RateBook&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("ecb", &RateBook::ecb),
            Base::field("typed", &RateBook::typed),
            Base::field("lastFetched", &RateBook::lastFetched),
        };
    }
};
static_assert(Base::listsEveryMember<RateBook>);

} // namespace Pallisande
