#pragma once

#include <string>
#include <string_view>

namespace Base {

// The SHA-256 (FIPS 180-4) of `data` as 64 lower-case hexadecimal digits.
std::string sha256(std::string_view data);

} // namespace Base
