#include "Pallisande/Model/JobSection.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/Imports.h"
#include "Pallisande/Model/InvoiceSection.h"

#include <fmt/format.h>

#include <algorithm>

namespace Pallisande {

namespace {

std::vector<RecordID> records(std::span<const Base::Uuid> ids)
{
    std::vector<RecordID> records;
    for (const auto& id : ids)
        records.push_back({ RecordKind::job, id });
    return records;
}

// What an invoice was made from.
bool sameBill(const Job& left, const Job& right)
{
    return left.clientID == right.clientID && left.pair == right.pair && left.deliveredAt == right.deliveredAt
        && left.analyses == right.analyses && left.extras == right.extras
        && left.targetUnits == right.targetUnits && left.rateOverride == right.rateOverride
        && left.surchargePercent == right.surchargePercent;
}

void checkFigures(const Job& job)
{
    if (job.rateOverride && job.rateOverride->isNegative())
        throw LedgerError::invalid("A rate can’t be below zero.");
    if (job.targetUnits && *job.targetUnits < 0)
        throw LedgerError::invalid("Counts are whole numbers.");
}

// Nothing is counted twice under one id.
Job copyOf(const Job& job, Base::Instant now)
{
    auto copy = job;
    copy.id = Base::Uuid::random();
    copy.status = JobStatus::quote;
    copy.received = copy.created = copy.modified = now;
    copy.deadline.reset();
    copy.deliveredAt.reset();
    copy.targetUnits.reset();
    copy.invoiceID.reset();
    copy.quoteNumber.reset();
    for (auto& analysis : copy.analyses)
        analysis.id = Base::Uuid::random();
    for (auto& extra : copy.extras)
        extra.id = Base::Uuid::random();
    return copy;
}

} // namespace

void JobSection::openNewJob(const std::string& title, std::optional<std::filesystem::path> report)
{
    if (!m_model.requireEditing())
        return;
    if (m_model.library().clients.empty()) {
        m_model.refuse("Add a client first: a job belongs to a client, whose rates and weights price it.",
            Problem::Action::newClient);
        return;
    }
    m_model.openSheet(NewJobSheet { title, std::move(report) });
}

NewJob JobSection::proposal() const
{
    const auto& library = m_model.library();
    NewJob proposal;
    // The client on show, otherwise the last one.
    const bool isOnClients = m_model.section() == AppSection::clients;
    const auto shown = isOnClients ? m_model.selection(AppSection::clients) : std::nullopt;
    const auto* const wanted = shown ? m_model.client(*shown) : nullptr;
    const bool isWanted = wanted && !wanted->archived;
    for (auto job = library.jobs.rbegin(); job != library.jobs.rend(); ++job) {
        const auto* const client = m_model.client(job->clientID);
        if (isWanted ? client == wanted : client && !client->archived)
            return { .clientID = client->id, .pair = job->pair };
    }
    if (isWanted)
        return { .clientID = wanted->id };
    for (const auto& client : library.clients) {
        if (!client.archived)
            return { .clientID = client.id };
    }
    return proposal;
}

Job JobSection::made(const NewJob& entry) const
{
    const auto now = m_model.moment().now;
    return {
        .id = Base::Uuid::random(),
        .title = entry.title,
        .clientID = entry.clientID,
        .pair = entry.pair,
        .reference = entry.reference,
        .received = now,
        .deadline = entry.deadline,
        .created = now,
        .modified = now,
    };
}

bool JobSection::add(const NewJob& entry)
{
    const auto job = made(entry);
    if (!m_model.change({ .name = "Add Job" }, [&](Library& library) { Ledger::addJob(library, job); }))
        return false;
    std::optional<std::filesystem::path> report;
    if (m_model.sheet()) {
        if (const auto* const sheet = std::get_if<NewJobSheet>(&*m_model.sheet()))
            report = sheet->report;
    }
    m_model.closeSheet();
    m_model.show(AppSection::jobs, job.id);
    if (report)
        m_model.imports().read(job.id, { *report });
    return true;
}

bool JobSection::edit(const Base::Uuid& id, const std::string& name, const std::function<void(Job&)>& change)
{
    return m_model.change(
        { .name = name, .field = name, .touches = { { RecordKind::job, id } } }, [&](Library& library) {
            const auto* const job = m_model.job(id);
            if (!job)
                throw LedgerError::notFound();
            auto edited = *job;
            change(edited);
            checkFigures(edited);
            if (edited == *job)
                return;
            if (const auto lock = lockText(*job); lock && !sameBill(*job, edited))
                throw LedgerError::invalid(*lock);
            Ledger::replaceJob(library, std::move(edited), m_model.moment().now);
        });
}

// As a step of its own.
bool JobSection::editAlone(
    const Base::Uuid& id, const std::string& name, const std::function<void(Job&)>& change)
{
    m_model.endMerging();
    const bool isDone = edit(id, name, change);
    m_model.endMerging();
    return isDone;
}

bool JobSection::setStatus(std::span<const Base::Uuid> ids, JobStatus status)
{
    return m_model.change({ .name = "Change Status", .touches = records(ids) }, [&](Library& library) {
        for (const auto& id : ids) { // All or none.
            const auto* const job = m_model.job(id);
            if (!job)
                throw LedgerError::notFound();
            if (!mayHaveStatus(id, status))
                throw LedgerError::invalidStatus(job->status, status);
            if (job->invoiceID && job->status != status)
                throw LedgerError::invalid(*lockText(*job));
        }
        for (const auto& id : ids)
            Ledger::setStatus(library, id, status, m_model.moment().now);
    });
}

// The ledger is asked, about a job that nothing depends on.
bool JobSection::mayHaveStatus(const Base::Uuid& id, JobStatus status) const
{
    const auto* const job = m_model.job(id);
    if (!job)
        return false;
    Library scratch;
    scratch.jobs.push_back({ .id = id, .status = job->status });
    try {
        Ledger::setStatus(scratch, id, status, job->modified);
        return true;
    } catch (const LedgerError&) {
        return false;
    }
}

bool JobSection::duplicate(const Base::Uuid& id)
{
    const bool isDone = m_model.change({ .name = "Duplicate Job" }, [&](Library& library) {
        const auto* const job = m_model.job(id);
        if (!job)
            throw LedgerError::notFound();
        Ledger::addJob(library, copyOf(*job, m_model.moment().now));
    });
    if (isDone)
        m_model.show(AppSection::jobs, m_model.lastOutcome().addedJobs.front());
    return isDone;
}

bool JobSection::remove(std::span<const Base::Uuid> ids)
{
    if (ids.empty())
        return false;
    const auto* const first = m_model.job(ids.front());
    const auto title = ids.size() == 1 && first ? jobTitle(*first) : counted(std::ssize(ids), "job", "jobs");
    const auto at = m_list.place(ids.front());
    const bool isDone
        = m_model.change({ .name = "Delete Job", .touches = records(ids) }, [&](Library& library) {
              for (const auto& id : ids) {
                  const auto* const job = m_model.job(id);
                  if (job && job->invoiceID)
                      throw LedgerError::invalid(*lockText(*job));
              }
              for (const auto& id : ids)
                  Ledger::deleteJob(library, id);
          });
    if (!isDone)
        return false;
    if (const auto& left = this->ids(); !left.empty())
        m_model.select(AppSection::jobs, left[std::min(at, left.size() - 1)]);
    m_model.tell(Notice { .text
        = ids.size() == 1 ? fmt::format("“{}” was deleted.", title) : fmt::format("{} were deleted.", title),
        .action = Notice::Action::undo });
    return true;
}

std::optional<std::string> JobSection::giveQuoteNumber(const Base::Uuid& id)
{
    m_model.change({ .name = "Giving a Quote Number",
                       .touches = { { RecordKind::job, id } },
                       .touchesProfile = true,
                       .isFinal = true,
                       .savesAtOnce = true },
        [&](Library& library) { Ledger::giveQuoteNumber(library, id, m_model.moment()); });
    const auto* const job = m_model.job(id);
    return job ? job->quoteNumber : std::nullopt;
}

bool JobSection::makeInvoice(std::span<const Base::Uuid> ids) { return m_model.invoices().makeDraft(ids); }

std::optional<std::string> JobSection::lockText(const Job& job) const
{
    if (!job.invoiceID)
        return std::nullopt;
    const auto* const invoice = m_model.invoice(*job.invoiceID);
    return LedgerError::jobOnInvoice(invoice && invoice->number ? *invoice->number : "a draft invoice")
        .what();
}

JobPrice JobSection::price(const Job& job) const
{
    const auto* const client = m_model.client(job.clientID);
    return client ? JobPricing::price(job, *client) : JobPrice {};
}

const RecordIndex::JobFigures& JobSection::figures(const Job& job) const
{
    return m_model.index().figures(m_model.library(), job);
}

std::string jobTitle(const Job& job) { return job.title.empty() ? "Untitled job" : job.title; }

} // namespace Pallisande
