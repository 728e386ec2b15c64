#include "PallisandeKit/Pricing/JobPricing.h"

#include "Base/Checked.h"
#include "TamberlinKit/Quotes/Money.h"

#include <fmt/format.h>

#include <algorithm>

namespace Pallisande {

namespace {

using Base::Decimal;
using Problem = JobPrice::Problem;

// What all analyses have together; segments are never billed.
struct MergedCounts {
    BandMap<std::int64_t> words, characters;
    std::int64_t mismatches = 0;
};

MergedCounts merged(std::span<const Analysis> analyses)
{
    MergedCounts merged;
    for (const auto& analysis : analyses) {
        for (const auto& row : analysis.rows) {
            add(merged.words, row.counts.words);
            add(merged.characters, row.counts.characters);
        }
        merged.mismatches += analysis.mismatchCount();
    }
    return merged;
}

void priceTarget(JobPrice& price, std::optional<std::int64_t> targetUnits)
{
    if (!targetUnits)
        price.problems.push_back({ .kind = Problem::Kind::noTargetCount });
    price.units = targetUnits.value_or(0);
    price.weightedUnits = price.units;
}

void priceBands(JobPrice& price, const MergedCounts& counts, const BandWeights& weights)
{
    const bool isPerCharacter = price.unit == RateUnit::character;
    if (isPerCharacter && counts.characters.isEmpty() && sum(counts.words) > 0)
        price.problems.push_back({ .kind = Problem::Kind::noCharacters });
    for (const auto band : allMatchBands) {
        const auto units = (isPerCharacter ? counts.characters : counts.words).valueOr(band, 0);
        const bool isFloored = band == MatchBand::fuzzy50 && weights.floor75;
        const auto weight = isFloored ? Decimal(100) : weights.percentOf(band);
        const auto weightedUnits = (units * weight).shifted(-2);
        price.bands.push_back({ band, units, weight, weightedUnits });
        price.units = Base::Checked::add(price.units, units);
        price.weightedUnits += weightedUnits;
    }
}

} // namespace

std::string Problem::sentence() const
{
    switch (kind) {
    case Kind::analysisMismatch:
        return fmt::format(
            "{} totals don’t match their report. The price uses the bands as imported; check the report.",
            count);
    case Kind::badWeight:
        return fmt::format(
            "The weight for {} is outside 0–100%. Fix it in the client’s weights.", label(band));
    case Kind::noTargetCount:
        return "This client is billed on target words: enter the delivered translation’s count.";
    case Kind::noCharacters:
        break;
    }
    return "The rate is per character, but the analysis has no character counts.";
}

void writeJson(Base::JsonWriter& writer, const JobPrice::Problem& problem)
{
    writer.text(problem.sentence());
}

JobPrice JobPricing::price(std::span<const Analysis> analyses, std::optional<std::int64_t> targetUnits,
    std::span<const ExtraLine> extras, const PriceTerms& terms)
{
    const int digits = Tamberlin::Money::minorDigits(terms.currency);
    JobPrice price;
    price.basis = terms.basis;
    price.unit = terms.unit;
    price.currency = terms.currency;
    price.rate = terms.rate;
    price.surchargePercent = terms.surchargePercent;
    price.taxPercent = terms.taxPercent;
    price.taxLabel = terms.taxLabel;

    const auto counts = merged(analyses);
    if (counts.mismatches > 0)
        price.problems.push_back({ .kind = Problem::Kind::analysisMismatch, .count = counts.mismatches });
    if (const auto band = terms.weights.firstInvalidBand())
        price.problems.push_back({ .kind = Problem::Kind::badWeight, .band = *band });

    if (terms.basis == WordBasis::target)
        priceTarget(price, targetUnits);
    else
        priceBands(price, counts, terms.weights);

    price.translation = (price.weightedUnits * terms.rate).rounded(digits);
    price.surcharge = (price.translation * terms.surchargePercent).shifted(-2).rounded(digits);
    Decimal extraSum;
    price.extras.reserve(extras.size());
    for (const auto& extra : extras) {
        const auto amount = (extra.quantity * extra.unitPrice).rounded(digits);
        price.extras.push_back({ extra, amount });
        extraSum += amount;
    }
    price.subtotal = price.translation + price.surcharge + extraSum;

    const auto minimum = terms.minimumFee.rounded(digits);
    const bool hasSomethingToBill = price.units > 0 || !extras.empty();
    if (minimum > Decimal() && hasSomethingToBill && price.subtotal < minimum)
        price.minimumAdjustment = minimum - price.subtotal;

    const auto net = price.subtotal + price.minimumAdjustment;
    price.tax = (net * terms.taxPercent).shifted(-2).rounded(digits);
    price.total = net + price.tax;
    return price;
}

PriceTerms JobPricing::terms(const Client& client, const LanguagePair& pair)
{
    PriceTerms terms {
        .currency = client.currency,
        .rate = client.defaultRate,
        .unit = client.unit,
        .basis = client.basis,
        .weights = client.weights,
        .minimumFee = client.minimumFee,
        .surchargePercent = {},
        .taxPercent = client.taxPercent,
        .taxLabel = client.taxLabel,
    };
    const auto special = std::find_if(client.rates.begin(), client.rates.end(),
        [&](const ClientRate& rate) { return rate.pair.matches(pair); });
    if (special != client.rates.end()) {
        terms.rate = special->rate;
        terms.minimumFee = special->minimumFee.value_or(client.minimumFee);
    }
    return terms;
}

JobPrice JobPricing::price(const Job& job, const Client& client)
{
    auto resolved = terms(client, job.pair);
    if (job.rateOverride)
        resolved.rate = *job.rateOverride;
    resolved.surchargePercent = job.surchargePercent;
    return price(job.analyses, job.targetUnits, job.extras, resolved);
}

} // namespace Pallisande
