#pragma once

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Widgets/FormLayout.h"
#include "Pallisande/Widgets/LineField.h"
#include "PallisandeKit/Ledger/Ledger.h"

#include <functional>

class QCheckBox;

namespace Pallisande {

class CountEdit;

// How the numbers of one kind of document are made.
class SeriesForm : public FormLayout {
    Q_OBJECT

public:
    using Edit = std::function<bool(const QWidget* field, const std::function<void(Profile&)>& change)>;

    SeriesForm(AppModel& model, Ledger::Series which, Edit edit, QWidget* parent);

    void show(const Profile& profile);

private:
    QString setNext(const Base::Decimal& next); // Why it can't be; empty: it was.
    void change(const QWidget* field, const std::function<void(NumberSeries&)>& how);

    AppModel& m_model;
    Ledger::Series m_which;
    Edit m_edit;
    TextField* m_prefix;
    CountEdit *m_digits, *m_next;
    Label *m_preview, *m_why;
    QCheckBox *m_year, *m_reset;
};

} // namespace Pallisande
