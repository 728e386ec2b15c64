#pragma once

#include "Base/Uuid.h"
#include "Pallisande/Widgets/Card.h"

#include <optional>
#include <vector>

class QPushButton;

namespace Pallisande {

class AppModel;
class Label;

// What one unit of the document's currency was worth at home on its day.
class RateCard : public Card {
    Q_OBJECT

public:
    RateCard(AppModel& model, QWidget* parent);

    void show(const Base::Uuid& id);
    void refresh();

private:
    AppModel& m_model;
    std::optional<Base::Uuid> m_id;
    Label* m_rate;
    QPushButton* m_add;
};

// The credit notes of an invoice, or the invoice that a credit note corrects, each a link.
class CreditsCard : public Card {
    Q_OBJECT

public:
    CreditsCard(AppModel& model, QWidget* parent);

    void show(const Base::Uuid& id);
    void refresh();

private:
    struct Link {
        QWidget* whole;
        QPushButton* number;
        Label *state, *total;
    };

    AppModel& m_model;
    std::optional<Base::Uuid> m_id;
    QWidget* m_list;
    std::vector<Link> m_links;
    std::vector<Base::Uuid> m_documents;
    Label* m_left;
};

} // namespace Pallisande
