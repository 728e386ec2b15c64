#pragma once

#include "Fuzzing/Expect.h"
#include "PallisandeKit/Analyses/Importer.h"
#include "PallisandeKit/Pricing/JobPricing.h"

// An imported report is an analysis that can be priced and whose bands add up, a table whose columns the user
// is asked about, or a sentence.
inline void expectSound(const Pallisande::ImportResult& result)
{
    using namespace Pallisande;
    if (const auto* const failure = std::get_if<ImportFailed>(&result)) {
        expect(!failure->message.empty(), "A failure has no sentence.");
        return;
    }
    if (const auto* const needed = std::get_if<NeedsMapping>(&result)) {
        expect(!needed->reason.empty(), "A question about columns has no reason.");
        expect(needed->table.guess.columns.size() >= 2, "A table has a single column.");
        return;
    }
    const auto& analysis = std::get<Analysis>(result);
    expect(!analysis.rows.empty(), "An analysis has no rows.");
    for (const auto& note : analysis.notes)
        expect(!sentence(note).empty(), "A note has no sentence.");
    expect(static_cast<std::int64_t>(analysis.mismatches().size()) == analysis.mismatchCount(),
        "Failed sums are counted differently.");
    const auto price = JobPricing::price(std::span(&analysis, 1), std::nullopt, {}, { .rate = 1 });
    expect(price.units == sum(analysis.totals().words), "A price leaves words out.");
}
