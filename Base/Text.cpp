#include "Base/Text.h"

#include <unicode/brkiter.h>
#include <unicode/coll.h>
#include <unicode/uchar.h>
#include <unicode/ucol.h>
#include <unicode/unistr.h>
#include <unicode/utf8.h>
#include <unicode/utypes.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace Base {

namespace {

constexpr UChar32 byteOrderMark = 0xFEFF;
constexpr char32_t replacement = 0xFFFD;

std::int32_t length(std::string_view text) { return static_cast<std::int32_t>(text.size()); }

// ICU's macros cast in the old style and narrow on purpose; they stand only here.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wold-style-cast"
#pragma GCC diagnostic ignored "-Wconversion"

// The code point at `at`, which moves behind it; below zero where the bytes aren't UTF-8.
UChar32 nextPoint(std::string_view text, std::int32_t& at, std::int32_t end)
{
    UChar32 c = 0;
    U8_NEXT(text.data(), at, end, c);
    return c;
}

UChar32 previousPoint(std::string_view text, std::int32_t& at, std::int32_t start)
{
    UChar32 c = 0;
    U8_PREV(text.data(), start, at, c);
    return c;
}

#pragma GCC diagnostic pop

template <typename IsWhite> std::string_view trimmedBy(std::string_view text, IsWhite isWhite)
{
    std::int32_t from = 0, to = length(text);
    while (from < to) {
        std::int32_t next = from;
        const UChar32 c = nextPoint(text, next, to);
        if (c < 0 || !isWhite(c))
            break;
        from = next;
    }
    while (from < to) {
        std::int32_t before = to;
        const UChar32 c = previousPoint(text, before, from);
        if (c < 0 || !isWhite(c))
            break;
        to = before;
    }
    return text.substr(static_cast<std::size_t>(from), static_cast<std::size_t>(to - from));
}

bool isAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }
bool isAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return isAscii(c); });
}

char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

icu::UnicodeString folded(std::string_view text)
{
    return icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), length(text))).foldCase();
}

// Where the last user-perceived character ends that `goesOn(its number, where it ends)` accepts.
template <typename GoesOn> std::size_t characterEnd(std::string_view text, GoesOn goesOn)
{
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<icu::BreakIterator> characters(
        icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
    UText* source = utext_openUTF8(nullptr, text.data(), static_cast<std::int64_t>(text.size()), &status);
    if (U_FAILURE(status))
        throw std::runtime_error("The Unicode data of this computer can’t be used.");
    characters->setText(source, status);
    std::size_t end = 0, count = 0;
    for (auto at = characters->next(); at != icu::BreakIterator::DONE; at = characters->next()) {
        if (!goesOn(++count, static_cast<std::size_t>(at)))
            break;
        end = static_cast<std::size_t>(at);
    }
    utext_close(source);
    return end;
}

} // namespace

std::string_view trimmed(std::string_view text)
{
    return trimmedBy(text, [](UChar32 c) { return u_isUWhiteSpace(c); });
}

std::string_view trimmedOfMarks(std::string_view text)
{
    return trimmedBy(text, [](UChar32 c) { return u_isUWhiteSpace(c) || c == byteOrderMark; });
}

bool equalIgnoringCase(std::string_view left, std::string_view right)
{
    // Mostly ASCII letters settle it, without memory of its own.
    const auto [inLeft, inRight] = std::mismatch(left.begin(), left.end(), right.begin(), right.end(),
        [](char a, char b) { return isAscii(a) && isAscii(b) && lowered(a) == lowered(b); });
    left.remove_prefix(static_cast<std::size_t>(inLeft - left.begin()));
    right.remove_prefix(static_cast<std::size_t>(inRight - right.begin()));
    if (left.empty() || right.empty())
        return left.empty() && right.empty();
    const bool isSettled = isAscii(left.front()) && isAscii(right.front());
    return !isSettled && folded(left) == folded(right);
}

std::string asciiLowered(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), lowered);
    return result;
}

bool naturallyBefore(std::string_view left, std::string_view right)
{
    static const auto collator = [] {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::Collator> made(icu::Collator::createInstance(icu::Locale::getRoot(), status));
        if (U_FAILURE(status))
            throw std::runtime_error("The Unicode data of this computer can’t be used.");
        made->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, status);
        return made;
    }();
    UErrorCode status = U_ZERO_ERROR;
    const auto order = collator->compareUTF8(
        icu::StringPiece(left.data(), length(left)), icu::StringPiece(right.data(), length(right)), status);
    return order == UCOL_LESS || (order == UCOL_EQUAL && left < right);
}

void appendUtf8(std::string& text, char32_t character)
{
    const auto add = [&text](char32_t byte) { text += static_cast<char>(byte); };
    if (character < 0x80) {
        add(character);
        return;
    }
    if (character < 0x800) {
        add(0xC0 | character >> 6);
    } else {
        if (character < 0x10000) {
            add(0xE0 | character >> 12);
        } else {
            add(0xF0 | character >> 18);
            add(0x80 | (character >> 12 & 0x3F));
        }
        add(0x80 | (character >> 6 & 0x3F));
    }
    add(0x80 | (character & 0x3F));
}

std::string validUtf8(std::string_view text)
{
    if (isAscii(text))
        return std::string(text);
    std::string valid;
    for (std::int32_t at = 0, end = length(text); at < end;) {
        const UChar32 c = nextPoint(text, at, end);
        appendUtf8(valid, c < 0 ? replacement : static_cast<char32_t>(c));
    }
    return valid;
}

std::string_view firstCharacters(std::string_view text, std::size_t count)
{
    if (text.size() <= count)
        return text;
    return text.substr(
        0, characterEnd(text, [&](std::size_t number, std::size_t) { return number <= count; }));
}

std::string_view firstBytes(std::string_view text, std::size_t count)
{
    if (text.size() <= count)
        return text;
    const auto end = characterEnd(text, [&](std::size_t, std::size_t at) { return at <= count; });
    if (end > 0)
        return text.substr(0, end);
    auto cut = count; // One character longer than all that fits: cut it between code points.
    while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80)
        --cut;
    return text.substr(0, cut);
}

std::size_t displayWidth(std::string_view text)
{
    if (isAscii(text))
        return text.size();
    std::size_t width = 0;
    for (const char32_t c : codePoints(text)) {
        const auto point = static_cast<UChar32>(c);
        const auto category = u_charType(point);
        if (category == U_NON_SPACING_MARK || category == U_ENCLOSING_MARK || category == U_FORMAT_CHAR)
            continue;
        const auto eastAsian = u_getIntPropertyValue(point, UCHAR_EAST_ASIAN_WIDTH);
        width += eastAsian == U_EA_WIDE || eastAsian == U_EA_FULLWIDTH ? 2 : 1;
    }
    return width;
}

std::u32string codePoints(std::string_view text)
{
    std::u32string points;
    points.reserve(text.size());
    for (std::int32_t at = 0, end = length(text); at < end;) {
        const UChar32 c = nextPoint(text, at, end);
        points.push_back(static_cast<char32_t>(c < 0 ? replacement : c));
    }
    return points;
}

} // namespace Base
