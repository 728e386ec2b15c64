#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Base {

// Without Unicode white space at both ends.
std::string_view trimmed(std::string_view text);
// The same, and U+FEFF counts as white space too.
std::string_view trimmedOfMarks(std::string_view text);

// Whether two texts are the same when letter case doesn't matter (Unicode full case folding, no locale).
bool equalIgnoringCase(std::string_view left, std::string_view right);

// Lower case for ASCII letters only: file extensions and the like.
std::string asciiLowered(std::string_view text);

// Whether `left` comes before `right` in the order a person expects: letters without regard to case and
// accents first, numbers inside by their value (Unicode collation, root locale).
bool naturallyBefore(std::string_view left, std::string_view right);

// The text with every invalid UTF-8 sequence replaced by U+FFFD.
std::string validUtf8(std::string_view text);

// Adds a code point, which must not be a surrogate.
void appendUtf8(std::string& text, char32_t character);

// At most the first `count` user-perceived characters.
std::string_view firstCharacters(std::string_view text, std::size_t count);

// At most `count` bytes of UTF-8, cut between user-perceived characters where one is no longer than that.
std::string_view firstBytes(std::string_view text, std::size_t count);

// How many columns a terminal gives the text, near enough for tables (wide East Asian characters take two).
std::size_t displayWidth(std::string_view text);

// The code points of valid UTF-8.
std::u32string codePoints(std::string_view text);

} // namespace Base
