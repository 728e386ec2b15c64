#pragma once

#include "Pallisande/Widgets/Icons.h"

#include <QListView>

#include <vector>

class QStandardItemModel;

namespace Pallisande {

// The sections of the window. Narrow, it shows icons alone; names stay as tooltips.
class SidebarView : public QListView {
    Q_OBJECT

public:
    struct Item {
        Icon icon = Icon::list;
        QString title;
        int badge = 0; // Hidden at 0.
        bool isAlarming = false; // The badge is a red pill.
        bool isBusy = false; // A turning ring instead of the badge.
        QString spoken; // “Deadlines, 1 overdue, 2 due today”.
    };

    static constexpr int narrowWidth = 56, leastWidth = 168, usualWidth = 200, mostWidth = 260;

    explicit SidebarView(QWidget* parent = nullptr);

    void setItems(const std::vector<Item>& items); // The selected place stays.
    void setNarrow(bool isNarrow);
    bool isNarrow() const { return m_isNarrow; }
    int current() const { return currentIndex().row(); }
    void setCurrent(int place);

signals:
    void chosen(int place); // Also by the arrow keys.

protected:
    void changeEvent(QEvent* event) override;
    void timerEvent(QTimerEvent* event) override;

private:
    void dress();

    QStandardItemModel* m_items;
    class SidebarDelegate* m_delegate;
    bool m_isNarrow = false;
    int m_turning = 0; // The timer of busy rings.
};

} // namespace Pallisande
