#include "Pallisande/Model/UndoHistory.h"

#include "PallisandeKit/Ledger/Ledger.h"

#include <algorithm>
#include <set>

namespace Pallisande {

namespace {

bool addsOrRemoves(const RecordChange& change) { return !change.before || !change.after; }

bool sameRecords(const UndoStep& left, const UndoStep& right)
{
    return std::equal(left.records.begin(), left.records.end(), right.records.begin(), right.records.end(),
        [](const RecordChange& a, const RecordChange& b) { return a.record == b.record; });
}

// Whether a step moved a counter of numbers, which a number given since then rests on.
bool movesNumbers(const ValueChange<Profile>& change)
{
    const auto moves = [&](NumberSeries Profile::*series) {
        return (change.before.*series).next != (change.after.*series).next;
    };
    return moves(&Profile::invoiceSeries) || moves(&Profile::creditSeries) || moves(&Profile::quoteSeries);
}

// What steps have in common: records, and the counters as if they were one.
class Touched {
public:
    explicit Touched(const UndoStep& step) { add(step); }

    bool meets(const UndoStep& step) const
    {
        const bool sharesRecord
            = std::any_of(step.records.begin(), step.records.end(), [&](const RecordChange& change) {
                  return !isOnlyPaid(step, change) && m_records.contains(change.record);
              });
        return sharesRecord || (m_profile && step.profile && (m_wholeProfile || movesNumbers(*step.profile)));
    }
    void add(const UndoStep& step)
    {
        for (const auto& change : step.records)
            m_records.insert(change.record);
        m_profile = m_profile || step.profile.has_value();
    }
    void addDropped(const UndoStep& step)
    {
        add(step);
        m_wholeProfile = m_wholeProfile || step.profile.has_value();
    }

private:
    // A payment is taken back by itself, and its jobs are settled anew, whatever has become of them.
    static bool isOnlyPaid(const UndoStep& step, const RecordChange& change)
    {
        return step.isOfPayments && change.before && change.after;
    }

