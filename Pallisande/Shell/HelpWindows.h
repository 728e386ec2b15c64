#pragma once

#include "Pallisande/Screens/Commands.h"

#include <QDialog>

class QMenuBar;
class QTreeWidget;

namespace Pallisande {

// All shortcuts, from the menus as they are.
class ShortcutsWindow : public QDialog {
    Q_OBJECT

public:
    ShortcutsWindow(const QMenuBar& menus, QWidget* parent);
};

// The last problems and notices, so that nothing missed is lost.
class MessagesWindow : public QDialog {
    Q_OBJECT

public:
    MessagesWindow(AppModel& model, QWidget* parent);

private:
    void refresh();

    AppModel& m_model;
    QTreeWidget* m_list;
};

class AboutWindow : public QDialog {
    Q_OBJECT

public:
    explicit AboutWindow(QWidget* parent);
};

} // namespace Pallisande
