#pragma once

#include <string>
#include <string_view>

namespace Base {

// A name that is one file name on every system: without / \ : ? % * | " < > and control characters, trimmed
// of white space and full stops, at most 120 characters, and such that `before` + name + `after` fits in 255
// bytes of UTF-8, which is all that most file systems take. An extension that the text has is kept when it is
// cut. "file" when nothing is left.
std::string safeFileName(std::string_view text, std::string_view before = {}, std::string_view after = {});

} // namespace Base
