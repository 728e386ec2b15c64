#pragma once

#include "PallisandeKit/Ledger/Ledger.h"
#include "PallisandeKit/Records/Library.h"

#include <string>
#include <vector>

namespace Pallisande {

// How much a library holds.
struct LibraryContents {
    std::size_t clients = 0, jobs = 0;
    std::size_t documents = 0; // Issued ones.
    std::string lastNumber; // Of the document that was issued last.

    static LibraryContents of(const Library& library);

    bool operator==(const LibraryContents&) const = default;
};

// What is different when one library stands in the place of another: the records that only one of them has,
// and those that are another in the other one. They point into the two libraries.
struct LibraryComparison {
    template <typename Record> struct Records {
        std::vector<const Record*> gone, added; // Only in the present one, only in the other.
        std::vector<const Record*> changed; // As the other has them.

        bool isEmpty() const { return gone.empty() && added.empty() && changed.empty(); }
    };
    struct PaymentOf {
        const Invoice* invoice = nullptr;
        const Payment* payment = nullptr;
    };
    struct Payments {
        std::vector<PaymentOf> gone, added, changed;

        bool isEmpty() const { return gone.empty() && added.empty() && changed.empty(); }
    };
    struct NextNumber {
        Ledger::Series series = Ledger::Series::invoices;
        std::string present, other;
    };

    Records<Client> clients;
    Records<Job> jobs; // When a job was last changed makes no difference.
    Records<Invoice> documents; // Without their payments, which stand for themselves.
    Payments payments;
    std::vector<NextNumber> nextNumbers; // Of every series.
    bool hasOtherProfile = false; // But for the next numbers.
    bool hasOtherRates = false, hasOtherCounting = false;

    bool isSame() const;
};

// The next numbers are those of documents dated in `year`.
LibraryComparison compare(const Library& present, const Library& other, std::int64_t year);

} // namespace Pallisande
