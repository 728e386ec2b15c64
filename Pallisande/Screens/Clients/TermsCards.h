#pragma once

#include "Pallisande/Screens/Clients/ClientCard.h"

namespace Pallisande {

class CountEdit;
class DecimalEdit;

// What is printed on the client's invoices about tax and payment.
class TaxCard : public ClientCard {
    Q_OBJECT

public:
    TaxCard(AppModel& model, QWidget* parent);

protected:
    void refresh(const Client& client) override;

private:
    DecimalEdit* m_percent;
    CountEdit* m_days;
    TextArea* m_terms;
};

class NotesCard : public ClientCard {
    Q_OBJECT

public:
    NotesCard(AppModel& model, QWidget* parent);

protected:
    void refresh(const Client&) override { }
};

} // namespace Pallisande
