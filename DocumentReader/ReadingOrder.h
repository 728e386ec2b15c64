#pragma once

#include "DocumentReader/TextLines.h"

#include <vector>

namespace Tamberlin {

// Whether the lines come in an order in which nobody reads.
bool isScrambled(const std::vector<TextLine>& lines);

// Puts lines in the order in which a page is read: column by column, each from top to bottom.
void sortByColumns(std::vector<TextLine>& lines);

} // namespace Tamberlin
