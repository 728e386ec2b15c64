#pragma once

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Screens/Commands.h"
#include "Pallisande/Widgets/Chip.h"

#include <QWidget>

namespace Pallisande {

class Label;

// The client's name, and what can be done with the whole of it.
class ClientHeader : public QWidget {
    Q_OBJECT

public:
    ClientHeader(AppModel& model, Commands& commands, QWidget* parent);

    void show(const Client& client);

private:
    Label* m_name;
    ChipLabel* m_archived;
};

// How a list and a header show a client without a name.
QString clientTitle(const std::string& name);
Chip archivedChip();

} // namespace Pallisande
