#include "TamberlinKit/Readers/DocxStyles.h"

#include <cstddef>
#include <unordered_map>

namespace Tamberlin {

namespace {

struct Style {
    std::string basedOn;
    std::optional<bool> isHidden;
    bool isAsked = false;
};

} // namespace

std::optional<std::string> DocxStyles::read(const Package& package, std::string_view path)
{
    std::unordered_map<std::string, Style> styles;
    Style* style = nullptr;
    std::size_t depth = 0;
    const XMLScan scan {
        .onStart =
            [&](std::string_view element, const XMLScan::Attributes& attributes) {
                ++depth;
                if (element == "style" && depth == 2) {
                    const std::string id(attributes.valueOr("styleId", ""));
                    style = &styles[id];
                    if (attributes.find("default") && attributes.find("type") == "paragraph")
                        m_defaultStyle = id;
                } else if (element == "docDefaults") {
                    style = nullptr;
                } else if (element == "basedOn" && depth == 3 && style) {
                    style->basedOn = attributes.valueOr("val", "");
                } else if (element == "vanish" && depth == 4
                    && style) { // The properties of a table's parts lie deeper.
                    style->isHidden = isOn(attributes);
                } else if (element == "vanish" && depth == 5 && !style) {
                    m_isHiddenByDefault = isOn(attributes);
                }
            },
        .onEnd = [&](std::string_view) { --depth; },
    };
    auto damage = package.scan(path, scan);

    // What a style doesn't say is what the one says that it is based on. Each is asked once, even where they
    // go in rings.
    for (auto& [id, own] : styles) {
        std::vector<Style*> chain;
        auto* said = &own;
        while (!said->isHidden && !said->isAsked) {
            said->isAsked = true;
            chain.push_back(said);
            const auto base = styles.find(said->basedOn);
            if (base == styles.end())
                break;
            said = &base->second;
        }
        const bool isHidden = said->isHidden.value_or(false);
        for (auto* const asker : chain)
            asker->isHidden = isHidden;
        if (own.isHidden.value_or(false))
            m_hidden.insert(id);
    }
    return damage;
}

bool DocxStyles::isHidden(std::string_view paragraphStyle, std::string_view runStyle) const
{
    const auto hides
        = [this](std::string_view style) { return !m_hidden.empty() && m_hidden.contains(style); };
    return m_isHiddenByDefault
        || hides(paragraphStyle.empty() ? m_defaultStyle : paragraphStyle) != hides(runStyle);
}

bool DocxStyles::isOn(const XMLScan::Attributes& attributes)
{
    const auto value = attributes.valueOr("val", "true");
    return value != "false" && value != "0" && value != "off";
}

} // namespace Tamberlin
