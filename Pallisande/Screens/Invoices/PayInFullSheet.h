#pragma once

#include "Base/Uuid.h"

#include <vector>

class QWidget;

namespace Pallisande {

class AppModel;
class SheetDialog;

// One day on which all of these invoices were paid what is still due on them.
SheetDialog* makePayInFullSheet(AppModel& model, std::vector<Base::Uuid> invoices, QWidget* window);

} // namespace Pallisande
