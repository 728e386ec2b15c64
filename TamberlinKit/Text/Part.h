#pragma once

#include <array>
#include <string_view>

namespace Tamberlin {

// The part of a document that a piece of text stands in, in the order in which parts are listed.
enum class Part { body, headersFooters, footnotes, textBoxes, slideNotes, hidden, comments };
constexpr std::array<std::string_view, 7> caseNames(Part)
{
    return { "body", "headersFooters", "footnotes", "textBoxes", "slideNotes", "hidden", "comments" };
}
std::string_view title(Part part);

} // namespace Tamberlin
