#include "TamberlinKit/Markup/XMLScan.h"

namespace Tamberlin {

namespace {

auto started(const XMLScan& scan)
{
    return [&scan](const XMLName& element, XMLAttributes attributes) {
        if (scan.onStart)
            scan.onStart(element.local, XMLScan::Attributes(attributes));
    };
}

auto ended(const XMLScan& scan)
{
    return [&scan](const XMLName& element) {
        if (scan.onEnd)
            scan.onEnd(element.local);
    };
}

} // namespace

std::optional<std::string> XMLScan::parse(std::string_view part, const std::stop_token& cancel) const
{
    return parseXML(part, {}, started(*this), ended(*this), onText, cancel);
}

std::optional<std::string> XMLScan::parse(
    std::size_t size, const std::function<void(char*)>& write, const std::stop_token& cancel) const
{
    return parseXML(size, write, {}, started(*this), ended(*this), onText, cancel);
}

} // namespace Tamberlin
