#include "PallisandeKit/Rates/ECBFeed.h"
#include "PallisandeKit/Rates/RateBook.h"

#include "Tests/Support/Samples.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Pallisande;
using namespace Test;
using Base::Decimal;

namespace {

// Days in the form of the ECB's files.
std::string feed(const std::string& days)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><gesmes:Envelope "
           "xmlns:gesmes=\"http://www.gesmes.org/xml/2002-08-01\">"
           "<gesmes:subject>Reference rates</gesmes:subject><Cube>"
        + days + "</Cube></gesmes:Envelope>";
}

std::string outcome(std::string_view xml)
{
    try {
        ECBFeed::parse(xml, calendar());
        return "(not refused)";
    } catch (const ECBError& error) {
        return error.what();
    }
}

ExchangeRate typedRate(const std::string& from, const std::string& to, std::string_view rate,
    std::string_view day, std::uint64_t number = 70)
{
    return { .id = id(number),
        .from = from,
        .to = to,
        .rate = decimal(rate),
        .date = noon(day),
        .source = TypedByUser { "bank" },
        .recordedAt = moment().now };
}

// Thursday 5 and Friday 6 March 2026.
RateBook book()
{
    return { .ecb = { { noon("2026-03-05"), { { "USD", decimal("1.10") }, { "GBP", decimal("0.85") } } },
                 { noon("2026-03-06"), { { "USD", decimal("1.20") }, { "XXX", 0 } } } } };
}

// The rate that is found, and where it comes from: "1.1 ecb 2026-03-05".
std::string found(const RateBook& rates, const std::string& from, const std::string& to, std::string_view day)
{
    const auto rate
        = rates.rate(from, to, calendar().startOfDay(Test::day(day)).plusMilliseconds(3'600'000), moment());
    if (!rate)
        return "none";
    EXPECT_EQ(rate->from, from);
    EXPECT_EQ(rate->to, to);
    EXPECT_EQ(rate->recordedAt, moment().now);
    const auto* const typed = std::get_if<TypedByUser>(&rate->source);
    return rate->rate.toString() + (typed ? " " + typed->note : " ecb") + " "
        + calendar().day(rate->date).toString();
}

TEST(ECBFeed, readsTheDaysOfAFile)
{
    const auto days = ECBFeed::parse(
        feed("<Cube time='2026-03-06'><Cube currency='USD' rate='1.1576'/><Cube currency='JPY' "
             "rate='182.5'/></Cube>"
             "<x:Cube time='2026-03-05'><x:Cube currency='USD' rate='1.1'/><Cube currency='USD' rate='1.2'/>"
             "<Cube currency='GBP' rate='n/a'/><Cube currency='CHF'/><Cube rate='3'/></x:Cube>"
             "<Cube time='2026-02-30'><Cube currency='USD' rate='9'/></Cube><CUBE time='2026-03-01'/>"),
        calendar());
    const std::vector<ECBDay> expected { { noon("2026-03-06"),
                                             { { "USD", decimal("1.1576") }, { "JPY", decimal("182.5") } } },
        { noon("2026-03-05"), { { "USD", decimal("1.2") } } } };
    EXPECT_EQ(days, expected);
    EXPECT_EQ(ECBFeed::parse(feed("<Cube time='2026-03-06'><Cube currency='USD' rate='1'/></Cube>"),
                  calendar("Pacific/Kiritimati"))[0]
                  .date,
        instant("2026-03-05T22:00:00Z"));
}

