#pragma once

#include "TamberlinKit/Markup/Package.h"

#include <functional>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace Tamberlin {

// Which styles of a Word document hide their text, by themselves or by the style that they are based on.
class DocxStyles {
public:
    // Reads the styles part with this path; gives the note for the user when it is damaged.
    std::optional<std::string> read(const Package& package, std::string_view path);

    // Whether text is hidden that doesn't say so itself; a paragraph without a style has the default one. Two
    // styles that hide cancel each other out (ISO/IEC 29500-1, 17.7.3).
    bool isHidden(std::string_view paragraphStyle, std::string_view runStyle) const;

    // Whether a property that is on by being there ("w:vanish") is on.
    static bool isOn(const XMLScan::Attributes& attributes);

private:
    std::set<std::string, std::less<>> m_hidden;
    std::string m_defaultStyle; // Of paragraphs.
    bool m_isHiddenByDefault = false;
};

} // namespace Tamberlin
