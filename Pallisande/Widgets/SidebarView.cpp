#include "Pallisande/Widgets/SidebarView.h"

#include "Pallisande/Widgets/FocusRing.h"
#include "Pallisande/Widgets/Painting.h"
#include "Pallisande/Widgets/Theme.h"

#include <QEvent>
#include <QStandardItemModel>
#include <QStyledItemDelegate>

#include <algorithm>

namespace Pallisande {

namespace {

enum Role { iconRole = Qt::UserRole, badgeRole, alarmRole, busyRole };
constexpr int rowHeight = 36, ringTurn = 90; // Milliseconds between its twelve places.

} // namespace

class SidebarDelegate : public QStyledItemDelegate {
public:
    explicit SidebarDelegate(SidebarView* view)
        : QStyledItemDelegate(view)
        , m_view(view)
    {
    }

    int turn = 0; // Of busy rings, in twelfths.

    QSize sizeHint(const QStyleOptionViewItem&, const QModelIndex&) const override
    {
        const auto& theme = Theme::of(m_view);
        return { 0, std::max(theme.scaled(rowHeight), theme.lineHeight(TextStyle::body) + Space::medium) };
    }

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override
    {
        const auto& theme = Theme::of(m_view);
        const auto& colours = theme.colours;
        painter->save();
        const auto row = QRectF(option.rect).adjusted(Space::small, 1, -Space::small, -1);
        const bool isSelected = option.state & QStyle::State_Selected;
        if (isSelected)
            drawSurface(*painter, row, Radius::field,
                m_view->isActiveWindow() ? colours.select : colours.selectInactive);
        else if (option.state & QStyle::State_MouseOver)
            drawSurface(*painter, row, Radius::field, colours.hover);
        if (option.state & QStyle::State_HasFocus && option.state & QStyle::State_KeyboardFocusChange)
            drawSurface(*painter, row, Radius::field, Qt::transparent, colours.accent, FocusRing::width);

        const double side = theme.scaled(18);
        QRectF icon(row.left() + Space::medium, row.center().y() - side / 2, side, side);
        if (m_view->isNarrow())
            icon.moveCenter(row.center());
        drawIcon(
            *painter, Icon(index.data(iconRole).toInt()), icon, isSelected ? colours.accent : colours.muted);
        if (!m_view->isNarrow())
            paintWords(*painter, theme, row, icon.right() + Space::medium, index);
        else if (index.data(badgeRole).toInt() > 0)
            drawSurface(*painter, QRectF(icon.right() - 4, icon.top() - 4, 8, 8), 4,
                index.data(alarmRole).toBool() ? colours.tone(Tone::red).text : colours.muted);
        painter->restore();
    }

private:
    void paintWords(
        QPainter& painter, const Theme& theme, const QRectF& row, double left, const QModelIndex& index) const
    {
        const auto& colours = theme.colours;
        double right = row.right() - Space::medium;
        const int badge = index.data(badgeRole).toInt();
        if (index.data(busyRole).toBool()) {
            const double side = theme.scaled(14);
            painter.save();
            painter.translate(right - side / 2, row.center().y());
            painter.rotate(turn * 30);
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            drawIcon(painter, Icon::spinner, QRectF(-side / 2, -side / 2, side, side), colours.muted);
            painter.restore();
            right -= side + Space::small;
        } else if (badge > 0) {
            const auto figure = QString::number(badge);
            painter.setFont(theme.font(TextStyle::small));
            const double width = QFontMetricsF(painter.font()).horizontalAdvance(figure);
            if (index.data(alarmRole).toBool()) {
                const double height = theme.scaled(18), pill = std::max(width + 2 * Space::small - 2, height);
                const QRectF area(right - pill, row.center().y() - height / 2, pill, height);
                drawSurface(painter, area, height / 2, colours.tone(Tone::red).text);
                painter.setPen(colours.onAccent == QColor(Qt::white) ? colours.onAccent : colours.content);
                painter.drawText(area, Qt::AlignCenter, figure);
                right -= pill + Space::small;
            } else {
                painter.setPen(colours.muted);
                painter.drawText(
                    QRectF(right - width, row.top(), width, row.height()), Qt::AlignCenter, figure);
                right -= width + Space::small;
            }
        }
        painter.setFont(theme.font(TextStyle::body));
        painter.setPen(colours.text);
        drawLine(painter, QRectF(left, row.top(), right - left, row.height()), index.data().toString(),
            Qt::AlignLeft | Qt::AlignVCenter, Qt::ElideRight);
    }

