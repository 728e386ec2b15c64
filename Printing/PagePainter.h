#pragma once

#include "Printing/DocumentLayout.h"

class QPainter;

namespace Pallisande {

// Draws the page with this index, from 0; `paper` is where the whole sheet lies in the painter’s coordinates.
void drawPage(const DocumentLayout& layout, std::size_t page, QPainter& painter, const QRectF& paper);

} // namespace Pallisande
