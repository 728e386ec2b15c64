#include "Fuzzing/Expect.h"
#include "PallisandeKit/Rates/ECBFeed.h"

using namespace Pallisande;

// A file of reference rates: a sentence, or days whose cross rates can be asked for.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    static const Base::Moment moment { Base::Instant::parse("2026-03-09T14:05:31.250Z").value(),
        Base::Calendar::named("Europe/Berlin").value() };
    try {
        RateBook book;
        const auto days = ECBFeed::parse(textOf(data, size), moment.calendar);
        book.merge(days, moment);
        for (const auto& day : days) {
            for (const auto& [currency, perEuro] : day.perEuro) {
                book.rate(currency, "USD", day.date, moment);
                book.rate("USD", currency, day.date, moment);
            }
        }
    } catch (const ECBError& error) {
        expect(*error.what() != 0, "A refusal has no sentence.");
    }
    return 0;
}
