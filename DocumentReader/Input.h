#pragma once

#include <string_view>

namespace Tamberlin {

// The file on standard input, mapped into memory for as long as the program runs.
std::string_view mappedInput();

// Writes all of it to standard output, or ends the program: whoever started it has lost interest.
void writeOutput(std::string_view bytes);

} // namespace Tamberlin
