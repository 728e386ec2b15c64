#include "Pallisande/Screens/Jobs/JobsPage.h"

#include "Pallisande/Model/ClientSection.h"
#include "Pallisande/Screens/ClientBox.h"
#include "Pallisande/Screens/Jobs/CountingBar.h"
#include "Pallisande/Screens/Jobs/JobDetail.h"
#include "Pallisande/Screens/Jobs/JobDrops.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Chip.h"
#include "Pallisande/Widgets/RowDelegate.h"

#include <QSignalBlocker>
#include <QTimer>
#include <QVBoxLayout>

namespace Pallisande {

namespace {

constexpr const char *filterKey = "jobs.filter", *sortKeyName = "jobs.sort", *clientKey = "jobs.client";
constexpr int filterCount = static_cast<int>(JobFilter::all) + 1,
              sortCount = static_cast<int>(JobSort::price) + 1;

QString wordOf(JobFilter filter)
{
    switch (filter) {
    case JobFilter::open:
        return QStringLiteral("Open");
    case JobFilter::all:
        return QStringLiteral("All jobs");
    default: // The filters between stand in the order of the statuses.
        return qt(Pallisande::title(static_cast<JobStatus>(static_cast<int>(filter) - 1)));
    }
}

QVariant dataOf(AppModel& model, const Base::Uuid& id, int role)
{
    const auto row = model.jobs().row(id);
    switch (role) {
    case titleRole:
        return qt(row.title);
    case placeholderRole:
        return row.isUntitled;
    case figureRole:
        return row.price.empty() ? QStringLiteral("–") : qt(row.price);
    case detailRole:
        return qt(row.subtitle);
    case elidableRole:
        return qt(row.client);
    case chipRole:
        return QVariant::fromValue(Chip::of(row.status));
    case warningRole:
        return row.hasProblems ? QStringLiteral("The price has problems: see the job.") : QString();
    case Qt::AccessibleTextRole:
        return qt(row.spoken);
    default:
        return {};
    }
}

// Title, client, languages, due, status and price.
QString asText(AppModel& model, const Base::Uuid& id)
{
    const auto* const job = model.job(id);
    if (!job)
        return {};
    const auto* const client = model.client(job->clientID);
    const auto row = model.jobs().row(id);
    const QStringList fields { qt(row.title), qt(client ? client->name : ""), qt(job->pair.text()),
        qt(model.jobs().dueText(*job)), qt(Pallisande::title(job->status)), qt(row.price) };
    return fields.join(QLatin1Char('\t'));
}

RecordListView::Source sourceOf(AppModel& model)
{
    return { .section = AppSection::jobs,
        .ids = [&model]() -> const RecordListView::IDs& { return model.jobs().ids(); },
        .data = [&model](const Base::Uuid& id, int role) { return dataOf(model, id, role); },
        .asText = [&model](const Base::Uuid& id) { return asText(model, id); } };
}

std::optional<int> numberIn(const ViewState& view, const std::string& key, int count)
{
    const auto text = view.text(key);
    bool isNumber = false;
    const int number = text ? qt(*text).toInt(&isNumber) : 0;
    return isNumber && number >= 0 && number < count ? std::optional(number) : std::nullopt;
}

} // namespace

JobsPage::JobsPage(const ScreenServices& services, QWidget* parent)
    : ListDetailPage(services, sourceOf(services.model), parent)
    , m_status(new ComboBox(this))
    , m_client(new ClientBox(services.model, this))
    , m_detail(new JobDetail(services, this))
    , m_empty(new EmptyPage(Icon::list, {}, this))
{
    setObjectName(QStringLiteral("jobsPage"));
    m_status->setObjectName(QStringLiteral("jobFilter"));
    m_status->setAccessibleName(QStringLiteral("Status filter"));
    for (int filter = 0; filter < filterCount; ++filter)
        m_status->addItem(wordOf(JobFilter(filter)));
    m_status->insertSeparator(1);
    m_status->insertSeparator(m_status->count() - 1);
    m_client->setObjectName(QStringLiteral("clientFilter"));
    m_client->setAccessibleName(QStringLiteral("Client filter"));
    m_client->setFirstChoice(QStringLiteral("Any client"));
    for (QWidget* filter : filters()) { // Out of sight until the toolbar takes them, which shows them again.
        filter->hide();
        filter->setAttribute(Qt::WA_WState_ExplicitShowHide, false);
    }

    setDetail(m_detail);
    connect(m_detail, &DetailPage::listWanted, this, &JobsPage::focusList);
    setNothingSelected(QStringLiteral("Select a job to see its price."));
    m_newClient = m_empty->addButton(QStringLiteral("New Client"), ButtonKind::primary);
    m_newClient->setObjectName(QStringLiteral("newClient"));
    m_newJob = m_empty->addButton(QStringLiteral("New Job"), ButtonKind::primary);
    m_newJob->setObjectName(QStringLiteral("newJob"));
    connect(m_newClient, &QPushButton::clicked, commands().action(Command::newClient), &QAction::trigger);
    connect(m_newJob, &QPushButton::clicked, commands().action(Command::newJob), &QAction::trigger);
    showEmptyPage();
    setEmptyPage(m_empty);
    layout()->addWidget(new CountingBar(model(), this));

    using enum Command;
    list()->setContextMenu({ statusQuote, statusInProgress, statusDelivered, statusInvoiced, statusPaid,
        statusCancelled, std::nullopt, importAnalysis, typeCounts, std::nullopt, makeInvoice, std::nullopt,
        duplicateJob, openClient, deleteJob });
    list()->setDrops(
        { .takes = [this](const auto& files, auto id) { return JobDrops::takes(model(), files, id); },
            .drop = [this](const auto& files, auto id) { JobDrops::drop(model(), this, files, id); } });
    connect(list(), &RecordListView::selectedChanged, this, [this] {
        if (const auto id = model().selection(AppSection::jobs))
            m_detail->showJob(*id); // And how many are selected.
    });
    connect(m_status, &QComboBox::activated, this, [this] {
        const auto place = m_status->currentIndex(); // Of which one or two are lines.
        model().jobs().setFilter(JobFilter(place - (place > 1) - (place == m_status->count() - 1)));
    });
    connect(m_client, &ClientBox::clientChosen, this,
        [this] { model().jobs().setClientFilter(m_client->client()); });
    connect(&model(), &AppModel::listChanged, this, [this](AppSection section) {
        if (section == AppSection::jobs)
            takeFilters();
    });
    connect(&model(), &AppModel::libraryChanged, this, [this](const LibraryChanges& changes) {
        if (changes.everything)
            restore();
        const bool isAdding = model().sheet() && std::holds_alternative<NewJobSheet>(*model().sheet());
        for (const auto& [kind, id] : changes.added) {
            if (isAdding && kind == RecordKind::job)
                m_added = id;
        }
        if (changes.everything || changes.concerns(RecordKind::client))
            showEmptyPage();
    });
    restore();
    takeFilters();
}

std::vector<QWidget*> JobsPage::filters() const { return { m_status, m_client }; }

bool JobsPage::carryOut(Command command)
{
    if (command != Command::addExtraLine)
        return ListDetailPage::carryOut(command);
    m_detail->addExtraLine();
    return true;
}

void JobsPage::showRecord(const Base::Uuid& id)
{
    m_detail->showJob(id);
    if (std::exchange(m_added, std::nullopt)
        == id) // What comes next, once the sheet has given the focus back.
        QTimer::singleShot(0, m_detail, &JobDetail::focusImport);
}

void JobsPage::restore()
{
    auto& jobs = model().jobs();
    if (const auto filter = numberIn(view(), filterKey, filterCount))
        jobs.setFilter(JobFilter(*filter));
    if (const auto sort = numberIn(view(), sortKeyName, sortCount))
        jobs.setSort(JobSort(*sort));
    const auto client = Base::Uuid::parse(view().text(clientKey).value_or(""));
    if (client && model().client(*client))
        jobs.setClientFilter(client);
}

void JobsPage::takeFilters()
{
    const auto& jobs = model().jobs();
    const int filter = static_cast<int>(jobs.filter());
    m_status->setCurrentIndex(filter + (filter > 0) + (filter == filterCount - 1));
    m_client->setClient(jobs.clientFilter());
    if (!model().hasLibrary())
        return; // What was kept still waits for it.
    view().setText(filterKey, std::to_string(filter));
    view().setText(sortKeyName, std::to_string(static_cast<int>(jobs.sort())));
    view().setText(clientKey, jobs.clientFilter() ? jobs.clientFilter()->toString() : "");
}

void JobsPage::showEmptyPage()
{
    const bool hasClients = !model().library().clients.empty();
    m_empty->setSentence(hasClients
            ? QStringLiteral(
                "No jobs yet. A job holds the counts, the deadline and the price of one piece of work.")
            : QStringLiteral(
                "Add a client first: a job belongs to a client, whose rates and weights price it."));
    m_newClient->setVisible(!hasClients);
    m_newJob->setVisible(hasClients);
}

SectionPage* makeJobsPage(const ScreenServices& services, QWidget* parent)
{
    return new JobsPage(services, parent);
}

} // namespace Pallisande
