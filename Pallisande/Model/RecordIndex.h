#pragma once

#include "Pallisande/Model/LibraryChanges.h"
#include "PallisandeKit/Ledger/Ledger.h"
#include "PallisandeKit/Records/Library.h"

#include <cstddef>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace Pallisande {

// Finds records by their ids, and keeps what is worked out from them until they change, so that lists of
// 20,000 rows are filtered and sorted without working it out again.
class RecordIndex {
public:
    struct JobFigures {
        Base::Decimal net; // Before tax, minimum fee included; once an invoice is issued, as it was billed.
        std::string currency;
        std::optional<std::string> invoice; // The number of that invoice.
        bool hasPrice = false; // Something to bill at all.
        bool hasProblems = false;
    };

    void forget(); // Another library.
    void update(const LibraryChanges& changes, const Library& library);

    const Client* client(const Library& library, const Base::Uuid& id) const;
    const Job* job(const Library& library, const Base::Uuid& id) const;
    const Invoice* invoice(const Library& library, const Base::Uuid& id) const;

    const std::string& searchText(const Client& client) const;
    const std::string& searchText(const Job& job) const; // Without its client.
    const std::string& searchText(const Invoice& invoice) const;
    const JobFigures& figures(const Library& library, const Job& job) const;
    Base::Decimal credited(const Library& library, const Base::Uuid& invoiceID) const;

private:
    using Places = std::unordered_map<Base::Uuid, std::size_t>;

    template <typename Records>
    static auto* find(Places& places, const Records& records, const Base::Uuid& id);

    mutable Places m_clients, m_jobs, m_invoices;
    mutable std::unordered_map<Base::Uuid, std::string> m_texts;
    mutable std::unordered_map<Base::Uuid, JobFigures> m_figures;
    mutable std::optional<Ledger::CreditedAmounts> m_credited;
};

} // namespace Pallisande
