#include "Pallisande/Model/AppModel.h"

#include "Pallisande/Model/BusinessProfile.h"
#include "Pallisande/Model/ClientSection.h"
#include "Pallisande/Model/DeadlineSection.h"
#include "Pallisande/Model/DocumentCounts.h"
#include "Pallisande/Model/Imports.h"
#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Model/JobSection.h"
#include "Pallisande/Model/LibraryCopies.h"

#include <algorithm>
#include <utility>

namespace Pallisande {

namespace {

constexpr std::chrono::milliseconds minuteLength { 60'000 };
constexpr std::size_t mostPlaces = 100; // That one can go back to.

std::size_t number(AppSection section) { return static_cast<std::size_t>(section); }

// The deadlines show jobs.
AppSection listOf(AppSection section)
{
    return section == AppSection::deadlines ? AppSection::jobs : section;
}

} // namespace

AppModel::AppModel(AppServices services, QObject* parent)
    : QObject(parent)
    , m_services(std::move(services))
    , m_renderer(m_services.renderer)
    , m_noLibrary(Library::makeNew())
    , m_deadlines(std::make_unique<DeadlineSection>(*this))
    , m_jobs(std::make_unique<JobSection>(*this))
    , m_clients(std::make_unique<ClientSection>(*this))
    , m_invoices(std::make_unique<InvoiceSection>(*this))
    , m_imports(std::make_unique<Imports>(*this))
    , m_counts(std::make_unique<DocumentCounts>(*this))
    , m_profile(std::make_unique<BusinessProfile>(*this))
    , m_copies(std::make_unique<LibraryCopies>(*this))
{
}

AppModel::~AppModel() = default;

const Library& AppModel::library() const { return m_session ? m_session->library() : m_noLibrary; }

// --- Places

RecordKind AppModel::kindOf(AppSection section)
{
    switch (section) {
    case AppSection::clients:
        return RecordKind::client;
    case AppSection::invoices:
        return RecordKind::invoice;
    case AppSection::deadlines:
    case AppSection::jobs:
        break;
    }
    return RecordKind::job;
}

std::optional<Base::Uuid> AppModel::selection(AppSection section) const
{
    return m_selections[number(listOf(section))];
}

void AppModel::remember(const Place& before)
{
    if (before == m_place)
        return;
    m_back.push_back(before);
    if (m_back.size() > mostPlaces)
        m_back.erase(m_back.begin());
    m_forward.clear();
    emit historyChanged();
}

void AppModel::setSection(AppSection section)
{
    if (section == m_place.section)
        return;
    endMerging();
    const auto before = m_place;
    m_place = { section, selection(section) };
    remember(before);
    if (section == AppSection::invoices)
        m_invoices->outdate(); // The numbering is checked afresh.
    emit sectionChanged();
}

void AppModel::select(AppSection section, std::optional<Base::Uuid> id)
{
    const auto list = listOf(section);
    auto& selected = m_selections[number(list)];
    if (selected == id)
        return;
    endMerging();
    selected = id;
    const auto before = m_place;
    if (listOf(m_place.section) == list) {
        m_place.selected = id;
        if (before.selected)
            remember(before);
    }
    letGoOfRows(list);
    emit selectionChanged(list);
}

void AppModel::show(AppSection section, const Base::Uuid& id)
{
    setSection(section);
    select(section, id);
    switch (section) {
    case AppSection::deadlines:
        break;
    case AppSection::jobs:
        return m_jobs->unhide(id);
    case AppSection::clients:
        return m_clients->unhide(id);
    case AppSection::invoices:
        return m_invoices->unhide(id);
    }
}

void AppModel::goTo(const Place& place)
{
    const auto isThere = [&] {
        const auto& id = *place.selected;
        switch (kindOf(place.section)) {
        case RecordKind::client:
            return client(id) != nullptr;
        case RecordKind::invoice:
            return invoice(id) != nullptr;
        case RecordKind::job:
            break;
        }
        return job(id) != nullptr;
    };
    m_place = place;
    if (place.selected && isThere()) {
        m_selections[number(listOf(place.section))] = place.selected;
        emit selectionChanged(listOf(place.section));
    }
    emit sectionChanged();
    emit historyChanged();
}

void AppModel::go(std::vector<Place>& from, std::vector<Place>& to)
{
    if (from.empty())
        return;
    endMerging();
    to.push_back(m_place);
    const auto place = from.back();
    from.pop_back();
    goTo(place);
}

void AppModel::goBack() { go(m_back, m_forward); }
void AppModel::goForward() { go(m_forward, m_back); }

const std::string& AppModel::search(AppSection section) const { return m_searches[number(section)]; }

void AppModel::setSearch(AppSection section, const std::string& text)
{
    auto& search = m_searches[number(section)];
    if (search == text)
        return;
    search = text;
    letGoOfRows(section); // The user wants other rows.
    section == AppSection::jobs          ? m_jobs->outdate()
        : section == AppSection::clients ? m_clients->outdate()
                                         : m_invoices->outdate();
    emit searchChanged(section);
    emit listChanged(section);
}

void AppModel::letGoOfRows(AppSection section)
{
    section == AppSection::jobs          ? m_jobs->letGo()
        : section == AppSection::clients ? m_clients->letGo()
                                         : m_invoices->letGo();
}

bool AppModel::openSheet(Sheet sheet)
{
    if (m_sheet)
        return false;
    endMerging();
    m_sheet = std::move(sheet);
    emit sheetChanged();
    return true;
}

void AppModel::closeSheet()
{
    if (!m_sheet)
        return;
    m_sheet.reset();
    if (problem() && problem()->isInSheet)
        dismissProblem();
    emit sheetChanged();
}

// --- Messages

void AppModel::tell(Problem problem)
{
    problem.isInSheet = m_sheet.has_value();
    m_messages.tell(std::move(problem), m_services.now());
    emit problemChanged();
}

void AppModel::tell(Notice notice)
{
    m_messages.tell(std::move(notice), m_services.now());
    emit noticeChanged();
}

void AppModel::dismissProblem()
{
    m_messages.dismissProblem();
    emit problemChanged();
}

void AppModel::dismissNotice()
{
    m_messages.dismissNotice();
    emit noticeChanged();
}

bool AppModel::refuse(const std::string& text, Problem::Action action, std::optional<Base::Uuid> subject)
{
    tell(Problem { .text = text, .action = action, .subject = subject });
    return false;
}

// --- Figures and time

const AppModel::Badges& AppModel::badges() const
{
    if (m_badges)
        return *m_badges;
    Badges badges;
    const auto now = moment();
    for (const auto& job : library().jobs) {
        if (job.status != JobStatus::quote && job.status != JobStatus::inProgress)
            continue;
        ++badges.openJobs;
        const auto lane = Deadlines::lane(job, now);
        badges.overdueJobs += lane == DeadlineLane::overdue;
        badges.jobsDueToday += lane == DeadlineLane::today;
    }
    for (const auto& invoice : library().invoices)
        badges.overdueInvoices += m_invoices->status(invoice) == InvoiceStatus::overdue;
    return m_badges.emplace(badges);
}

void AppModel::outdateBadges()
{
    m_badges.reset();
    emit badgesChanged();
}

void AppModel::minutePassed()
{
    adoptZone();
    m_deadlines->outdate();
    m_jobs->outdate();
    m_invoices->outdate();
    outdateBadges();
    emit timePassed();
    m_minuteTask = m_services.after(minuteLength, [this] { minutePassed(); });
}

// Users travel: days and reminders go by the zone that the computer is set to now.
void AppModel::adoptZone()
{
    if (!m_services.systemCalendar)
        return;
    const auto calendar = m_services.systemCalendar();
    if (calendar.zone() == m_services.calendar.zone())
        return;
    m_services.calendar = calendar;
    if (m_session)
        m_session->setCalendar(calendar);
    scheduleReminders();
}

// What searching compares is made ready bit by bit, so that the first key of a search needn't wait for it.
void AppModel::prepareSearch(std::size_t from)
{
    constexpr std::size_t atOnce = 500;
    constexpr std::chrono::milliseconds pause { 20 };
    const auto& jobs = library().jobs;
    const auto end = std::min(from + atOnce, jobs.size());
    for (; from < end; ++from)
        m_index.searchText(jobs[from]);
    m_searchTask
        = from < jobs.size() ? m_services.after(pause, [this, from] { prepareSearch(from); }) : nullptr;
}

// --- Beside the main thread

void AppModel::inBackground(std::function<void()> work, std::function<void()> done)
{
    m_services.background->run(std::move(work), [alive = std::weak_ptr(m_alive), done = std::move(done)] {
        if (!alive.expired())
            done();
    });
}

void AppModel::onMainThread(std::function<void()> task)
{
    m_services.background->post([alive = std::weak_ptr(m_alive), task = std::move(task)] {
        if (!alive.expired())
            task();
    });
}

void AppModel::choose(const ChooserRequest& request, std::function<void(AppServices::Paths)> chosen)
{
    m_services.choose(
        request, [alive = std::weak_ptr(m_alive), chosen = std::move(chosen)](AppServices::Paths paths) {
            if (!alive.expired() && !paths.empty())
                chosen(std::move(paths));
        });
}

} // namespace Pallisande
