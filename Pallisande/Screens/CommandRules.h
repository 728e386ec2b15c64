#pragma once

#include "Pallisande/Screens/Commands.h"

#include <optional>
#include <span>
#include <string>

namespace Pallisande {

// Why a command can't be done with what is selected in the section on show: a sentence, or nothing when it
// can. Menus, toolbar, buttons and context menus all go by it.
std::optional<std::string> whyNot(AppModel& model, Command command, std::span<const Base::Uuid> selected);

// What Edit › Delete means in a section.
Command deletionIn(AppSection section);

} // namespace Pallisande
