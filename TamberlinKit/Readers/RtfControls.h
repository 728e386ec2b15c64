#pragma once

#include <cstdint>
#include <string_view>

namespace Tamberlin {

// What a control word of RTF 1.9.1 means for the text.
struct RtfControl {
    enum class Action : std::uint8_t {
        none,
        character, // `value` is its code point.
        paragraphEnd,
        container, // Text of its own; `value` is its Part.
        transparent, // A destination that is gone through, although older readers may skip it.
        skipped, // A destination without text.
        shapeProperty,
        shapePropertyName,
        shapePropertyValue,
        picture,
        object,
        fontTable,
        font,
        associatedFont,
        leftToRight, // What follows is for characters of left-to-right scripts.
        rightToLeft,
        fontCharset,
        codePage,
        fontCodePage,
        defaultFont,
        plain,
        hidden,
        deleted,
        unicode,
        unicodeSkip,
        binary,
        bothEncodings, // The same text twice, the second time in Unicode.
        unicodeText,
    };
    Action action = Action::none;
    std::uint16_t value = 0;
};

RtfControl rtfControl(std::string_view word);

} // namespace Tamberlin
