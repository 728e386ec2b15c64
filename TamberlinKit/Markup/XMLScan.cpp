#include "TamberlinKit/Markup/XMLScan.h"

namespace Tamberlin {

namespace {

std::string_view localName(std::string_view name)
{
    const auto colon = name.find(':');
    return colon == name.npos ? name : name.substr(colon + 1);
}

} // namespace

std::optional<std::string_view> XMLScan::Attributes::find(std::string_view name) const
{
    if (const auto exact = m_raw.find(name))
        return exact;
    return m_raw.findIf([&](std::string_view written) {
        const auto colon = written.rfind(':');
        return colon != written.npos && written.substr(colon + 1) == name;
    });
}

std::optional<std::string> XMLScan::parse(std::string_view part, const std::stop_token& cancel) const
{
    return parseXML(
        part, {},
        [this](std::string_view element, XMLAttributes attributes) {
            if (onStart)
                onStart(localName(element), Attributes(attributes));
        },
        [this](std::string_view element) {
            if (onEnd)
                onEnd(localName(element));
        },
        onText, cancel);
}

} // namespace Tamberlin
