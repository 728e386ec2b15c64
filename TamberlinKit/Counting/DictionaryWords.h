#pragma once

#include <cstdint>
#include <string_view>

namespace Tamberlin {

// The words in text of a script without spaces (Thai, Lao, Khmer, Myanmar): what ICU's dictionaries cut it
// into, as far as it holds a letter or number; at least 1.
std::int64_t dictionaryWords(std::string_view text);

} // namespace Tamberlin
