#include "Pallisande/Screens/Clients/ClientsPage.h"

#include "Pallisande/Model/ClientSection.h"
#include "Pallisande/Screens/Clients/ClientHeader.h"
#include "Pallisande/Screens/Clients/ContactCard.h"
#include "Pallisande/Screens/Clients/RatesCard.h"
#include "Pallisande/Screens/Clients/RecordsCard.h"
#include "Pallisande/Screens/Clients/TermsCards.h"
#include "Pallisande/Screens/Clients/WeightsCard.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/ComboBox.h"
#include "Pallisande/Widgets/RowDelegate.h"

#include <QAction>
#include <QTimer>

namespace Pallisande {

namespace {

constexpr const char *sortKey = "clients.sort", *archivedKey = "clients.archived";

QVariant rowData(AppModel& model, const Base::Uuid& id, int role)
{
    const auto row = model.clients().row(id);
    switch (role) {
    case titleRole:
        return clientTitle(row.name);
    case placeholderRole:
        return row.name.empty();
    case figureRole:
        return qt(row.open);
    case detailRole:
        return qt(row.terms);
    case chipRole:
        return row.isArchived ? QVariant::fromValue(archivedChip()) : QVariant();
    case Qt::AccessibleTextRole:
        return qt(row.spoken);
    default:
        return {};
    }
}

RecordListView::Source source(AppModel& model)
{
    return { .section = AppSection::clients,
        .ids = [&model]() -> const ClientSection::IDs& { return model.clients().ids(); },
        .data = [&model](const Base::Uuid& id, int role) { return rowData(model, id, role); },
        .asText =
            [&model](const Base::Uuid& id) {
                const auto row = model.clients().row(id);
                return QStringList { qt(row.name), qt(row.terms), qt(row.open) }.join(QLatin1Char('\t'));
            } };
}

} // namespace

ClientsPage::ClientsPage(const ScreenServices& services, QWidget* parent)
    : ListDetailPage(services, source(services.model), parent)
    , m_page(new DetailPage(this))
    , m_header(new ClientHeader(model(), commands(), m_page))
    , m_sort(new ComboBox(this))
{
    setNothingSelected(QStringLiteral("Select a client to see its rates and weights."));
    list()->setContextMenu(
        { Command::newClient, Command::newJob, std::nullopt, Command::archiveClient, Command::deleteClient });
    addCards();
    setDetail(m_page);
    auto* empty = new EmptyPage(Icon::person,
        QStringLiteral(
            "No clients yet. A client holds the rates, weights, tax and terms that price its jobs."),
        this);
    auto* add = empty->addButton(QStringLiteral("New Client"), ButtonKind::primary);
    add->setObjectName(QStringLiteral("firstClient"));
    connect(add, &QPushButton::clicked, commands().action(Command::newClient), &QAction::trigger);
    setEmptyPage(empty);
    addFoot();

    m_sort->addItems({ QStringLiteral("By name"), QStringLiteral("By open jobs"),
        QStringLiteral("By last job"), QStringLiteral("By outstanding amount") });
    m_sort->setAccessibleName(QStringLiteral("Sort by"));
    m_sort->setObjectName(QStringLiteral("clientSort"));
    m_sort->setCurrentIndex(std::clamp(std::atoi(view().text(sortKey).value_or("0").c_str()), 0, 3));
    model().clients().setSort(static_cast<ClientSort>(m_sort->currentIndex()));
    model().clients().setShowsArchived(view().flag(archivedKey));
    connect(m_sort, &QComboBox::activated, this, [this](int sort) {
        model().clients().setSort(static_cast<ClientSort>(sort));
        view().setText(sortKey, std::to_string(sort));
    });
    connect(&model(), &AppModel::libraryChanged, this, &ClientsPage::libraryChanged);
    connect(&model(), &AppModel::stateChanged, this, [this] {
        refreshFoot();
        refreshRecord();
    });
    connect(&model(), &AppModel::listChanged, this, [this](AppSection section) {
        if (section == AppSection::clients)
            refreshFoot();
    });
    refreshFoot();
}

QString ClientsPage::title() const { return QStringLiteral("Clients"); }
std::vector<QWidget*> ClientsPage::filters() const { return { m_sort }; }
QString ClientsPage::searchHint() const { return QStringLiteral("Search clients"); }
std::string ClientsPage::countText() const { return model().clients().countText(); }
bool ClientsPage::hasRecords() const { return !model().library().clients.empty(); }

void ClientsPage::addCards()
{
    m_contact = new ContactCard(model(), m_page);
    m_cards = { m_contact, new RatesCard(model(), m_page), new WeightsCard(model(), m_page),
        new TaxCard(model(), m_page), new RecordsCard(model(), m_page), new NotesCard(model(), m_page) };
    m_page->column()->addWidget(m_header);
    for (auto* card : m_cards)
        m_page->column()->addWidget(card);
}

void ClientsPage::addFoot()
{
    m_foot = new QWidget(this);
    m_archived = makeButton({}, ButtonKind::quiet, m_foot);
    m_archived->setObjectName(QStringLiteral("archivedClients"));
    auto* box = new QHBoxLayout(m_foot);
    box->setContentsMargins(Space::tiny, Space::tiny, Space::tiny, Space::tiny);
    box->addWidget(m_archived);
    box->addStretch();
    setFoot(m_foot);
    connect(m_archived, &QPushButton::clicked, this,
        [this] { model().clients().setShowsArchived(!model().clients().showsArchived()); });
}

void ClientsPage::refreshFoot()
{
    const auto count = model().clients().archivedCount();
    const bool shows = model().clients().showsArchived();
    m_foot->setVisible(count > 0);
    m_archived->setText(QStringLiteral("Archived (%1)").arg(count));
    m_archived->setIcon(themedIcon(shows ? Icon::chevronDown : Icon::chevronRight));
    m_archived->setAccessibleName(shows ? QStringLiteral("Hide %1 archived clients").arg(count)
                                        : QStringLiteral("Show %1 archived clients").arg(count));
    if (view().flag(archivedKey) != shows)
        view().setFlag(archivedKey, shows);
}

bool ClientsPage::carryOut(Command command)
{
    if (command != Command::newClient)
        return ListDetailPage::carryOut(command);
    // The window brings this page to the front first.
    QTimer::singleShot(0, this, [this] { m_contact->nameField()->setFocus(Qt::OtherFocusReason); });
    QTimer::singleShot(0, m_contact->nameField(), &QLineEdit::selectAll);
    return true;
}

void ClientsPage::showRecord(const Base::Uuid& id)
{
    const auto* const client = model().client(id);
    if (!client)
        return;
    m_header->show(*client);
    for (auto* card : m_cards)
        card->show(id);
    m_page->verticalScrollBar()->setValue(0);
}

void ClientsPage::showEvent(QShowEvent* event)
{
    ListDetailPage::showEvent(event);
    refreshRecord(); // Changes elsewhere weren't followed.
}

void ClientsPage::refreshRecord()
{
    const auto id = model().selection(AppSection::clients);
    const auto* const client = id ? model().client(*id) : nullptr;
    if (!client || !isVisible())
        return;
    m_header->show(*client);
    for (auto* card : m_cards)
        card->show(*id);
}

void ClientsPage::libraryChanged(const LibraryChanges& changes)
{
    if (changes.concerns(RecordKind::client) || changes.concerns(RecordKind::job)
        || changes.concerns(RecordKind::invoice) || changes.profile)
        refreshRecord();
}

SectionPage* makeClientsPage(const ScreenServices& services, QWidget* parent)
{
    return new ClientsPage(services, parent);
}

} // namespace Pallisande
