#pragma once

#include "Pallisande/Model/JobSection.h"
#include "Pallisande/Widgets/FormLayout.h"

namespace Pallisande {

class AppModel;
class ClientBox;
class DeadlineEdit;
class TextField;

// What a new job begins with: the fields of the sheets that make one.
class JobForm : public FormLayout {
    Q_OBJECT

public:
    JobForm(AppModel& model, QWidget* parent);

    // A client that is gone or archived by now gives way to the proposed one.
    void setEntries(NewJob entries);
    NewJob entries() const;
    bool commit(); // All fields; false when one makes no sense.
    QWidget* firstField() const;

signals:
    void changed(); // An entry was committed.
    void newClientWanted();

private:
    void showZone();

    AppModel& m_model;
    TextField *m_title, *m_source, *m_target, *m_reference;
    ClientBox* m_client;
    DeadlineEdit* m_deadline;
};

} // namespace Pallisande
