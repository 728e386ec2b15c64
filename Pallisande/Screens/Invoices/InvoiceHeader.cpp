#include "Pallisande/Screens/Invoices/InvoiceHeader.h"

#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/Chip.h"
#include "Pallisande/Widgets/FlowLayout.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/NoteLine.h"

#include <QAction>
#include <QEvent>
#include <QGridLayout>
#include <QMenu>

#include <map>

namespace Pallisande {

InvoiceHeader::InvoiceHeader(const ScreenServices& services, QWidget* parent)
    : QWidget(parent)
    , m_services(services)
    , m_grid(new QGridLayout)
    , m_several(new NoteLine(Icon::info, Tone::blue, {}, this))
    , m_title(new Label(this, TextStyle::title))
    , m_chip(new ChipLabel({}, this))
    , m_buttons(new QWidget(this))
    , m_client(makeButton({}, ButtonKind::quiet, this))
    , m_state(makeSentence({}, this, TextStyle::body, Ink::muted))
{
    m_title->setObjectName(QStringLiteral("invoiceTitle"));
    m_client->setObjectName(QStringLiteral("invoiceClient"));
    m_state->setObjectName(QStringLiteral("invoiceState"));
    m_several->setTinted(true);
    m_several->hide();
    m_several->addButton(QStringLiteral("Paid in Full…"));
    m_several->setObjectName(QStringLiteral("severalInvoices"));
    m_issue = makeActionButton(Command::issue, QStringLiteral("Issue…"));
    m_pay = makeActionButton(Command::recordPayment, QStringLiteral("Record Payment…"));
    m_save = makeActionButton(Command::saveDraftPDF, QStringLiteral("Save Draft as PDF…"));
    m_open = makeActionButton(Command::openStoredPDF, QStringLiteral("Open PDF"));
    m_more = new QToolButton(m_buttons);
    m_more->setText(QStringLiteral("⋯"));
    m_more->setObjectName(QStringLiteral("invoiceActs"));
    m_more->setToolTip(QStringLiteral("More Actions"));
    m_more->setAccessibleName(QStringLiteral("More Actions"));
    m_more->setFocusPolicy(Qt::TabFocus);
    m_more->setPopupMode(QToolButton::InstantPopup);
    m_more->setMenu(new QMenu(m_more));

    auto* buttons = new FlowLayout(m_buttons);
    for (QWidget* button : { static_cast<QWidget*>(m_issue), static_cast<QWidget*>(m_pay),
             static_cast<QWidget*>(m_save), static_cast<QWidget*>(m_open), static_cast<QWidget*>(m_more) })
        buttons->addWidget(button);

    m_below = new QHBoxLayout;
    m_below->addWidget(m_client, 0, Qt::AlignTop | Qt::AlignLeft);
    m_below->addWidget(m_state, 1);
    m_grid->setHorizontalSpacing(Space::medium);
    m_grid->setVerticalSpacing(Space::small);
    m_grid->setColumnStretch(2, 1);
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(Space::page - Space::small, Space::group, Space::page, 0);
    box->setSpacing(Space::tiny);
    auto* several = new QHBoxLayout;
    several->setContentsMargins(Space::small, 0, 0, 0);
    several->addWidget(m_several);
    m_grid->setContentsMargins(
        Space::small, 0, 0, 0); // The client’s link begins at the same edge as the title.
    box->addLayout(several);
    box->addLayout(m_grid);
    box->addLayout(m_below);
    arrange();

    connect(m_client, &QPushButton::clicked, this, [this] {
        const auto* const invoice = m_id ? m_services.model.invoice(*m_id) : nullptr;
        if (invoice && m_services.model.client(invoice->clientID))
            m_services.model.show(AppSection::clients, invoice->clientID);
    });
    auto* payInFull = m_services.commands.action(Command::payInFull);
    connect(m_several->button(), &QPushButton::clicked, payInFull, &QAction::trigger);
    connect(payInFull, &QAction::changed, this, &InvoiceHeader::refreshSelection);
}

// Does what the action does, when that can be done.
QPushButton* InvoiceHeader::makeActionButton(Command command, const QString& text)
{
    auto* button = makeButton(text, ButtonKind::plain, m_buttons);
    auto* action = m_services.commands.action(command);
    const auto follow = [button, action] {
        button->setEnabled(action->isEnabled());
        button->setToolTip(action->toolTip());
    };
    connect(action, &QAction::changed, button, follow);
    connect(button, &QPushButton::clicked, action, &QAction::trigger);
    follow();
    return button;
}

void InvoiceHeader::show(const Base::Uuid& id)
{
    m_id = id;
    refresh();
}

void InvoiceHeader::refresh()
{
    const auto* const invoice = m_id ? m_services.model.invoice(*m_id) : nullptr;
    if (!invoice)
        return;
    auto& invoices = m_services.model.invoices();
    const auto row = invoices.row(*m_id);
    const bool isNote = invoice->kind == DocumentKind::creditNote;
    m_title->setText(!invoice->isIssued() && isNote
            ? QStringLiteral("Draft credit note for %1").arg(qt(invoice->creditsNumber.value_or("–")))
            : qt(row.title));
    auto chip = Chip::of(row.status);
    chip.word = qt(row.chip);
    m_chip->setChip(chip);
    m_client->setText(
        qt(invoice->client.name).replace(QLatin1Char('&'), QStringLiteral("&&")) + QStringLiteral(" ›"));
    m_client->setAccessibleName(QStringLiteral("Client %1").arg(qt(invoice->client.name)));
    const auto state = !invoice->isIssued() && isNote ? std::string("draft") : invoices.stateText(*invoice);
    m_stateText = qt(state);
    m_state->setInk(row.status == InvoiceStatus::overdue ? Ink::red : Ink::muted);
    refreshButtons(*invoice);
    refreshSelection();
    arrange();
}

void InvoiceHeader::refreshButtons(const Invoice& invoice)
{
    using C = std::optional<Command>;
    const auto status = m_services.model.invoices().status(invoice);
    const bool isDraft = status == InvoiceStatus::draft;
    const bool isDue = status == InvoiceStatus::open || status == InvoiceStatus::overdue
        || status == InvoiceStatus::partlyPaid;
    const bool isInvoice = invoice.kind == DocumentKind::invoice;
    m_issue->setVisible(isDraft);
    m_save->setVisible(isDraft && isInvoice);
    m_pay->setVisible(isDue);
    m_open->setVisible(!isDraft);
    setKind(m_issue, ButtonKind::primary);
    setKind(m_pay, ButtonKind::primary);
    setKind(m_open, isDue ? ButtonKind::plain : ButtonKind::primary);

    std::vector<C> acts;
    if (isDraft) {
        acts = { C(Command::addInvoiceLine), C(), C(Command::openClient), C(), C(Command::deleteDraft) };
    } else {
        acts = { C(Command::emailClient), C(Command::copyNumber), C(Command::copyTotal) };
        if (isDue)
            acts.push_back(Command::copyReminder);
        acts.push_back({});
        if (isDue)
            acts.push_back(Command::payInFull);
        if (isInvoice && status != InvoiceStatus::credited)
            acts.push_back(Command::makeCreditNote);
        if (m_services.model.invoices().lacksRate(invoice))
            acts.push_back(Command::addExchangeRate);
        acts.push_back(Command::showStoredPDF);
    }
    auto* menu = m_more->menu();
    menu->clear();
    m_services.commands.fill(*menu, acts);
}

void InvoiceHeader::refreshSelection()
{
    const auto& commands = m_services.commands;
    const auto selected = commands.selected(AppSection::invoices);
    if (selected.size() < 2)
        return m_several->setSentence({});
    std::map<std::string, Base::Decimal> totals;
    for (const auto& id : selected) {
        if (const auto* const invoice = m_services.model.invoice(id))
            totals[invoice->currency] += m_services.model.invoices().stillDue(*invoice);
    }
    QStringList sums;
    for (const auto& [currency, sum] : totals)
        sums += qt(m_services.model.formats().money(sum, currency));
    m_several->setSentence(QStringLiteral("%1 documents selected, %2 still due.")
                               .arg(selected.size())
                               .arg(sums.join(QStringLiteral(" and "))));
    const auto* const payInFull = commands.action(Command::payInFull);
    m_several->button()->setEnabled(payInFull->isEnabled());
    m_several->button()->setToolTip(payInFull->toolTip());
}

int InvoiceHeader::widthOfOneLine() const
{
    // A title that may be broken says less than it needs.
    const int title = m_title->fontMetrics().horizontalAdvance(m_title->text());
    return title + m_chip->sizeHint().width() + m_buttons->sizeHint().width() + 4 * Space::medium;
}

// The buttons go below the title where they don't fit beside it.
void InvoiceHeader::arrange()
{
    while (auto* item = m_grid->takeAt(0))
        delete item;
    // How it stands is beside the client’s link, a button, or below it where it would be broken.
    const auto behind = QStringLiteral("· ") + m_stateText;
    const int beside
        = m_client->sizeHint().width() + Space::tiny + m_state->fontMetrics().horizontalAdvance(behind);
    const bool isBelow = beside > width() - 2 * Space::page;
    const int room = Theme::of(this).controlHeight() - m_state->fontMetrics().height();
    m_below->setDirection(isBelow ? QBoxLayout::TopToBottom : QBoxLayout::LeftToRight);
    m_state->setText(isBelow ? m_stateText.left(1).toUpper() + m_stateText.mid(1) : behind);
    m_below->setSpacing(isBelow ? 0 : Space::tiny);
    m_state->setContentsMargins(isBelow ? int(Space::small) : 0, isBelow ? 0 : std::max(0, room / 2), 0, 0);
    m_state->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    m_needed = widthOfOneLine();
    const bool isStacked = m_needed > width() - 2 * Space::page;
    const int buttons = m_buttons->sizeHint().width() + Space::medium;
    m_title->setWordWrap(m_needed - buttons > width() - 2 * Space::page); // Too long for a line of its own.
    m_buttons->setMinimumWidth(isStacked ? 0 : m_buttons->sizeHint().width());
    m_grid->addWidget(m_title, 0, 0);
    m_grid->addWidget(m_chip, 0, 1, Qt::AlignVCenter);
    if (isStacked)
        m_grid->addWidget(m_buttons, 1, 0, 1, 3);
    else
        m_grid->addWidget(m_buttons, 0, 3, Qt::AlignRight);
}

QSize InvoiceHeader::minimumSizeHint() const
{
    const auto natural = QWidget::minimumSizeHint();
    return { std::min(natural.width(), 2 * Space::page + m_buttons->minimumSizeHint().width()),
        natural.height() };
}

bool InvoiceHeader::event(QEvent* event)
{
    if (event->type() == QEvent::LayoutRequest && m_needed != widthOfOneLine())
        arrange();
    return QWidget::event(event);
}

void InvoiceHeader::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    arrange();
}

void InvoiceHeader::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange && m_id)
        arrange();
}

} // namespace Pallisande