TEST(ECBFeed, refusesWhatHoldsNoRates)
{
    const std::string empty = "The ECB’s file had no rates in it.";
    const struct {
        std::string xml, sentence;
    } cases[] {
        { feed(""), empty },
        { feed("<Cube time='2026-03-06'/>"), empty },
        { feed("<Cube time='soon'><Cube currency='USD' rate='1'/></Cube>"), empty },
        { feed("<Cube currency='USD' rate='1'/>"), empty },
        { feed("<Cube time='2026-03-06'><Cube currency='USD' rate='1e400'/></Cube>"), empty },
        { "<html/>", empty },
        { "", "The ECB’s rates couldn’t be read (no element found)." },
        { "<html><p></html>", "The ECB’s rates couldn’t be read (mismatched tag)." },
        { "{\"rates\": []}", "The ECB’s rates couldn’t be read (not well-formed (invalid token))." },
    };
    for (const auto& [xml, sentence] : cases)
        EXPECT_EQ(outcome(xml), sentence) << xml;
    const auto whole = feed("<Cube time='2026-03-06'><Cube currency='USD' rate='1.1'/></Cube>");
    for (std::size_t length = 0; length < whole.size(); ++length)
        ASSERT_NE(outcome(whole.substr(0, length)), "(not refused)") << length;
}

TEST(RateBook, crossRatesGoThroughTheEuroToSixPlaces)
{
    const ECBDay day { .perEuro = { { "USD", decimal("1.1576") }, { "JPY", decimal("182.5") }, { "AAA", 3 },
                           { "BBB", 2 }, { "ZRO", 0 }, { "NEG", -1 } } };
    const struct {
        std::string from, to, rate;
    } cases[] {
        { "EUR", "USD", "1.1576" },
        { "USD", "EUR", "0.863856" },
        { "USD", "JPY", "157.653766" },
        { "AAA", "BBB", "0.666667" },
        { "BBB", "AAA", "1.5" },
        { "EUR", "EUR", "1" },
        { "QQQ", "QQQ", "1" },
        { "EUR", "QQQ", "none" },
        { "QQQ", "EUR", "none" },
        { "ZRO", "EUR", "none" },
        { "NEG", "EUR", "none" },
        { "EUR", "ZRO", "0" },
    };
    for (const auto& [from, to, rate] : cases) {
        const auto value = day.rate(from, to);
        EXPECT_EQ(value ? value->toString() : "none", rate) << from << " " << to;
    }
}

TEST(RateBook, takesTheLatestDayUpToTheOneAskedFor)
{
    const struct {
        std::string from, to, day, found;
    } cases[] {
        { "EUR", "USD", "2026-03-04", "none" },
        { "EUR", "USD", "2026-03-05", "1.1 ecb 2026-03-05" },
        { "EUR", "USD", "2026-03-06", "1.2 ecb 2026-03-06" },
        { "EUR", "USD", "2026-03-08", "1.2 ecb 2026-03-06" }, // Sunday takes Friday's.
        { "EUR", "USD", "2046-03-08", "1.2 ecb 2026-03-06" }, // However far back.
        { "EUR", "GBP", "2026-03-08", "0.85 ecb 2026-03-05" }, // Friday has none.
        { "GBP", "USD", "2026-03-08", "1.294118 ecb 2026-03-05" },
        { "XXX", "EUR", "2026-03-08", "none" },
        { "EUR", "EUR", "1999-01-01", "1 same currency 1999-01-01" },
    };
    for (const auto& [from, to, day, rate] : cases)
        EXPECT_EQ(found(book(), from, to, day), rate) << day;
    auto unsorted = book();
    std::swap(unsorted.ecb[0], unsorted.ecb[1]);
    EXPECT_EQ(found(unsorted, "EUR", "USD", "2026-03-08"), "1.2 ecb 2026-03-06");
}

