#include "Pallisande/Sheets/SheetMemory.h"

#include "Pallisande/Model/AppModel.h"

namespace Pallisande {

// It belongs to the model, which lives as long as the program does.
SheetMemory& SheetMemory::of(AppModel& model)
{
    if (auto* memory = model.findChild<SheetMemory*>(QString(), Qt::FindDirectChildrenOnly))
        return *memory;
    return *new SheetMemory(&model);
}

} // namespace Pallisande
