#include "Pallisande/Model/LibraryEditor.h"

#include <algorithm>

namespace Pallisande {

namespace {

template <typename Records>
std::optional<Record> copy(const Records& records, const Base::Uuid& id, std::size_t* place = nullptr)
{
    const auto found
        = std::find_if(records.begin(), records.end(), [&](const auto& record) { return record.id == id; });
    if (found == records.end())
        return std::nullopt;
    if (place)
        *place = static_cast<std::size_t>(found - records.begin());
    return *found;
}

std::optional<Record> copy(const Library& library, const RecordID& record, std::size_t* place = nullptr)
{
    switch (record.kind) {
    case RecordKind::client:
        return copy(library.clients, record.id, place);
    case RecordKind::job:
        return copy(library.jobs, record.id, place);
    case RecordKind::invoice:
        return copy(library.invoices, record.id, place);
    }
    return std::nullopt;
}

bool has(const std::vector<RecordID>& records, const RecordID& record)
{
    return std::find(records.begin(), records.end(), record) != records.end();
}

// What an edit may touch as it is before, compared afterwards.
class Before {
public:
    Before(const Library& library, const Edit& edit)
        : m_edit(edit)
        , m_clients(library.clients.size())
        , m_jobs(library.jobs.size())
        , m_invoices(library.invoices.size())
    {
        for (const auto& record : edit.touches) {
            RecordChange change { .record = record };
            change.before = copy(library, record, &change.place);
            if (change.before)
                m_records.push_back(std::move(change));
        }
        if (edit.touchesProfile)
            m_profile = library.profile;
        if (edit.touchesRates)
            m_typedRates = library.rates.typed;
        if (edit.touchesCounting)
            m_counting = library.counting;
    }

    UndoStep step(const Library& library) &&
    {
        UndoStep step { .name = m_edit.name, .field = m_edit.field, .isOfPayments = m_edit.isOfPayments };
        for (auto& change : m_records) {
            change.after = copy(library, change.record);
            if (!change.after)
                ++removed(change.record.kind);
            if (change.before != change.after)
                step.records.push_back(std::move(change));
        }
        // From the last place on: removals before it have moved everything else.
        std::stable_sort(step.records.begin(), step.records.end(),
            [](const RecordChange& left, const RecordChange& right) { return left.place > right.place; });
        addNew(step, library.clients, RecordKind::client, m_clients - m_removed[0]);
        addNew(step, library.jobs, RecordKind::job, m_jobs - m_removed[1]);
        addNew(step, library.invoices, RecordKind::invoice, m_invoices - m_removed[2]);
        if (m_profile && *m_profile != library.profile)
            step.profile = { std::move(*m_profile), library.profile };
        if (m_typedRates && *m_typedRates != library.rates.typed)
            step.typedRates = { std::move(*m_typedRates), library.rates.typed };
        if (m_counting && *m_counting != library.counting)
            step.counting = { std::move(*m_counting), library.counting };
        return step;
    }

private:
    std::size_t& removed(RecordKind kind) { return m_removed[static_cast<std::size_t>(kind)]; }

    // The ledger adds records at the end.
    template <typename Records>
    static void addNew(UndoStep& step, const Records& records, RecordKind kind, std::size_t first)
    {
        for (auto place = first; place < records.size(); ++place)
            step.records.push_back({ { kind, records[place].id }, std::nullopt, records[place], place });
    }

    const Edit& m_edit;
    std::size_t m_clients, m_jobs, m_invoices;
    std::size_t m_removed[3] {};
    std::vector<RecordChange> m_records;
    std::optional<Profile> m_profile;
    std::optional<std::vector<ExchangeRate>> m_typedRates;
    std::optional<CountingSetup> m_counting;
};

} // namespace

LibraryEditor::Outcome LibraryEditor::perform(
    LibrarySession& session, const Edit& edit, const Operation& operation)
{
    Outcome outcome;
    Before before(session.library(), edit);
    try {
        operation(session);
    } catch (const std::exception& error) {
        outcome.refusal = error.what();
    }
    auto step = std::move(before).step(session.library());
    outcome.changes = step.changes(false);
    for (const auto& [kind, id] : outcome.changes.added) {
        if (kind == RecordKind::job)
            outcome.addedJobs.push_back(id);
        if (kind == RecordKind::invoice)
            outcome.addedInvoices.push_back(id);
    }
    if (step.isEmpty())
        return outcome;
    if (edit.isFinal)
        m_history.dropTouching(step);
    else
        m_history.push(std::move(step));
    return outcome;
}

LibraryEditor::Outcome LibraryEditor::undo(LibrarySession& session) { return apply(session, true); }
LibraryEditor::Outcome LibraryEditor::redo(LibrarySession& session) { return apply(session, false); }

LibraryEditor::Outcome LibraryEditor::apply(LibrarySession& session, bool backwards)
{
    const auto* const step = backwards ? m_history.toUndo() : m_history.toRedo();
    if (!step)
        return {};
    Outcome outcome { .changes = step->changes(backwards) };
    try {
        session.change(
            [&](Library& library) { Pallisande::apply(library, *step, backwards, session.moment()); });
    } catch (const LedgerError& error) { // Something else needs the record by now: it stays as it is.
        backwards ? m_history.dropUndo() : m_history.dropRedo();
        return { .refusal = error.what() };
    } catch (const SessionError& error) {
        return { .refusal = error.what() };
    }
    if (step->isOfPayments) { // Its jobs may stand otherwise than the step knew.
        for (const auto& job : session.library().jobs) {
            const RecordID id { RecordKind::job, job.id };
            if (job.invoiceID && !has(outcome.changes.changed, id)
                && has(outcome.changes.changed, { RecordKind::invoice, *job.invoiceID }))
                outcome.changes.changed.push_back(id);
        }
    }
    backwards ? m_history.wasUndone() : m_history.wasRedone();
    return outcome;
}

} // namespace Pallisande
