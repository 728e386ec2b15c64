#pragma once

#include "Pallisande/Screens/Commands.h"

class QMenu;
class QMenuBar;

namespace Pallisande {

// The clients whose delivered jobs wait for an invoice, and blank drafts; asked for when it opens.
QMenu* makeNewInvoiceMenu(AppModel& model, QWidget* parent);

// Every command stands in a menu.
void fillMenuBar(QMenuBar& bar, AppModel& model, Commands& commands);

} // namespace Pallisande
