#pragma once

#include "Base/BoundedList.h"
#include "Base/Decimal.h"
#include "PallisandeKit/Analyses/Analysis.h"
#include "PallisandeKit/Analyses/BandWeights.h"
#include "PallisandeKit/Records/Client.h"
#include "PallisandeKit/Records/Job.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Pallisande {

// All of a client's agreement that pricing needs, resolved for one job.
struct PriceTerms {
    std::string currency; // ISO 4217.
    Base::Decimal rate; // Per unit at the full rate.
    RateUnit unit = RateUnit::word;
    WordBasis basis = WordBasis::source;
    BandWeights weights;
    Base::Decimal minimumFee; // Before tax; 0 is none.
    Base::Decimal surchargePercent;
    Base::Decimal taxPercent;
    std::string taxLabel;

    bool operator==(const PriceTerms&) const = default;

    static constexpr auto fields()
    {
        using Base::Missing;
        return std::tuple {
            Base::field("currency", &PriceTerms::currency, Missing::fails),
            Base::field("rate", &PriceTerms::rate, Missing::fails),
            Base::field("unit", &PriceTerms::unit, Missing::fails),
            Base::field("basis", &PriceTerms::basis, Missing::fails),
            Base::field("weights", &PriceTerms::weights, Missing::fails),
            Base::field("minimumFee", &PriceTerms::minimumFee, Missing::fails),
            Base::field("surchargePercent", &PriceTerms::surchargePercent, Missing::fails),
            Base::field("taxPercent", &PriceTerms::taxPercent, Missing::fails),
            Base::field("taxLabel", &PriceTerms::taxLabel, Missing::fails),
        };
    }
};
static_assert(Base::listsEveryMember<PriceTerms>);

struct BandLine {
    MatchBand band = MatchBand::noMatch;
    std::int64_t units = 0;
    Base::Decimal weight; // The percent that was applied.
    Base::Decimal weightedUnits; // units × weight ÷ 100, unrounded.

    bool operator==(const BandLine&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("band", &BandLine::band),
            Base::field("units", &BandLine::units),
            Base::field("weight", &BandLine::weight),
            Base::field("weightedUnits", &BandLine::weightedUnits),
        };
    }
};
static_assert(Base::listsEveryMember<BandLine>);

struct ExtraAmount {
    ExtraLine line;
    Base::Decimal amount;

    bool operator==(const ExtraAmount&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("line", &ExtraAmount::line),
            Base::field("amount", &ExtraAmount::amount),
        };
    }
};
static_assert(Base::listsEveryMember<ExtraAmount>);

// The one source of every figure of a job. Pricing never fails: what is doubtful is priced as it stands and
// reported.
struct JobPrice {
    struct Problem {
        enum class Kind { analysisMismatch, badWeight, noTargetCount, noCharacters };

        Kind kind = Kind::analysisMismatch;
        std::int64_t count = 0; // Of totals that don't match.
        MatchBand band = MatchBand::noMatch; // Whose weight is bad.

        std::string sentence() const;

        bool operator==(const Problem&) const = default;
    };

    WordBasis basis = WordBasis::source;
    RateUnit unit = RateUnit::word;
    std::string currency;
    Base::Decimal rate;
    Base::BoundedList<BandLine, 9> bands; // All nine on a source basis, none on a target basis.
    std::int64_t units = 0;
    Base::Decimal weightedUnits;
    Base::Decimal translation; // weightedUnits × rate, rounded once.
    Base::Decimal surcharge;
    std::vector<ExtraAmount> extras;
    Base::Decimal subtotal; // translation + surcharge + extras.
    Base::Decimal minimumAdjustment; // What raises the subtotal to the minimum fee.
    Base::Decimal tax;
    Base::Decimal total;
    Base::Decimal surchargePercent;
    Base::Decimal taxPercent;
    std::string taxLabel;
    Base::BoundedList<Problem, 3> problems;

    bool operator==(const JobPrice&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("basis", &JobPrice::basis),
            Base::field("unit", &JobPrice::unit),
            Base::field("currency", &JobPrice::currency),
            Base::field("rate", &JobPrice::rate),
            Base::field("bands", &JobPrice::bands),
            Base::field("units", &JobPrice::units),
            Base::field("weightedUnits", &JobPrice::weightedUnits),
            Base::field("translation", &JobPrice::translation),
            Base::field("surcharge", &JobPrice::surcharge),
            Base::field("extras", &JobPrice::extras),
            Base::field("subtotal", &JobPrice::subtotal),
            Base::field("minimumAdjustment", &JobPrice::minimumAdjustment),
            Base::field("tax", &JobPrice::tax),
            Base::field("total", &JobPrice::total),
            Base::field("surchargePercent", &JobPrice::surchargePercent),
            Base::field("taxPercent", &JobPrice::taxPercent),
            Base::field("taxLabel", &JobPrice::taxLabel),
            Base::field("problems", &JobPrice::problems),
        };
    }
};
static_assert(Base::listsEveryMember<JobPrice>);

// A problem is written as its sentence.
void writeJson(Base::JsonWriter& writer, const JobPrice::Problem& problem);

namespace JobPricing {

JobPrice price(std::span<const Analysis> analyses, std::optional<std::int64_t> targetUnits,
    std::span<const ExtraLine> extras, const PriceTerms& terms);

// The client's terms for a language pair: the first special rate that matches, else the default rate. No
// surcharge: that is always the job's.
PriceTerms terms(const Client& client, const LanguagePair& pair);

// The job under its client's terms and its own rate and surcharge. Every screen, document and total prices it
// so.
JobPrice price(const Job& job, const Client& client);

} // namespace JobPricing

} // namespace Pallisande
