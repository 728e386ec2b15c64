#pragma once

#include "Pallisande/Model/DeadlineSection.h"
#include "Pallisande/Widgets/RowDelegate.h"

namespace Pallisande {

class Theme;

// Roles of a card besides those of a row: titleRole, detailRole (client and pair), figureRole (the price),
// chipRole, placeholderRole, warningRole and dropRole.
enum CardRole { dueRole = Qt::UserRole + 200, dueHereRole, nearnessRole, overdueRole };

// Paints a job on the board.
class CardDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    using QStyledItemDelegate::QStyledItemDelegate;

    static constexpr int leastWidth = 264, mostWidth = 320, gap = 12;
    // With a line for the deadline in the user's own zone, or without.
    static int height(const Theme& theme, bool hasTwoZones);

    void paint(
        QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
        const QModelIndex& index) override;
};

} // namespace Pallisande
