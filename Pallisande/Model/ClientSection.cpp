#include "Pallisande/Model/ClientSection.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/SearchKey.h"
#include "PallisandeKit/Pricing/JobPricing.h"

#include <fmt/format.h>

#include <algorithm>
#include <tuple>

namespace Pallisande {

namespace {

constexpr std::size_t recentRecords = 8;

bool isOpen(const Job& job) { return job.status == JobStatus::quote || job.status == JobStatus::inProgress; }

// Whose price still follows the client's rates.
bool isUnbilled(const Job& job) { return !job.invoiceID && job.status != JobStatus::cancelled; }

Base::Decimal net(const Job& job, const Client& client)
{
    const auto price = JobPricing::price(job, client);
    return price.subtotal + price.minimumAdjustment;
}

template <typename Records, typename Time>
ClientSection::IDs newest(const Records& records, const Base::Uuid& client, Time time)
{
    std::vector<std::pair<Base::Instant, Base::Uuid>> found;
    for (const auto& record : records) {
        if (record.clientID == client)
            found.emplace_back(time(record), record.id);
    }
    const auto count = std::min(found.size(), recentRecords);
    std::partial_sort(
        found.begin(), found.begin() + static_cast<std::ptrdiff_t>(count), found.end(), std::greater<> {});
    ClientSection::IDs ids;
    for (std::size_t place = 0; place < count; ++place)
        ids.push_back(found[place].second);
    return ids;
}

} // namespace

ClientSection::ClientSection(AppModel& model)
    : m_model(model)
    , m_list([this](const RecordList::Kept& kept) { return make(kept); })
{
}

// --- List

const ClientFigures& ClientSection::figures(const Base::Uuid& id) const
{
    if (!m_figures) {
        auto& figures = m_figures.emplace();
        const auto& library = m_model.library();
        for (const auto& job : library.jobs) {
            auto& entry = figures[job.clientID];
            entry.openJobs += isOpen(job);
            ++entry.jobs;
            entry.lastJob = std::max(entry.lastJob, std::optional(job.received));
        }
        for (const auto& invoice : library.invoices) {
            auto& entry = figures[invoice.clientID];
            ++entry.invoices;
            if (invoice.kind != DocumentKind::invoice || !invoice.isIssued())
                continue;
            const auto due = Ledger::stillDue(invoice, m_model.index().credited(library, invoice.id));
            if (!due.isZero())
                entry.outstanding[invoice.currency] += due;
        }
    }
    return (*m_figures)[id];
}

ClientSection::IDs ClientSection::make(const RecordList::Kept& kept) const
{
    const auto words = searchWords(m_model.search(AppSection::clients));
    const auto isFound = [&](const Client& client) {
        const auto& text = m_model.index().searchText(client);
        return std::all_of(words.begin(), words.end(),
            [&](const std::string& word) { return text.find(word) != std::string::npos; });
    };
    struct Entry {
        bool isArchived = false;
        Base::Decimal number;
        std::string name;
        Base::Uuid id;
    };
    std::vector<Entry> entries;
    for (const auto& client : m_model.library().clients) {
        const bool passes = isFound(client) && (m_showsArchived || !client.archived);
        if (!passes && !kept.contains(client.id))
            continue;
        Entry entry { .isArchived = client.archived, .name = sortKey(client.name), .id = client.id };
        const auto& sums = figures(client.id);
        switch (m_sort) {
        case ClientSort::name:
            break;
        case ClientSort::openJobs:
            entry.number = Base::Decimal(-sums.openJobs);
            break;
        case ClientSort::lastJob:
            entry.number = Base::Decimal(-sums.lastJob.value_or(Base::earliestInstant).milliseconds);
            break;
        case ClientSort::outstanding: // Currencies can't be compared; it is the figure that is sorted.
            for (const auto& [currency, sum] : sums.outstanding)
                entry.number -= sum;
            break;
        }
        entries.push_back(std::move(entry));
    }
    std::stable_sort(entries.begin(), entries.end(), [](const Entry& left, const Entry& right) {
        return std::tie(left.isArchived, left.number, left.name)
            < std::tie(right.isArchived, right.number, right.name);
    });
    IDs ids;
    for (const auto& entry : entries)
        ids.push_back(entry.id);
    return ids;
}

ClientRow ClientSection::row(const Base::Uuid& id) const
{
    const auto* const client = m_model.client(id);
    if (!client)
        return { .id = id };
    const auto open = figures(id).openJobs;
    ClientRow row { .id = id, .name = client->name, .isArchived = client->archived };
    if (open > 0)
        row.open = fmt::format("{} open", open);
    const auto rate = m_model.formats().rate(client->defaultRate);
    const auto* const unit = client->unit == RateUnit::word ? "word" : "character";
    row.terms = fmt::format("{} · {} per {}", client->currency, rate, unit);
    const auto spokenTerms = fmt::format("{} {} per {}", rate, client->currency, unit);
    row.spoken
        = fmt::format("{}{}, {}{}", row.name, open > 0 ? ", " + counted(open, "open job", "open jobs") : "",
            spokenTerms, row.isArchived ? ", archived" : "");
    return row;
}

std::string ClientSection::countText() const
{
    const auto all = std::ssize(m_model.library().clients), shown = std::ssize(ids());
    return shown == all ? counted(all, "client", "clients")
                        : fmt::format("{} of {}", shown, counted(all, "client", "clients"));
}

std::int64_t ClientSection::archivedCount() const
{
    const auto& clients = m_model.library().clients;
    return std::count_if(
        clients.begin(), clients.end(), [](const Client& client) { return client.archived; });
}

ClientSection::IDs ClientSection::recentJobs(const Base::Uuid& id) const
{
    return newest(m_model.library().jobs, id, [](const Job& job) { return job.received; });
}

ClientSection::IDs ClientSection::recentInvoices(const Base::Uuid& id) const
{
    return newest(m_model.library().invoices, id,
        [](const Invoice& invoice) { return invoice.issueDate.value_or(invoice.created); });
}

void ClientSection::setShowsArchived(bool shows)
{
    if (std::exchange(m_showsArchived, shows) != shows)
        listChanged();
}

void ClientSection::setSort(ClientSort sort)
{
    if (std::exchange(m_sort, sort) != sort)
        listChanged();
}

void ClientSection::outdate()
{
    m_list.outdate();
    m_figures.reset();
}

void ClientSection::listChanged()
{
    outdate();
    m_model.listWasOutdated(AppSection::clients);
}

void ClientSection::letGo()
{
    if (m_list.letGo())
        m_model.listWasOutdated(AppSection::clients);
}

void ClientSection::react(const LibraryChanges& changes)
{
    for (const auto& [kind, id] : changes.changed) {
        if (kind == RecordKind::client)
            m_list.keep(id);
    }
    if (changes.everything)
        m_list.letGo();
    if (changes.concerns(RecordKind::client) || changes.concerns(RecordKind::job)
        || changes.concerns(RecordKind::invoice))
        listChanged();
}

void ClientSection::unhide(const Base::Uuid& id)
{
    const auto* const client = m_model.client(id);
    if (!client || m_list.shows(id))
        return;
    m_model.setSearch(AppSection::clients, {});
    if (client->archived)
        setShowsArchived(true);
}

// --- Operations

bool ClientSection::add()
{
    const auto moment = m_model.moment();
    Client client { .id = Base::Uuid::random(),
        .name = "New client",
        .timeZone = moment.calendar.zone(),
        .currency = m_model.library().profile.homeCurrency,
        .created = moment.now };
    const auto id = client.id;
    if (!m_model.change(
            { .name = "Add Client" }, [&](Library& library) { Ledger::addClient(library, client); }))
        return false;
    m_model.show(AppSection::clients, id);
    return true;
}

ClientSection::PriceEffect ClientSection::priceEffect(
    const Base::Uuid& id, const std::function<void(Client&)>& change) const
{
    PriceEffect effect;
    const auto* const client = m_model.client(id);
    if (!client)
        return effect;
    auto edited = *client;
    change(edited);
    for (const auto& job : m_model.library().jobs) {
        if (job.clientID != id || !isUnbilled(job) || net(job, *client) == net(job, edited))
            continue;
        effect.jobs.push_back(job.id);
        effect.quoted += job.quoteNumber.has_value();
        effect.canKeepRates = effect.canKeepRates
            || (!job.rateOverride
                && JobPricing::terms(*client, job.pair).rate != JobPricing::terms(edited, job.pair).rate);
    }
    return effect;
}

bool ClientSection::edit(const Base::Uuid& id, const std::string& name,
    const std::function<void(Client&)>& change, bool keepsRates)
{
    const auto kept = keepsRates ? priceEffect(id, change).jobs : IDs();
    Edit edit { .name = name, .field = keepsRates ? "" : name, .touches = { { RecordKind::client, id } } };
    for (const auto& job : kept)
        edit.touches.push_back({ RecordKind::job, job });
    return m_model.change(edit, [&](Library& library) {
        const auto* const client = m_model.client(id);
        if (!client)
            throw LedgerError::notFound();
        const auto before = *client;
        auto edited = before;
        change(edited);
        if (edited == before)
            return;
        Ledger::replaceClient(library, std::move(edited));
        for (const auto& jobID : kept) {
            auto job = *m_model.job(jobID);
            if (!job.rateOverride)
                job.rateOverride = JobPricing::terms(before, job.pair).rate;
            Ledger::replaceJob(library, std::move(job), m_model.moment().now);
        }
    });
}

bool ClientSection::keepRates(const Client& before)
{
    const auto effect = priceEffect(before.id, [&](Client& client) { client = before; });
    Edit edit { .name = "Keep Rate" };
    for (const auto& job : effect.jobs)
        edit.touches.push_back({ RecordKind::job, job });
    return m_model.change(edit, [&](Library& library) {
        for (const auto& id : effect.jobs) {
            auto job = *m_model.job(id);
            if (job.rateOverride)
                continue;
            job.rateOverride = JobPricing::terms(before, job.pair).rate;
            Ledger::replaceJob(library, std::move(job), m_model.moment().now);
        }
    });
}

std::map<std::string, std::int64_t> ClientSection::otherDraftCurrencies(const Base::Uuid& id) const
{
    std::map<std::string, std::int64_t> counts;
    const auto* const client = m_model.client(id);
    for (const auto& invoice : m_model.library().invoices) {
        if (client && invoice.clientID == id && !invoice.isIssued() && invoice.currency != client->currency)
            ++counts[invoice.currency];
    }
    return counts;
}

bool ClientSection::setArchived(const Base::Uuid& id, bool archived)
{
    return m_model.change({ .name = archived ? "Archive Client" : "Unarchive Client",
                              .touches = { { RecordKind::client, id } } },
        [&](Library& library) { Ledger::archiveClient(library, id, archived); });
}

bool ClientSection::remove(const Base::Uuid& id)
{
    const auto* const client = m_model.client(id);
    const auto name = client ? client->name : "";
    const auto at = m_list.place(id);
    if (client && (figures(id).jobs > 0 || figures(id).invoices > 0) && m_model.canEdit())
        return m_model.refuse(LedgerError::clientInUse(name).what(), Problem::Action::archiveClient, id);
    const bool isDone = m_model.change(
        { .name = "Delete Client", .touches = { { RecordKind::client, id } }, .touchesCounting = true },
        [&](Library& library) { Ledger::deleteClient(library, id); });
    if (!isDone)
        return false;
    if (const auto& left = ids(); !left.empty())
        m_model.select(AppSection::clients, left[std::min(at, left.size() - 1)]);
    m_model.tell(Notice { .text = fmt::format("“{}” was deleted.", name), .action = Notice::Action::undo });
    return true;
}

} // namespace Pallisande
