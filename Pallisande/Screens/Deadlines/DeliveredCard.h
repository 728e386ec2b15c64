#pragma once

#include "Pallisande/Model/DeadlineSection.h"
#include "Pallisande/Widgets/Card.h"

class QPushButton;
class QVBoxLayout;

namespace Pallisande {

class AppModel;

// “Delivered, not invoiced”: by client, with the way to the invoice; and drafts that were forgotten.
class DeliveredCard : public Card {
    Q_OBJECT

public:
    DeliveredCard(AppModel& model, QWidget* parent);

    void refresh();

private:
    QWidget* makeGroup(const DeliveredGroup& group);

    AppModel& m_model;
    Label* m_total;
    QVBoxLayout* m_groups;
    QPushButton* m_drafts;
    std::string m_shown; // What stands there, so that it is made anew only when it changes.
};

} // namespace Pallisande
