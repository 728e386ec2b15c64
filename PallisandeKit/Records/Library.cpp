#include "PallisandeKit/Records/Library.h"

#include <algorithm>

namespace Pallisande {

namespace {

template <typename Records> auto* find(Records& records, const Base::Uuid& id)
{
    const auto found
        = std::find_if(records.begin(), records.end(), [&](const auto& record) { return record.id == id; });
    return found == records.end() ? nullptr : &*found;
}

} // namespace

Library Library::makeNew()
{
    Library library;
    library.counting.rateCards.push_back({ .id = Base::Uuid::random() });
    return library;
}

Client* Library::client(const Base::Uuid& id) { return find(clients, id); }
const Client* Library::client(const Base::Uuid& id) const { return find(clients, id); }
Job* Library::job(const Base::Uuid& id) { return find(jobs, id); }
const Job* Library::job(const Base::Uuid& id) const { return find(jobs, id); }
Invoice* Library::invoice(const Base::Uuid& id) { return find(invoices, id); }
const Invoice* Library::invoice(const Base::Uuid& id) const { return find(invoices, id); }

} // namespace Pallisande
