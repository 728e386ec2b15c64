#pragma once

#include "Base/Uuid.h"
#include "Pallisande/Widgets/Card.h"

#include <optional>
#include <vector>

namespace Pallisande {

class AppModel;
class Label;
struct Invoice;

// What was received on an issued invoice, and what is still due.
class PaymentsCard : public Card {
    Q_OBJECT

public:
    PaymentsCard(AppModel& model, QWidget* parent);

    void show(const Base::Uuid& id);
    void refresh();

private:
    class Row;

    AppModel& m_model;
    std::optional<Base::Uuid> m_id;
    Label* m_none;
    QWidget* m_list;
    std::vector<Row*> m_rows;
    Label *m_dueName, *m_due;
};

} // namespace Pallisande
