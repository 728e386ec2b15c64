#include "TamberlinKit/Readers/Readers.h"
#include "TamberlinKit/Readers/RtfParser.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <utility>

namespace Tamberlin {

namespace {

// Groups nested deeper share the state of their surroundings.
constexpr std::size_t deepestGroup = 131'072;
constexpr std::size_t betweenCancelChecks = 65'536;

constexpr int hexValue(char digit)
{
    if (digit >= '0' && digit <= '9')
        return digit - '0';
    const char lowered = static_cast<char>(digit | 0x20);
    return lowered >= 'a' && lowered <= 'f' ? lowered - 'a' + 10 : -1;
}

constexpr bool isLetter(char character)
{
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z');
}

constexpr bool isDigit(char character) { return character >= '0' && character <= '9'; }

// ASCII that stands for itself.
constexpr auto isPlain = [] {
    std::array<bool, 256> plain {};
    for (std::size_t character = 0x20; character < 0x7F; ++character)
        plain[character] = character != '{' && character != '}' && character != '\\';
    return plain;
}();

} // namespace

void RtfParser::run()
{
    m_now.page = m_now.associatedPage = &m_pages.ofDocument();
    m_text.enter(Part::body);
    std::size_t nextCheck = m_rest.size();
    while (!m_rest.empty()) {
        if (m_rest.size() <= nextCheck) {
            if (m_cancel.stop_requested())
                throw Cancelled();
            nextCheck = m_rest.size() - std::min(m_rest.size(), betweenCancelChecks);
        }
        const char next = m_rest.front();
        if (isPlain[static_cast<unsigned char>(next)]) {
            plainText();
            continue;
        }
        m_rest.remove_prefix(1);
        if (next == '{') {
            openGroup();
        } else if (next == '}') {
            closeGroup();
            if (m_outer.empty())
                break;
        } else if (next == '\\') {
            controlSymbol();
        } else if (next == '\t') {
            m_text.character('\t');
        } else if (static_cast<unsigned char>(next) >= 0x80) {
            byte(static_cast<unsigned char>(next));
        }
    }
    m_text.flush();
    // What stands behind the document isn't of it. There are writers who close one group too many.
    if (m_rest.find("\\par") != m_rest.npos)
        m_extracted.notes.emplace_back("Text behind the end of the document isn’t counted.");
    m_notCounted.tell(m_extracted.notes);
    if (!m_outer.empty() || m_cutOff)
        m_extracted.notes.push_back(fmt::format(
            "Part of {} couldn’t be read (it ends before its last group is closed).", m_extracted.name));
}

void RtfParser::openGroup()
{
    m_text.flush();
    m_toSkip = 0;
    m_starred = false;
    if (m_outer.size() >= deepestGroup) {
        ++m_untracked;
        return;
    }
    m_outer.push_back(m_now);
    m_now.opened = m_now.bothEncodings = false;
}

void RtfParser::closeGroup()
{
    m_text.flush();
    m_toSkip = 0;
    m_starred = false;
    if (m_untracked > 0) {
        --m_untracked;
        return;
    }
    if (m_now.opened)
        m_text.leave();
    m_now = m_outer.back();
    m_outer.pop_back();
}

void RtfParser::controlSymbol()
{
    if (m_rest.empty())
        return;
    const char symbol = m_rest.front();
    if (isLetter(symbol))
        return controlWord();
    m_rest.remove_prefix(1);
    int hex = 0, digits = 0;
    if (symbol == '\'') {
        for (; digits < 2 && !m_rest.empty() && hexValue(m_rest.front()) >= 0; ++digits)
            hex = hex * 16 + hexValue(take());
    }
    if (symbol == '*') {
        m_starred = true;
        return;
    }
    if (m_toSkip > 0) {
        --m_toSkip;
        return;
    }
    switch (symbol) {
    case '\'':
        if (digits == 2)
            byte(static_cast<unsigned char>(hex));
        return;
    case '\\':
    case '{':
    case '}':
        return byte(static_cast<unsigned char>(symbol));
    case '~':
        return m_text.character(0xA0);
    case '_':
        return m_text.character(0x2011);
    case '-':
        return m_text.character(0xAD);
    case '\t':
        return m_text.character('\t');
    case '\r':
    case '\n':
        return apply({ RtfControl::Action::paragraphEnd }, 0, false);
    default:
        return;
    }
}

void RtfParser::controlWord()
{
    std::size_t length = 0;
    while (length < m_rest.size() && isLetter(m_rest[length]))
        ++length;
    const auto word = m_rest.substr(0, length);
    m_rest.remove_prefix(length);

    std::int64_t parameter = 0;
    const bool negative = m_rest.size() > 1 && m_rest.front() == '-' && isDigit(m_rest[1]);
    if (negative)
        m_rest.remove_prefix(1);
    const bool hasParameter = !m_rest.empty() && isDigit(m_rest.front());
    while (!m_rest.empty() && isDigit(m_rest.front()))
        parameter = std::min<std::int64_t>(parameter * 10 + (take() - '0'), 2'147'483'647);
    if (m_rest.starts_with(' '))
        m_rest.remove_prefix(1);

    const auto control = rtfControl(word);
    if (m_toSkip > 0 && control.action != RtfControl::Action::unicode) {
        --m_toSkip;
        if (control.action != RtfControl::Action::binary)
            return;
    }
    apply(control, static_cast<std::int32_t>(negative ? -parameter : parameter), hasParameter);
}

void RtfParser::skipBinary(std::int32_t count)
{
    const auto length = static_cast<std::size_t>(std::max(count, 0));
    m_cutOff = m_cutOff || length > m_rest.size();
    m_rest.remove_prefix(std::min(length, m_rest.size()));
}

void RtfParser::plainText()
{
    if (m_toSkip > 0) {
        --m_toSkip;
        m_rest.remove_prefix(1);
        return;
    }
    if (m_text.isTrailDue())
        return byte(static_cast<unsigned char>(take()));
    std::size_t length = 1;
    while (length < m_rest.size() && isPlain[static_cast<unsigned char>(m_rest[length])])
        ++length;
    const auto run = m_rest.substr(0, length);
    if (m_now.destination == Destination::shapePropertyName)
        m_isWordArt = run == "gtextUNICODE"; // Its value is the text that is shown as a picture.
    m_text.put(run);
    m_rest.remove_prefix(length);
}

void RtfParser::byte(unsigned char byte)
{
    if (m_toSkip > 0)
        --m_toSkip;
    else
        m_text.byte(byte);
}

Extracted readRtf(std::string_view file, std::string name, const std::stop_token& cancel)
{
    constexpr std::string_view mark = "\xEF\xBB\xBF", beginning = "{\\rtf";
    if (file.starts_with(mark))
        file.remove_prefix(mark.size());
    file.remove_prefix(std::min(file.find_first_not_of(" \t\r\n"), file.size()));
    if (!file.starts_with(beginning))
        throw ReadError(fmt::format(
            "“{}” isn’t an RTF file that can be read (it doesn’t begin with “{}”).", name, beginning));
    Extracted extracted { .name = std::move(name), .format = FileFormat::rtf };
    RtfParser(file, extracted, cancel).run();
    return extracted;
}

} // namespace Tamberlin
