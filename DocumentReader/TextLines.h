#pragma once

#include "DocumentReader/PageGlyphs.h"

#include <string>
#include <vector>

namespace Tamberlin {

// Text that stands in one line and belongs together: the line of a column, a cell of a table. Coordinates are
// turned as those of its glyphs.
struct TextLine {
    std::u32string text; // In logical order; a blank at its end where one is drawn there.
    float left = 0, right = 0, base = 0;
    float size = 0; // Of the font of most of it.
    float firstWord = 0; // Its width.
    std::int32_t font = mixed;
    std::int16_t angle = 0;
    bool runsLeftwards = false;
    bool hasLabel = false; // It starts with the number or bullet of a list.

    static constexpr std::int32_t mixed = -1;
};

// The lines of a page, in the order in which they were drawn. Words are told apart by the gaps between
// glyphs, as well as by blanks; what was drawn twice in the same place is there once.
std::vector<TextLine> textLines(PageGlyphs page);

} // namespace Tamberlin
