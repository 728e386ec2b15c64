#include "Pallisande/Widgets/Card.h"

#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/FocusRing.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/Painting.h"

#include <QEvent>
#include <QHBoxLayout>

namespace Pallisande {

Card::Card(QWidget* parent)
    : Card(QString(), parent)
{
}

Card::Card(const QString& heading, QWidget* parent)
    : QWidget(parent)
    , m_heading(new Label(this, TextStyle::heading))
    , m_head(new QHBoxLayout)
    , m_content(new QVBoxLayout)
{
    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(Space::large, Space::medium, Space::large - Space::small, Space::large);
    box->setSpacing(Space::medium);
    m_head->setContentsMargins(0, 0, Space::small, 0);
    m_head->setSpacing(Space::small);
    m_head->addWidget(m_heading, 1);
    box->addLayout(m_head);
    m_content->setContentsMargins(0, 0, Space::small, 0);
    m_content->setSpacing(Space::small);
    box->addLayout(m_content);
    FocusRing::setCorner(this, Radius::card); // Where a page makes it focusable.
    setHeading(heading);
    dress();
}

void Card::addToHeading(QWidget* widget)
{
    // The text or icon of a quiet button stands at the margin, not its invisible edge.
    const bool isQuiet = qobject_cast<QAbstractButton*>(widget) && kindOf(widget) == ButtonKind::quiet;
    m_head->setContentsMargins(0, 0, isQuiet ? 0 : Space::small, 0);
    m_head->addWidget(widget);
}

void Card::setHeading(const QString& heading)
{
    m_heading->setText(heading);
    m_heading->setVisible(!heading.isEmpty());
    setAccessibleName(heading);
}

void Card::setMarked(bool isMarked)
{
    m_isMarked = isMarked;
    update();
}

void Card::paintEvent(QPaintEvent*)
{
    const auto& colours = Theme::of(this).colours;
    QPainter painter(this);
    if (m_isMarked)
        drawSurface(
            painter, rect(), Radius::card, blend(colours.card, colours.accent, 0.06), colours.accent, 2);
    else
        drawSurface(painter, rect(), Radius::card, colours.card, colours.border, hairline(painter));
}

void Card::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        dress();
}

void Card::dress()
{
    const auto& theme = Theme::of(this);
    setPalette(theme.palette(theme.colours.card));
}

} // namespace Pallisande
