#pragma once

#include "TamberlinKit/Markup/XMLEvents.h"

namespace Tamberlin {

// What to do with the events of a document.
struct XMLHandlers {
    const std::function<void(const XMLName& element, XMLAttributes attributes)>& onStart;
    const std::function<void(const XMLName& element)>& onEnd;
    const std::function<void(std::string_view text)>& onText;
};

// How far a document was called back.
struct XMLProgress {
    std::size_t tags = 0; // Starts and ends of elements,
    std::size_t text = 0; // and bytes of text behind the last of them.
};

// Goes through a document with Expat, the library, and calls back what lies behind `done`.
std::optional<std::string> parseWithExpat(std::string_view document, const XMLLimits& limits,
    const XMLHandlers& handlers, const std::stop_token& cancel, XMLProgress done = {});

} // namespace Tamberlin
