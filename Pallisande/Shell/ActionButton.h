#pragma once

#include "Pallisande/Widgets/Buttons.h"

class QAction;

namespace Pallisande {

// A button that does what an action does, and can be pressed when that can be done.
QPushButton* makeActionButton(QAction* action, ButtonKind kind, QWidget* parent);

} // namespace Pallisande
