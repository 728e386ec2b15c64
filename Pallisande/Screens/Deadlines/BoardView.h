#pragma once

#include "Pallisande/Model/DeadlineSection.h"
#include "Pallisande/Screens/SectionPage.h"

#include <QAbstractItemView>

#include <array>
#include <filesystem>

namespace Pallisande {

// The open jobs as cards in lanes. It is as high as its lanes need; the page around it scrolls.
class BoardView : public QAbstractItemView {
    Q_OBJECT

public:
    BoardView(AppModel& model, Commands& commands, QWidget* parent);

    void refresh();
    int cardCount() const;
    std::vector<Base::Uuid>
    selected() const; // One or none: a job that isn’t on the board counts for nothing.
    const DeadlineCard* card(const QModelIndex& index) const;

    QRect visualRect(const QModelIndex& index) const override;
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
    QModelIndex indexAt(const QPoint& point) const override;

signals:
    void placeWanted(const QRect& place); // To be scrolled into view.
    void openWanted();
    void inspectorWanted();

protected:
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;
    int horizontalOffset() const override { return 0; }
    int verticalOffset() const override { return 0; }
    bool isIndexHidden(const QModelIndex&) const override { return false; }
    void setSelection(const QRect& area, QItemSelectionModel::SelectionFlags flags) override;
    QRegion visualRegionForSelection(const QItemSelection& selection) const override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void wheelEvent(QWheelEvent* event) override { event->ignore(); } // The page scrolls.
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dragLeaveEvent(QDragLeaveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    struct Lane {
        DeadlineLane kind = DeadlineLane::overdue;
        QRect heading;
        int first = 0, count = 0; // Of its cards.
    };

    void arrange();
    void takeSelection();
    void handSelection();
    void paintHeading(QPainter& painter, const Lane& lane) const;
    QModelIndex neighbour(const QModelIndex& from, int direction) const; // Above (-1) or below.
    bool takes(const std::vector<std::filesystem::path>& files, const QModelIndex& index) const;
    void markDrop(int row);

    AppModel& m_model;
    Commands& m_commands;
    class BoardModel* m_cards;
    std::vector<Lane> m_lanes;
    std::vector<QRect> m_places; // Of the cards.
    bool m_isTaking = false;
};

} // namespace Pallisande
