#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Tamberlin {

enum class ReferencePlace {
    text,
    attribute, // "&copy=1" in an address stays as it is.
    strict, // Only what ends with a semicolon is a reference.
};

// Appends the character that a reference of HTML stands for (WHATWG HTML, 13.2.5.72). `text` begins with the
// ampersand; gives how many bytes of it were the reference, 0 when it is none.
std::size_t appendReference(std::string& out, std::string_view text, ReferencePlace place);

// The text with all its references replaced.
std::string withoutReferences(std::string_view text, ReferencePlace place);

} // namespace Tamberlin
