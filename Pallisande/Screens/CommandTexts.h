#pragma once

#include "Pallisande/Screens/Commands.h"
#include "Pallisande/Widgets/Icons.h"

#include <QAction>

#include <optional>
#include <vector>

namespace Pallisande {

// What stands in menus about a command. Nothing is guessed from the text, not even which menu it is moved to
// on macOS; platforms without a theme know no keys for Settings and Quit.
struct CommandText {
    Command command;
    const char* text; // With its mnemonic.
    std::vector<const char*> keys {}; // The first is shown.
    std::optional<Icon> icon {};
    QAction::MenuRole role = QAction::NoRole;
};

const std::vector<CommandText>& commandTexts();

} // namespace Pallisande
