#pragma once

#include "Pallisande/Screens/Jobs/JobCard.h"

namespace Pallisande {

class ClientBox;
class DateEdit;
class DeadlineEdit;
class DecimalEdit;
class FieldNote;
class FormLayout;
class TextArea;
class TextField;

// Whose job it is, between which languages, when, and what is agreed for it alone.
class JobDetailsCard : public JobCard {
    Q_OBJECT

public:
    JobDetailsCard(const ScreenServices& services, QWidget* parent);

    void refresh() override;

protected:
    void revert() override;

private:
    void connectFields();

    FormLayout* m_form;
    ClientBox* m_client;
    TextField *m_source, *m_target, *m_reference;
    DateEdit *m_received, *m_delivered;
    DeadlineEdit* m_deadline;
    DecimalEdit *m_rate, *m_surcharge;
    TextField* m_quoteNumber;
    QPushButton* m_giveNumber;
    FieldNote *m_clientNote = nullptr, *m_deadlineNote = nullptr;
};

class JobNotesCard : public JobCard {
    Q_OBJECT

public:
    JobNotesCard(const ScreenServices& services, QWidget* parent);

    void refresh() override;

protected:
    void revert() override;

private:
    TextArea* m_notes;
};

} // namespace Pallisande