    std::set<RecordID> m_records;
    bool m_profile = false, m_wholeProfile = false;
};

template <typename Records> auto place(Records& records, const Base::Uuid& id)
{
    return std::find_if(records.begin(), records.end(), [&](const auto& record) { return record.id == id; });
}

template <typename Records>
void put(Records& records, const RecordChange& change, const std::optional<Record>& record)
{
    using Value = typename Records::value_type;
    const auto at = place(records, change.record.id);
    if (!record) {
        if (at != records.end())
            records.erase(at);
    } else if (at != records.end()) {
        *at = std::get<Value>(*record);
    } else {
        const auto where = std::min(change.place, records.size());
        records.insert(records.begin() + static_cast<std::ptrdiff_t>(where), std::get<Value>(*record));
    }
}

void put(Library& library, const RecordChange& change, const std::optional<Record>& record)
{
    switch (change.record.kind) {
    case RecordKind::client:
        return put(library.clients, change, record);
    case RecordKind::job:
        return put(library.jobs, change, record);
    case RecordKind::invoice:
        return put(library.invoices, change, record);
    }
}

// A record mustn't go while others need it that the step doesn't put in order itself.
void checkRemoval(const Library& library, const UndoStep& step, const RecordChange& change)
{
    const auto isPut = [&](const Base::Uuid& id) {
        return std::any_of(step.records.begin(), step.records.end(),
            [&](const RecordChange& other) { return other.record.id == id; });
    };
    if (change.record.kind == RecordKind::client) {
        const auto* const client = library.client(change.record.id);
        const auto needsIt
            = [&](const auto& record) { return record.clientID == change.record.id && !isPut(record.id); };
        if (client
            && (std::any_of(library.jobs.begin(), library.jobs.end(), needsIt)
                || std::any_of(library.invoices.begin(), library.invoices.end(), needsIt)))
            throw LedgerError::clientInUse(client->name);
    } else if (change.record.kind == RecordKind::job) {
        const auto* const job = library.job(change.record.id);
        if (!job || !job->invoiceID || isPut(*job->invoiceID))
            return;
        const auto* const invoice = library.invoice(*job->invoiceID);
        throw LedgerError::jobOnInvoice(invoice && invoice->number ? *invoice->number : "a draft invoice");
    }
}

void restoreProfile(Library& library, const Profile& from, const Profile& to)
{
    auto restored = to;
    for (const auto series : { &Profile::invoiceSeries, &Profile::creditSeries, &Profile::quoteSeries }) {
        if ((from.*series).next == (to.*series).next) // Numbers given since then stay given.
            (restored.*series).next = (library.profile.*series).next;
    }
    library.profile = std::move(restored);
}

void restorePayments(Library& library, const UndoStep& step, bool backwards, const Base::Moment& moment)
{
    for (const auto& change : step.records) {
        const auto& from = backwards ? change.after : change.before;
        const auto& to = backwards ? change.before : change.after;
        if (const auto* const job = to ? std::get_if<Job>(&*to) : nullptr) {
            auto* const present = library.job(job->id);
            if (present && from && *present == std::get<Job>(*from))
                *present = *job;
        } else if (const auto* const invoice = to ? std::get_if<Invoice>(&*to) : nullptr) {
            auto* const present = library.invoice(invoice->id);
            if (present)
                present->payments = invoice->payments;
        }
    }
    for (const auto& change : step.records) {
        const auto* const invoice = library.invoice(change.record.id);
        if (change.record.kind == RecordKind::invoice && invoice)
            Ledger::changeJobs(library,
                Ledger::settledJobs(library, *invoice, Ledger::credited(library, invoice->id), moment));
    }
}

} // namespace

LibraryChanges UndoStep::changes(bool backwards) const
{
    LibraryChanges changes;
    for (const auto& change : records) {
        const bool was = backwards ? change.after.has_value() : change.before.has_value();
        const bool is = backwards ? change.before.has_value() : change.after.has_value();
        (was && is ? changes.changed : is ? changes.added : changes.removed).push_back(change.record);
    }
    changes.profile = profile.has_value();
    changes.rates = typedRates.has_value();
    changes.counting = counting.has_value();
    return changes;
}

void UndoHistory::push(UndoStep step)
{
    m_undone.clear();
    auto* const last = m_done.empty() ? nullptr : &m_done.back();
    const bool merges = m_mayMerge && last && !step.field.empty() && last->field == step.field
        && sameRecords(*last, step) && last->profile.has_value() == step.profile.has_value()
        && std::none_of(step.records.begin(), step.records.end(), addsOrRemoves);
    m_mayMerge = true;
    if (merges) {
        for (std::size_t place = 0; place < step.records.size(); ++place)
            last->records[place].after = std::move(step.records[place].after);
        if (step.profile)
            last->profile->after = std::move(step.profile->after);
        return;
    }
    m_done.push_back(std::move(step));
    if (m_done.size() > mostSteps)
        m_done.pop_front();
}

void UndoHistory::clear()
{
    m_done.clear();
    m_undone.clear();
}

void UndoHistory::wasUndone()
{
    m_undone.push_back(std::move(m_done.back()));
    m_done.pop_back();
    m_mayMerge = false;
}

void UndoHistory::wasRedone()
{
    m_done.push_back(std::move(m_undone.back()));
    m_undone.pop_back();
    m_mayMerge = false;
}

void UndoHistory::dropTouching(const UndoStep& final)
{
    for (auto* const steps : { &m_done, &m_undone }) {
        Touched touched(final);
        for (auto step = steps->rbegin(); step != steps->rend(); ++step) { // Each list's next one is last.
            if (!touched.meets(*step))
                continue;
            touched.addDropped(*step);
            step->name.clear();
        }
        std::erase_if(*steps, [](const UndoStep& step) { return step.name.empty(); });
    }
    m_mayMerge = false;
}

void apply(Library& library, const UndoStep& step, bool backwards, const Base::Moment& moment)
{
    if (step.isOfPayments)
        return restorePayments(library, step, backwards, moment);
    const auto target = [&](const RecordChange& change) -> const std::optional<Record>& {
        return backwards ? change.before : change.after;
    };
    for (const auto& change : step.records) {
        if (!target(change))
            checkRemoval(library, step, change);
    }
    // Backwards in the opposite order, so that places in the lists fit again.
    const auto count = step.records.size();
    for (std::size_t number = 0; number < count; ++number) {
        const auto& change = step.records[backwards ? count - 1 - number : number];
        put(library, change, target(change));
    }
    if (step.profile)
        restoreProfile(library, backwards ? step.profile->after : step.profile->before,
            backwards ? step.profile->before : step.profile->after);
    if (step.typedRates)
        library.rates.typed = backwards ? step.typedRates->before : step.typedRates->after;
    if (step.counting) {
        const auto imported = library.counting.importedFromTamberlin; // Survives every undo.
        library.counting = backwards ? step.counting->before : step.counting->after;
        library.counting.importedFromTamberlin = imported;
    }
}

} // namespace Pallisande
