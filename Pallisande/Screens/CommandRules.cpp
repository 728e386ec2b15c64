#include "Pallisande/Screens/CommandRules.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/ClientSection.h"
#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Model/JobSection.h"
#include "PallisandeKit/Records/LedgerError.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace Pallisande {

namespace {

using Why = std::optional<std::string>;
using IDs = std::span<const Base::Uuid>;

enum class Need { nothing, library, editing };

Need needOf(Command command)
{
    switch (command) {
    case Command::newJob:
    case Command::newClient:
    case Command::importAnalysis:
    case Command::typeCounts:
    case Command::countDocuments:
    case Command::undo:
    case Command::redo:
    case Command::remove:
    case Command::statusQuote:
    case Command::statusInProgress:
    case Command::statusDelivered:
    case Command::statusCancelled:
    case Command::markDelivered:
    case Command::addExtraLine:
    case Command::countTranslation:
    case Command::giveQuoteNumber:
    case Command::makeInvoice:
    case Command::duplicateJob:
    case Command::deleteJob:
    case Command::archiveClient:
    case Command::deleteClient:
    case Command::addInvoiceLine:
    case Command::issue:
    case Command::recordPayment:
    case Command::payInFull:
    case Command::makeCreditNote:
    case Command::addExchangeRate:
    case Command::deleteDraft:
        return Need::editing;
    case Command::backUpNow:
    case Command::showLibraryFolder:
    case Command::checkNumbering:
        return Need::library;
    default:
        return Need::nothing;
    }
}

Why lacking(AppModel& model, Need need)
{
    const bool isThere
        = need == Need::nothing || (need == Need::editing ? model.canEdit() : model.hasLibrary());
    if (isThere)
        return std::nullopt;
    return model.isOpening() ? "The library is still being opened." : model.readOnlyText();
}

// The records of a kind that a command is about: only in the section that shows them.
template <typename Record> struct Chosen {
    std::vector<const Record*> records;
    Why why;
};

template <typename Record>
Chosen<Record> chosen(
    AppModel& model, const Record* (AppModel::*find)(const Base::Uuid&) const, bool areShown, IDs ids)
{
    Chosen<Record> chosen;
    for (const auto& id : ids) {
        if (const auto* const record = areShown ? (model.*find)(id) : nullptr)
            chosen.records.push_back(record);
    }
    return chosen;
}

Chosen<Job> chosenJobs(AppModel& model, IDs ids)
{
    const bool areShown = model.section() == AppSection::jobs || model.section() == AppSection::deadlines;
    auto jobs = chosen(model, &AppModel::job, areShown, ids);
    if (jobs.records.empty())
        jobs.why = "Select a job first.";
    return jobs;
}

Chosen<Invoice> chosenInvoices(AppModel& model, IDs ids)
{
    auto invoices = chosen(model, &AppModel::invoice, model.section() == AppSection::invoices, ids);
    if (invoices.records.empty())
        invoices.why = "Select an invoice first.";
    return invoices;
}

Why whyNotStatus(AppModel& model, IDs ids, JobStatus to)
{
    const auto chosen = chosenJobs(model, ids);
    if (chosen.why)
        return chosen.why;
    std::set<JobStatus> asked; // Jobs of one status get one answer.
    for (const auto* job : chosen.records) {
        if (job->status == to)
            continue;
        if (asked.insert(job->status).second && !model.jobs().mayHaveStatus(job->id, to))
            return LedgerError::invalidStatus(job->status, to).what();
        if (auto lock = model.jobs().lockText(*job))
            return lock;
    }
    return std::nullopt;
}

Why whyNotInvoice(AppModel& model, const Chosen<Job>& chosen)
{
    for (const auto* job : chosen.records) {
        if (auto lock = model.jobs().lockText(*job))
            return lock;
        if (job->status == JobStatus::cancelled)
            return "A cancelled job isn’t invoiced.";
        if (job->clientID != chosen.records.front()->clientID)
            return LedgerError::mixedClients().what();
    }
    return std::nullopt;
}

Why whyNotJob(AppModel& model, Command command, IDs ids)
{
    const auto chosen = chosenJobs(model, ids);
    if (chosen.why)
        return chosen.why;
    if (command == Command::makeInvoice)
        return whyNotInvoice(model, chosen);
    if (command == Command::deleteJob) {
        for (const auto* job : chosen.records) {
            if (auto lock = model.jobs().lockText(*job))
                return lock;
        }
        return std::nullopt;
    }
    if (chosen.records.size() > 1)
        return "Select one job alone.";
    const auto& job = *chosen.records.front();
    switch (command) {
    case Command::importAnalysis:
    case Command::typeCounts:
    case Command::addExtraLine:
    case Command::countTranslation:
        return model.jobs().lockText(job);
    case Command::giveQuoteNumber:
        if (job.quoteNumber)
            return fmt::format("This job’s quote has the number {}.", *job.quoteNumber);
        return std::nullopt;
    default:
        return std::nullopt;
    }
}

Why whyNotClient(AppModel& model, IDs ids)
{
    const bool isThere = model.section() == AppSection::clients && !ids.empty() && model.client(ids.front());
    return isThere ? std::nullopt : Why("Select a client first.");
}

Why whyNotDraft(const Invoice& invoice)
{
    return invoice.isIssued() ? Why(LedgerError::locked(invoice.number.value_or("")).what()) : std::nullopt;
}

Why whyNotPayment(AppModel& model, const Invoice& invoice, bool isInFull)
{
    if (!invoice.isIssued() || invoice.kind != DocumentKind::invoice)
        return LedgerError::paymentOnDraft().what();
    if (isInFull && model.invoices().stillDue(invoice).isZero())
        return fmt::format("Nothing is due on {}.", invoice.number.value_or(""));
    return std::nullopt;
}

Why whyNotInvoiceCommand(AppModel& model, Command command, IDs ids)
{
    const auto chosen = chosenInvoices(model, ids);
    if (chosen.why)
        return chosen.why;
    if (command == Command::payInFull) {
        for (const auto* invoice : chosen.records) {
            if (auto why = whyNotPayment(model, *invoice, true))
                return why;
        }
        return std::nullopt;
    }
    if (chosen.records.size() > 1)
        return "Select one invoice alone.";
    const auto& invoice = *chosen.records.front();
    const bool isInvoice = invoice.kind == DocumentKind::invoice && invoice.isIssued();
    switch (command) {
    case Command::addInvoiceLine:
    case Command::deleteDraft:
    case Command::savePDF:
    case Command::saveDraftPDF:
        return whyNotDraft(invoice);
    case Command::issue:
        if (model.folderWasNotFound())
            return "Confirm the library folder in use first: documents are issued into it for good.";
        return whyNotDraft(invoice);
    case Command::recordPayment:
        return whyNotPayment(model, invoice, false);
    case Command::copyReminder:
        return whyNotPayment(model, invoice, true);
    case Command::makeCreditNote:
        return isInvoice ? std::nullopt : Why("Credit notes are made for issued invoices.");
    case Command::addExchangeRate:
        if (invoice.isIssued() && invoice.currency == invoice.homeCurrency)
            return "This document is in your own currency.";
        if (invoice.isIssued() && invoice.homeRate)
            return "This document has its exchange rate.";
        [[fallthrough]];
    case Command::openStoredPDF:
    case Command::showStoredPDF:
    case Command::copyNumber:
        return invoice.isIssued() ? std::nullopt : Why("A draft has no number and no stored PDF yet.");
    case Command::emailClient:
        if (!invoice.isIssued())
            return "A draft has no number and no stored PDF yet.";
        return invoice.client.email.empty()
            ? Why(fmt::format("There’s no email address for {}.", invoice.client.name))
            : std::nullopt;
    default:
        return std::nullopt;
    }
}

} // namespace

