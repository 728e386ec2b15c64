#include "TamberlinKit/Markup/PlainXML.h"

#include "Base/Text.h"
#include "TamberlinKit/Text/ReadError.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace Tamberlin {

namespace {

constexpr std::ptrdiff_t longestTag = 16 * 1024 * 1024; // Also of comments: longer ones aren't plain.
constexpr std::size_t mostAttributes = 100; // Of which each is compared with each.
constexpr std::size_t betweenChecks = 1024; // Elements.

enum Kind : std::uint8_t {
    nameStart = 1,
    inName = 2, // Save for colons.
    blank = 4,
    plainText = 8, // Text that stands for itself,
    plainValue = 16, // and what does so in the value of an attribute.
};

constexpr auto kinds = [] {
    std::array<std::uint8_t, 256> table {};
    for (std::size_t byte = 0; byte < 128; ++byte) {
        const bool isLetter = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
        const bool isBlank = byte == ' ' || byte == '\t' || byte == '\n' || byte == '\r';
        if (isLetter || byte == '_' || byte == ':')
            table[byte] |= nameStart;
        if (isLetter || byte == '_')
            table[byte] |= inName;
        if ((byte >= '0' && byte <= '9') || byte == '.' || byte == '-')
            table[byte] |= inName;
        if (isBlank)
            table[byte] |= blank;
        const bool isMark = byte == '<' || byte == '&';
        if ((byte >= ' ' || byte == '\t' || byte == '\n') && !isMark && byte != ']')
            table[byte] |= plainText;
        if (byte >= ' ' && !isMark && byte != '"' && byte != '\'')
            table[byte] |= plainValue;
    }
    return table;
}();

bool isOf(char c, Kind kind) { return (kinds[static_cast<unsigned char>(c)] & kind) != 0; }

const char* passed(const char* at, const char* end, Kind kind)
{
    while (at != end && isOf(*at, kind))
        ++at;
    return at;
}

// Texts are mostly longer than names and values, so that it pays to look at many bytes at once.
const char* passedText(const char* at, const char* end)
{
#ifdef __SSE2__
    const auto is = [](__m128i bytes, char c) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(c)); };
    while (end - at >= 16) {
        const auto bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(at));
        const auto isOutside = _mm_cmplt_epi8(bytes, _mm_set1_epi8(' ')); // Below it, or beyond ASCII.
        const auto isMark = _mm_or_si128(_mm_or_si128(is(bytes, '<'), is(bytes, '&')), is(bytes, ']'));
        const auto found = static_cast<unsigned>(_mm_movemask_epi8(_mm_or_si128(isOutside, isMark)));
        at += found == 0 ? 16 : std::countr_zero(found);
        if (found != 0 && !isOf(*at, plainText))
            return at;
        at += found == 0 ? 0 : 1; // A line feed or tab.
    }
#endif
    return passed(at, end, plainText);
}

} // namespace

PlainXML::PlainXML(std::string_view document, const XMLLimits& limits, const XMLHandlers& handlers,
    const std::stop_token& cancel)
    : m_at(document.data())
    , m_end(document.data() + document.size())
    , m_limits(limits)
    , m_handlers(handlers)
    , m_cancel(cancel)
{
}

bool PlainXML::read()
{
    constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
    if (startsWith(byteOrderMark))
        m_at += byteOrderMark.size();
    while (m_at != m_end && isOf(m_end[-1], blank))
        --m_end;
    if (m_at == m_end || m_end[-1] != '>')
        return false;
    return readDeclaration() && readAround() && readElement() && readAround() && m_at == m_end;
}

