#include "Pallisande/Screens/Invoices/InvoicesPage.h"

#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Preview/PagePreview.h"
#include "Pallisande/Screens/ClientBox.h"
#include "Pallisande/Screens/Invoices/InvoiceDetail.h"
#include "Pallisande/Screens/Invoices/LinesCard.h"
#include "Pallisande/Screens/Invoices/NewInvoiceMenu.h"
#include "Pallisande/Screens/Invoices/NumberingFoot.h"
#include "Pallisande/Screens/Invoices/PayInFullSheet.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Chip.h"
#include "Pallisande/Widgets/RowDelegate.h"
#include "Pallisande/Widgets/SheetDialog.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMenu>
#include <QPushButton>

namespace Pallisande {

namespace {

constexpr std::pair<InvoiceFilter, const char*> statuses[] { { InvoiceFilter::all, "All invoices" },
    { InvoiceFilter::drafts, "Drafts" }, { InvoiceFilter::unpaid, "Unpaid" },
    { InvoiceFilter::overdue, "Overdue" }, { InvoiceFilter::paid, "Paid" },
    { InvoiceFilter::credited, "Credited" }, { InvoiceFilter::creditNotes, "Credit notes" } };

constexpr int anyYear = 0, thisYear = -1; // In the popup; others are years.

QVariant dataOf(AppModel& model, const Base::Uuid& id, int role)
{
    const auto row = model.invoices().row(id);
    switch (role) {
    case titleRole:
        return qt(row.title);
    case figureRole:
        return qt(row.total);
    case detailRole:
        return qt(row.subtitle);
    case elidableRole:
        return qt(row.client);
    case chipRole: {
        auto chip = Chip::of(row.status);
        chip.word = qt(row.chip);
        return QVariant::fromValue(chip);
    }
    case Qt::AccessibleTextRole:
        return qt(row.spoken);
    default:
        return {};
    }
}

// For a spreadsheet: number, client, day, total, currency, state.
QString rowText(AppModel& model, const Base::Uuid& id)
{
    const auto* const invoice = model.invoice(id);
    if (!invoice)
        return {};
    const auto row = model.invoices().row(id);
    const auto day = invoice->issueDate.value_or(invoice->created);
    return QStringList { qt(row.title), qt(invoice->client.name),
        qt(Formats::day(model.services().calendar.day(day))),
        qt(model.formats().amount(invoice->total(), invoice->currency)), qt(invoice->currency), qt(row.chip) }
        .join(QLatin1Char('\t'));
}

RecordListView::Source sourceOf(AppModel& model)
{
    return { .section = AppSection::invoices,
        .ids = [&model]() -> const std::vector<Base::Uuid>& { return model.invoices().ids(); },
        .data = [&model](const Base::Uuid& id, int role) { return dataOf(model, id, role); },
        .asText = [&model](const Base::Uuid& id) { return rowText(model, id); } };
}

} // namespace

SectionPage* makeInvoicesPage(const ScreenServices& services, QWidget* parent)
{
    return new InvoicesPage(services, parent);
}

InvoicesPage::InvoicesPage(const ScreenServices& services, QWidget* parent)
    : ListDetailPage(services, sourceOf(services.model), parent)
    , m_detail(new InvoiceDetail(services, this))
    , m_foot(new NumberingFoot(services.model, this))
    , m_status(new ComboBox(this))
    , m_year(new ComboBox(this))
    , m_client(new ClientBox(services.model, this))
{
    using C = std::optional<Command>;
    list()->setContextMenu({ C(Command::issue), C(Command::recordPayment), C(Command::payInFull),
        C(Command::makeCreditNote), C(), C(Command::openStoredPDF), C(Command::emailClient), C(),
        C(Command::openClient), C(Command::deleteDraft) });
    list()->setDraggedFile([this](const Base::Uuid& id) { return copyOfPDF(id); });
    setDetail(m_detail);
    setFoot(m_foot);
    setNothingSelected(QStringLiteral("Select an invoice to see its lines and payments."));
    auto* empty = new EmptyPage(
        Icon::invoice, QStringLiteral("No invoices yet. Deliver a job, then make its invoice here."), this);
    m_new = empty->addButton(QStringLiteral("New Invoice"), ButtonKind::primary);
    m_new->setObjectName(QStringLiteral("newInvoice"));
    auto* menu = new QMenu(m_new);
    prepareNewInvoiceMenu(menu, services.model);
    m_new->setMenu(menu);
    setEmptyPage(empty);
    makeFilters();
    for (auto* filter : filters())
        filter->hide(); // Until the toolbar takes them.

    connect(m_detail, &InvoiceDetail::listWanted, this, [this] { focusList(); });
    connect(&model(), &AppModel::libraryChanged, this, [this](const LibraryChanges& changes) {
        if (!isVisible())
            return;
        if (changes.concerns(RecordKind::invoice) || changes.profile)
            m_foot->refresh();
        if (changes.concerns(RecordKind::invoice) || changes.concerns(RecordKind::client))
            refreshFilters();
        m_detail->refresh(changes);
    });
    connect(&model(), &AppModel::listChanged, this, [this](AppSection section) {
        if (section == AppSection::invoices && isVisible())
            refreshFilters();
    });
    connect(&model(), &AppModel::unrecordedChanged, this, [this] {
        if (isVisible())
            m_foot->refresh();
    });
    const auto refreshDetail = [this] {
        if (isVisible())
            m_detail->refreshAll();
    };
    connect(&model(), &AppModel::timePassed, this, refreshDetail);
    connect(&model(), &AppModel::stateChanged, this, refreshDetail);
    connect(&model(), &AppModel::settingsChanged, this, refreshDetail); // The language of documents.
    connect(list(), &RecordListView::selectedChanged, this, refreshDetail);
}

void InvoicesPage::makeFilters()
{
    m_status->setObjectName(QStringLiteral("statusFilter"));
    m_status->setAccessibleName(QStringLiteral("Status"));
    for (const auto& [filter, text] : statuses)
        m_status->addItem(QLatin1String(text), static_cast<int>(filter));
    m_year->setObjectName(QStringLiteral("yearFilter"));
    m_year->setAccessibleName(QStringLiteral("Year"));
    m_client->setObjectName(QStringLiteral("clientFilter"));
    m_client->setAccessibleName(QStringLiteral("Client"));
    m_client->setFirstChoice(QStringLiteral("Any client"));

    for (auto* filter : { m_status, m_year }) // Which say too little when they are cut; clients give way.
        filter->setSizePolicy(QSizePolicy::Minimum, QSizePolicy::Fixed);
    connect(m_status, &QComboBox::activated, this, [this] {
        model().invoices().setFilter(static_cast<InvoiceFilter>(m_status->currentData().toInt()));
    });
    connect(m_year, &QComboBox::activated, this, [this] {
        const int year = m_year->currentData().toInt();
        model().invoices().setYearFilter(year == anyYear ? YearFilter {}
                : year == thisYear                       ? YearFilter { .kind = YearFilter::Kind::thisYear }
                                   : YearFilter { .kind = YearFilter::Kind::year, .year = year });
    });
    connect(m_client, &ClientBox::clientChosen, this,
        [this] { model().invoices().setClientFilter(m_client->client()); });
    refreshFilters();
}

void InvoicesPage::refreshFilters()
{
    auto& invoices = model().invoices();
    m_status->setCurrentIndex(m_status->findData(static_cast<int>(invoices.filter())));
    m_client->setClient(invoices.clientFilter());
    refreshYears();
}

void InvoicesPage::refreshYears()
{
    std::vector<std::pair<QString, int>> choices { { QStringLiteral("Any year"), anyYear },
        { QStringLiteral("This year"), thisYear } };
    for (const int year : model().invoices().years())
        choices.emplace_back(QString::number(year), year);
    bool isSame = m_year->count() == static_cast<int>(choices.size());
    for (int place = 0; isSame && place < m_year->count(); ++place)
        isSame = m_year->itemData(place).toInt() == choices[static_cast<std::size_t>(place)].second;
    if (!isSame) {
        m_year->clear();
        for (const auto& [text, year] : choices)
            m_year->addItem(text, year);
    }
    const auto chosen = model().invoices().yearFilter();
    m_year->setCurrentIndex(m_year->findData(chosen.kind == YearFilter::Kind::all ? anyYear
            : chosen.kind == YearFilter::Kind::thisYear                           ? thisYear
                                                                                  : chosen.year));
}

std::vector<QWidget*> InvoicesPage::filters() const { return { m_status, m_year, m_client }; }

std::string InvoicesPage::countText() const { return model().invoices().countText(); }

std::vector<QWidget*> InvoicesPage::panes() const
{
    return { list(), m_detail->page(), m_detail->preview()->pane() };
}

bool InvoicesPage::carryOut(Command command)
{
    switch (command) {
    case Command::addInvoiceLine:
        m_detail->lines()->addLine();
        return true;
    case Command::payInFull:
        payInFull();
        return true;
    case Command::emailClient:
        if (const auto id = model().selection(AppSection::invoices))
            model().invoices().email(*id);
        return true;
    case Command::copyReminder:
        copyReminder();
        return true;
    case Command::checkNumbering:
        m_foot->refresh();
        m_foot->openFindings();
        return true;
    case Command::inspector:
        m_detail->togglePreview();
        return true;
    default:
        return ListDetailPage::carryOut(command);
    }
}

void InvoicesPage::showRecord(const Base::Uuid& id) { m_detail->show(id); }

bool InvoicesPage::hasRecords() const { return !model().library().invoices.empty(); }

void InvoicesPage::showEvent(QShowEvent* event)
{
    ListDetailPage::showEvent(event);
    m_foot->refresh();
    refreshFilters();
    m_new->setEnabled(model().canEdit());
    m_new->setToolTip(qt(model().readOnlyText()));
    m_detail->refreshAll();
}

void InvoicesPage::payInFull()
{
    auto invoices = commands().selected(AppSection::invoices);
    if (!invoices.empty() && !model().sheet())
        makePayInFullSheet(model(), std::move(invoices), window())->openSheet();
}

void InvoicesPage::copyReminder()
{
    const auto id = model().selection(AppSection::invoices);
    const auto* const invoice = id ? model().invoice(*id) : nullptr;
    if (!invoice || !invoice->isIssued())
        return;
    QGuiApplication::clipboard()->setText(qt(model().invoices().reminderText(*invoice)));
    model().tell(
        Notice { .text = fmt::format("The reminder for {} is on the clipboard.", *invoice->number) });
}

std::filesystem::path InvoicesPage::copyOfPDF(const Base::Uuid& id)
{
    const auto* const invoice = model().invoice(id);
    if (!invoice || !invoice->isIssued() || !model().session())
        return {};
    try {
        const auto stored = model().session()->storedPDF(id);
        if (!m_dragged)
            m_dragged = std::make_unique<QTemporaryDir>();
        const auto copy = std::filesystem::path(plain(m_dragged->path())) / stored.filename();
        std::filesystem::copy_file(stored, copy, std::filesystem::copy_options::overwrite_existing);
        std::filesystem::permissions(copy, std::filesystem::perms::owner_write,
            std::filesystem::perm_options::add); // The original is write-protected.
        return copy;
    } catch (const std::exception&) { // It goes as text alone.
        return {};
    }
}

} // namespace Pallisande
