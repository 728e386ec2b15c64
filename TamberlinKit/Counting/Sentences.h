#pragma once

#include <functional>
#include <string_view>

namespace Tamberlin {

// Cuts a text into sentences: behind . ! ? … and closing marks where a blank follows, behind 。！？ wherever
// they stand. Each is handed over with single blanks between its words and in Unicode's form NFC, and is
// valid during the call.
void forEachSentence(std::string_view text, const std::function<void(std::string_view)>& visit);

} // namespace Tamberlin
