#include "TamberlinKit/Readers/OdtStyles.h"

namespace Tamberlin {

namespace {

std::string keyOf(OdtStyles::Family family, std::string_view name)
{
    return std::string(family == OdtStyles::Family::text ? "t" : "p").append(name);
}

} // namespace

void OdtStyles::beginPart()
{
    m_automatic.clear();
    m_list = nullptr;
    m_style = nullptr;
}

void OdtStyles::start(std::string_view element, const XMLScan::Attributes& attributes)
{
    if (element == "styles")
        m_list = &m_common;
    else if (element == "automatic-styles")
        m_list = &m_automatic;
    if (!m_list)
        return;

    if (element == "style") {
        const auto family = attributes.valueOr("family", "");
        if (family != "text" && family != "paragraph")
            return;
        const auto kind = family == "text" ? Family::text : Family::paragraph;
        m_style = &(*m_list)[keyOf(kind, attributes.valueOr("name", ""))];
        const auto parent = attributes.valueOr("parent-style-name", "");
        *m_style = { .parent = parent.empty() ? "" : keyOf(kind, parent), .hides = {} };
    } else if (m_style && element == "text-properties") {
        if (const auto display = attributes.find("display")) {
            m_style->hides = display == "none";
            m_anyHides = m_anyHides || *m_style->hides;
        }
    }
}

void OdtStyles::end(std::string_view element)
{
    if (element == "style")
        m_style = nullptr;
    else if (element == "styles" || element == "automatic-styles")
        m_list = nullptr;
}

std::optional<bool> OdtStyles::hides(Family family, std::string_view name) const
{
    if (!m_anyHides || name.empty())
        return std::nullopt;
    constexpr int longestChain = 32; // Styles can be based on each other in a circle.
    auto key = keyOf(family, name);
    for (int step = 0; step < longestChain && !key.empty(); ++step) {
        const Style* style = nullptr;
        if (const auto automatic = m_automatic.find(key); automatic != m_automatic.end())
            style = &automatic->second;
        else if (const auto common = m_common.find(key); common != m_common.end())
            style = &common->second;
        if (!style)
            return std::nullopt;
        if (style->hides)
            return style->hides;
        key = style->parent;
    }
    return std::nullopt;
}

} // namespace Tamberlin
