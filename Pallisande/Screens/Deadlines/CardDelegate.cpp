#include "Pallisande/Screens/Deadlines/CardDelegate.h"

#include "Pallisande/Widgets/Chip.h"
#include "Pallisande/Widgets/FocusRing.h"
#include "Pallisande/Widgets/Painting.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QToolTip>

#include <algorithm>

namespace Pallisande {

namespace {

constexpr int padding = Space::medium, leastHeight = 116, chipHeight = 20;

// A line at the top of what is left, which it is taken from.
QRectF takeLine(QRectF& left, double height)
{
    const QRectF line(left.left(), left.top(), left.width(), height);
    left.setTop(line.bottom());
    return line;
}

} // namespace

int CardDelegate::height(const Theme& theme, bool hasTwoZones)
{
    const int small = theme.lineHeight(TextStyle::small), body = theme.lineHeight(TextStyle::body);
    const int lines = theme.lineHeight(TextStyle::bodyStrong) + small + body
        + std::max(theme.scaled(chipHeight), body) + Space::small;
    return std::max(theme.scaled(leastHeight), lines + 2 * padding) + (hasTwoZones ? small : 0);
}

void CardDelegate::paint(
    QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const auto& theme = Theme::of(option.widget);
    const auto& colours = theme.colours;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const QRectF card(option.rect);
    const bool isSelected = option.state & QStyle::State_Selected;
    const bool isActive = option.state & QStyle::State_Active;
    auto fill = colours.card;
    if (isSelected)
        fill = isActive ? colours.select : colours.selectInactive;
    else if (option.state & QStyle::State_MouseOver)
        fill = colours.hover;
    drawSurface(*painter, card, Radius::card, fill, colours.border, hairline(*painter));
    const bool hasFocus
        = option.state & QStyle::State_HasFocus && option.state & QStyle::State_KeyboardFocusChange;
    if (index.data(dropRole).toBool())
        drawSurface(*painter, card, Radius::card, blend(fill, colours.accent, 0.08), colours.accent, 2);
    else if (hasFocus)
        drawSurface(*painter, card, Radius::card, Qt::transparent, colours.accent, FocusRing::width);

    auto left = card.adjusted(padding, padding, -padding, -padding);
    auto title = takeLine(left, theme.lineHeight(TextStyle::bodyStrong));
    if (!index.data(warningRole).toString().isEmpty()) {
        const double side = theme.scaled(14);
        drawIcon(*painter, Icon::warning,
            QRectF(title.right() - side, title.center().y() - side / 2, side, side),
            colours.tone(Tone::amber).text);
        title.setRight(title.right() - side - Space::small);
    }
    const bool isUntitled = index.data(placeholderRole).toBool();
    auto font = theme.font(isUntitled ? TextStyle::body : TextStyle::bodyStrong);
    font.setItalic(isUntitled);
    painter->setFont(font);
    painter->setPen(isUntitled ? colours.muted : colours.text);
    drawLine(*painter, title, index.data(titleRole).toString());
    painter->setFont(theme.font(TextStyle::small));
    painter->setPen(colours.muted);
    drawLine(*painter, takeLine(left, theme.lineHeight(TextStyle::small)), index.data(detailRole).toString());

    auto due = takeLine(left, theme.lineHeight(TextStyle::body));
    const bool isOverdue = index.data(overdueRole).toBool();
    const auto nearness = index.data(nearnessRole).toString();
    painter->setFont(theme.font(TextStyle::body));
    const double width = painter->fontMetrics().horizontalAdvance(nearness) + 1;
    painter->setPen(isOverdue ? colours.tone(Tone::red).text : colours.muted);
    drawLine(*painter, due, nearness, Qt::AlignRight | Qt::AlignVCenter);
    if (isOverdue) {
        const double side = theme.scaled(14);
        drawIcon(*painter, Icon::warning, QRectF(due.left(), due.center().y() - side / 2, side, side),
            colours.tone(Tone::red).text);
        due.setLeft(due.left() + side + Space::tiny);
    }
    due.setRight(due.right() - width - Space::small);
    painter->setPen(isOverdue ? colours.tone(Tone::red).text : colours.text);
    drawLine(*painter, due, index.data(dueRole).toString());
    if (const auto here = index.data(dueHereRole).toString(); !here.isEmpty()) {
        painter->setFont(theme.font(TextStyle::small));
        painter->setPen(colours.muted);
        drawLine(*painter, takeLine(left, theme.lineHeight(TextStyle::small)), here);
    }

    const double footHeight = std::max<double>(theme.scaled(chipHeight), theme.lineHeight(TextStyle::body));
    const QRectF foot(left.left(), card.bottom() - padding - footHeight, left.width(), footHeight);
    if (const auto chip = index.data(chipRole); chip.canConvert<Chip>()) {
        const auto size = chip.value<Chip>().size(theme);
        chip.value<Chip>().paint(
            *painter, QPointF(foot.left(), foot.center().y() - size.height() / 2.0), theme);
    }
    painter->setFont(theme.font(TextStyle::body));
    painter->setPen(colours.text);
    drawFigures(*painter, foot, Qt::AlignRight | Qt::AlignVCenter, index.data(figureRole).toString());
    painter->restore();
}

bool CardDelegate::helpEvent(
    QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option, const QModelIndex& index)
{
    if (event->type() != QEvent::ToolTip || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    QStringList whole { index.data(titleRole).toString(), index.data(detailRole).toString() };
    if (const auto warning = index.data(warningRole).toString(); !warning.isEmpty())
        whole += warning;
    QToolTip::showText(event->globalPos(), whole.join(QLatin1Char('\n')), view);
    return true;
}

} // namespace Pallisande
