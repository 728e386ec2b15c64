#include "PallisandeKit/Pricing/JobPricing.h"

#include "Base/Json.h"
#include "Tests/Support/Samples.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Pallisande;
using namespace Test;
using Base::Decimal;

namespace {

PriceTerms terms(std::string_view rate = "0.10", std::string_view currency = "EUR")
{
    return { .currency = std::string(currency), .rate = decimal(rate) };
}

JobPrice priceOf(const BandMap<std::int64_t>& words, const PriceTerms& terms)
{
    return JobPricing::price(std::vector { analysis(words) }, {}, {}, terms);
}

std::vector<std::string> problems(const JobPrice& price)
{
    std::vector<std::string> sentences;
    for (const auto& problem : price.problems)
        sentences.push_back(problem.sentence());
    return sentences;
}

TEST(JobPricing, sumsWeightedWordsExactlyAndRoundsOnce)
{
    const struct {
        BandMap<std::int64_t> words;
        std::string percent; // Of fuzzy50.
        std::string rate, currency, weighted, translation;
    } cases[] {
        { { { MatchBand::noMatch, 1000 } }, "100", "0.1234", "EUR", "1000", "123.4" },
        { { { MatchBand::fuzzy50, 333 } }, "33.3", "0.10", "EUR", "110.889", "11.09" },
        { { { MatchBand::fuzzy50, 1 }, { MatchBand::noMatch, 1 } }, "50", "0.03", "EUR", "1.5",
            "0.05" }, // 0.045
        { { { MatchBand::fuzzy50, 2469 } }, "50", "1", "JPY", "1234.5", "1235" },
        { { { MatchBand::noMatch, 1 } }, "100", "0.0125", "KWD", "1", "0.013" },
        { { { MatchBand::noMatch, -3 } }, "100", "0.015", "EUR", "-3", "-0.05" },
        { { { MatchBand::fuzzy50, 9'007'199'254'740'991 } }, "99.99", "0.0999999", "EUR",
            "9006298534815516.9009", "900628952851698.21" },
        { {}, "100", "0.10", "EUR", "0", "0" },
    };
    for (const auto& [words, percent, rate, currency, weighted, translation] : cases) {
        auto agreed = terms(rate, currency);
        agreed.weights.percent[MatchBand::fuzzy50] = decimal(percent);
        const auto price = priceOf(words, agreed);
        EXPECT_EQ(price.weightedUnits.toString(), weighted);
        EXPECT_EQ(price.translation.toString(), translation);
        EXPECT_EQ(price.total, price.translation);
        EXPECT_EQ(price.bands.size(), 9u); // Zero ones included.
        EXPECT_EQ(problems(price), std::vector<std::string>());
    }
}

TEST(JobPricing, everyBandIsBilledAtItsOwnWeight)
{
    auto agreed = terms("1");
    agreed.weights = BandWeights::of(BandWeights::Preset::graduated);
    agreed.weights.percent[MatchBand::fuzzy50] = 30;
    BandMap<std::int64_t> words;
    for (const auto band : allMatchBands)
        words[band] = 100;
    const std::vector<int> plain { 10, 20, 25, 30, 60, 70, 80, 30, 100 },
        floored { 10, 20, 25, 30, 60, 70, 80, 100, 100 };
    for (const auto& [floor75, expected] : { std::pair { false, plain }, std::pair { true, floored } }) {
        agreed.weights.floor75 = floor75;
        const auto price = priceOf(words, agreed);
        for (const auto& [band, units, weight, weighted] : price.bands) {
            EXPECT_EQ(units, 100);
            EXPECT_EQ(weight, Decimal(expected[static_cast<std::size_t>(band)])) << label(band);
            EXPECT_EQ(weighted, weight);
        }
        EXPECT_EQ(price.units, 900);
    }
    agreed.weights = {};
    EXPECT_EQ(priceOf(words, agreed).total, Decimal(900)); // Bands without a weight are billed in full.
}

TEST(JobPricing, mergesAllAnalysesBandByBand)
{
    auto second = analysis({ { MatchBand::noMatch, 5 }, { MatchBand::exact, 7 } });
    second.rows.push_back(second.rows[0]);
    const std::vector analyses { analysis({ { MatchBand::noMatch, 100 } }), second };
    const auto price = JobPricing::price(analyses, {}, {}, terms());
    EXPECT_EQ(price.bands[8].units, 110);
    EXPECT_EQ(price.bands[3].units, 14);
    EXPECT_EQ(price.units, 124);
}

TEST(JobPricing, addsSurchargeExtrasMinimumAndTaxInThatOrder)
{
    struct Case {
        std::string translation, surchargePercent;
        std::vector<std::pair<std::string, std::string>> extras; // Quantity and unit price.
        std::string minimum, taxPercent;
        std::string surcharge, subtotal, adjustment, tax, total;
    };
    const Case cases[] {
        { "100.05", "10", {}, "0", "0", "10.01", "110.06", "0", "0", "110.06" }, // 10.005 away from zero
        { "100.05", "-10", {}, "0", "0", "-10.01", "90.04", "0", "0", "90.04" },
        { "100", "0", { { "2.5", "45.5" }, { "3", "0.335" } }, "0", "19", "0", "214.76", "0", "40.8",
            "255.56" },
        { "40", "25", {}, "50", "10", "10", "50", "0", "5", "55" }, // Just the minimum: not adjusted.
        { "40", "0", {}, "50.004", "10", "0", "40", "10", "5", "55" }, // The minimum is rounded first.
        { "40", "0", {}, "50.005", "10", "0", "40", "10.01", "5", "55.01" },
        { "0", "0", { { "0", "10" } }, "50", "20", "0", "0", "50", "10",
            "60" }, // An extra line is something to bill.
        { "100", "0", {}, "-5", "0", "0", "100", "0", "0", "100" },
        { "33.33", "0", {}, "0", "7.5", "0", "33.33", "0", "2.5", "35.83" },
    };
    for (const auto& [translation, surchargePercent, extras, minimum, taxPercent, surcharge, subtotal,
             adjustment, tax, total] : cases) {
        auto agreed = terms(translation);
        agreed.surchargePercent = decimal(surchargePercent);
        agreed.minimumFee = decimal(minimum);
        agreed.taxPercent = decimal(taxPercent);
        agreed.taxLabel = "VAT";
        std::vector<ExtraLine> lines;
        for (const auto& [quantity, price] : extras)
            lines.push_back({ .quantity = decimal(quantity), .unitPrice = decimal(price) });
        const auto price
            = JobPricing::price(std::vector { analysis({ { MatchBand::noMatch, 1 } }) }, {}, lines, agreed);
        EXPECT_EQ(price.surcharge.toString(), surcharge);
        EXPECT_EQ(price.extras.size(), lines.size());
        EXPECT_EQ(price.subtotal.toString(), subtotal);
        EXPECT_EQ(price.minimumAdjustment.toString(), adjustment);
        EXPECT_EQ(price.tax.toString(), tax);
        EXPECT_EQ(price.total.toString(), total);
        EXPECT_EQ(price.taxPercent, agreed.taxPercent);
        EXPECT_EQ(price.surchargePercent, agreed.surchargePercent);
        EXPECT_EQ(price.taxLabel, "VAT");
    }
}

TEST(JobPricing, nothingToBillIsNeverRaisedToTheMinimum)
{
    auto agreed = terms();
    agreed.minimumFee = 50;
    agreed.taxPercent = 19;
    for (const auto& analyses :
        { std::vector<Analysis> {}, std::vector { analysis({ { MatchBand::exact, 0 } }) } })
        EXPECT_TRUE(JobPricing::price(analyses, {}, {}, agreed).total.isZero());
    agreed.weights.percent[MatchBand::exact] = 0; // There is something, and it is billed at nothing.
    EXPECT_EQ(priceOf({ { MatchBand::exact, 1 } }, agreed).total.toString(2), "59.50");
}

TEST(JobPricing, onATargetBasisOnlyTheDeliveredCountMatters)
{
    auto agreed = terms();
    agreed.basis = WordBasis::target;
    agreed.weights = BandWeights::of(BandWeights::Preset::graduated);
    const std::vector analyses { analysis({ { MatchBand::exact, 5000 } }) };
    const auto price = JobPricing::price(analyses, 1234, {}, agreed);
    EXPECT_EQ(price.units, 1234);
    EXPECT_EQ(price.weightedUnits, Decimal(1234));
    EXPECT_EQ(price.total, decimal("123.40"));
    EXPECT_TRUE(price.bands.empty());
    EXPECT_TRUE(price.problems.empty());
    EXPECT_TRUE(JobPricing::price(analyses, 0, {}, agreed).problems.empty());
    EXPECT_EQ(problems(JobPricing::price(analyses, {}, {}, agreed)),
        std::vector<std::string> {
            "This client is billed on target words: enter the delivered translation’s count." });
    EXPECT_EQ(JobPricing::price(analyses, {}, {}, agreed).units, 0);
}

TEST(JobPricing, aRatePerCharacterTakesCharactersOnly)
{
    auto agreed = terms("0.01");
    agreed.unit = RateUnit::character;
    auto counted = analysis({ { MatchBand::noMatch, 100 } });
    EXPECT_EQ(problems(priceOf({ { MatchBand::noMatch, 100 } }, agreed)),
        std::vector<std::string> { "The rate is per character, but the analysis has no character counts." });
    EXPECT_EQ(priceOf({ { MatchBand::noMatch, 100 } }, agreed).units, 0);
    EXPECT_TRUE(priceOf({}, agreed).problems.empty()); // No words either: nothing is missing.
    counted.rows[0].counts.characters[MatchBand::exact] = 600;
    const auto price = JobPricing::price(std::vector { counted }, {}, {}, agreed);
    EXPECT_EQ(price.units, 600);
    EXPECT_EQ(price.total, Decimal(6));
    EXPECT_TRUE(price.problems.empty());
}

TEST(JobPricing, doubtsAreReportedInOrderAndPricedAsTheyStand)
{
    auto agreed = terms("1");
    agreed.weights.percent[MatchBand::exact] = 120;
    agreed.weights.percent[MatchBand::noMatch] = -1;
    auto wrong = analysis({ { MatchBand::exact, 100 } });
    wrong.rows[0].statedWords = 99;
    const auto price = JobPricing::price(std::vector { wrong, wrong }, {}, {}, agreed);
    EXPECT_EQ(price.total, Decimal(240));
    EXPECT_EQ(problems(price),
        (std::vector<std::string> {
            "2 totals don’t match their report. The price uses the bands as imported; check the report.",
            "The weight for 100% is outside 0–100%. Fix it in the client’s weights." }));
    agreed.basis = WordBasis::target;
    wrong.statedTotalWords = 98;
    const auto target = JobPricing::price(std::vector { wrong, wrong }, {}, {}, agreed);
    ASSERT_EQ(target.problems.size(), 3u);
    EXPECT_EQ(target.problems[0].count, 4);
    EXPECT_EQ(target.problems[2].kind, JobPrice::Problem::Kind::noTargetCount);
    EXPECT_NE(Base::toJson(target, Base::JsonStyle::compact).find(R"("problems":["4 totals don’t)"),
        std::string::npos);
}

TEST(JobPricing, aClientsTermsAreThoseOfTheFirstPairThatMatches)
{
    auto agreed = client(1);
    agreed.minimumFee = 20;
    agreed.rates = {
        { .pair = { "fr", "en" }, .rate = decimal("0.2") },
        { .pair = { " DE ", "EN" }, .rate = decimal("0.3"), .minimumFee = Decimal(0) },
        { .pair = { "de", "en" }, .rate = decimal("0.4"), .minimumFee = Decimal(90) },
        { .pair = { "İzlandaca", "IRISCH" }, .rate = decimal("0.5"), .minimumFee = Decimal(70) },
        { .pair = { "", "" }, .rate = decimal("0.6") },
    };
    const struct {
        LanguagePair pair;
        std::string rate, minimum;
    } cases[] {
        { { "de", "en" }, "0.3", "0" },
        { { "\u00A0De\t", " en" }, "0.3", "0" },
        { { "FR", "EN" }, "0.2", "20" }, // Without a minimum of its own it takes the client's.
        { { "en", "de" }, "0.1", "20" },
        { { "de-AT", "en" }, "0.1", "20" },
        { { "İZLANDACA", "irisch" }, "0.5", "70" },
        { { "İzlandaca", "ırısch" }, "0.1", "20" },
        { { " ", "" }, "0.6", "20" },
    };
    for (const auto& [pair, rate, minimum] : cases) {
        const auto resolved = JobPricing::terms(agreed, pair);
        EXPECT_EQ(resolved.rate.toString(), rate) << pair.text();
        EXPECT_EQ(resolved.minimumFee.toString(), minimum) << pair.text();
        EXPECT_TRUE(resolved.surchargePercent.isZero());
        EXPECT_EQ(resolved.weights, agreed.weights);
        EXPECT_EQ(resolved.taxPercent, agreed.taxPercent);
    }
}

TEST(JobPricing, aJobsOwnRateAndSurchargeGoBeforeTheClients)
{
    auto agreed = client(1);
    agreed.rates = { { .pair = { "de", "en" }, .rate = decimal("0.3") } };
    auto priced = job(11, 1, 100);
    EXPECT_EQ(JobPricing::price(priced, agreed).total, decimal("35.70"));
    priced.rateOverride = Decimal(0);
    EXPECT_TRUE(JobPricing::price(priced, agreed).total.isZero());
    priced.rateOverride = Decimal(1);
    priced.surchargePercent = 50;
    priced.extras = { { .quantity = 2, .unitPrice = 5 } };
    const auto price = JobPricing::price(priced, agreed);
    EXPECT_EQ(price.subtotal, Decimal(160));
    EXPECT_EQ(price.tax, decimal("30.4"));
}

TEST(LanguagePairs, areShownWithAnArrow)
{
    EXPECT_EQ((LanguagePair { "de", "en" }).text(), "de → en");
    EXPECT_EQ((LanguagePair { "", "en" }).text(), "? → en");
    EXPECT_EQ((LanguagePair { "de", "" }).text(), "de → ?");
    EXPECT_EQ(LanguagePair().text(), "");
}

} // namespace
