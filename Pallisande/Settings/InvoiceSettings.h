#pragma once

#include "Pallisande/Settings/SettingsPage.h"

namespace Pallisande {

class CountEdit;
class SeriesForm;

// What is printed on every document, and how documents are numbered.
class InvoiceSettings : public SettingsPage {
    Q_OBJECT

public:
    InvoiceSettings(AppModel& model, QWidget* parent);

protected:
    void show(const Profile& profile) override;

private:
    CountEdit* m_validDays;
    std::vector<SeriesForm*> m_series;
};

} // namespace Pallisande
