#pragma once

#include "TamberlinKit/Markup/XMLScan.h"

#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

namespace Tamberlin {

// Which styles of an OpenDocument text hide what they are applied to (ISO/IEC 26300 20.338, text:display).
// Automatic styles belong to one part of the package, and another part may use their names for others.
class OdtStyles {
public:
    void start(std::string_view element, const XMLScan::Attributes& attributes);
    void end(std::string_view element);
    void beginPart();

    enum class Family { paragraph, text };
    // Whether a style hides or shows text; nothing when it and the styles that it is based on don't say.
    std::optional<bool> hides(Family family, std::string_view name) const;

private:
    struct Style {
        std::string parent;
        std::optional<bool> hides;
    };
    using Styles = std::unordered_map<std::string, Style>; // By name, behind one letter for the family.

    Styles m_common, m_automatic;
    Styles* m_list = nullptr; // That of the element we are in.
    Style* m_style = nullptr;
    bool m_anyHides = false;
};

} // namespace Tamberlin
