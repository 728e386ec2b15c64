#include "Pallisande/Screens/Invoices/LinesCard.h"

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Screens/Invoices/LockedLine.h"
#include "Pallisande/Screens/Invoices/LockedText.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/LineField.h"
#include "Pallisande/Widgets/NoteLine.h"

#include <QGridLayout>
#include <QResizeEvent>

namespace Pallisande {

namespace {

constexpr std::size_t atATime = 40; // Lines that are shown before there is a button for more.
constexpr int wideFrom = 560, narrowFrom = 340; // Of the card, at the usual size of text.

} // namespace

LinesCard::LinesCard(AppModel& model, QWidget* parent)
    : Card(QStringLiteral("Lines"), parent)
    , m_model(model)
    , m_most(atATime)
    , m_outdated(new NoteLine(Icon::warning, Tone::amber, {}, this))
    , m_others(new NoteLine(Icon::info, Tone::blue, {}, this))
    , m_heads(new QWidget(this))
    , m_lines(new QWidget(this))
    , m_none(new Label(QStringLiteral("No lines yet."), this, TextStyle::body, Ink::muted))
    , m_more(makeButton({}, ButtonKind::quiet, this))
    , m_add(makeButton(QStringLiteral("Add Line"), Icon::plus, ButtonKind::plain, this))
    , m_totals(new QWidget(this))
{
    m_outdated->setTinted(true);
    m_outdated->hide();
    m_outdated->addButton(QStringLiteral("Update Lines"));
    m_outdated->setObjectName(QStringLiteral("linesOutdated"));
    m_others->setTinted(true);
    m_others->hide();
    m_others->addButton(QStringLiteral("Make One Draft with All"));
    m_others->setObjectName(QStringLiteral("otherJobs"));
    m_add->setObjectName(QStringLiteral("addLine"));
    auto* heads = new QHBoxLayout(m_heads);
    heads->setContentsMargins(0, 0, 0, 0);
    heads->setSpacing(Space::small);
    const std::pair<const char*, LineRow::Column> columns[] { { "Title and detail", LineRow::title },
        { "Quantity", LineRow::quantity }, { "Unit", LineRow::unit }, { "Price", LineRow::price },
        { "Amount", LineRow::amount }, { "", LineRow::acts } };
    for (const auto& [text, column] : columns) {
        auto* head = new Label(QLatin1String(text), m_heads, TextStyle::tableHead, Ink::muted);
        const bool isText = column == LineRow::title || column == LineRow::unit;
        head->setAlignment((isText ? Qt::AlignLeft : Qt::AlignRight) | Qt::AlignVCenter);
        heads->addWidget(head, column == LineRow::title ? 1 : 0);
    }
    auto* lines = new QVBoxLayout(m_lines);
    lines->setContentsMargins(0, 0, 0, 0);
    lines->setSpacing(Space::medium);
    auto* acts = new QHBoxLayout;
    acts->addWidget(m_add);
    acts->addWidget(m_more);
    acts->addStretch();
    auto* totals = new QGridLayout(m_totals);
    totals->setContentsMargins(0, Space::small, 0, 0);
    totals->setHorizontalSpacing(Space::group);
    totals->setVerticalSpacing(Space::tiny);
    totals->setColumnStretch(0, 1);
    content()->addWidget(m_outdated);
    content()->addWidget(m_heads);
    content()->addWidget(m_none);
    content()->addWidget(m_lines);
    content()->addLayout(acts);
    content()->addWidget(m_others);
    content()->addWidget(m_totals);

    m_lastInRows = m_outdated->button();
    connect(m_add, &QPushButton::clicked, this, &LinesCard::addLine);
    connect(m_more, &QPushButton::clicked, this, [this] {
        m_most += atATime;
        refresh();
    });
    connect(m_outdated->button(), &QPushButton::clicked, this, [this] {
        if (m_id)
            m_model.invoices().updateLines(*m_id);
    });
    connect(m_others->button(), &QPushButton::clicked, this, [this] {
        if (const auto* const invoice = m_id ? m_model.invoice(*m_id) : nullptr)
            m_model.invoices().addJobs(*m_id, m_model.invoices().otherDelivered(*invoice));
    });
}

void LinesCard::show(const Base::Uuid& id)
{
    if (m_id != id)
        m_most = atATime;
    m_id = id;
    refresh();
}

void LinesCard::refresh()
{
    const auto* const invoice = m_id ? m_model.invoice(*m_id) : nullptr;
    if (!invoice)
        return;
    const auto count = std::min(invoice->lines.size(), m_most);
    const bool isDraft = !invoice->isIssued();
    showDraftLines(*invoice, isDraft ? count : 0);
    showLockedLines(*invoice, isDraft ? 0 : count);
    m_heads->setVisible(isDraft && count > 0 && isWide());
    m_none->setVisible(count == 0);
    m_lines->setVisible(count > 0);
    m_lines->layout()->setSpacing(isDraft ? Space::medium : 0);
    const auto left = invoice->lines.size() - count;
    m_more->setText(QStringLiteral("Show %1 More").arg(std::min(left, atATime)));
    m_more->setVisible(left > 0);
    m_add->setVisible(isDraft);
    m_add->setEnabled(m_model.canEdit());
    m_add->setToolTip(qt(m_model.readOnlyText()));
    showRemarks(*invoice);
    showTotals(*invoice);
}

void LinesCard::showDraftLines(const Invoice& invoice, std::size_t count)
{
    while (m_rows.size() < count) {
        auto* row = new LineRow(m_model, m_lines);
        row->setShape(shape());
        const auto place = m_rows.size();
        m_lines->layout()->addWidget(row);
        m_lastInRows = row->chainAfter(m_lastInRows);
        m_rows.push_back(row);
        connect(row, &LineRow::moveWanted, this, [this, place](int by) { move(place, by); });
        connect(row, &LineRow::removeWanted, this, [this, place] { remove(place); });
    }
    setTabOrder(m_lastInRows, m_add);
    setTabOrder(m_add, m_more);
    setTabOrder(m_more, m_others->button());
    for (std::size_t place = 0; place < m_rows.size(); ++place) {
        m_rows[place]->setVisible(place < count);
        if (place < count)
            m_rows[place]->show(
                invoice.id, invoice.lines[place], static_cast<int>(place), qt(invoice.currency));
    }
}

void LinesCard::showLockedLines(const Invoice& invoice, std::size_t count)
{
    while (m_locked.size() < count) {
        auto* line = new LockedLine(m_lines);
        m_lines->layout()->addWidget(line);
        m_locked.push_back(line);
        connect(line, &LockedLine::touched, this, [this, line] {
            if (m_id)
                explainLock(m_model, *m_id, line);
        });
    }
    for (std::size_t place = 0; place < m_locked.size(); ++place) {
        m_locked[place]->setVisible(place < count);
        if (place < count)
            m_locked[place]->show(m_model, invoice.lines[place], qt(invoice.currency));
    }
}

void LinesCard::showTotals(const Invoice& invoice)
{
    std::vector<std::pair<QString, Base::Decimal>> sums;
    if (!invoice.taxPercent.isZero()) {
        const auto label = invoice.taxLabel.empty() ? QStringLiteral("Tax") : qt(invoice.taxLabel);
        sums.emplace_back(QStringLiteral("Subtotal"), invoice.subtotal());
        sums.emplace_back(
            label + QLatin1Char(' ') + qt(m_model.formats().percent(invoice.taxPercent)), invoice.tax());
    }
    sums.emplace_back(QStringLiteral("Total %1").arg(qt(invoice.currency)), invoice.total());
    auto* grid = static_cast<QGridLayout*>(m_totals->layout());
    while (m_sums.size() < 3) {
        const int row = static_cast<int>(m_sums.size());
        auto* name = new Label(m_totals);
        auto* amount = new Label(m_totals);
        name->setTextFormat(Qt::PlainText);
        name->setWordWrap(true);
        name->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        grid->addWidget(name, row, 0);
        grid->addWidget(amount, row, 1, Qt::AlignRight);
        m_sums.emplace_back(name, amount);
    }
    for (std::size_t row = 0; row < m_sums.size(); ++row) {
        const auto& [name, amount] = m_sums[row];
        const bool isShown = row < sums.size(), isTotal = row + 1 == sums.size();
        name->setVisible(isShown);
        amount->setVisible(isShown);
        if (!isShown)
            continue;
        for (auto* label : { name, amount })
            label->setStyle(isTotal ? TextStyle::bodyStrong : TextStyle::body);
        name->setInk(isTotal ? Ink::text : Ink::muted);
        name->setText(sums[row].first);
        amount->setText(qt(m_model.formats().amount(sums[row].second, invoice.currency)));
        amount->setObjectName(isTotal ? QStringLiteral("linesTotal") : QString());
    }
    // Under the amounts: beside the fields of a draft stands its menu.
    const int right
        = !invoice.isIssued() && isWide() ? LineRow::widthOf(this, LineRow::acts) + Space::small : 0;
    grid->setContentsMargins(0, Space::small, right, 0);
}

void LinesCard::showRemarks(const Invoice& invoice)
{
    auto& invoices = m_model.invoices();
    const bool isDraft = !invoice.isIssued();
    m_outdated->setSentence(isDraft && invoices.linesAreOutdated(invoice)
            ? QStringLiteral("The jobs on this draft come to other lines by now.")
            : QString());
    const auto others = isDraft ? std::ssize(invoices.otherDelivered(invoice)) : 0;
    m_others->setSentence(others == 0 ? QString()
            : others == 1
            ? QStringLiteral("1 more delivered job of this client is not on this draft.")
            : QStringLiteral("%1 more delivered jobs of this client are not on this draft.").arg(others));
    for (auto* button : { m_outdated->button(), m_others->button() }) {
        button->setEnabled(m_model.canEdit());
        button->setToolTip(qt(m_model.readOnlyText()));
    }
}

void LinesCard::addLine()
{
    const auto* const invoice = m_id ? m_model.invoice(*m_id) : nullptr;
    if (!invoice || !commitFocusedField(window()) || !m_model.invoices().addLine(*m_id))
        return;
    m_most = std::max(m_most, m_model.invoice(*m_id)->lines.size());
    refresh();
    if (!m_rows.empty())
        m_rows[m_model.invoice(*m_id)->lines.size() - 1]->focusField(0);
}

void LinesCard::move(std::size_t row, int by)
{
    const int field = m_rows[row]->focusedField();
    const auto line = m_rows[row]->line();
    if (!m_id || !m_model.invoices().moveLine(*m_id, line, by))
        return;
    refresh();
    for (auto* other : m_rows) {
        if (other->isVisible() && other->line() == line)
            other->focusField(field);
    }
}

void LinesCard::remove(std::size_t row)
{
    if (!m_id || !m_model.invoices().removeLine(*m_id, m_rows[row]->line()))
        return;
    refresh();
    const auto* const invoice = m_model.invoice(*m_id);
    if (!invoice || invoice->lines.empty())
        m_add->setFocus(Qt::OtherFocusReason);
    else
        m_rows[std::min({ row, invoice->lines.size() - 1, m_rows.size() - 1 })]->focusField(0);
}

LineRow::Shape LinesCard::shape() const
{
    const auto& theme = Theme::of(this);
    return width() >= theme.scaled(wideFrom)  ? LineRow::Shape::wide
        : width() >= theme.scaled(narrowFrom) ? LineRow::Shape::narrow
                                              : LineRow::Shape::narrowest;
}

void LinesCard::resizeEvent(QResizeEvent* event)
{
    Card::resizeEvent(event);
    for (int place = 0; place < m_heads->layout()->count(); ++place) {
        if (place > 0)
            m_heads->layout()->itemAt(place)->widget()->setFixedWidth(
                LineRow::widthOf(this, static_cast<LineRow::Column>(place)));
    }
    if (std::exchange(m_shape, shape()) == shape())
        return;
    for (auto* row : m_rows)
        row->setShape(shape());
    refresh();
}

} // namespace Pallisande
