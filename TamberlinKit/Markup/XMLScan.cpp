#include "TamberlinKit/Markup/XMLScan.h"

namespace Tamberlin {

std::optional<std::string> XMLScan::parse(std::string_view part, const std::stop_token& cancel) const
{
    return parseXML(
        part, {},
        [this](const XMLName& element, XMLAttributes attributes) {
            if (onStart)
                onStart(element.local, Attributes(attributes));
        },
        [this](const XMLName& element) {
            if (onEnd)
                onEnd(element.local);
        },
        onText, cancel);
}

} // namespace Tamberlin
