#pragma once

class QWidget;

namespace Pallisande {

// Has Tab walk what lies in the layouts of a page from top to bottom and from left to right, in whichever
// order it was made.
void orderByReading(QWidget* page);

} // namespace Pallisande
