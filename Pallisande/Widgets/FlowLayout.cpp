#include "Pallisande/Widgets/FlowLayout.h"

#include "Pallisande/Widgets/Theme.h"

#include <QStyle>
#include <QWidget>

#include <algorithm>

namespace Pallisande {

FlowLayout::FlowLayout(QWidget* parent)
    : QLayout(parent)
{
    setContentsMargins(0, 0, 0, 0);
    setSpacing(Space::small);
}

FlowLayout::~FlowLayout() = default;

void FlowLayout::addItem(QLayoutItem* item) { m_items.emplace_back(item); }

QLayoutItem* FlowLayout::itemAt(int place) const
{
    return place >= 0 && place < count() ? m_items[static_cast<std::size_t>(place)].get() : nullptr;
}

QLayoutItem* FlowLayout::takeAt(int place)
{
    if (place < 0 || place >= count())
        return nullptr;
    const auto found = m_items.begin() + place;
    auto* item = found->release();
    m_items.erase(found);
    return item;
}

QSize FlowLayout::sizeHint() const
{
    QSize size(0, 0);
    for (const auto& item : m_items) {
        if (item->isEmpty())
            continue;
        const auto wanted = item->sizeHint();
        size = { size.width() + wanted.width() + (size.width() > 0 ? spacing() : 0),
            std::max(size.height(), wanted.height()) };
    }
    return size.grownBy(contentsMargins());
}

QSize FlowLayout::minimumSize() const
{
    QSize size(0, 0);
    for (const auto& item : m_items) {
        if (!item->isEmpty())
            size = size.expandedTo(item->minimumSize());
    }
    return size.grownBy(contentsMargins());
}

void FlowLayout::setGeometry(const QRect& area)
{
    QLayout::setGeometry(area);
    arrange(area, true);
}

int FlowLayout::arrange(const QRect& area, bool moves) const
{
    const auto inside = area.marginsRemoved(contentsMargins());
    const auto direction = parentWidget() ? parentWidget()->layoutDirection() : Qt::LeftToRight;
    int top = inside.top(), used = 0, height = 0;
    std::vector<QLayoutItem*> line;
    const auto endLine = [&] {
        int left = inside.left() + (m_side == Qt::AlignRight ? inside.width() - used : 0);
        for (auto* item : line) {
            const auto size = item->sizeHint().boundedTo({ inside.width(), 100'000 });
            const QRect place({ left, top + (height - size.height()) / 2 }, size);
            if (moves)
                item->setGeometry(QStyle::visualRect(direction, inside, place));
            left += size.width() + spacing();
        }
        top += height + (line.empty() ? 0 : spacing());
        line.clear();
        used = height = 0;
    };
    for (const auto& item : m_items) {
        if (item->isEmpty())
            continue;
        const auto size = item->sizeHint();
        if (!line.empty() && used + spacing() + size.width() > inside.width())
            endLine();
        used += size.width() + (line.empty() ? 0 : spacing());
        height = std::max(height, size.height());
        line.push_back(item.get());
    }
    endLine();
    return std::max(0, top - spacing() - area.top()) + contentsMargins().bottom();
}

} // namespace Pallisande
