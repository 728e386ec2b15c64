#pragma once

#include "DocumentReader/PageGlyphs.h"

#include <string>
#include <utility>
#include <vector>

namespace Tamberlin {

// Whether there is a blank between two glyphs of a line.
bool isWordGap(const PageGlyphs& page, const Glyph& left, const Glyph& right);

// The text of a line in which something runs from right to left, in the order in which it is read, and
// whether the line as a whole runs so. Some programs draw such glyphs from the left, others from the right:
// only where they stand counts.
std::pair<std::u32string, bool> logicalText(const PageGlyphs& page, std::vector<Glyph> glyphs);

} // namespace Tamberlin
