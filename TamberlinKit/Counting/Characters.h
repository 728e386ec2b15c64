#pragma once

#include "TamberlinKit/Counting/CharacterKinds.h"

#include <cstddef>
#include <string_view>

namespace Tamberlin {

// A code point of UTF-8 and the bytes that it takes; a byte that belongs to no valid sequence is U+FFFD.
struct CodePoint {
    char32_t value = 0;
    unsigned size = 1;
};

// Of any bytes.
CodePoint longCodePointAt(std::string_view text, std::size_t at);

inline CodePoint codePointAt(std::string_view text, std::size_t at)
{
    const auto* const bytes = reinterpret_cast<const unsigned char*>(text.data()) + at;
    const char32_t first = bytes[0];
    if (first < 0x80)
        return { first, 1 };
    // The usual sequences of three and two bytes, on the shortest way.
    const auto left = text.size() - at;
    if (first >= 0xE0 && first < 0xF0 && left > 2) {
        const char32_t second = bytes[1] ^ 0x80u, third = bytes[2] ^ 0x80u;
        const auto value = (first & 0x0F) << 12 | second << 6 | third;
        if ((second | third) < 0x40 && value >= 0x800 && value >> 11 != 0xD800 >> 11)
            return { value, 3 };
    } else if (first >= 0xC2 && first < 0xE0 && left > 1 && (bytes[1] ^ 0x80u) < 0x40) {
        return { (first & 0x1F) << 6 | (bytes[1] ^ 0x80u), 2 };
    }
    return longCodePointAt(text, at);
}

// A character as a user perceives it: an extended grapheme cluster of UAX #29.
struct Character {
    CharacterKind kind = CharacterKind::symbol; // Of its first code point.
    bool isInvisible = false; // Of nothing but invisible code points.
    bool isSingle = true; // Of one code point.
    char32_t first = 0;
    std::size_t begin = 0, end = 0;
};

// Reads a text character by character. Every code point is decoded once.
class CharacterReader {
public:
    explicit CharacterReader(std::string_view text, std::size_t at = 0)
        : m_text(text)
        , m_at(at)
    {
        lookAhead();
    }

    bool isAtEnd() const { return m_at == m_text.size(); }
    std::size_t at() const { return m_at; }
    bool isAtCJK() const { return m_properties.isLoneCJK(); } // Which may be the last code point at the end.

    // Mustn't be called at the end.
    Character next()
    {
        const auto properties = m_properties;
        const auto kind = properties.kind();
        const bool isInvisible = kind == CharacterKind::invisible || kind == CharacterKind::invisibleSpace;
        Character character { kind, isInvisible, true, m_codePoint.value, m_at, m_at + m_codePoint.size };
        m_at = character.end;
        lookAhead();
        // Most neighbours have nothing to do with each other.
        const bool mayGoOn = !properties.standsAlone() || !m_properties.standsAlone();
        if (mayGoOn && !isAtEnd())
            extend(character, properties);
        return character;
    }

private:
    void lookAhead()
    {
        if (isAtEnd())
            return;
        m_codePoint = codePointAt(m_text, m_at);
        m_properties = propertiesOf(m_codePoint.value);
    }
    void extend(Character& character, CharacterProperties first);

    std::string_view m_text;
    std::size_t m_at;
    CodePoint m_codePoint; // At m_at.
    CharacterProperties m_properties {};
};

// The character that begins at `at`, which must be before the end.
inline Character characterAt(std::string_view text, std::size_t at)
{
    return CharacterReader(text, at).next();
}

} // namespace Tamberlin