// A declaration that says no more than version 1.0 and UTF-8, if there is one.
bool PlainXML::readDeclaration()
{
    if (!startsWith("<?xml"))
        return true;
    const auto end = rest().find("?>");
    if (end == std::string_view::npos)
        return false;
    auto text = rest().substr(5, end - 5);
    m_at += end + 2;
    const auto says = [&text](std::string_view name, std::string_view expected, bool inAnyCase = false) {
        const auto behind = [](std::string_view from, std::string_view what) {
            from.remove_prefix(std::min(from.find_first_not_of(" \t\r\n"), from.size()));
            return from.starts_with(what) ? std::optional(from.substr(what.size())) : std::nullopt;
        };
        const auto value = text.empty() || !isOf(text.front(), blank) ? std::nullopt : behind(text, name);
        const auto quoted = value ? behind(*value, "=") : std::nullopt;
        const auto from = quoted ? behind(*quoted, "") : std::nullopt;
        const auto length = expected.size();
        if (!from || from->size() < length + 2 || ((*from)[0] != '"' && (*from)[0] != '\'')
            || (*from)[length + 1] != (*from)[0])
            return false;
        const auto found = from->substr(1, length);
        if (found != expected && !(inAnyCase && Base::asciiLowered(found) == expected))
            return false;
        text = from->substr(length + 2);
        return true;
    };
    if (!says("version", "1.0"))
        return false;
    says("encoding", "utf-8", true);
    if (!says("standalone", "yes"))
        says("standalone", "no");
    return std::all_of(text.begin(), text.end(), [](char c) { return isOf(c, blank); });
}

void PlainXML::skipBlanks() { m_at = passed(m_at, m_end, blank); }

bool PlainXML::readAround()
{
    for (skipBlanks(); startsWith("<!--"); skipBlanks()) {
        if (!readComment())
            return false;
    }
    return true;
}

bool PlainXML::readElement()
{
    if (!startsWith("<"))
        return false;
    ++m_at;
    if (!readStartTag())
        return false;
    while (!m_open.empty()) {
        if (m_at != m_end && *m_at == '<') // Mostly tag follows tag.
            ++m_at;
        else if (!readText())
            return false;
        if (!readMarkup())
            return false;
    }
    return true;
}

// What begins with "<", which is passed already.
bool PlainXML::readMarkup()
{
    if (m_at == m_end)
        return false;
    if (isOf(*m_at, nameStart))
        return readStartTag();
    if (*m_at == '/')
        return readEndTag();
    --m_at;
    return startsWith("<!--") ? readComment() : startsWith("<![CDATA[") && readCData();
}

// Up to behind the next "<".
bool PlainXML::readText()
{
    const auto* piece = m_at;
    for (;;) {
        m_at = passedText(m_at, m_end);
        if (m_at == m_end)
            return false;
        switch (*m_at) {
        case '<':
            tell(piece, m_at++);
            return true;
        case '&':
            tell(piece, m_at);
            m_reference.clear();
            if (!readReference(m_reference))
                return false;
            tellText(m_reference);
            piece = m_at;
            break;
        case '\r': // Line ends are told as line feeds.
            tell(piece, m_at++);
            if (!startsWith("\n"))
                tellText("\n");
            piece = m_at;
            break;
        case ']':
            if (startsWith("]]>"))
                return false;
            ++m_at;
            break;
        default:
            if (!passCharacter())
                return false;
        }
    }
}

// A name, which begins here, and what of it stands behind its first colon.
bool PlainXML::readName(XMLName& name)
{
    const auto passedPiece = [](const char* at) {
        while (isOf(*at, inName)) // It ends before the document, whose last byte isn't part of any.
            ++at;
        return at;
    };
    const auto* const begin = m_at;
    const auto* local = begin;
    const auto* at = passedPiece(begin);
    while (*at == ':') {
        if (local == begin)
            local = at + 1;
        at = passedPiece(at + 1);
    }
    m_at = at;
    name.written = { begin, at };
    name.local = { local, at };
    // Behind it a character may stand that belongs to the name and isn't ASCII.
    return static_cast<unsigned char>(*at) < 0x80;
}

