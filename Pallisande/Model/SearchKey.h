#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Pallisande {

// The text as searching compares it: without regard to case, accents and width.
std::string searchKey(std::string_view text);

// A text whose bytes sort as a person expects: letters without regard to case and accents first, numbers by
// their value.
std::string sortKey(std::string_view text);

// The words of a search; every one of them must be found somewhere.
std::vector<std::string> searchWords(std::string_view search);

} // namespace Pallisande
