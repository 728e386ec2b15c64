#pragma once

#include "Pallisande/Model/Services.h"

#include <QWidget>

namespace Pallisande {

// Asks for files with the desktop's own dialogs. None of them takes files and folders together, so that is
// asked first where both will do.
void chooseFiles(
    const ChooserRequest& request, const std::function<void(AppServices::Paths)>& chosen, QWidget* window);

} // namespace Pallisande