// Behind "<".
bool PlainXML::readStartTag()
{
    const auto* const begin = m_at;
    XMLName name;
    if (m_at == m_end || !isOf(*m_at, nameStart) || !readName(name))
        return false;
    m_attributes.clear();
    if (!m_decoded.empty())
        m_decoded.clear();
    while (m_at != m_end && isOf(*m_at, blank)) {
        if (++m_at != m_end && isOf(*m_at, blank)) // Mostly there is one.
            skipBlanks();
        if (m_at != m_end && isOf(*m_at, nameStart) && !readAttribute())
            return false;
    }
    const bool isEmpty = m_at != m_end && *m_at == '/';
    m_at += isEmpty ? 1 : 0;
    if (m_at == m_end || *m_at++ != '>')
        return false;
    if (m_at - begin > longestTag || (m_attributes.size() > 1 && !areDistinct())
        || m_open.size() >= m_limits.deepest || m_elements >= m_limits.elements)
        return false;
    if (++m_elements % betweenChecks == 0 && m_cancel.stop_requested())
        throw Cancelled();
    m_progress = { m_progress.tags + 1, 0 };
    m_handlers.onStart(name, XMLAttributes(m_attributes));
    if (isEmpty)
        tellEnd(name);
    else
        m_open.push_back(name);
    return true;
}

bool PlainXML::areDistinct() const
{
    if (m_attributes.size() > mostAttributes)
        return false;
    for (std::size_t last = 1; last < m_attributes.size(); ++last) {
        for (std::size_t first = 0; first < last; ++first) {
            if (m_attributes[first].name == m_attributes[last].name)
                return false;
        }
    }
    return true;
}

bool PlainXML::readAttribute()
{
    XMLName name;
    if (!readName(name))
        return false;
    if (*m_at != '=')
        skipBlanks();
    if (m_at == m_end || *m_at != '=')
        return false;
    if (++m_at != m_end && isOf(*m_at, blank))
        skipBlanks();
    auto& attribute = m_attributes.emplace_back();
    attribute.name = name.written;
    return readValue(attribute.value);
}

bool PlainXML::readValue(std::string_view& value)
{
    if (m_at == m_end || (*m_at != '"' && *m_at != '\''))
        return false;
    const char quote = *m_at++;
    const auto* const begin = m_at;
    for (;;) {
        m_at = passed(m_at, m_end, plainValue);
        if (m_at == m_end || *m_at == '<')
            return false;
        if (*m_at == quote) {
            value = { begin, m_at++ };
            return true;
        }
        if (*m_at == '&' || isOf(*m_at, blank))
            return decodeValue(begin, quote, value);
        if (*m_at == '"' || *m_at == '\'')
            ++m_at;
        else if (!passCharacter())
            return false;
    }
}

// A value with references, or with line ends and tabs, each of which is a space.
bool PlainXML::decodeValue(const char* from, char quote, std::string_view& value)
{
    auto& decoded = m_decoded.emplace_back(from, m_at);
    for (const char* piece = m_at;;) {
        m_at = passed(m_at, m_end, plainValue);
        if (m_at == m_end || *m_at == '<')
            return false;
        const char c = *m_at;
        if (c == '&' || c == quote || isOf(c, blank)) {
            decoded.append(piece, m_at);
            if (c == '&') {
                if (!readReference(decoded))
                    return false;
            } else if (c == quote) {
                ++m_at;
                value = decoded;
                return true;
            } else {
                decoded += ' ';
                m_at += startsWith("\r\n") ? 2 : 1;
            }
            piece = m_at;
        } else if (c == '"' || c == '\'') {
            ++m_at;
        } else if (!passCharacter()) {
            return false;
        }
    }
}

// Behind "<".
bool PlainXML::readEndTag()
{
    ++m_at;
    const auto name = m_open.back();
    if (!startsWith(name.written))
        return false;
    m_at += name.written.size();
    if (m_at != m_end && *m_at != '>')
        skipBlanks();
    if (m_at == m_end || *m_at++ != '>')
        return false;
    m_open.pop_back();
    tellEnd(name);
    return true;
}

bool PlainXML::readComment()
{
    const auto* const begin = m_at;
    for (m_at += 4; m_at != m_end;) {
        if (*m_at == '-' && startsWith("--")) {
            const bool ends = startsWith("-->") && m_at - begin <= longestTag;
            m_at += 3;
            return ends;
        }
        if (isOf(*m_at, plainText) || isOf(*m_at, blank) || *m_at == '<' || *m_at == '&' || *m_at == ']')
            ++m_at;
        else if (!passCharacter())
            return false;
    }
    return false;
}

