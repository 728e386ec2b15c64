#pragma once

#include <string>
#include <vector>

namespace Pallisande {

struct Currency {
    std::string code; // ISO 4217
    std::string name; // In English.
};

// The currencies that are in use, by their codes.
const std::vector<Currency>& currencies();

} // namespace Pallisande
