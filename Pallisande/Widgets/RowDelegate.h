#pragma once

#include <QStyledItemDelegate>

namespace Pallisande {

// What a model gives for one row of a list, besides Qt::AccessibleTextRole: one sentence for screen readers.
enum RowRole {
    titleRole = Qt::DisplayRole,
    figureRole = Qt::UserRole + 100, // Right of the title: “513.60”.
    detailRole, // The second line: “Nordwind GmbH · en → de”.
    elidableRole, // The beginning of that line which gives way to the rest of it: “Nordwind GmbH”.
    chipRole, // A Chip, at the right of the second line.
    placeholderRole, // True: the title stands for one that is empty, and is set in italics.
    warningRole, // A sentence; ⚠ before the figure, and part of the tooltip.
    dropRole, // True: something hovers over the row that it would take.
};

// Paints rows of two lines, of three where the text is large. What doesn't fit is elided and whole in
// the tooltip.
class RowDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit RowDelegate(QObject* parent = nullptr);

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void paint(
        QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
        const QModelIndex& index) override;
};

} // namespace Pallisande
