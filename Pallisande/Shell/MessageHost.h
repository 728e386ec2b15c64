#pragma once

#include "Pallisande/Model/AppModel.h"

#include <QObject>

namespace Pallisande {

class Banner;
class Toast;

// What the model tells: a problem in the banner, a notice in the toast, and what their buttons do.
class MessageHost : public QObject {
    Q_OBJECT

public:
    MessageHost(AppModel& model, Banner* banner, Toast* toast, QObject* parent);

signals:
    void updateCheckWanted();
    void backupsWanted();
    void newClientWanted();

private:
    void showProblem();
    void showNotice();
    void actOnProblem();
    void actOnNotice();

    AppModel& m_model;
    Banner* m_banner;
    Toast* m_toast;
    std::string m_undoText; // What the toast's Undo would undo.
};

} // namespace Pallisande