TEST(RateBook, aTypedRateGoesBeforeTheECBsOfTheSameOrAnEarlierDay)
{
    const struct {
        std::string typedDay, found;
    } cases[] {
        { "2026-03-05", "1.2 ecb 2026-03-06" }, { "2026-03-06", "1.5 bank 2026-03-06" },
        { "2026-03-07", "1.5 bank 2026-03-07" },
        { "2026-03-09", "1.2 ecb 2026-03-06" }, // Of a day after the one asked for.
    };
    for (const auto& [typedDay, rate] : cases) {
        auto rates = book();
        rates.typed.push_back(typedRate("EUR", "USD", "1.5", typedDay));
        EXPECT_EQ(found(rates, "EUR", "USD", "2026-03-08"), rate) << typedDay;
        // What hour a stored rate carries doesn't matter, only its day.
        rates.typed[0].date = calendar().startOfDay(day(typedDay));
        EXPECT_EQ(found(rates, "EUR", "USD", "2026-03-08"), rate) << typedDay;
    }
}

TEST(RateBook, typedRatesServeBothDirectionsAndTheLatestCounts)
{
    RateBook rates { .typed
        = { typedRate("GBP", "EUR", "1.25", "2026-03-03"), typedRate("EUR", "GBP", "0.7", "2026-03-02"),
            typedRate("EUR", "CHF", "3", "2026-03-03"), typedRate("EUR", "SEK", "0", "2026-03-03") } };
    EXPECT_EQ(found(rates, "GBP", "EUR", "2026-03-08"), "1.25 bank 2026-03-03");
    EXPECT_EQ(found(rates, "EUR", "GBP", "2026-03-08"), "0.8 bank 2026-03-03");
    EXPECT_EQ(found(rates, "GBP", "EUR", "2026-03-02"), "1.428571 bank 2026-03-02");
    EXPECT_EQ(found(rates, "CHF", "EUR", "2026-03-08"), "0.333333 bank 2026-03-03");
    EXPECT_EQ(found(rates, "SEK", "EUR", "2026-03-08"), "none"); // Nothing can be divided by it.
    EXPECT_EQ(found(rates, "GBP", "CHF", "2026-03-08"), "none"); // Typed rates make no cross rates.
    rates.typed.push_back(typedRate("EUR", "GBP", "0.5", "2026-03-03", 71)); // Typed last for the same day.
    EXPECT_EQ(found(rates, "GBP", "EUR", "2026-03-08"), "2 bank 2026-03-03");
}

TEST(RateBook, fetchedDaysReplaceThoseOfTheSameDateAndKeepOlderOnes)
{
    auto rates = book();
    rates.typed.push_back(typedRate("EUR", "USD", "1.5", "2026-03-06"));
    rates.merge({ { noon("2026-03-09"), { { "USD", decimal("1.4") } } },
                    { calendar().startOfDay(day("2026-03-06")), { { "USD", decimal("1.3") } } } },
        moment());
    std::vector<std::string> days;
    for (const auto& [date, perEuro] : rates.ecb)
        days.push_back(calendar().day(date).toString() + " " + perEuro.at("USD").toString());
    EXPECT_EQ(days, (std::vector<std::string> { "2026-03-05 1.1", "2026-03-06 1.3", "2026-03-09 1.4" }));
    EXPECT_FALSE(rates.ecb[1].perEuro.contains("XXX"));
    EXPECT_EQ(rates.typed.size(), 1u);
    EXPECT_EQ(rates.lastFetched, moment().now);
}

TEST(RateBook, onlyUsableRatesCanBeTyped)
{
    auto library = sampleLibrary();
    const auto refused = [&](const std::string& from, const std::string& to, std::string_view rate) {
        return refusal(
            library, [&] { Ledger::addTypedRate(library, typedRate(from, to, rate, "2026-03-03")); });
    };
    EXPECT_EQ(refused("EUR", "EUR", "1"), "Choose two different currencies.");
    EXPECT_EQ(refused("EUR", "usd", "1"), "Choose two different currencies.");
    EXPECT_EQ(refused("EUR", "USD", "0"), "A rate must be more than zero.");
    EXPECT_EQ(refused("EUR", "USD", "-1"), "A rate must be more than zero.");
    EXPECT_EQ(refused("EUR", "USD", "0.000001"), "(not refused)");
    EXPECT_EQ(library.rates.typed.size(), 1u);
}

} // namespace
