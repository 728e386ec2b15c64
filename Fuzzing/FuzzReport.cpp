#include "Fuzzing/Expect.h"
#include "PallisandeKit/Analyses/Importer.h"
#include "PallisandeKit/Pricing/JobPricing.h"

using namespace Pallisande;

// A report of any kind: a sentence, or an analysis that can be priced and whose bands add up to its totals.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const auto result = Importer::import(textOf(data, size), "report.xml", Base::Instant());
    if (const auto* const failure = std::get_if<ImportFailed>(&result)) {
        expect(!failure->message.empty(), "A failure has no sentence.");
        return 0;
    }
    const auto& analysis = std::get<Analysis>(result);
    expect(!analysis.rows.empty(), "An analysis has no rows.");
    for (const auto& note : analysis.notes)
        expect(!sentence(note).empty(), "A note has no sentence.");
    expect(static_cast<std::int64_t>(analysis.mismatches().size()) == analysis.mismatchCount(),
        "Failed sums are counted differently.");
    const auto price = JobPricing::price(std::span(&analysis, 1), std::nullopt, {}, { .rate = 1 });
    expect(price.units == sum(analysis.totals().words), "A price leaves words out.");
    return 0;
}
