#pragma once

class QMenu;

namespace Pallisande {

class AppModel;

// An item for each client with delivered jobs that aren't invoiced yet, then Blank Draft with all clients; in
// the place of whatever the menu holds.
void fillNewInvoiceMenu(QMenu* menu, AppModel& model);

// Has it filled anew whenever it is about to be shown.
void prepareNewInvoiceMenu(QMenu* menu, AppModel& model);

} // namespace Pallisande
