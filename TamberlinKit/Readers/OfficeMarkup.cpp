#include "TamberlinKit/Readers/OfficeMarkup.h"

#include <algorithm>
#include <charconv>

namespace Tamberlin {

namespace {

constexpr std::string_view replacement = "\xEF\xBF\xBD"; // U+FFFD.

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

// Writes the scalar in UTF-8 at `out`, which is never more than its escape took.
std::size_t encode(char32_t scalar, char* out)
{
    const auto byte = [](char32_t bits) { return static_cast<char>(bits); };
    const auto tail = [&](char32_t bits) { return byte(0x80 | (bits & 0x3F)); };
    if (scalar < 0x80)
        return out[0] = byte(scalar), 1;
    if (scalar < 0x800)
        return out[0] = byte(0xC0 | (scalar >> 6)), out[1] = tail(scalar), 2;
    if (scalar >= 0xD800 && scalar < 0xE000)
        return replacement.copy(out, replacement.size());
    if (scalar < 0x10000)
        return out[0] = byte(0xE0 | (scalar >> 12)), out[1] = tail(scalar >> 6), out[2] = tail(scalar), 3;
    out[0] = byte(0xF0 | (scalar >> 18));
    return out[1] = tail(scalar >> 12), out[2] = tail(scalar >> 6), out[3] = tail(scalar), 4;
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

void decodeEscapes(std::string& text, std::size_t from)
{
    auto read = text.find("_x", from);
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
        const bool isBlank = *scalar >= 0x09 && *scalar <= 0x0D;
        if (*scalar >= 0x20 || isBlank) // Other controls stand for nothing that is read.
            written += encode(*scalar, text.data() + written);
    }
    text.resize(written);
}

void addSegment(std::vector<Segment>& segments, std::string_view text, Part part)
{
    if (text.find_first_not_of(" \t\n\v\f\r") != text.npos)
        segments.push_back({ std::string(text), part });
}

void addNote(Extracted& extracted, const std::optional<std::string>& note)
{
    if (note && std::find(extracted.notes.begin(), extracted.notes.end(), *note) == extracted.notes.end())
        extracted.notes.push_back(*note);
}

} // namespace Tamberlin
