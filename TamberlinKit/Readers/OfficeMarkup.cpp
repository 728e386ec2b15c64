#include "TamberlinKit/Readers/OfficeMarkup.h"

#include "Base/Text.h"

#include <algorithm>
#include <charconv>

namespace Tamberlin {

namespace {

// The UTF-16 unit of an escape at the beginning of the text: underscore, x, four hexadecimal digits,
// underscore.
std::optional<char32_t> escapedUnit(std::string_view text)
{
    unsigned unit = 0;
    if (text.size() < 7 || text[0] != '_' || text[1] != 'x' || text[6] != '_')
        return std::nullopt;
    const char* const digits = text.data() + 2;
    const auto [end, error] = std::from_chars(digits, digits + 4, unit, 16);
    if (error != std::errc() || end != digits + 4)
        return std::nullopt;
    return static_cast<char32_t>(unit);
}

} // namespace

bool OneBranch::start(std::string_view element)
{
    const bool isBranch = element == "Choice" || element == "Fallback";
    if (m_skipped > 0 || (isBranch && !m_taken.empty() && m_taken.back()))
        return ++m_skipped, false;
    if (element == "AlternateContent")
        m_taken.push_back(false);
    else if (isBranch && !m_taken.empty())
        m_taken.back() = true;
    return true;
}

bool OneBranch::end(std::string_view element)
{
    if (m_skipped > 0)
        return --m_skipped, false;
    if (element == "AlternateContent")
        m_taken.pop_back();
    return true;
}

bool isOn(std::optional<std::string_view> attribute)
{
    return attribute == "1" || attribute == "true" || attribute == "on";
}

void decodeEscapes(std::string& text)
{
    auto read = text.find("_x");
    if (read == text.npos)
        return;
    auto written = read;
    while (read < text.size()) {
        const auto rest = std::string_view(text).substr(read);
        auto scalar = escapedUnit(rest);
        if (!scalar) {
            text[written++] = text[read++];
            continue;
        }
        read += 7;
        if (const auto low = escapedUnit(std::string_view(text).substr(read));
            *scalar >= 0xD800 && *scalar < 0xDC00 && low && *low >= 0xDC00 && *low < 0xE000) {
            scalar = 0x10000 + ((*scalar - 0xD800) << 10) + (*low - 0xDC00);
            read += 7;
        }
        if (*scalar >= 0xD800 && *scalar < 0xE000) // Half a character.
            scalar = 0xFFFD;
        const bool isBlank = *scalar >= 0x09 && *scalar <= 0x0D;
        std::string character;
        if (*scalar >= 0x20 || isBlank) // Other controls stand for nothing that is read.
            Base::appendUtf8(character, *scalar);
        written
            += character.copy(text.data() + written, character.size()); // Never more than its escape took.
    }
    text.resize(written);
}

bool hasText(std::string_view text) { return text.find_first_not_of(" \t\n\v\f\r") != text.npos; }

void addSegment(std::vector<Segment>& segments, std::string_view text, Part part)
{
    if (hasText(text))
        segments.push_back({ std::string(text), part });
}

void addNote(Extracted& extracted, const std::optional<std::string>& note)
{
    if (note && std::find(extracted.notes.begin(), extracted.notes.end(), *note) == extracted.notes.end())
        extracted.notes.push_back(*note);
}

} // namespace Tamberlin
