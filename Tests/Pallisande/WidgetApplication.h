#pragma once

#include "Pallisande/Widgets/ThemeController.h"

Pallisande::ThemeController& themeController();
Pallisande::SystemLook& systemLook(); // What the desktop asks for; refresh() afterwards.