    SidebarView* m_view;
};

SidebarView::SidebarView(QWidget* parent)
    : QListView(parent)
    , m_items(new QStandardItemModel(0, 1, this))
    , m_delegate(new SidebarDelegate(this))
{
    setObjectName(QStringLiteral("sidebar"));
    setAccessibleName(QStringLiteral("Sections"));
    setModel(m_items);
    setItemDelegate(m_delegate);
    setFrameShape(QFrame::NoFrame);
    setAutoFillBackground(true); // Around the viewport, too.
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setMouseTracking(true);
    connect(selectionModel(), &QItemSelectionModel::currentChanged, this,
        [this](const QModelIndex& now) { emit chosen(now.row()); });
    dress();
}

void SidebarView::setItems(const std::vector<Item>& items)
{
    const int place = std::max(current(), 0);
    const QSignalBlocker quiet(this); // The section on show is the same as before.
    m_items->setRowCount(static_cast<int>(items.size()));
    bool isBusy = false;
    for (int row = 0; const auto& item : items) {
        const auto index = m_items->index(row++, 0);
        const auto& name = item.spoken.isEmpty() ? item.title : item.spoken;
        m_items->setItemData(index,
            { { Qt::DisplayRole, item.title }, { Qt::ToolTipRole, m_isNarrow ? name : QString() },
                { Qt::AccessibleTextRole, name }, { iconRole, static_cast<int>(item.icon) },
                { badgeRole, item.badge }, { alarmRole, item.isAlarming }, { busyRole, item.isBusy } });
        isBusy = isBusy || item.isBusy;
    }
    setCurrent(place);
    if (isBusy && !m_turning && Theme::of(this).animates) {
        m_turning = startTimer(ringTurn);
    } else if (!isBusy && m_turning) {
        killTimer(m_turning);
        m_turning = 0;
    }
    viewport()->update();
}

void SidebarView::setNarrow(bool isNarrow)
{
    m_isNarrow = isNarrow;
    for (int row = 0; row < m_items->rowCount(); ++row) {
        const auto index = m_items->index(row, 0);
        m_items->setData(index, isNarrow ? index.data(Qt::AccessibleTextRole) : QVariant(), Qt::ToolTipRole);
    }
    dress();
}

void SidebarView::setCurrent(int place) { setCurrentIndex(m_items->index(place, 0)); }

void SidebarView::changeEvent(QEvent* event)
{
    QListView::changeEvent(event);
    if (event->type() == QEvent::StyleChange)
        dress();
}

void SidebarView::timerEvent(QTimerEvent* event)
{
    if (event->timerId() != m_turning)
        return QListView::timerEvent(event);
    m_delegate->turn = (m_delegate->turn + 1) % 12;
    viewport()->update();
}

void SidebarView::dress()
{
    const auto& theme = Theme::of(this);
    auto ours = theme.palette(theme.colours.sidebar);
    ours.setColor(QPalette::Base, theme.colours.sidebar);
    setPalette(ours);
    setViewportMargins(0, Space::small, 0, Space::small);
    setMinimumWidth(m_isNarrow ? narrowWidth : theme.scaled(leastWidth));
    setMaximumWidth(m_isNarrow ? narrowWidth : theme.scaled(mostWidth));
    doItemsLayout();
}

} // namespace Pallisande
