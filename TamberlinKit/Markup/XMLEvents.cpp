#include "TamberlinKit/Markup/XMLEvents.h"

#include "Base/LargePages.h"
#include "TamberlinKit/Markup/ExpatXML.h"
#include "TamberlinKit/Markup/PlainXML.h"

namespace Tamberlin {

using OnStart = std::function<void(const XMLName&, XMLAttributes)>;
using OnEnd = std::function<void(const XMLName&)>;
using OnText = std::function<void(std::string_view)>;

// Nearly all documents are plain, and gone through several times faster than the library does it. Where one
// isn't, or isn't well-formed, the library has the last word.
std::optional<std::string> parseXML(std::string_view document, const XMLLimits& limits,
    const OnStart& onStart, const OnEnd& onEnd, const OnText& onText, const std::stop_token& cancel)
{
    const XMLHandlers handlers { onStart, onEnd, onText };
    PlainXML plain(document, limits, handlers, cancel);
    if (plain.read())
        return std::nullopt;
    return parseWithExpat(document, limits, handlers, cancel, plain.progress());
}

std::optional<std::string> parseXML(std::size_t size, const std::function<void(char* into)>& write,
    const XMLLimits& limits, const OnStart& onStart, const OnEnd& onEnd, const OnText& onText,
    const std::stop_token& cancel)
{
    Base::LargeVector<char> document(size);
    write(document.data());
    return parseXML({ document.data(), size }, limits, onStart, onEnd, onText, cancel);
}

} // namespace Tamberlin
