#pragma once

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Widgets/SheetDialog.h"

#include <memory>

namespace Pallisande {


// The dialogs of the model's sheets, made when one opens. They end with the model's `closeSheet`.
SheetDialog* makeSheet(AppModel& model, const NewJobSheet& sheet, QWidget* window);
SheetDialog* makeSheet(AppModel& model, const ReviewSheet& sheet, QWidget* window);
SheetDialog* makeSheet(AppModel& model, const ManualSheet& sheet, QWidget* window);
SheetDialog* makeSheet(AppModel& model, const IssueSheet& sheet, QWidget* window);
SheetDialog* makeSheet(AppModel& model, const PaymentSheet& sheet, QWidget* window);
SheetDialog* makeSheet(AppModel& model, const TypedRateSheet& sheet, QWidget* window);
SheetDialog* makeSheet(AppModel& model, const MakeJobSheet& sheet, QWidget* window);

} // namespace Pallisande
