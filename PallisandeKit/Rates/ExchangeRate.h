#pragma once

#include "Base/Decimal.h"
#include "Base/Fields.h"
#include "Base/Instant.h"
#include "Base/Uuid.h"

#include <string>
#include <string_view>
#include <tuple>
#include <variant>

namespace Pallisande {

// Where a rate came from.
struct FromECB {
    static constexpr std::string_view caseName = "ecb";
    bool operator==(const FromECB&) const = default;
    static constexpr auto fields() { return std::tuple {}; }
};

struct TypedByUser {
    static constexpr std::string_view caseName = "typed";
    std::string note;
    bool operator==(const TypedByUser&) const = default;
    static constexpr auto fields() { return std::tuple { Base::field("note", &TypedByUser::note) }; }
};

using RateSource = std::variant<FromECB, TypedByUser>;

// What one unit of a currency was worth in another on one day.
struct ExchangeRate {
    Base::Uuid id;
    std::string from; // ISO 4217 codes.
    std::string to;
    Base::Decimal rate; // Units of `to` for one unit of `from`.
    Base::Instant date; // The day that the rate is for, at local noon.
    RateSource source;
    Base::Instant recordedAt;

    bool operator==(const ExchangeRate&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("id", &ExchangeRate::id, Base::Missing::makesId),
            Base::field("from", &ExchangeRate::from, Base::Missing::fails),
            Base::field("to", &ExchangeRate::to, Base::Missing::fails),
            Base::field("rate", &ExchangeRate::rate, Base::Missing::fails),
            Base::field("date", &ExchangeRate::date, Base::Missing::fails),
            Base::field("source", &ExchangeRate::source, Base::Missing::fails),
            Base::field("recordedAt", &ExchangeRate::recordedAt, Base::Missing::takesNow),
        };
    }
};
static_assert(Base::listsEveryMember<ExchangeRate>);

} // namespace Pallisande
