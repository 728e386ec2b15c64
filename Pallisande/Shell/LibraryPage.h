#pragma once

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Widgets/EmptyPage.h"

namespace Pallisande {

// In the place of all sections while there is no library to show: it is being opened, or couldn't be read.
class LibraryPage : public EmptyPage {
    Q_OBJECT

public:
    LibraryPage(AppModel& model, QWidget* parent);

    static bool isNeeded(AppModel& model);

signals:
    void backupsWanted();
    void updateCheckWanted();

private:
    void refresh();

    AppModel& m_model;
    QPushButton *m_update, *m_restore, *m_choose, *m_startNew;
};

} // namespace Pallisande
