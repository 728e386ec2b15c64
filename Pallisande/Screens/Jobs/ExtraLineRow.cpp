#include "Pallisande/Screens/Jobs/ExtraLineRow.h"

#include "Pallisande/Screens/Jobs/JobCard.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/FormLayout.h"
#include "Pallisande/Widgets/NumberEdit.h"

#include <QGridLayout>
#include <QKeyEvent>

namespace Pallisande {

ExtraLineRow::ExtraLineRow(QWidget* parent)
    : QWidget(parent)
    , m_title(new TextField(this))
    , m_unit(new TextField(this))
    , m_quantity(new DecimalEdit(QLocale::system(), this))
    , m_price(new DecimalEdit(QLocale::system(), this))
    , m_amount(new Label(this))
    , m_remove(makeIconButton(Icon::trash, QStringLiteral("Remove this line"), this))
    , m_note(new FieldNote(m_title, this))
    , m_grid(new QGridLayout(this))
{
    m_grid->setContentsMargins(0, 0, 0, 0);
    m_grid->setHorizontalSpacing(Space::small);
    m_grid->setVerticalSpacing(Space::tiny);
    m_amount->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    m_price->setPlaces(2);
    const std::pair<Column, const char*> names[] { { title, "Title" }, { quantity, "Quantity" },
        { unit, "Unit" }, { unitPrice, "Unit price" } };
    for (const auto& [column, name] : names) {
        auto* shown = field(column);
        shown->setPlaceholderText(QString::fromUtf8(name));
        shown->setObjectName(QStringLiteral("extra") + QString::fromUtf8(name).remove(QLatin1Char(' ')));
        shown->installEventFilter(this);
        if (column == quantity || column == unitPrice)
            shown->setAlignment(Qt::AlignRight);
        connect(shown, &LineField::committed, this, [this, column = column] { emit committed(column); });
        connect(shown, &LineField::problemChanged, this, &ExtraLineRow::showProblem);
    }
    m_remove->setObjectName(QStringLiteral("removeExtra"));
    connect(m_remove, &QToolButton::clicked, this, &ExtraLineRow::removeWanted);
    for (int column = title; column < unitPrice; ++column)
        setTabOrder(field(Column(column)), field(Column(column + 1)));
    setTabOrder(m_price, m_remove);
    m_isNarrow = true;
    setNarrow(false);
    dress();
}

LineField* ExtraLineRow::field(Column column) const
{
    switch (column) {
    case title:
        return m_title;
    case quantity:
        return m_quantity;
    case unit:
        return m_unit;
    default:
        return m_price;
    }
}

void ExtraLineRow::take(Column column, ExtraLine& line) const
{
    switch (column) {
    case title:
        line.title = plain(m_title->value());
        break;
    case quantity:
        line.quantity = m_quantity->value().value_or(0);
        break;
    case unit:
        line.unit = plain(m_unit->value());
        break;
    default:
        line.unitPrice = m_price->value().value_or(0);
    }
}

void ExtraLineRow::revert()
{
    for (int column = 0; column < columnCount; ++column)
        field(Column(column))->revert();
}

void ExtraLineRow::show(const ExtraLine& line, const QString& amount, const QString& lockReason)
{
    if (line.id != m_id)
        revert();
    m_id = line.id;
    m_title->setValue(qt(line.title));
    m_quantity->setValue(line.quantity);
    m_unit->setValue(qt(line.unit));
    m_price->setValue(line.unitPrice);
    m_amount->setText(amount);
    const auto name = line.title.empty() ? QStringLiteral("extra line") : qt(line.title);
    for (int column = 0; column < columnCount; ++column) {
        auto* shown = field(Column(column));
        shown->setAccessibleName(shown->placeholderText() + QStringLiteral(" of ") + name);
        setLocked(shown, lockReason);
    }
    m_amount->setAccessibleName(QStringLiteral("Amount ") + amount);
    m_remove->setAccessibleName(QStringLiteral("Remove ") + name);
    m_remove->setEnabled(lockReason.isEmpty());
    m_remove->setToolTip(lockReason.isEmpty() ? QStringLiteral("Remove this line") : lockReason);
    dress(); // The amount may be wider than before.
}

bool ExtraLineRow::isBlank() const
{
    return m_title->text().isEmpty() && m_price->value().value_or(0).isZero();
}

void ExtraLineRow::setNarrow(bool isNarrow)
{
    if (m_isNarrow == isNarrow)
        return;
    m_isNarrow = isNarrow;
    for (auto* widget :
        std::initializer_list<QWidget*> { m_title, m_quantity, m_unit, m_price, m_amount, m_remove, m_note })
        m_grid->removeWidget(widget);
    const int line = isNarrow ? 1 : 0, first = isNarrow ? 0 : 1;
    m_grid->addWidget(m_title, 0, 0, 1, isNarrow ? 5 : 1);
    m_grid->addWidget(m_quantity, line, first);
    m_grid->addWidget(m_unit, line, first + 1);
    m_grid->addWidget(m_price, line, first + 2);
    m_grid->addWidget(m_amount, line, first + 3);
    m_grid->addWidget(m_remove, line, first + 4);
    m_grid->addWidget(m_note, line + 1, 0, 1, first + 5);
    for (int column = 0; column < 6; ++column)
        m_grid->setColumnStretch(column, (isNarrow ? column < 4 : column == 0) ? 1 : 0);
    dress();
}

// Columns stand under each other, whatever the rows hold.
void ExtraLineRow::dress()
{
    const auto& theme = Theme::of(this);
    const std::pair<QWidget*, int> widths[] { { m_quantity, 80 }, { m_unit, 88 }, { m_price, 88 },
        { m_amount, 88 } };
    for (const auto& [widget, width] : widths) {
        widget->setMinimumWidth(m_isNarrow ? theme.scaled(40) : theme.scaled(width));
        widget->setMaximumWidth(m_isNarrow || widget == m_amount ? QWIDGETSIZE_MAX : theme.scaled(width));
    }
}

void ExtraLineRow::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        dress();
}

void ExtraLineRow::showProblem()
{
    QString problem;
    for (int column = 0; column < columnCount; ++column)
        problem = problem.isEmpty() ? field(Column(column))->problem() : problem;
    m_note->showProblem(problem);
}

bool ExtraLineRow::eventFilter(QObject* watched, QEvent* event)
{
    if (event->type() != QEvent::KeyPress)
        return QWidget::eventFilter(watched, event);
    const auto* const key = static_cast<QKeyEvent*>(event);
    const bool isUp = key->key() == Qt::Key_Up, isDown = key->key() == Qt::Key_Down;
    for (int column = 0; column < columnCount; ++column) {
        if (watched != field(Column(column)))
            continue;
        if ((isUp || isDown) && key->modifiers().testFlag(Qt::AltModifier)) {
            if (field(Column(column))->commit())
                emit moveWanted(column, isUp ? -1 : 1);
            return true;
        }
        // Whoever only walks by leaves the job as it is.
        if (column == unitPrice && m_isLast && key->key() == Qt::Key_Tab && !key->modifiers()
            && field(unitPrice)->isPending() && field(unitPrice)->commit() && !isBlank()) {
            emit nextWanted();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

} // namespace Pallisande