bool PlainXML::readCData()
{
    m_at += 9;
    const auto* piece = m_at;
    while (m_at != m_end) {
        if (startsWith("]]>")) {
            tell(piece, m_at);
            m_at += 3;
            return true;
        }
        if (*m_at == '\r') {
            tell(piece, m_at++);
            if (!startsWith("\n"))
                tellText("\n");
            piece = m_at;
        } else if (isOf(*m_at, plainText) || *m_at == '<' || *m_at == '&' || *m_at == ']') {
            ++m_at;
        } else if (!passCharacter()) {
            return false;
        }
    }
    return false;
}

// "&amp;", "&#233;", "&#xE9;".
bool PlainXML::readReference(std::string& into)
{
    static constexpr std::pair<std::string_view, char> named[]
        = { { "&amp;", '&' }, { "&lt;", '<' }, { "&gt;", '>' }, { "&quot;", '"' }, { "&apos;", '\'' } };
    for (const auto& [reference, character] : named) {
        if (startsWith(reference)) {
            m_at += reference.size();
            into += character;
            return true;
        }
    }
    if (!startsWith("&#"))
        return false;
    m_at += 2;
    const bool isHex = startsWith("x");
    m_at += isHex ? 1 : 0;
    char32_t codePoint = 0;
    const auto* const digits = m_at;
    for (; m_at != m_end && *m_at != ';'; ++m_at) {
        const char lower = static_cast<char>(*m_at | 0x20);
        const bool isDigit = *m_at >= '0' && *m_at <= '9';
        if ((!isDigit && !(isHex && lower >= 'a' && lower <= 'f')) || codePoint > 0x10FFFF)
            return false;
        codePoint
            = codePoint * (isHex ? 16 : 10) + static_cast<char32_t>(isDigit ? *m_at - '0' : lower - 'a' + 10);
    }
    const bool isCharacter = (codePoint >= 0x20 && codePoint < 0xD800) || codePoint == '\t'
        || codePoint == '\n' || codePoint == '\r' || (codePoint >= 0xE000 && codePoint < 0xFFFE)
        || (codePoint >= 0x10000 && codePoint <= 0x10FFFF);
    if (m_at == m_end || m_at == digits || !isCharacter)
        return false;
    ++m_at;
    Base::appendUtf8(into, codePoint);
    return true;
}

// One character beyond ASCII. False where there is none, or one that XML doesn't allow.
bool PlainXML::passCharacter()
{
    const auto byte = [this](std::ptrdiff_t place) {
        return place < m_end - m_at ? static_cast<unsigned char>(m_at[place]) : 0;
    };
    const auto follows = [&byte](std::ptrdiff_t place) { return (byte(place) & 0xC0) == 0x80; };
    const auto first = byte(0), second = byte(1);
    if (first >= 0xC2 && first < 0xE0 && follows(1)) {
        m_at += 2;
        return true;
    }
    if (first >= 0xE0 && first < 0xF0 && follows(1) && follows(2)) {
        const bool isTooLong = first == 0xE0 && second < 0xA0, isSurrogate = first == 0xED && second >= 0xA0;
        const bool isNone = first == 0xEF && second == 0xBF && byte(2) >= 0xBE;
        m_at += 3;
        return !isTooLong && !isSurrogate && !isNone;
    }
    if (first >= 0xF0 && first < 0xF5 && follows(1) && follows(2) && follows(3)) {
        m_at += 4;
        return !(first == 0xF0 && second < 0x90) && !(first == 0xF4 && second >= 0x90);
    }
    return false;
}

void PlainXML::tell(const char* from, const char* to)
{
    if (from != to)
        tellText({ from, to });
}

void PlainXML::tellText(std::string_view text)
{
    m_progress.text += text.size();
    if (m_handlers.onText)
        m_handlers.onText(text);
}

void PlainXML::tellEnd(const XMLName& name)
{
    m_progress = { m_progress.tags + 1, 0 };
    m_handlers.onEnd(name);
}

} // namespace Tamberlin
