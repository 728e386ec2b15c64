#pragma once

#include "Pallisande/Settings/SettingsPage.h"

class QPushButton;

namespace Pallisande {

class ElidedLabel;

// Where the library is kept, its copies, and the program's own version.
class LibrarySettings : public SettingsPage {
    Q_OBJECT

public:
    LibrarySettings(AppModel& model, QWidget* parent);

signals:
    void updateCheckWanted();
    void backupsWanted();

protected:
    void show(const Profile&) override;

private:
    void addFolder();
    void addCopies();
    void addUpdates();

    ElidedLabel *m_folder, *m_second;
    Label *m_secondText, *m_lastCopy;
    QPushButton *m_showFolder, *m_stopSecond, *m_backUp, *m_backups;
};

} // namespace Pallisande
