#pragma once

#include "PallisandeKit/Rates/RateBook.h"
#include "PallisandeKit/Records/Client.h"
#include "PallisandeKit/Records/Invoice.h"
#include "PallisandeKit/Records/Job.h"
#include "PallisandeKit/Records/Profile.h"
#include "TamberlinKit/Counting/CountOptions.h"
#include "TamberlinKit/Quotes/RateCard.h"

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace Pallisande {

// The document counter's part of the library.
struct CountingSetup {
    Tamberlin::CountOptions options;
    std::vector<Tamberlin::RateCard> rateCards;
    std::optional<Base::Uuid> rateCardID; // The card in use.
    std::map<Base::Uuid, Base::Uuid> cardClients; // Which client a card belongs to.
    std::optional<Base::Instant> importedFromTamberlin; // When older settings were taken over.

    bool operator==(const CountingSetup&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("options", &CountingSetup::options),
            Base::field("rateCards", &CountingSetup::rateCards),
            Base::field("rateCardID", &CountingSetup::rateCardID),
            Base::field("cardClients", &CountingSetup::cardClients),
            Base::field("importedFromTamberlin", &CountingSetup::importedFromTamberlin),
        };
    }
};
static_assert(Base::listsEveryMember<CountingSetup>);

// All of the user's business data: one value, one document.
struct Library {
    static constexpr std::int64_t currentVersion = 1;

    std::int64_t version = currentVersion;
    Profile profile;
    std::vector<Client> clients; // Each list in the order in which its records were added.
    std::vector<Job> jobs;
    std::vector<Invoice> invoices; // Invoices and credit notes.
    RateBook rates;
    CountingSetup counting;

    // A new, empty library: as above, with one rate card.
    static Library makeNew();

    // Null when there is no such record.
    Client* client(const Base::Uuid& id);
    const Client* client(const Base::Uuid& id) const;
    Job* job(const Base::Uuid& id);
    const Job* job(const Base::Uuid& id) const;
    Invoice* invoice(const Base::Uuid& id);
    const Invoice* invoice(const Base::Uuid& id) const;

    bool holdsRecords() const { return !clients.empty() || !jobs.empty() || !invoices.empty(); }

    bool operator==(const Library&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("version", &Library::version),
            Base::field("profile", &Library::profile),
            Base::field("clients", &Library::clients),
            Base::field("jobs", &Library::jobs),
            Base::field("invoices", &Library::invoices),
            Base::field("rates", &Library::rates),
            Base::field("counting", &Library::counting),
        };
    }
};
static_assert(Base::listsEveryMember<Library>);

} // namespace Pallisande
