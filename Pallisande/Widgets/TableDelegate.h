#pragma once

#include <QStyledItemDelegate>

class QTableView;
class QTreeView;

namespace Pallisande {

// Cells of tables: hairlines between rows only, figures in even columns, room at both sides. What a model
// says with Qt::TextAlignmentRole, ForegroundRole and FontRole holds.
class TableDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    // True in every cell of a row that sums up those above it: strong, with a line over it.
    static constexpr int totalRole = Qt::UserRole + 120;
    // True: counted by nobody, dimmed.
    static constexpr int mutedRole = Qt::UserRole + 121;

    using QStyledItemDelegate::QStyledItemDelegate;

    QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void paint(
        QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
};

// Rows of 32 pixels, no grid, no frame, Tab leaves; follows the theme.
void prepareTable(QTableView* table);

// Of many columns: with less room beside the texts.
void setTight(QTableView* table);
int tablePadding(const QWidget* widget); // Of a table or its header.

} // namespace Pallisande
