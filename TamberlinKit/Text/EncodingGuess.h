#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace Tamberlin {

// How much of a text is UTF-8.
struct Utf8Check {
    std::size_t valid = 0; // Sequences of more than one byte.
    std::size_t invalid = 0;
    std::size_t firstHigh = std::string_view::npos; // Where the first byte above ASCII stands.
};
Utf8Check checkUtf8(std::string_view bytes);

// "UTF-16LE" and the like for text without a byte order mark whose zero bytes lie as they do there, else
// nothing.
std::string_view wideEncoding(std::string_view bytes, const Utf8Check& utf8);

// A part of the text from where its first bytes above ASCII stand.
std::string_view guessingSample(std::string_view bytes, const Utf8Check& utf8);
// The code pages that such a sample may have, the most likely first.
std::vector<std::string> guessedCodePages(std::string_view sample);

} // namespace Tamberlin
