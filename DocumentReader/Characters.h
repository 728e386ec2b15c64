#pragma once

#include <string>
#include <string_view>

// What the layout of a page must know of characters.
namespace Tamberlin {

bool isBlank(char32_t c); // Also for controls, which show nothing.
bool isEastAsian(char32_t c);
bool breaksAnywhere(char32_t c); // Of a script that is written without blanks.
bool isLeftward(char32_t c); // Of a script that runs from right to left.
bool isLower(char32_t c);
bool isMark(char32_t c); // Combines with the character before it.
bool startsWithBullet(std::u32string_view text);

// The combining mark that looks like a spacing accent, or 0.
char32_t combining(char32_t accent);

// Appends text with ligatures and the shapes of Arabic letters resolved; what isn't a character is left out.
void appendExpanded(std::u32string& text, std::u32string_view more);

} // namespace Tamberlin
