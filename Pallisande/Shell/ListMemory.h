#pragma once

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Screens/ViewState.h"

namespace Pallisande {

// Section, selections, orders and filters, from one start to the next.
void storeLists(AppModel& model, ViewState& view);
void restoreLists(AppModel& model, const ViewState& view);

} // namespace Pallisande
