#pragma once

#include "Pallisande/Settings/SettingsPage.h"

class QCheckBox;
class QPushButton;

namespace Pallisande {

class CodeBox;
class ComboBox;
class LogoWell;

// Who quotes and invoices come from, currency and paper, reminders.
class BusinessSettings : public SettingsPage {
    Q_OBJECT

public:
    BusinessSettings(AppModel& model, QWidget* parent);

protected:
    void show(const Profile& profile) override;

private:
    void addDetails();
    void addLogo(FormLayout& form);
    void setLogo(const std::filesystem::path& file);

    LogoWell* m_logo;
    FieldNote* m_logoNote;
    QPushButton *m_chooseLogo, *m_removeLogo;
    CodeBox* m_currency;
    ComboBox* m_paper;
    QCheckBox* m_reminders;
};

} // namespace Pallisande
