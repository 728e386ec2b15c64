#include "PallisandeKit/Records/LedgerError.h"

#include <fmt/format.h>

namespace Pallisande {

LedgerError LedgerError::locked(std::string_view number)
{
    return { Case::locked,
        fmt::format("{} is issued and can’t be changed. Make a credit note to correct it.", number) };
}

LedgerError LedgerError::jobOnInvoice(std::string_view number)
{
    return { Case::jobOnInvoice, fmt::format("This job is on {}.", number) };
}

LedgerError LedgerError::clientInUse(std::string_view name)
{
    return { Case::clientInUse, fmt::format("{} has jobs or invoices. Archive the client instead.", name) };
}

LedgerError LedgerError::numberTaken(std::string_view number)
{
    return { Case::numberTaken, fmt::format("The number {} is already used.", number) };
}

LedgerError LedgerError::invalidStatus(JobStatus from, JobStatus to)
{
    return { Case::invalidStatus,
        fmt::format("A job can’t go from {} to {} by hand.", title(from), title(to)) };
}

LedgerError LedgerError::alreadyCredited(std::string_view number)
{
    return { Case::alreadyCredited, fmt::format("{} is already fully credited.", number) };
}

LedgerError LedgerError::creditAboveRest(std::string_view number)
{
    return { Case::invalid, fmt::format("The credit note is for more than is left on {}.", number) };
}

LedgerError LedgerError::creditDraftOpen(std::string_view number)
{
    return { Case::invalid, fmt::format("A draft credit note for {} is already open.", number) };
}

} // namespace Pallisande
