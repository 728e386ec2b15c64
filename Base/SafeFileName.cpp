#include "Base/SafeFileName.h"

#include "Base/Text.h"

#include <algorithm>

namespace Base {

namespace {

constexpr std::size_t mostCharacters = 120;
constexpr std::size_t mostBytes = 255;
constexpr std::size_t longestExtension = 16;

// The C1 controls are U+0080 to U+009F: C2 80 to C2 9F in UTF-8.
std::string withoutForbidden(std::string_view text)
{
    constexpr std::string_view forbidden = "/\\:?%*|\"<>\x7F";
    std::string kept;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const auto byte = static_cast<unsigned char>(text[at]);
        if (byte == 0xC2 && at + 1 < text.size() && static_cast<unsigned char>(text[at + 1]) < 0xA0)
            ++at;
        else if (byte >= 0x20 && forbidden.find(text[at]) == std::string_view::npos)
            kept += text[at];
    }
    return kept;
}

std::string_view trimmedOfBlanksAndStops(std::string_view text)
{
    for (;;) {
        auto rest = trimmed(text);
        while (rest.starts_with('.'))
            rest.remove_prefix(1);
        while (rest.ends_with('.'))
            rest.remove_suffix(1);
        if (rest.size() == text.size())
            return text;
        text = rest;
    }
}

std::string_view extension(std::string_view name)
{
    const auto stop = name.rfind('.');
    if (stop == std::string_view::npos || stop == 0 || name.size() - stop > longestExtension)
        return {};
    return name.substr(stop);
}

} // namespace

std::string safeFileName(std::string_view text, std::string_view before, std::string_view after)
{
    const auto kept = withoutForbidden(validUtf8(text));
    auto name = std::string(
        trimmedOfBlanksAndStops(firstCharacters(trimmedOfBlanksAndStops(kept), mostCharacters)));
    if (name.empty())
        name = "file";
    const auto room = mostBytes - std::min(mostBytes, before.size() + after.size());
    if (name.size() > room) {
        const auto ending = std::string(extension(name));
        const auto stem = std::string_view(name).substr(0, name.size() - ending.size());
        const auto cut = firstBytes(stem, room - std::min(room, ending.size()));
        name = std::string(trimmedOfBlanksAndStops(cut)) + ending;
    }
    return name;
}

} // namespace Base
