#include "PallisandeKit/Ledger/Find.h"
#include "PallisandeKit/Ledger/Ledger.h"

#include <algorithm>

namespace Pallisande::Ledger {

namespace {

bool mayBeSetByHand(JobStatus from, JobStatus to)
{
    const auto isOneOf = [to](std::initializer_list<JobStatus> targets) {
        return std::find(targets.begin(), targets.end(), to) != targets.end();
    };
    switch (from) {
    case JobStatus::quote:
        return isOneOf({ JobStatus::inProgress, JobStatus::cancelled });
    case JobStatus::inProgress:
        return isOneOf({ JobStatus::delivered, JobStatus::quote, JobStatus::cancelled });
    case JobStatus::delivered:
        return isOneOf({ JobStatus::inProgress, JobStatus::cancelled });
    case JobStatus::cancelled:
        return isOneOf({ JobStatus::quote, JobStatus::inProgress });
    case JobStatus::invoiced: // Left only through a credit note or the removal of a payment.
    case JobStatus::paid:
        break;
    }
    return false;
}

} // namespace

Job& addJob(Library& library, Job job)
{
    required(library.client(job.clientID));
    if (library.job(job.id))
        throw LedgerError::invalid("A job with this id is already there.");
    if (job.status == JobStatus::invoiced || job.status == JobStatus::paid)
        throw LedgerError::invalidStatus(JobStatus::quote, job.status);
    if (job.invoiceID || job.quoteNumber)
        throw LedgerError::invalid("A new job has neither an invoice nor a quote number yet.");
    return library.jobs.emplace_back(std::move(job));
}

void replaceJob(Library& library, Job job, Base::Instant now)
{
    auto* const old = library.job(job.id);
    if (!old)
        return;
    required(library.client(job.clientID));
    if (old->invoiceID && job.clientID != old->clientID)
        throw LedgerError::mixedClients();
    job.status = old->status;
    job.invoiceID = old->invoiceID;
    job.quoteNumber = old->quoteNumber;
    job.created = old->created;
    job.modified = now;
    *old = std::move(job);
}

void deleteJob(Library& library, const Base::Uuid& id)
{
    const auto& job = required(library.job(id));
    if (job.invoiceID) {
        const auto* const invoice = library.invoice(*job.invoiceID);
        throw LedgerError::jobOnInvoice(invoice && invoice->number ? *invoice->number : "a draft invoice");
    }
    std::erase_if(library.jobs, [&](const Job& candidate) { return candidate.id == id; });
}

void setStatus(Library& library, const Base::Uuid& jobID, JobStatus to, Base::Instant now)
{
    auto& job = required(library.job(jobID));
    if (job.status != to) {
        if (!mayBeSetByHand(job.status, to))
            throw LedgerError::invalidStatus(job.status, to);
        job.status = to;
        if (to == JobStatus::delivered && !job.deliveredAt) // A job delivered again keeps its first delivery.
            job.deliveredAt = now;
    }
    job.modified = now;
}

void attachAnalysis(Library& library, const Base::Uuid& jobID, Analysis analysis, Base::Instant now)
{
    auto& job = required(library.job(jobID));
    CountBound bound; // What fits alone may be too much beside what is there already.
    for (const auto& other : library.jobs) {
        for (const auto& attached : other.analyses)
            bound.admits(attached);
    }
    if (!bound.admits(analysis))
        throw LedgerError::invalid("With this analysis the library’s counts would be too large to be right.");
    job.analyses.push_back(std::move(analysis));
    job.modified = now;
}

std::string giveQuoteNumber(Library& library, const Base::Uuid& jobID, const Base::Moment& moment)
{
    auto& job = required(library.job(jobID));
    if (!job.quoteNumber) {
        auto series = library.profile.quoteSeries;
        const auto number = series.issue(moment.calendar.day(moment.now).year).number;
        for (const auto& other : library.jobs) {
            if (other.quoteNumber == number)
                throw LedgerError::numberTaken(number);
        }
        job.quoteNumber = number;
        library.profile.quoteSeries = std::move(series);
        job.modified = moment.now;
    }
    return *job.quoteNumber;
}

} // namespace Pallisande::Ledger
