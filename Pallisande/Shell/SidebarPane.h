#pragma once

#include "Pallisande/Screens/Commands.h"

#include <QWidget>

class QMenu;
class QToolButton;

namespace Pallisande {

class SidebarView;

// The sections with their badges, and below them whether everything is saved.
class SidebarPane : public QWidget {
    Q_OBJECT

public:
    SidebarPane(AppModel& model, Commands& commands, QWidget* parent);

    SidebarView* sections() const { return m_sections; }
    void setNarrow(bool isNarrow); // Icons alone.

signals:
    void libraryPageWanted(); // Settings › Library

protected:
    void changeEvent(QEvent* event) override;

private:
    void refreshBadges();
    void refreshFoot();
    void dress();

    AppModel& m_model;
    SidebarView* m_sections;
    QToolButton* m_foot;
    QMenu* m_menu; // Of the foot.
};

} // namespace Pallisande
