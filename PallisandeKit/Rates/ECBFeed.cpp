#include "PallisandeKit/Rates/ECBFeed.h"

#include "TamberlinKit/Markup/XMLEvents.h"

#include <fmt/format.h>

#include <algorithm>

namespace Pallisande {

namespace {

constexpr std::size_t deepest = 64;

// Gathers the days as the elements go by; a Cube with a time opens one, a Cube with a currency adds to it.
struct Collector {
    const Base::Calendar& calendar;
    std::vector<ECBDay> days;
    bool hasOpenDay = false;

    void start(std::string_view element, Tamberlin::XMLAttributes attributes)
    {
        if (element != "Cube" && !element.ends_with(":Cube"))
            return;
        if (const auto time = attributes.find("time")) {
            const auto day = Base::Day::parse(*time);
            hasOpenDay = day.has_value(); // The rates of a day that can't be read belong to no day.
            if (day)
                days.push_back({ .date = calendar.noon(*day), .perEuro = {} });
            return;
        }
        const auto currency = attributes.find("currency"), text = attributes.find("rate");
        const auto rate = text ? Base::Decimal::parse(*text) : std::nullopt;
        if (hasOpenDay && currency && rate)
            days.back().perEuro.insert_or_assign(std::string(*currency), *rate);
    }
};

} // namespace

std::vector<ECBDay> ECBFeed::parse(std::string_view xml, const Base::Calendar& calendar)
{
    Collector collector { calendar, {} };
    const auto failure = Tamberlin::parseXML(
        xml, { .deepest = deepest },
        [&](std::string_view element, Tamberlin::XMLAttributes attributes) {
            collector.start(element, attributes);
        },
        [](std::string_view) {});
    if (failure)
        throw ECBError(
            fmt::format("The ECB’s rates couldn’t be read ({}).", failure->empty() ? "not XML" : *failure));
    const bool hasRates = std::any_of(
        collector.days.begin(), collector.days.end(), [](const ECBDay& day) { return !day.perEuro.empty(); });
    if (!hasRates)
        throw ECBError("The ECB’s file had no rates in it.");
    return std::move(collector.days);
}

} // namespace Pallisande
