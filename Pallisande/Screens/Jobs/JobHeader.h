#pragma once

#include "Pallisande/Screens/Jobs/JobCard.h"

class QMenu;

namespace Pallisande {

class Label;
class NoteLine;
class TextField;

// What a job is: title, client, languages and due time, its status, what is done with it next, and why it is
// locked if it is.
class JobHeader : public QWidget, public JobPart {
    Q_OBJECT

public:
    JobHeader(const ScreenServices& services, QWidget* parent);

    void refresh() override;

protected:
    void revert() override;

private:
    void fillStatusMenu();
    void setStatus(JobStatus status);

    TextField* m_title;
    Label* m_subtitle;
    NoteLine* m_lock;
    QPushButton *m_status, *m_makeInvoice;
    QMenu* m_statusMenu;
    Label* m_refusal;
};

} // namespace Pallisande
