#include "TamberlinKit/Markup/CharacterReferences.h"

#include "Base/Text.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace Tamberlin {

namespace {

// All names and their values in one piece; `places` says where each begins.
constexpr char table[] =
#define REFERENCE(name, value) name value
#include "TamberlinKit/Markup/NamedReferences.inc"
#undef REFERENCE
    ;

struct Place {
    std::uint16_t begin;
    std::uint8_t nameLength, valueLength;

    constexpr std::string_view name() const { return { table + begin, nameLength }; }
    constexpr std::string_view value() const { return { table + begin + nameLength, valueLength }; }
};

constexpr auto places = [] {
    auto made = std::to_array<Place>({
#define REFERENCE(name, value) Place { 0, sizeof name - 1, sizeof value - 1 },
#include "TamberlinKit/Markup/NamedReferences.inc"
#undef REFERENCE
    });
    std::size_t begin = 0;
    for (auto& place : made) {
        place.begin = static_cast<std::uint16_t>(begin);
        begin += std::size_t { place.nameLength } + place.valueLength;
    }
    return made;
}();
static_assert(sizeof table <= 65'536);

// The longest name that the text begins with.
const Place* longestName(std::string_view text)
{
    const Place* longest = nullptr;
    const auto *first = places.data(), *last = first + places.size();
    for (std::size_t at = 0; at < text.size(); ++at) {
        // All between `first` and `last` begin with the first `at` bytes of the text.
        const auto letter = [at](const Place& place) {
            return at < place.nameLength ? static_cast<unsigned char>(place.name()[at]) : 0;
        };
        const auto wanted = static_cast<unsigned char>(text[at]);
        first = std::partition_point(first, last, [&](const Place& place) { return letter(place) < wanted; });
        last = std::partition_point(first, last, [&](const Place& place) { return letter(place) == wanted; });
        if (first == last)
            break;
        if (first->nameLength == at + 1)
            longest = first;
    }
    return longest;
}

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }
constexpr char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }
constexpr bool isLetter(char c) { return lowered(c) >= 'a' && lowered(c) <= 'z'; }

// Numbers of the C1 range are what windows-1252 has there.
constexpr std::array<char16_t, 32> windows1252 { 0x20AC, 0x81, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D, 0x017D, 0x8F, 0x90, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D, 0x017E, 0x0178 };

char32_t numbered(char32_t number)
{
    if (number == 0 || number > 0x10FFFF || (number >= 0xD800 && number < 0xE000))
        return 0xFFFD;
    return number >= 0x80 && number < 0xA0 ? windows1252[number - 0x80] : number;
}

std::size_t appendNumber(std::string& out, std::string_view text, ReferencePlace place)
{
    const bool isHexadecimal = text.size() > 2 && lowered(text[2]) == 'x';
    const std::size_t begin = isHexadecimal ? 3 : 2;
    auto at = begin;
    char32_t number = 0;
    for (; at < text.size(); ++at) {
        const char c = lowered(text[at]);
        if (!isDigit(c) && !(isHexadecimal && c >= 'a' && c <= 'f'))
            break;
        const auto digit = static_cast<char32_t>(isDigit(c) ? c - '0' : c - 'a' + 10);
        number = std::min<char32_t>(number * (isHexadecimal ? 16 : 10) + digit, 0x110000);
    }
    const bool isEnded = at < text.size() && text[at] == ';';
    if (at == begin || (place == ReferencePlace::strict && !isEnded))
        return 0;
    Base::appendUtf8(out, numbered(number));
    return at + (isEnded ? 1 : 0);
}

} // namespace

std::size_t appendReference(std::string& out, std::string_view text, ReferencePlace place)
{
    if (text.size() > 1 && text[1] == '#')
        return appendNumber(out, text, place);
    const auto* const found = longestName(text.substr(1));
    if (!found)
        return 0;
    const std::size_t length = 1 + found->nameLength;
    if (text[length - 1] != ';') {
        const char next = length < text.size() ? text[length] : '\0';
        if (place == ReferencePlace::strict
            || (place == ReferencePlace::attribute && (next == '=' || isLetter(next) || isDigit(next))))
            return 0;
    }
    out += found->value();
    return length;
}

std::string withoutReferences(std::string_view text, ReferencePlace place)
{
    std::string out;
    while (!text.empty()) {
        const auto ampersand = std::min(text.find('&'), text.size());
        out += text.substr(0, ampersand);
        text.remove_prefix(ampersand);
        if (text.empty())
            break;
        const auto length = appendReference(out, text, place);
        if (length == 0)
            out += '&';
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return out;
}

} // namespace Tamberlin
