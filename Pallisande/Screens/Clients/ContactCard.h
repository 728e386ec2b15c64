#pragma once

#include "Pallisande/Screens/Clients/ClientCard.h"

namespace Pallisande {

class CodeBox;

// Who the client is, and in which time zone.
class ContactCard : public ClientCard {
    Q_OBJECT

public:
    ContactCard(AppModel& model, QWidget* parent);

    TextField* nameField() const { return m_name; }

protected:
    void refresh(const Client& client) override;

private:
    void showTime();

    TextField* m_name;
    CodeBox* m_zone;
    FieldNote* m_zoneNote;
    Label* m_time; // «now 21:40 there»
};

} // namespace Pallisande
