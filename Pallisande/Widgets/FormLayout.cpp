#include "Pallisande/Widgets/FormLayout.h"

#include "Pallisande/Widgets/Icons.h"
#include "Pallisande/Widgets/LineField.h"

#include <QEvent>
#include <QGridLayout>
#include <QPainter>
#include <QTimer>

namespace Pallisande {

namespace {

constexpr int labelWidth = 140, leastFieldWidth = 200, hintMilliseconds = 4000;

} // namespace

FieldNote::FieldNote(QWidget* field, QWidget* parent)
    : QWidget(parent)
    , m_field(field)
    , m_sentence(makeSentence({}, this, TextStyle::small, Ink::muted))
    , m_hintEnds(new QTimer(this))
    , m_ownDescription(field->accessibleDescription())
{
    auto* box = new QHBoxLayout(this);
    box->setContentsMargins(0, Space::tiny, 0, 0);
    box->addWidget(m_sentence, 1);
    m_hintEnds->setSingleShot(true);
    m_hintEnds->setInterval(hintMilliseconds);
    connect(m_hintEnds, &QTimer::timeout, this, &QWidget::hide);
    hide();
}

void FieldNote::showProblem(const QString& sentence)
{
    m_hintEnds->stop();
    m_isProblem = !sentence.isEmpty();
    m_sentence->setText(sentence);
    m_sentence->setInk(Ink::red);
    dress();
    setVisible(m_isProblem);
    m_field->setAccessibleDescription(m_ownDescription.isEmpty() || sentence.isEmpty()
            ? m_ownDescription + sentence
            : sentence + QLatin1Char(' ') + m_ownDescription);
    announce(m_sentence, sentence);
}

void FieldNote::showHint(const QString& sentence)
{
    if (m_isProblem)
        return;
    dress();
    m_sentence->setText(sentence);
    m_sentence->setInk(Ink::muted);
    setVisible(!sentence.isEmpty());
    m_hintEnds->start();
    announce(m_sentence, sentence);
}

void FieldNote::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        dress();
}

void FieldNote::dress()
{
    const int icon = m_isProblem ? Theme::of(this).iconSize() + Space::tiny : 0;
    layout()->setContentsMargins(icon, Space::tiny, 0, 0);
}

void FieldNote::paintEvent(QPaintEvent*)
{
    if (!m_isProblem)
        return;
    const auto& theme = Theme::of(this);
    QPainter painter(this);
    const int size = theme.scaled(14), line = m_sentence->fontMetrics().height();
    const int left = layoutDirection() == Qt::RightToLeft ? width() - size : 0;
    drawIcon(painter, Icon::warning, QRectF(left, Space::tiny + (line - size) / 2.0, size, size),
        theme.colours.tone(Tone::red).text);
}

FormLayout::FormLayout(QWidget* parent)
    : QWidget(parent)
    , m_grid(new QGridLayout(this))
{
    m_grid->setContentsMargins(0, 0, 0, 0);
    m_grid->setHorizontalSpacing(Space::medium);
    m_grid->setVerticalSpacing(Space::small);
    m_grid->setColumnStretch(1, 1);
    measure();
}

FieldNote* FormLayout::addRow(const QString& text, QWidget* field, Width width)
{
    // A field may be several in a row, a day and a time; a label leads to the first of them.
    auto lines = field->findChildren<LineField*>();
    if (auto* line = qobject_cast<LineField*>(field))
        lines.prepend(line);
    const auto name = QString(text).remove(QLatin1Char('&'));
    for (auto* line : lines)
        if (line->accessibleName().isEmpty())
            line->setAccessibleName(name);
    if (field->accessibleName().isEmpty())
        field->setAccessibleName(name);
    auto* label = new Label(text, this, TextStyle::body, Ink::muted);
    label->setBuddy(lines.isEmpty() ? field : lines.first());
    label->setWordWrap(true);
    auto* note = new FieldNote(field, this);

    auto* cell = new QVBoxLayout; // The field's place doesn't move when its note appears.
    cell->setSpacing(0);
    cell->addWidget(field, 0, width == Width::natural ? Qt::AlignLeft : Qt::Alignment());
    cell->addWidget(note);
    m_rows.push_back({ label, field, note, cell });
    place(m_rows.size() - 1);
    measure();

    for (auto* line : lines) {
        connect(line, &LineField::problemChanged, note, &FieldNote::showProblem);
        connect(line, &LineField::hintChanged, note, &FieldNote::showHint);
    }
    return note;
}

void FormLayout::addBelow(QWidget* widget)
{
    auto* cell = m_rows.back().cell;
    auto* label = qobject_cast<Label*>(widget);
    if (label)
        label->setContentsMargins(0, Space::tiny, 0, 0); // Which goes when it is hidden.
    else
        cell->addSpacing(Space::tiny);
    cell->addWidget(widget, 0, label ? Qt::Alignment() : Qt::AlignLeft);
}

void FormLayout::addBelow(const QString& explanation)
{
    addBelow(makeSentence(explanation, this, TextStyle::small, Ink::muted));
}

void FormLayout::setRowVisible(QWidget* field, bool isVisible)
{
    for (const auto& row : m_rows)
        if (row.field == field) {
            row.label->setVisible(isVisible);
            row.field->setVisible(isVisible);
            row.note->setVisible(isVisible && row.note->isVisible());
        }
}

void FormLayout::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        measure();
}

void FormLayout::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    if (isVisible()) // Before, it has widths that mean nothing.
        fit();
}

void FormLayout::showEvent(QShowEvent* event)
{
    fit();
    QWidget::showEvent(event);
}

void FormLayout::fit()
{
    const bool isNarrow = width() < Theme::of(this).scaled(labelWidth + leastFieldWidth);
    if (isNarrow == m_isNarrow)
        return;
    m_isNarrow = isNarrow;
    for (std::size_t row = 0; row < m_rows.size(); ++row)
        place(row);
    measure();
}

// In two lines of the grid, of which the second is empty when the label stands beside its field.
void FormLayout::place(std::size_t at)
{
    const auto& row = m_rows[at];
    const int line = static_cast<int>(2 * at);
    m_grid->removeWidget(row.label);
    m_grid->removeItem(row.cell);
    row.cell->setParent(nullptr);
    auto* label = qobject_cast<QLabel*>(row.label);
    if (m_isNarrow) {
        label->setAlignment(Qt::AlignLeft | Qt::AlignBottom);
        m_grid->addWidget(label, line, 0, 1, 2);
        m_grid->addLayout(row.cell, line + 1, 0, 1, 2);
    } else {
        label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        m_grid->addWidget(label, line, 0, Qt::AlignTop); // Beside the first line of a field of several.
        m_grid->addLayout(row.cell, line, 1);
    }
}

void FormLayout::measure()
{
    const auto& theme = Theme::of(this);
    const int width = theme.scaled(labelWidth);
    m_grid->setColumnMinimumWidth(0, m_isNarrow ? 0 : width);
    for (const auto& row : m_rows) {
        row.label->setMinimumHeight(m_isNarrow ? 0 : theme.controlHeight());
        row.label->setMinimumWidth(m_isNarrow ? 0 : width);
        row.label->setMaximumWidth(m_isNarrow ? QWIDGETSIZE_MAX : width);
    }
}

} // namespace Pallisande
