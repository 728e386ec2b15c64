#include "PallisandeKit/Ledger/Find.h"
#include "PallisandeKit/Ledger/Ledger.h"
#include "TamberlinKit/Quotes/Money.h"

#include <fmt/format.h>

#include <algorithm>

namespace Pallisande::Ledger {

namespace {

void checkTerms(const Client& client)
{
    if (!Tamberlin::Money::isCurrencyCode(client.currency))
        throw LedgerError::invalid(fmt::format(
            "“{}” isn’t a currency code; use three capital letters such as EUR.", client.currency));
}

} // namespace

Client& addClient(Library& library, Client client)
{
    checkTerms(client);
    if (library.client(client.id))
        throw LedgerError::invalid("A client with this id is already there.");
    return library.clients.emplace_back(std::move(client));
}

void replaceClient(Library& library, Client client)
{
    checkTerms(client);
    if (auto* const old = library.client(client.id))
        *old = std::move(client);
}

void archiveClient(Library& library, const Base::Uuid& id, bool archived)
{
    required(library.client(id)).archived = archived;
}

void deleteClient(Library& library, const Base::Uuid& id)
{
    const auto& client = required(library.client(id));
    const auto isOfClient = [&](const auto& record) { return record.clientID == id; };
    if (std::any_of(library.jobs.begin(), library.jobs.end(), isOfClient)
        || std::any_of(library.invoices.begin(), library.invoices.end(), isOfClient))
        throw LedgerError::clientInUse(client.name);
    std::erase_if(library.clients, [&](const Client& candidate) { return candidate.id == id; });
    std::erase_if(library.counting.cardClients, [&](const auto& entry) { return entry.second == id; });
}

} // namespace Pallisande::Ledger
