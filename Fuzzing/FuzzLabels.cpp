#include "Fuzzing/Expect.h"
#include "PallisandeKit/Analyses/BandAliases.h"

using namespace Pallisande;

// A label or header of a report: what it means doesn't depend on how it is spelt, and aliases only add.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const auto text = textOf(data, size);
    const auto label = BandLabel::of(text);
    const auto normalized = BandLabel::normalized(text);
    expect(BandLabel::normalized(normalized) == normalized, "Normalizing twice changes a label.");
    expect(BandLabel::of(normalized) == label, "A normalized label means something else.");
    expect(label.kind == BandLabel::Kind::unknown || BandAliases::label(text) == label,
        "An alias replaces what is known.");
    const auto metric = BandLabel::metric(text);
    expect(metric == BandLabel::Metric::other || BandAliases::metric(text) == metric,
        "An alias replaces what is known.");
    expect(BandLabel::split(normalized).label == BandLabel::split(text).label,
        "A normalized header means something else.");
    BandAliases::split(text);
    return 0;
}
