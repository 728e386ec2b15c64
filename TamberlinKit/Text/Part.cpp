#include "TamberlinKit/Text/Part.h"

namespace Tamberlin {

std::string_view title(Part part)
{
    constexpr std::array<std::string_view, 7> titles { "Main text", "Headers and footers",
        "Footnotes and endnotes", "Text boxes and shapes", "Slide notes", "Hidden text", "Comments" };
    return titles[static_cast<std::size_t>(part)];
}

} // namespace Tamberlin
