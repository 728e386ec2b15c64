#pragma once

#include "PallisandeKit/Records/LedgerError.h"
#include "PallisandeKit/Records/Library.h"

// Records that an operation can't do without.
namespace Pallisande::Ledger {

template <typename Record> Record& required(Record* record)
{
    if (!record)
        throw LedgerError::notFound();
    return *record;
}

// The draft of that id; an issued document is locked.
template <typename AnyLibrary> auto& requiredDraft(AnyLibrary& library, const Base::Uuid& id)
{
    auto& invoice = required(library.invoice(id));
    if (invoice.isIssued())
        throw LedgerError::locked(*invoice.number);
    return invoice;
}

} // namespace Pallisande::Ledger
