#pragma once

#include <array>
#include <string_view>

namespace Tamberlin {

enum class Paper { a4, letter };
constexpr std::array<std::string_view, 2> caseNames(Paper) { return { "a4", "letter" }; }

} // namespace Tamberlin
