#pragma once

#include "Pallisande/Model/AppModel.h"

class QWidget;

namespace Pallisande {

// What is to be done with files that came from outside without saying for what: dropped on the window, or
// handed over by a second start.
void askAboutFiles(AppModel& model, std::vector<std::filesystem::path> files, QWidget* window);

} // namespace Pallisande
