#pragma once

#include "TamberlinKit/Markup/Package.h"
#include "TamberlinKit/Text/Extracted.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Tamberlin {

// Appends the text of a drawing that is a part of its own: a chart, what was drawn on one, or the data of a
// SmartArt diagram. Of a chart, that is what it shows as text: titles, labels, the names of series and
// categories. Gives the note for the user when the part is damaged.
std::optional<std::string> readDrawingPart(
    const Package& package, std::string_view path, std::vector<Segment>& segments);

} // namespace Tamberlin
