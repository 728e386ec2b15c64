#include "PallisandeKit/Ledger/Find.h"
#include "PallisandeKit/Ledger/Ledger.h"
#include "PallisandeKit/Pricing/JobPricing.h"
#include "TamberlinKit/Quotes/Money.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace Pallisande::Ledger {

namespace {

using Base::Decimal;
using Tamberlin::DocumentLabels;

std::string nameOfInvoice(const Library& library, const Base::Uuid& id)
{
    const auto* const invoice = library.invoice(id);
    return invoice && invoice->number ? *invoice->number : "a draft invoice";
}

// Pair, counts, delivery day and reference, as far as there are any.
std::string detail(
    const Job& job, const JobPrice& price, const Base::Calendar& calendar, const DocumentLabels& labels)
{
    std::string text;
    const auto add = [&](const std::string& part) {
        if (!part.empty())
            text += (text.empty() ? "" : ", ") + part;
    };
    add(job.pair.text());
    if (price.units != 0)
        add(fmt::format("{} {}", labels.figure(price.units),
            price.unit == RateUnit::word ? labels.words : labels.characters));
    if (job.deliveredAt)
        add(Tamberlin::filled(labels.delivered, { { "date", labels.day(calendar.day(*job.deliveredAt)) } }));
    add(job.reference);
    return text;
}

// The lines of one job; they add up to its price before tax.
void addLines(std::vector<InvoiceLine>& lines, const Job& job, const JobPrice& price,
    const Base::Calendar& calendar, const DocumentLabels& labels)
{
    const auto add = [&](InvoiceLine line) {
        if (line.amount.isZero())
            return;
        line.id = Base::Uuid::random();
        line.jobID = job.id;
        lines.push_back(std::move(line));
    };
    const auto unit = price.unit == RateUnit::word ? labels.words : labels.characters;
    const std::string jobTitle(job.title.empty() ? labels.untitledJob : std::string_view(job.title));
    const auto jobDetail = detail(job, price, calendar, labels);
    const auto before = lines.size();
    add({ .title = jobTitle,
        .detail = jobDetail,
        .quantity = price.weightedUnits,
        .unit = std::string(unit),
        .unitPrice = price.rate,
        .amount = price.translation });
    add({ .title = fmt::format("{} {}%", labels.surcharge, labels.figure(price.surchargePercent)),
        .quantity = 1,
        .unitPrice = price.surcharge,
        .amount = price.surcharge });
    for (const auto& [extra, amount] : price.extras)
        add({ .title = extra.title,
            .quantity = extra.quantity,
            .unit = extra.unit,
            .unitPrice = extra.unitPrice,
            .amount = amount });
    add({ .title = std::string(labels.minimumFee),
        .quantity = 1,
        .unitPrice = price.minimumAdjustment,
        .amount = price.minimumAdjustment });
    // A job without a translation line is named by the first line that it has.
    if (lines.size() > before && lines[before].title != jobTitle)
        lines[before].detail = jobTitle + (jobDetail.empty() ? "" : ", " + jobDetail);
}

PartySnapshot snapshot(const Client& client)
{
    return { client.name, client.contact, client.address, client.email, client.taxID };
}

// The jobs in the order given, each once; all free and of one client.
std::vector<Job*> freeJobs(Library& library, std::span<const Base::Uuid> ids)
{
    if (ids.empty())
        throw LedgerError::invalid("Choose at least one job for the invoice.");
    std::vector<Job*> jobs;
    for (const auto& id : ids) {
        auto& job = required(library.job(id));
        if (job.invoiceID)
            throw LedgerError::jobOnInvoice(nameOfInvoice(library, *job.invoiceID));
        if (job.clientID != required(library.job(ids.front())).clientID)
            throw LedgerError::mixedClients();
        if (std::find(jobs.begin(), jobs.end(), &job) == jobs.end())
            jobs.push_back(&job);
    }
    return jobs;
}

std::set<Base::Uuid> jobsOf(const std::vector<InvoiceLine>& lines)
{
    std::set<Base::Uuid> ids;
    for (const auto& line : lines) {
        if (line.jobID)
            ids.insert(*line.jobID);
    }
    return ids;
}

// Jobs that an edited draft takes on must be free and of its client.
void checkJobs(const Library& library, const Invoice& draft, const std::set<Base::Uuid>& ids)
{
    for (const auto& id : ids) {
        const auto& job = required(library.job(id));
        if (job.clientID != draft.clientID)
            throw LedgerError::mixedClients();
        if (job.invoiceID && *job.invoiceID != draft.id)
            throw LedgerError::jobOnInvoice(nameOfInvoice(library, *job.invoiceID));
    }
}

} // namespace

Invoice& draftInvoice(Library& library, std::span<const Base::Uuid> jobIDs, const Base::Moment& moment,
    const DocumentLabels& labels)
{
    const auto jobs = freeJobs(library, jobIDs);
    const auto& client = required(library.client(jobs.front()->clientID));

    Invoice draft {
        .id = Base::Uuid::random(),
        .kind = DocumentKind::invoice,
        .clientID = client.id,
        .client = snapshot(client),
        .currency = client.currency,
        .taxPercent = client.taxPercent,
        .taxLabel = client.taxLabel,
        .taxNote = client.taxNote,
        .paymentTerms
        = client.paymentTerms.empty() ? library.profile.defaultPaymentTerms : client.paymentTerms,
        .created = moment.now,
    };
    for (const auto* job : jobs)
        addLines(draft.lines, *job, JobPricing::price(*job, client), moment.calendar, labels);

    auto& added = library.invoices.emplace_back(std::move(draft));
    for (auto* job : jobs) {
        job->invoiceID = added.id;
        job->modified = moment.now;
    }
    return added;
}

void editDraft(Library& library, const Invoice& edited, Base::Instant now)
{
    auto& draft = requiredDraft(library, edited.id);
    if (edited.number || edited.issuedAt)
        throw LedgerError::notDraft();
    if (edited.kind != draft.kind || edited.clientID != draft.clientID || edited.currency != draft.currency)
        throw LedgerError::invalid("A draft keeps its kind, its client and its currency.");
    const auto before = jobsOf(draft.lines), after = jobsOf(edited.lines);
    if (draft.kind == DocumentKind::invoice)
        checkJobs(library, draft, after);

    auto changed = draft;
    changed.lines = edited.lines;
    changed.issueDate = edited.issueDate;
    changed.dueDate = edited.dueDate;
    changed.taxPercent = edited.taxPercent;
    changed.taxLabel = edited.taxLabel;
    changed.taxNote = edited.taxNote;
    changed.paymentTerms = edited.paymentTerms;
    changed.notes = edited.notes;
    changed.client = edited.client;
    draft = std::move(changed);
    if (draft.kind != DocumentKind::invoice)
        return;
    const auto change = [&](const Base::Uuid& id, std::optional<Base::Uuid> invoiceID) {
        auto* const job = library.job(id);
        if (!job || job->invoiceID == invoiceID)
            return;
        job->invoiceID = invoiceID;
        job->modified = now;
    };
    for (const auto& id : before) {
        if (!after.contains(id))
            change(id, std::nullopt);
    }
    for (const auto& id : after)
        change(id, draft.id);
}

void deleteDraft(Library& library, const Base::Uuid& id, Base::Instant now)
{
    requiredDraft(library, id);
    for (auto& job : library.jobs) {
        if (job.invoiceID == id) {
            job.invoiceID.reset();
            job.modified = now;
        }
    }
    std::erase_if(library.invoices, [&](const Invoice& invoice) { return invoice.id == id; });
}

} // namespace Pallisande::Ledger
