#include "Base/JsonWriter.h"

#include "Base/Text.h"

namespace Base {

namespace {

// What a line starts with, behind the comma of the line before. It is copied whole, which needs no call, and
// what is too much is written over.
constexpr std::size_t lineStartSize = 64;
constexpr auto lineStart = [] {
    std::array<char, 1 + lineStartSize> start {};
    start.fill(' ');
    start[0] = ',';
    start[1] = '\n';
    return start;
}();

constexpr std::uint64_t eachByte(std::uint8_t byte) { return 0x0101010101010101u * byte; }
constexpr auto highBits = eachByte(0x80);

std::uint64_t eightBytes(std::string_view text, std::size_t at)
{
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, text.data() + at, sizeof bytes);
    return bytes;
}

bool isHigh(char c) { return (c & 0x80) != 0; }
bool needsEscape(char c) { return (c >= 0 && c < 0x20) || c == '"' || c == '\\'; }

// The same of any of eight bytes. Subtracting sets the highest bit of each byte that is smaller than what is
// subtracted; a borrow, which could make the next one look so too, only comes from such a byte.
bool anyNeedsEscape(std::uint64_t bytes)
{
    const auto control = bytes - eachByte(0x20);
    const auto quote = (bytes ^ eachByte('"')) - eachByte(1),
               backslash = (bytes ^ eachByte('\\')) - eachByte(1);
    return ((control | quote | backslash) & ~bytes & highBits) != 0;
}

// How much of the text, from its start on, stands in JSON as it is.
std::size_t plainLength(std::string_view text, bool& sawHigh)
{
    std::size_t at = 0;
    std::uint64_t seen = 0;
    for (; text.size() - at >= 8; at += 8) {
        const auto bytes = eightBytes(text, at);
        if (anyNeedsEscape(bytes))
            break;
        seen |= bytes;
    }
    for (; at < text.size() && !needsEscape(text[at]); ++at)
        seen |= static_cast<unsigned char>(text[at]);
    sawHigh = (seen & highBits) != 0;
    return at;
}

// How many bytes follow the first one of a sequence of UTF-8, and between what the first of them must lie
// (Unicode 15, table 3-7); none for a byte that starts no sequence.
struct Sequence {
    std::size_t following = 0;
    unsigned char low = 0x80, high = 0xBF;
};

Sequence sequence(unsigned char first)
{
    if (first >= 0xC2 && first <= 0xDF)
        return { 1 };
    if (first >= 0xE0 && first <= 0xEF)
        return { 2, static_cast<unsigned char>(first == 0xE0 ? 0xA0 : 0x80),
            static_cast<unsigned char>(first == 0xED ? 0x9F : 0xBF) };
    if (first >= 0xF0 && first <= 0xF4)
        return { 3, static_cast<unsigned char>(first == 0xF0 ? 0x90 : 0x80),
            static_cast<unsigned char>(first == 0xF4 ? 0x8F : 0xBF) };
    return {};
}

bool isUtf8(std::string_view text)
{
    for (std::size_t at = 0; at < text.size();) {
        if (!isHigh(text[at])) {
            at += text.size() - at >= 8 && (eightBytes(text, at) & highBits) == 0 ? 8 : 1;
            continue;
        }
        const auto [following, low, high] = sequence(static_cast<unsigned char>(text[at]));
        if (following == 0 || text.size() - at <= following)
            return false;
        const auto second = static_cast<unsigned char>(text[at + 1]);
        if (second < low || second > high)
            return false;
        for (std::size_t place = 2; place <= following; ++place) {
            if ((text[at + place] & 0xC0) != 0x80)
                return false;
        }
        at += 1 + following;
    }
    return true;
}

} // namespace

void JsonWriter::expect(std::size_t bytes)
{
    const auto whole = size() + bytes;
    if (whole > m_text.capacity())
        m_text.reserve(whole);
}

void JsonWriter::finish()
{
    m_text.append(m_piece.data(), m_used);
    m_used = 0;
}

void JsonWriter::addLong(std::string_view bytes)
{
    finish();
    m_text += bytes;
}

void JsonWriter::addLineStart(bool withComma)
{
    const std::size_t skipped = withComma ? 0 : 1;
    const auto wanted = (m_pretty ? 2 + 2 * m_depth : 1) - skipped;
    std::memcpy(room(lineStartSize), lineStart.data() + skipped, lineStartSize);
    m_used += std::min(wanted, lineStartSize);
    for (auto rest = lineStartSize; rest < wanted; ++rest)
        add(' ');
}

void JsonWriter::startLine()
{
    addLineStart(!m_isFirst);
    m_isFirst = false;
}

void JsonWriter::end(char bracket)
{
    --m_depth;
    if (m_pretty && !m_isFirst)
        addLineStart(false);
    add(bracket);
    m_isFirst = false;
    if (m_depth == 0)
        finish();
}

void JsonWriter::plainKey(std::string_view key)
{
    startLine();
    char* at = room(key.size() + std::string_view("\"\": ").size());
    *at++ = '"';
    at = std::copy(key.begin(), key.end(), at);
    *at++ = '"';
    *at++ = ':';
    *at = ' ';
    m_used += key.size() + (m_pretty ? 4 : 3);
}

void JsonWriter::key(std::string_view key)
{
    startLine();
    text(key);
    add(m_pretty ? ": " : ":");
}

void JsonWriter::text(std::string_view text)
{
    add('"');
    addEscaped(text);
    add('"');
}

void JsonWriter::addEscaped(std::string_view text)
{
    bool isChecked = false;
    while (!text.empty()) {
        bool sawHigh = false;
        const auto length = plainLength(text, sawHigh);
        if (sawHigh && !isChecked) {
            // A stray byte would make the whole document unreadable; it becomes a replacement character
            // instead.
            if (!isUtf8(text))
                return addEscaped(validUtf8(text));
            isChecked = true;
        }
        add(text.substr(0, length));
        if (length == text.size())
            return;
        addEscape(text[length]);
        text.remove_prefix(length + 1);
    }
}

void JsonWriter::addEscape(char c)
{
    constexpr char hex[] = "0123456789abcdef";
    switch (c) {
    case '"':
        return add("\\\"");
    case '\\':
        return add("\\\\");
    case '\n':
        return add("\\n");
    case '\r':
        return add("\\r");
    case '\t':
        return add("\\t");
    default:
        add("\\u00");
        add(hex[c >> 4]);
        add(hex[c & 15]);
    }
}

void JsonWriter::number(std::int64_t value)
{
    constexpr std::size_t longest = 20; // "-9223372036854775808"
    char* const at = room(longest);
    m_used += static_cast<std::size_t>(std::to_chars(at, at + longest, value).ptr - at);
}

} // namespace Base
