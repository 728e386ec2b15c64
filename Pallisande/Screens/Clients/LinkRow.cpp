#include "Pallisande/Screens/Clients/LinkRow.h"

#include "Pallisande/Widgets/FocusRing.h"
#include "Pallisande/Widgets/Painting.h"

#include <QHelpEvent>
#include <QKeyEvent>
#include <QToolTip>

namespace Pallisande {

LinkRow::LinkRow(QWidget* parent)
    : QAbstractButton(parent)
{
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
    setAttribute(Qt::WA_Hover);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    FocusRing::setCorner(this, Radius::field);
}

void LinkRow::setContent(const Content& content)
{
    if (content == m_content)
        return;
    m_content = content;
    setAccessibleName(content.spoken);
    update();
}

QSize LinkRow::sizeHint() const
{
    const auto& theme = Theme::of(this);
    const int text = QFontMetrics(theme.font(TextStyle::body)).height() + Space::small;
    return { theme.scaled(280), std::max(theme.scaled(32), text) };
}

// Title and detail share what chip and figure leave over.
void LinkRow::paintEvent(QPaintEvent*)
{
    const auto& theme = Theme::of(this);
    const auto& colours = theme.colours;
    QPainter painter(this);
    QRectF area(rect());
    const auto body = theme.font(TextStyle::body), small = theme.font(TextStyle::small);
    painter.setFont(body);
    painter.setPen(colours.text);
    const double figure
        = std::max(figuresWidth(body, m_content.figure), static_cast<double>(theme.scaled(110)));
    drawFigures(painter, QRectF(area.right() - figure, area.top(), figure, area.height()),
        Qt::AlignRight | Qt::AlignVCenter, m_content.figure);
    area.setRight(area.right() - figure - Space::small);
    const auto chip = m_content.chip.size(theme);
    const double chips = theme.scaled(104); // They stand in a column of their own.
    const double chipLeft = area.right() - std::max(chips, static_cast<double>(chip.width()));
    m_content.chip.paint(painter, { chipLeft, (height() - chip.height()) / 2.0 }, theme);
    area.setRight(chipLeft - Space::small);
    const double wanted = QFontMetricsF(body).horizontalAdvance(m_content.title) + 1;
    const double title = std::min(wanted, std::max(area.width() * 0.55, area.width() - theme.scaled(160)));
    painter.setPen(colours.accent);
    auto link = body;
    link.setUnderline(underMouse());
    painter.setFont(link);
    drawLine(painter, QRectF(area.left(), area.top(), title, area.height()), m_content.title);
    area.setLeft(area.left() + title + Space::medium);
    painter.setFont(small);
    painter.setPen(colours.muted);
    if (area.width() > theme.scaled(32))
        drawLine(painter, area, m_content.detail, Qt::AlignLeft | Qt::AlignVCenter, Qt::ElideRight);
}

bool LinkRow::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) {
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), m_content.spoken, this);
        return true;
    }
    return QAbstractButton::event(event);
}

void LinkRow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        click();
    else
        QAbstractButton::keyPressEvent(event);
}

} // namespace Pallisande
