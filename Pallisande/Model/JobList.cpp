#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/JobSection.h"
#include "Pallisande/Model/SearchKey.h"

#include "Base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <tuple>
#include <unordered_map>

// Which jobs the list shows, in which order and words.
namespace Pallisande {

namespace {

bool passesStatus(JobFilter filter, JobStatus status)
{
    switch (filter) {
    case JobFilter::open:
        return status == JobStatus::quote || status == JobStatus::inProgress
            || status == JobStatus::delivered;
    case JobFilter::all:
        return true;
    default: // The filters between stand in the order of the statuses.
        return static_cast<int>(filter) - 1 == static_cast<int>(status);
    }
}

void addPart(std::string& text, std::string_view part, std::string_view between)
{
    if (!part.empty())
        text.append(text.empty() ? "" : between).append(part);
}

} // namespace

JobSection::JobSection(AppModel& model)
    : m_model(model)
    , m_list([this](const RecordList::Kept& kept) { return make(kept); })
{
}

bool JobSection::passes(const Job& job) const
{
    return passesStatus(m_filter, job.status) && (!m_client || job.clientID == *m_client);
}

JobSection::IDs JobSection::make(const RecordList::Kept& kept) const
{
    const auto& library = m_model.library();
    const auto& index = m_model.index();
    const auto words = searchWords(m_model.search(AppSection::jobs));
    std::unordered_map<Base::Uuid, std::string> names;
    if (!words.empty()) {
        for (const auto& client : library.clients)
            names.emplace(client.id, searchKey(client.name));
    }
    const auto isFound = [&](const Job& job) {
        return std::all_of(words.begin(), words.end(), [&](const std::string& word) {
            return index.searchText(job).find(word) != std::string::npos
                || names[job.clientID].find(word) != std::string::npos;
        });
    };
    struct Entry {
        std::int64_t number = 0;
        Base::Decimal price;
        std::string text;
        std::int64_t received = 0;
        Base::Uuid id;
    };
    std::vector<Entry> entries;
    for (const auto& job : library.jobs) {
        if (!(passes(job) && isFound(job)) && !kept.contains(job.id))
            continue;
        Entry entry { .received = -job.received.milliseconds, .id = job.id };
        switch (m_sort) {
        case JobSort::deadline:
            entry.number = job.deadline.value_or(Base::latestInstant).milliseconds;
            entry.text = job.title;
            break;
        case JobSort::title:
            entry.text = sortKey(jobTitle(job));
            break;
        case JobSort::client: {
            const auto* const client = index.client(library, job.clientID);
            entry.text = sortKey(client ? client->name : "");
            break;
        }
        case JobSort::received:
            break;
        case JobSort::price:
            entry.price = -figures(job).net;
            break;
        }
        entries.push_back(std::move(entry));
    }
    std::stable_sort(entries.begin(), entries.end(), [](const Entry& left, const Entry& right) {
        return std::tie(left.number, left.price, left.text, left.received)
            < std::tie(right.number, right.price, right.text, right.received);
    });
    IDs ids;
    ids.reserve(entries.size());
    for (const auto& entry : entries)
        ids.push_back(entry.id);
    return ids;
}

std::string JobSection::dueText(const Job& job) const
{
    const auto moment = m_model.moment();
    const auto today = moment.calendar.day(moment.now);
    if (job.invoiceID) {
        const auto* const invoice = m_model.invoice(*job.invoiceID);
        return invoice && invoice->number ? "on " + *invoice->number : "on a draft invoice";
    }
    if (job.status == JobStatus::delivered && job.deliveredAt)
        return "delivered " + Formats::shortDay(moment.calendar.day(*job.deliveredAt), today);
    const bool isDone = job.status != JobStatus::quote && job.status != JobStatus::inProgress;
    if (isDone || !job.deadline)
        return {};
    const auto* const client = m_model.client(job.clientID);
    const auto zone
        = client ? Base::Calendar::named(client->timeZone).value_or(moment.calendar) : moment.calendar;
    const auto at = zone.components(*job.deadline);
    if (*job.deadline < moment.now)
        return Formats::nearness(*job.deadline, moment);
    // The clock is the client's; where that is on another day than ours, “today” would be read wrongly.
    const bool isSameDay = moment.calendar.day(*job.deadline) == at.day;
    const auto days = moment.calendar.daysBetween(moment.now, *job.deadline);
    const auto day = isSameDay && days == 0 ? "today"
        : isSameDay && days == 1            ? "tomorrow"
                                            : Formats::weekDay(at.day, today);
    return fmt::format("due {} {}", day, m_model.formats().time(at));
}

std::string JobSection::dueSentence(const Job& job) const
{
    const auto moment = m_model.moment();
    const bool isOpen = job.status == JobStatus::quote || job.status == JobStatus::inProgress;
    if (!isOpen || !job.deadline || job.invoiceID)
        return dueText(job);
    const auto* const client = m_model.client(job.clientID);
    const auto zone
        = client ? Base::Calendar::named(client->timeZone).value_or(moment.calendar) : moment.calendar;
    const auto at = zone.components(*job.deadline);
    auto text = fmt::format(
        "due {}, {}", Formats::weekDay(at.day, moment.calendar.day(moment.now)), m_model.formats().time(at));
    if (zone.zone() != moment.calendar.zone())
        text += " (client time)";
    if (*job.deadline < moment.now)
        text += ", " + Formats::nearness(*job.deadline, moment);
    return text;
}

JobRow JobSection::row(const Base::Uuid& id) const
{
    const auto* const job = m_model.job(id);
    if (!job)
        return { .id = id };
    const auto* const client = m_model.client(job->clientID);
    const auto& figures = this->figures(*job);
    JobRow row { .id = id,
        .title = jobTitle(*job),
        .isUntitled = job->title.empty(),
        .status = job->status,
        .hasProblems = figures.hasProblems };
    const auto due = dueText(*job), pair = job->pair.text();
    const auto& name = row.client = client ? client->name : "";
    for (const auto& part : { name, pair, due })
        addPart(row.subtitle, part, " · ");
    if (figures.hasPrice)
        row.price = m_model.formats().money(figures.net, figures.currency);
    row.spoken = row.title;
    for (const auto& part :
        { name, spokenPair(job->pair), Base::asciiLowered(title(job->status)), dueSentence(*job) })
        addPart(row.spoken, part, ", ");
    addPart(row.spoken, row.price.empty() ? "no price yet" : row.price + " before tax", ", ");
    return row;
}

std::string JobSection::countText() const
{
    const auto all = std::ssize(m_model.library().jobs), shown = std::ssize(ids());
    return shown == all ? counted(all, "job", "jobs")
                        : fmt::format("{} of {}", shown, counted(all, "job", "jobs"));
}

std::string JobSection::selectionText(std::span<const Base::Uuid> ids) const
{
    std::map<std::string, Base::Decimal> sums;
    for (const auto& id : ids) {
        const auto* const job = m_model.job(id);
        if (job && m_model.client(job->clientID))
            sums[figures(*job).currency] += figures(*job).net;
    }
    auto text = counted(std::ssize(ids), "job", "jobs") + " selected";
    for (const auto& [currency, sum] : sums)
        text += ", " + m_model.formats().money(sum, currency);
    return text + " before tax";
}

void JobSection::listChanged()
{
    m_list.outdate();
    m_model.listWasOutdated(AppSection::jobs);
}

void JobSection::setFilter(JobFilter filter)
{
    if (std::exchange(m_filter, filter) != filter)
        listChosen();
}

void JobSection::setClientFilter(std::optional<Base::Uuid> client)
{
    if (std::exchange(m_client, client) != client)
        listChosen();
}

void JobSection::setSort(JobSort sort)
{
    if (std::exchange(m_sort, sort) != sort)
        listChanged();
}

// The user wants other rows: what was kept goes.
void JobSection::listChosen()
{
    m_list.letGo();
    listChanged();
}

void JobSection::letGo()
{
    if (m_list.letGo())
        m_model.listWasOutdated(AppSection::jobs);
}

void JobSection::react(const LibraryChanges& changes)
{
    for (const auto& [kind, id] : changes.changed) {
        if (kind == RecordKind::job)
            m_list.keep(id);
    }
    if (changes.everything) {
        m_list.letGo();
        m_client.reset();
    }
    const bool isConcerned = changes.concerns(RecordKind::job) || changes.concerns(RecordKind::client)
        || changes.concerns(RecordKind::invoice);
    if (isConcerned)
        listChanged();
}

void JobSection::unhide(const Base::Uuid& id)
{
    const auto* const job = m_model.job(id);
    if (!job || m_list.shows(id))
        return;
    m_model.setSearch(AppSection::jobs, {});
    if (m_client && *m_client != job->clientID)
        setClientFilter(std::nullopt);
    if (!passes(*job))
        setFilter(JobFilter::all);
}

} // namespace Pallisande