Command deletionIn(AppSection section)
{
    switch (section) {
    case AppSection::clients:
        return Command::deleteClient;
    case AppSection::invoices:
        return Command::deleteDraft;
    case AppSection::deadlines:
    case AppSection::jobs:
        break;
    }
    return Command::deleteJob;
}

std::optional<std::string> whyNot(AppModel& model, Command command, std::span<const Base::Uuid> selected)
{
    if (auto why = lacking(model, needOf(command)))
        return why;
    switch (command) {
    case Command::remove:
        return whyNot(model, deletionIn(model.section()), selected);
    case Command::copyRows:
        return selected.empty() ? Why("Select rows first.") : std::nullopt;
    case Command::undo:
        return model.undoName() ? std::nullopt : Why("There is nothing to undo.");
    case Command::redo:
        return model.redoName() ? std::nullopt : Why("There is nothing to redo.");
    case Command::find:
        return model.section() == AppSection::deadlines ? Why("The deadlines have no search.") : std::nullopt;
    case Command::backUpNow: {
        const auto reason = model.readOnly();
        const bool isWorthIt = reason != ReadOnlyReason::newerVersion && reason != ReadOnlyReason::unreadable
            && reason != ReadOnlyReason::missingFile;
        return isWorthIt ? std::nullopt : Why(model.readOnlyText());
    }
    case Command::statusQuote:
        return whyNotStatus(model, selected, JobStatus::quote);
    case Command::statusInProgress:
        return whyNotStatus(model, selected, JobStatus::inProgress);
    case Command::statusCancelled:
        return whyNotStatus(model, selected, JobStatus::cancelled);
    case Command::markDelivered: {
        const auto chosen = chosenJobs(model, selected);
        const auto isDelivered = [](const Job* job) { return job->status == JobStatus::delivered; };
        if (!chosen.why && std::all_of(chosen.records.begin(), chosen.records.end(), isDelivered))
            return "This job is delivered already.";
        [[fallthrough]];
    }
    case Command::statusDelivered:
        return whyNotStatus(model, selected, JobStatus::delivered);
    case Command::statusInvoiced:
    case Command::statusPaid: {
        const auto why = chosenJobs(model, selected).why;
        return why ? why : Why("Reached through invoices and payments.");
    }
    case Command::importAnalysis:
    case Command::typeCounts:
    case Command::addExtraLine:
    case Command::countTranslation:
    case Command::giveQuoteNumber:
    case Command::makeInvoice:
    case Command::duplicateJob:
    case Command::deleteJob:
        return whyNotJob(model, command, selected);
    case Command::openClient:
        return model.section() == AppSection::invoices ? whyNotInvoiceCommand(model, command, selected)
                                                       : whyNotJob(model, command, selected);
    case Command::archiveClient:
    case Command::deleteClient:
        return whyNotClient(model, selected);
    case Command::savePDF:
    case Command::openStoredPDF:
    case Command::addInvoiceLine:
    case Command::issue:
    case Command::recordPayment:
    case Command::payInFull:
    case Command::makeCreditNote:
    case Command::addExchangeRate:
    case Command::showStoredPDF:
    case Command::saveDraftPDF:
    case Command::emailClient:
    case Command::copyNumber:
    case Command::copyTotal:
    case Command::copyReminder:
    case Command::deleteDraft:
        return whyNotInvoiceCommand(model, command, selected);
    case Command::goBack:
        return model.canGoBack() ? std::nullopt : Why("There is nothing to go back to.");
    case Command::goForward:
        return model.canGoForward() ? std::nullopt : Why("There is nothing to go forward to.");
    case Command::showArchived:
        return model.clients().archivedCount() > 0 || model.clients().showsArchived()
            ? std::nullopt
            : Why("No client is archived.");
    case Command::inspector: {
        const bool hasOne
            = model.section() == AppSection::deadlines || model.section() == AppSection::invoices;
        return hasOne ? std::nullopt : Why("There is nothing to show beside this section.");
    }
    default:
        return std::nullopt;
    }
}

} // namespace Pallisande
