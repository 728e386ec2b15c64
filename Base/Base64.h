#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Base {

// Bytes as Base64 text with padding (RFC 4648, section 4), and back; nothing for other text.
std::string toBase64(std::string_view bytes);
std::optional<std::string> fromBase64(std::string_view text);

} // namespace Base
