#include "Pallisande/Widgets/RowDelegate.h"

#include "Pallisande/Widgets/Chip.h"
#include "Pallisande/Widgets/FocusRing.h"
#include "Pallisande/Widgets/Painting.h"

#include <QAbstractItemView>
#include <QHelpEvent>
#include <QToolTip>

#include <algorithm>

namespace Pallisande {

namespace {

constexpr int rowHeight = 64, paddingAcross = 12, paddingAlong = 10;
constexpr int large = 140; // A size of the text at which figure and chip have a line of their own.

// Where the parts of a row stand.
struct Places {
    QRectF title, figure, warning, detail, chip;
};

bool isTall(const Theme& theme) { return theme.textSize() >= large; }

// A client’s name gives way before the languages and the day behind it do.
QString shownDetail(const QModelIndex& index, const QFontMetricsF& metrics, double room)
{
    const auto whole = index.data(detailRole).toString(), elidable = index.data(elidableRole).toString();
    if (elidable.isEmpty() || !whole.startsWith(elidable) || metrics.horizontalAdvance(whole) <= room)
        return whole;
    auto rest = whole.mid(elidable.size());
    const double left = room - metrics.horizontalAdvance(rest);
    if (left >= 4 * metrics.averageCharWidth())
        return metrics.elidedText(elidable, Qt::ElideRight, left) + rest;
    while (rest.startsWith(QLatin1Char(' ')) || rest.startsWith(QStringLiteral("·")))
        rest.remove(0, 1);
    return rest;
}

QFont titleFont(const Theme& theme, const QModelIndex& index)
{
    auto font = theme.font(TextStyle::bodyStrong);
    if (index.data(placeholderRole).toBool()) {
        font.setWeight(QFont::Normal);
        font.setItalic(true);
    }
    return font;
}

// Title, detail, and below them chip and figure.
Places tallPlaces(const QRectF& inner, const Theme& theme, const QModelIndex& index, double figureWidth)
{
    const double strong = QFontMetricsF(theme.font(TextStyle::bodyStrong)).height(),
                 small = QFontMetricsF(theme.font(TextStyle::small)).height();
    Places places;
    places.title = QRectF(inner.left(), inner.top(), inner.width(), strong);
    places.detail = QRectF(inner.left(), places.title.bottom() + 1, inner.width(), small);
    const double top = places.detail.bottom() + Space::tiny;
    places.figure = QRectF(inner.right() - figureWidth, top, figureWidth, inner.bottom() - top);
    if (!index.data(warningRole).toString().isEmpty()) {
        const double side = theme.scaled(14);
        places.warning = QRectF(inner.right() - side, places.title.center().y() - side / 2, side, side);
        places.title.setRight(places.warning.left() - Space::small);
    }
    if (const auto chip = index.data(chipRole); chip.canConvert<Chip>()) {
        const QSizeF size = chip.value<Chip>().size(theme);
        places.chip = QRectF(
            inner.left(), places.figure.center().y() - size.height() / 2, size.width(), size.height());
        places.chip.setRight(std::min(places.chip.right(), places.figure.left() - Space::small));
    }
    return places;
}

Places placesOf(const QRectF& row, const Theme& theme, const QModelIndex& index)
{
    const auto inner = row.adjusted(paddingAcross, paddingAlong, -paddingAcross, -paddingAlong);
    const double middle = inner.center().y();
    Places places;
    const auto figure = index.data(figureRole).toString();
    const double figureWidth
        = std::min(figuresWidth(theme.font(TextStyle::body), figure) + 1, inner.width() * 0.6);
    if (isTall(theme))
        return tallPlaces(inner, theme, index, figureWidth);
    places.figure = QRectF(inner.right() - figureWidth, inner.top(), figureWidth, middle - inner.top());
    double right = figure.isEmpty() ? inner.right() : places.figure.left() - Space::small;
    if (!index.data(warningRole).toString().isEmpty()) {
        const double side = theme.scaled(14);
        places.warning = QRectF(right - side, places.figure.center().y() - side / 2, side, side);
        right = places.warning.left() - Space::small;
    }
    places.title = QRectF(inner.left(), inner.top(), right - inner.left(), middle - inner.top());
    right = inner.right();
    if (const auto chip = index.data(chipRole); chip.canConvert<Chip>()) {
        const QSizeF size = chip.value<Chip>().size(theme);
        places.chip
            = QRectF(QPointF(right - size.width(), (middle + inner.bottom() - size.height()) / 2 + 1), size);
        right = places.chip.left() - Space::small;
    }
    places.detail = QRectF(inner.left(), middle + 1, right - inner.left(), inner.bottom() - middle);
    return places;
}

} // namespace

RowDelegate::RowDelegate(QObject* parent)
    : QStyledItemDelegate(parent)
{
}

QSize RowDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex&) const
{
    const auto& theme = Theme::of(option.widget);
    const int small = QFontMetrics(theme.font(TextStyle::small)).height();
    const int lines = QFontMetrics(theme.font(TextStyle::bodyStrong)).height()
        + std::max(small, theme.scaled(20)) + (isTall(theme) ? small + Space::small : 0);
    return { 0, std::max(theme.scaled(rowHeight), lines + 2 * paddingAlong) };
}

void RowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const
{
    const auto& theme = Theme::of(option.widget);
    const auto& colours = theme.colours;
    const QRectF row(option.rect);
    painter->save();
    auto panel = option;
    initStyleOption(&panel, index);
    option.widget->style()->drawPrimitive(QStyle::PE_PanelItemViewItem, &panel, painter, option.widget);
    const bool isSelected = option.state & QStyle::State_Selected;
    if (!isSelected)
        drawLineBelow(*painter, row.adjusted(paddingAcross, 0, 0, 0), colours.border);
    if (index.data(dropRole).toBool())
        drawSurface(*painter, row.adjusted(2, 2, -2, -2), Radius::field,
            blend(colours.content, colours.accent, 0.08), colours.accent, 2);

    const auto places = placesOf(row, theme, index);
    painter->setFont(titleFont(theme, index));
    painter->setPen(index.data(placeholderRole).toBool() ? colours.muted : colours.text);
    drawLine(*painter, places.title, index.data(titleRole).toString());
    painter->setFont(theme.font(TextStyle::body));
    painter->setPen(colours.text);
    drawFigures(
        *painter, places.figure, Qt::AlignRight | Qt::AlignVCenter, index.data(figureRole).toString());
    if (!places.warning.isEmpty())
        drawIcon(*painter, Icon::warning, places.warning, colours.tone(Tone::amber).text);
    painter->setFont(theme.font(TextStyle::small));
    painter->setPen(colours.muted);
    const auto detail = shownDetail(index, QFontMetricsF(painter->font()), places.detail.width());
    drawLine(*painter, places.detail, detail);
    if (!places.chip.isEmpty()) {
        auto chip = index.data(chipRole).value<Chip>();
        if (const double excess = chip.size(theme).width() - places.chip.width(); excess > 0) {
            const QFontMetricsF metrics(painter->font());
            chip.word = metrics.elidedText(
                chip.word, Qt::ElideRight, metrics.horizontalAdvance(chip.word) - excess);
        }
        chip.paint(*painter, places.chip.topLeft(), theme);
    }
    if (option.state & QStyle::State_HasFocus && option.state & QStyle::State_KeyboardFocusChange)
        drawSurface(*painter, row.adjusted(2, 2, -2, -2), Radius::field, Qt::transparent, colours.accent,
            FocusRing::width);
    painter->restore();
}

bool RowDelegate::helpEvent(
    QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option, const QModelIndex& index)
{
    if (event->type() != QEvent::ToolTip || !index.isValid())
        return QStyledItemDelegate::helpEvent(event, view, option, index);
    const auto& theme = Theme::of(view);
    const auto places = placesOf(option.rect, theme, index);
    QStringList whole;
    const auto title = index.data(titleRole).toString(), detail = index.data(detailRole).toString();
    if (QFontMetricsF(titleFont(theme, index)).horizontalAdvance(title) > places.title.width())
        whole += title;
    if (QFontMetricsF(theme.font(TextStyle::small)).horizontalAdvance(detail) > places.detail.width())
        whole += detail;
    if (const auto warning = index.data(warningRole).toString(); !warning.isEmpty())
        whole += warning;
    QToolTip::showText(event->globalPos(), whole.join(QLatin1Char('\n')), view);
    return true;
}

} // namespace Pallisande
