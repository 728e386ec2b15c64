#include "TamberlinKit/Counting/CountOptions.h"

namespace Tamberlin {

std::string_view title(RepetitionScope scope)
{
    constexpr std::array<std::string_view, 3> titles { "Within each file", "Across all files",
        "Don’t look for repetitions" };
    return titles[static_cast<std::size_t>(scope)];
}

} // namespace Tamberlin
