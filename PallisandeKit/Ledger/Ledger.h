#pragma once

#include "Base/Calendar.h"
#include "PallisandeKit/Records/LedgerError.h"
#include "PallisandeKit/Records/Library.h"
#include "TamberlinKit/Quotes/DocumentLabels.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

// What is done with clients, jobs, invoices and payments. Every operation checks first and changes
// afterwards: one that throws LedgerError has left the library as it was.
namespace Pallisande::Ledger {

// --- Clients and jobs

Client& addClient(Library& library, Client client);
// Puts the record in the place of the one with its id; an id that isn't there changes nothing.
void replaceClient(Library& library, Client client);
void archiveClient(Library& library, const Base::Uuid& id, bool archived);
void deleteClient(Library& library, const Base::Uuid& id); // Refused while it has jobs or invoices.

Job& addJob(Library& library, Job job);
// As above. What only other operations change stays: status, invoice, quote number and creation.
void replaceJob(Library& library, Job job, Base::Instant now);
void deleteJob(Library& library, const Base::Uuid& id); // Refused while it is on a draft or an invoice.
void setStatus(Library& library, const Base::Uuid& jobID, JobStatus to, Base::Instant now);
void attachAnalysis(Library& library, const Base::Uuid& jobID, Analysis analysis, Base::Instant now);
// Gives the job's quote the next number of the quote series, once; afterwards it is that number again.
std::string giveQuoteNumber(Library& library, const Base::Uuid& jobID, const Base::Moment& moment);

// --- Drafts

// A draft of jobs of one client, at their prices of this moment.
Invoice& draftInvoice(Library& library, std::span<const Base::Uuid> jobIDs, const Base::Moment& moment,
    const Tamberlin::DocumentLabels& labels);
// Takes over what may be edited on a draft: lines, days, tax, terms, notes and the client's details as
// printed. Jobs that no line names any more are free again.
void editDraft(Library& library, const Invoice& edited, Base::Instant now);
// Its jobs are free again and keep their status.
void deleteDraft(Library& library, const Base::Uuid& id, Base::Instant now);

// --- Issuing

// A change of a job that goes with an issued document.
struct JobChange {
    Base::Uuid id;
    JobStatus status = JobStatus::invoiced;
    std::optional<Base::Uuid> invoiceID;
    Base::Instant modified;

    bool operator==(const JobChange&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("id", &JobChange::id, Base::Missing::fails),
            Base::field("status", &JobChange::status, Base::Missing::fails),
            Base::field("invoiceID", &JobChange::invoiceID),
            Base::field("modified", &JobChange::modified, Base::Missing::fails),
        };
    }
};
static_assert(Base::listsEveryMember<JobChange>);

// All that issuing a document changes, worked out before anything is changed.
struct IssuePlan {
    Invoice document; // As issued.
    std::vector<JobChange> jobs;
    std::int64_t seriesKey = 0; // Where the series of its kind counts it, and on to which value.
    std::int64_t seriesNext = 0;

    bool operator==(const IssuePlan&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("document", &IssuePlan::document, Base::Missing::fails),
            Base::field("jobs", &IssuePlan::jobs, Base::Missing::fails),
            Base::field("seriesKey", &IssuePlan::seriesKey, Base::Missing::fails),
            Base::field("seriesNext", &IssuePlan::seriesNext, Base::Missing::fails),
        };
    }
};
static_assert(Base::listsEveryMember<IssuePlan>);

// Under which relative path the PDF of a document with that number is stored.
std::string pdfPath(const std::string& number);

// The draft as it would be issued on `issueDate` (absent: the draft's own, else today), or a refusal.
IssuePlan planIssue(const Library& library, const Base::Uuid& draftID, std::optional<Base::Instant> issueDate,
    const Base::Moment& moment);
// Puts the issued document in the draft's place (or adds it, when the library has lost it), moves the counter
// and changes the jobs.
void carryOut(Library& library, const IssuePlan& plan);

// --- Credit notes

// A draft for what is left to credit on an issued invoice.
Invoice& makeCreditNote(Library& library, const Base::Uuid& invoiceID, const Base::Moment& moment,
    const Tamberlin::DocumentLabels& labels);

// --- Payments and rates

// Records money on an issued invoice; without a rate of its own it takes the rate book's for its day.
Payment& addPayment(
    Library& library, const Base::Uuid& invoiceID, Payment payment, const Base::Moment& moment);
void editPayment(Library& library, const Base::Uuid& invoiceID, Payment payment, const Base::Moment& moment);
void removePayment(
    Library& library, const Base::Uuid& invoiceID, const Base::Uuid& paymentID, const Base::Moment& moment);
// The home rate of an issued document that had none when it was issued.
void setHomeRate(Library& library, const Base::Uuid& invoiceID, ExchangeRate rate);
ExchangeRate& addTypedRate(Library& library, ExchangeRate rate);

// --- Series

enum class Series { invoices, creditNotes, quotes };
constexpr std::array<std::string_view, 3> caseNames(Series)
{
    return { "invoices", "creditNotes", "quotes" };
}

NumberSeries& series(Profile& profile, Series which);
const NumberSeries& series(const Profile& profile, Series which);
// Sets the first number of a series (in `year`, where it counts by years). Once numbers were issued, only the
// one after the last of them can be set, which brings a series back that was changed from or to counting by
// years.
void setNextNumber(Library& library, Series which, std::int64_t year, std::int64_t next);

// What is wrong with the numbers of issued documents, a line each; one line says so when nothing is.
std::vector<std::string> checkNumbering(const Library& library);

// --- Status

// The credited amount of every invoice, worked out in one pass over the documents.
class CreditedAmounts {
public:
    explicit CreditedAmounts(const Library& library);
    Base::Decimal of(const Base::Uuid& invoiceID) const;

private:
    std::unordered_map<Base::Uuid, Base::Decimal> m_amounts;
};

// What issued credit notes take off an invoice.
Base::Decimal credited(const Library& library, const Base::Uuid& invoiceID);
InvoiceStatus status(const Invoice& invoice, const Base::Decimal& credited, Base::Instant today,
    const Base::Calendar& calendar);
InvoiceStatus status(const Library& library, const Invoice& invoice, const Base::Moment& moment);
// What is still to be paid: total less payments and credits, never below zero.
Base::Decimal stillDue(const Invoice& invoice, const Base::Decimal& credited);

// How the jobs of an issued invoice stand after its payments and credit notes; only those that differ from
// now.
std::vector<JobChange> settledJobs(const Library& library, const Invoice& invoice,
    const Base::Decimal& credited, const Base::Moment& moment);
void changeJobs(Library& library, const std::vector<JobChange>& changes);

} // namespace Pallisande::Ledger
