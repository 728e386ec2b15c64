#pragma once

#include "TamberlinKit/Counting/TextBlocks.h"
#include "TamberlinKit/Counting/TextStats.h"

#include <string_view>

namespace Tamberlin {

struct WordRules {
    bool countNumbers = true; // "2026" is a word.
    bool countMarks = true; // "–" between blanks is a word.
};

// The counts of one text; its segments are 0.
TextStats countText(TextBlocks& text, const WordRules& rules);
TextStats countText(std::string_view text, const WordRules& rules);

} // namespace Tamberlin
