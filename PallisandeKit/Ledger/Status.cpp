#include "PallisandeKit/Ledger/Ledger.h"

#include <algorithm>

namespace Pallisande::Ledger {

namespace {

bool isIssuedCredit(const Invoice& invoice)
{
    return invoice.kind == DocumentKind::creditNote && invoice.isIssued() && invoice.creditsInvoiceID;
}

} // namespace

CreditedAmounts::CreditedAmounts(const Library& library)
{
    for (const auto& invoice : library.invoices) {
        if (isIssuedCredit(invoice))
            m_amounts[*invoice.creditsInvoiceID] -= invoice.total();
    }
}

Base::Decimal CreditedAmounts::of(const Base::Uuid& invoiceID) const
{
    const auto found = m_amounts.find(invoiceID);
    return found == m_amounts.end() ? Base::Decimal() : found->second;
}

Base::Decimal credited(const Library& library, const Base::Uuid& invoiceID)
{
    Base::Decimal amount;
    for (const auto& invoice : library.invoices) {
        if (isIssuedCredit(invoice) && *invoice.creditsInvoiceID == invoiceID)
            amount -= invoice.total();
    }
    return amount;
}

InvoiceStatus status(const Invoice& invoice, const Base::Decimal& credited, Base::Instant today,
    const Base::Calendar& calendar)
{
    if (!invoice.isIssued())
        return InvoiceStatus::draft;
    if (invoice.kind == DocumentKind::creditNote)
        return InvoiceStatus::creditNote;
    const Base::Decimal zero;
    const auto left = invoice.total() - credited;
    const auto paid = invoice.paid();
    if (left <= zero) // An invoice of 0 counts as credited from the start.
        return InvoiceStatus::credited;
    if (left - paid <= zero)
        return InvoiceStatus::paid;
    if (invoice.dueDate && calendar.day(today) > calendar.day(*invoice.dueDate))
        return InvoiceStatus::overdue;
    return paid > zero ? InvoiceStatus::partlyPaid : InvoiceStatus::open;
}

InvoiceStatus status(const Library& library, const Invoice& invoice, const Base::Moment& moment)
{
    return status(invoice, credited(library, invoice.id), moment.now, moment.calendar);
}

Base::Decimal stillDue(const Invoice& invoice, const Base::Decimal& credited)
{
    return std::max(Base::Decimal(), invoice.total() - credited - invoice.paid());
}

std::vector<JobChange> settledJobs(
    const Library& library, const Invoice& invoice, const Base::Decimal& credited, const Base::Moment& moment)
{
    std::vector<JobChange> changes;
    // Jobs are freed by a credit note only: an invoice of 0 that nobody credited keeps its jobs.
    const bool isCredited = credited > Base::Decimal() && credited >= invoice.total();
    const auto now = status(invoice, credited, moment.now, moment.calendar);
    for (const auto& job : library.jobs) {
        if (job.invoiceID != invoice.id)
            continue;
        JobChange change { job.id, JobStatus::invoiced, invoice.id, moment.now };
        if (isCredited) {
            change.status = JobStatus::delivered;
            change.invoiceID.reset();
        } else if (now == InvoiceStatus::paid) {
            change.status = JobStatus::paid;
        }
        if (change.status != job.status || change.invoiceID != job.invoiceID)
            changes.push_back(change);
    }
    return changes;
}

void changeJobs(Library& library, const std::vector<JobChange>& changes)
{
    for (const auto& change : changes) {
        if (auto* const job = library.job(change.id)) {
            job->status = change.status;
            job->invoiceID = change.invoiceID;
            job->modified = change.modified;
        }
    }
}

} // namespace Pallisande::Ledger
