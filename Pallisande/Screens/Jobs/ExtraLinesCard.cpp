#include "Pallisande/Screens/Jobs/ExtraLinesCard.h"

#include "Pallisande/Screens/Jobs/ExtraLineRow.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/Label.h"

#include <QVBoxLayout>

#include <algorithm>

namespace Pallisande {

namespace {

constexpr int leastWideWidth = 560; // For all fields of a line beside each other.

} // namespace

ExtraLinesCard::ExtraLinesCard(const ScreenServices& services, QWidget* parent)
    : JobCard(QStringLiteral("Extra lines"), services, parent)
    , m_heads(new QWidget(this))
    , m_list(new QVBoxLayout)
    , m_add(makeButton(QStringLiteral("Add a Line"), Icon::plus, ButtonKind::plain, this))
{
    m_add->setObjectName(QStringLiteral("addExtra"));
    auto* heads = new QHBoxLayout(m_heads);
    heads->setContentsMargins(Space::small, 0, 0, 0);
    heads->setSpacing(Space::small);
    for (const auto* text : { "Title", "Quantity", "Unit", "Unit price", "Amount", "" }) {
        auto* head = new Label(QString::fromUtf8(text), m_heads, TextStyle::tableHead, Ink::muted);
        const bool isFigure = heads->count() == 1 || heads->count() >= 3;
        head->setAlignment(isFigure ? Qt::AlignRight : Qt::AlignLeft);
        head->setIndent(heads->count() >= 1 && heads->count() <= 3 ? Space::small : 0);
        heads->addWidget(head, heads->count() == 0 ? 1 : 0);
    }
    m_list->setSpacing(Space::small);
    content()->addWidget(m_heads);
    content()->addLayout(m_list);
    content()->addWidget(m_add, 0, Qt::AlignLeft);
    connect(m_add, &QPushButton::clicked, this, [this] {
        if (commitFocusedField(window()))
            addLine();
    });
}

void ExtraLinesCard::revert()
{
    for (auto* row : m_rows)
        row->revert();
}

void ExtraLinesCard::addLine()
{
    if (!model().jobs().addExtra(id(), { .quantity = 1 }))
        return;
    const auto count = job()->extras.size();
    if (count > 0 && count <= m_rows.size())
        m_rows[count - 1]->field(ExtraLineRow::title)->setFocus(Qt::TabFocusReason);
}

ExtraLineRow* ExtraLinesCard::addRow()
{
    auto* row = new ExtraLineRow(this);
    m_list->addWidget(row);
    m_rows.push_back(row);
    connect(row, &ExtraLineRow::committed, this, [this, row](int column) {
        const auto at = static_cast<ExtraLineRow::Column>(column);
        if (!model().jobs().editExtra(id(), row->id(), [&](ExtraLine& line) { row->take(at, line); }))
            row->field(at)->setProblem(model().problem() ? qt(model().problem()->text) : QString());
    });
    connect(row, &ExtraLineRow::removeWanted, this, [this, row] {
        commitFocusedField(window());
        model().jobs().removeExtra(id(), row->id());
        m_add->setFocus(Qt::OtherFocusReason);
    });
    connect(row, &ExtraLineRow::nextWanted, this, &ExtraLinesCard::addLine);
    connect(row, &ExtraLineRow::moveWanted, this, [this, row](int column, int by) {
        const auto line = row->id();
        if (row->field(ExtraLineRow::title)->isReadOnly() || !model().jobs().moveExtra(id(), line, by))
            return;
        for (auto* moved : m_rows) {
            if (moved->id() == line)
                moved->field(static_cast<ExtraLineRow::Column>(column))->setFocus(Qt::TabFocusReason);
        }
    });
    return row;
}

void ExtraLinesCard::refresh()
{
    const auto& extras = job()->extras;
    const auto price = model().jobs().price(*job());
    const auto lock = lockReason();
    while (m_rows.size() < extras.size())
        addRow();
    for (std::size_t at = 0; at < m_rows.size(); ++at) {
        m_rows[at]->setVisible(at < extras.size());
        m_rows[at]->setLast(at + 1 == extras.size());
        if (at >= extras.size())
            continue;
        const auto amount = at < price.extras.size()
            ? qt(model().formats().amount(price.extras[at].amount, price.currency))
            : QStringLiteral("–");
        m_rows[at]->show(extras[at], amount, lock);
    }
    m_add->setEnabled(lock.isEmpty());
    m_add->setToolTip(lock);
    showColumns();
}

void ExtraLinesCard::resizeEvent(QResizeEvent* event)
{
    JobCard::resizeEvent(event);
    showColumns();
}

void ExtraLinesCard::showColumns()
{
    const auto& theme = Theme::of(this);
    const bool isNarrow = width() < theme.scaled(leastWideWidth);
    const auto shown
        = std::count_if(m_rows.begin(), m_rows.end(), [](const auto* row) { return !row->isHidden(); });
    m_heads->setVisible(!isNarrow && shown > 0);
    for (auto* row : m_rows)
        row->setNarrow(isNarrow);
    const int widths[] { 0, 80, 88, 88, 88, 0 };
    for (int at = 1; at < 5; ++at)
        m_heads->layout()->itemAt(at)->widget()->setFixedWidth(theme.scaled(widths[at]));
    const auto* const remove = m_rows.empty() ? nullptr : m_rows.front()->findChild<QToolButton*>();
    m_heads->layout()->itemAt(5)->widget()->setFixedWidth(remove ? remove->sizeHint().width() : 0);
}

} // namespace Pallisande
