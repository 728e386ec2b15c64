#pragma once

#include "Base/Decimal.h"
#include "Base/Fields.h"
#include "Base/Uuid.h"

#include <string>
#include <tuple>

namespace Tamberlin {

// What a quick quote's rate is per.
enum class CardUnit { word, character };
constexpr std::array<std::string_view, 2> caseNames(CardUnit) { return { "word", "character" }; }

// The terms of a quick quote for files that were counted here.
struct RateCard {
    Base::Uuid id;
    std::string name = "Standard rate";
    std::string currency = "EUR"; // ISO 4217.
    CardUnit unit = CardUnit::word;
    Base::Decimal rate = Base::Decimal::ofParts(10, -2);
    Base::Decimal repetitionPercent = 100; // The share of the rate that repeated sentences are billed at.
    Base::Decimal minimumFee;
    Base::Decimal taxPercent;
    std::string taxLabel;

    bool operator==(const RateCard&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("id", &RateCard::id, Base::Missing::makesId),
            Base::field("name", &RateCard::name),
            Base::field("currency", &RateCard::currency),
            Base::field("unit", &RateCard::unit),
            Base::field("rate", &RateCard::rate),
            Base::field("repetitionPercent", &RateCard::repetitionPercent),
            Base::field("minimumFee", &RateCard::minimumFee),
            Base::field("taxPercent", &RateCard::taxPercent),
            Base::field("taxLabel", &RateCard::taxLabel),
        };
    }
};
static_assert(Base::listsEveryMember<RateCard>);

} // namespace Tamberlin
