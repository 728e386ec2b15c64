#include "Pallisande/Widgets/FormLayout.h"

#include "Pallisande/Widgets/Icons.h"
#include "Pallisande/Widgets/LineField.h"

#include <QEvent>
#include <QGridLayout>
#include <QPainter>
#include <QTimer>

namespace Pallisande {

namespace {

constexpr int labelWidth = 140, hintMilliseconds = 4000;

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
    layout()->setContentsMargins(
        m_isProblem ? Theme::of(this).iconSize() + Space::tiny : 0, Space::tiny, 0, 0);
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
    layout()->setContentsMargins(0, Space::tiny, 0, 0);
    m_sentence->setText(sentence);
    m_sentence->setInk(Ink::muted);
    setVisible(!sentence.isEmpty());
    m_hintEnds->start();
    announce(m_sentence, sentence);
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
    label->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto* note = new FieldNote(field, this);

    auto* cell = new QVBoxLayout; // The field's place doesn't move when its note appears.
    cell->setSpacing(0);
    cell->addWidget(field, 0, width == Width::natural ? Qt::AlignLeft : Qt::Alignment());
    cell->addWidget(note);
    const int row = m_grid->rowCount();
    // The label stands beside the first line of a field of several.
    m_grid->addWidget(label, row, 0, Qt::AlignTop);
    m_grid->addLayout(cell, row, 1);
    m_rows.push_back({ label, field, note, cell });
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
    cell->addSpacing(Space::tiny);
    cell->addWidget(widget, 0, qobject_cast<Label*>(widget) ? Qt::Alignment() : Qt::AlignLeft);
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

void FormLayout::measure()
{
    const auto& theme = Theme::of(this);
    m_grid->setColumnMinimumWidth(0, theme.scaled(labelWidth));
    for (const auto& row : m_rows) {
        row.label->setMinimumHeight(theme.controlHeight());
        row.label->setFixedWidth(theme.scaled(labelWidth));
    }
}

} // namespace Pallisande
