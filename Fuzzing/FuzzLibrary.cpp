#include "Base/Json.h"
#include "Fuzzing/Expect.h"
#include "PallisandeKit/Documents/InvoiceDocument.h"
#include "PallisandeKit/Ledger/Deadlines.h"
#include "PallisandeKit/Ledger/Ledger.h"
#include "PallisandeKit/Library/LibraryStore.h"
#include "PallisandeKit/Pricing/JobPricing.h"

using namespace Pallisande;

namespace {

// Everything that a window shows of a library without being asked.
void look(const Library& library, const Base::Moment& moment)
{
    for (const auto& job : library.jobs) {
        if (const auto* const client = library.client(job.clientID)) {
            for (const auto& problem : JobPricing::price(job, *client).problems)
                expect(!problem.sentence().empty(), "A problem has no sentence.");
        }
        for (const auto& analysis : job.analyses) {
            for (const auto& mismatch : analysis.mismatches())
                expect(!mismatch.sentence().empty(), "A mismatch has no sentence.");
        }
    }
    const Ledger::CreditedAmounts credited(library);
    for (const auto& invoice : library.invoices) {
        Ledger::status(invoice, credited.of(invoice.id), moment.now, moment.calendar);
        invoiceDocument(library, invoice, "en", moment.calendar);
    }
    Ledger::checkNumbering(library);
    Deadlines::board(library, moment);
}

} // namespace

// A library's document: it is refused with a reason, or read, shown and written back the same.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    static const Base::Moment moment { Base::Instant::parse("2026-03-09T14:05:31.250Z").value(),
        Base::Calendar::named("Europe/Berlin").value() };
    try {
        const auto library = LibraryStore::decode(textOf(data, size), moment);
        const auto document = LibraryStore::encode(library);
        const auto again = LibraryStore::decode(document, moment);
        expect(again == library, "A library isn't read back as it was.");
        expect(LibraryStore::encode(again) == document, "A library isn't written as it was.");
        look(library, moment);
    } catch (const Base::DecodingError& error) {
        expect(*error.what() != 0, "A refusal has no reason.");
    } catch (const LibraryStoreError&) {
    }
    return 0;
}
