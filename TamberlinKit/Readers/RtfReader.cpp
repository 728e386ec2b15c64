#include "TamberlinKit/Readers/NotCounted.h"
#include "TamberlinKit/Readers/Readers.h"
#include "TamberlinKit/Readers/RtfCodePage.h"
#include "TamberlinKit/Readers/RtfControls.h"
#include "TamberlinKit/Readers/RtfText.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <unordered_map>
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

class RtfParser {
public:
    RtfParser(std::string_view file, Extracted& extracted, const std::stop_token& cancel)
        : m_rest(file)
        , m_extracted(extracted)
        , m_cancel(cancel)
        , m_text(extracted.segments, m_now)
    {
    }

    void run();

private:
    using State = RtfState;
    using Destination = State::Destination;

    void openGroup();
    void closeGroup();
    void controlSymbol();
    void controlWord();
    void apply(RtfControl control, std::int32_t parameter, bool hasParameter);
    void enter(Destination destination)
    {
        m_text.flush();
        m_now.destination = destination;
    }
    void openContainer(Part part);

    void plainText();
    void byte(unsigned char byte);

    const RtfCodePage& pageOfFont(std::int32_t font);
    void skipBinary(std::int32_t count);
    char take()
    {
        const char next = m_rest.front();
        m_rest.remove_prefix(1);
        return next;
    }

    std::string_view m_rest;
    Extracted& m_extracted;
    const std::stop_token& m_cancel;
    NotCounted m_notCounted;
    RtfCodePages m_pages;
    int m_documentPage = RtfCodePage::western;
    std::unordered_map<std::int32_t, int> m_fontPages; // Code pages of the fonts that name one.
    std::int32_t m_definedFont = 0; // Whose entry of the font table we are in.
    std::int32_t m_defaultFont = 0;

    State m_now;
    RtfText m_text;
    std::vector<State> m_outer;
    std::size_t m_untracked = 0; // Open groups beyond the deepest.
    bool m_starred = false; // The next control word may be skipped if it isn't known.
    bool m_cutOff = false;
    std::int32_t m_toSkip = 0; // Characters that stand in for a Unicode one.
};

void RtfParser::run()
{
    m_now.page = m_now.associatedPage = &m_pages[m_documentPage];
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
                break; // What stands behind the document isn't of it.
        } else if (next == '\\') {
            controlSymbol();
        } else if (next == '\t') {
            m_text.character('\t');
        } else if (static_cast<unsigned char>(next) >= 0x80) {
            byte(static_cast<unsigned char>(next));
        }
    }
    m_text.flush();
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

void RtfParser::apply(RtfControl control, std::int32_t parameter, bool hasParameter)
{
    using Action = RtfControl::Action;
    const bool starred = std::exchange(m_starred, false);
    const bool isOn = !hasParameter || parameter != 0;
    const bool inText = m_now.destination == Destination::text;
    switch (control.action) {
    case Action::none:
        if (starred)
            enter(Destination::skipped);
        return;
    case Action::character:
        return m_text.character(control.value);
    case Action::paragraphEnd:
        m_text.flush();
        if (inText)
            m_text.endParagraph();
        return;
    case Action::container:
        if (inText)
            openContainer(static_cast<Part>(control.value));
        return;
    case Action::transparent:
        return;
    case Action::skipped:
        return enter(Destination::skipped);
    case Action::shapeProperty:
        if (inText)
            enter(Destination::shapeProperty);
        return;
    case Action::picture:
        m_notCounted.pictures
            += (inText || m_now.destination == Destination::shapeProperty) && !m_now.inObject;
        return enter(Destination::skipped);
    case Action::object: // What is shown of it may be text, and counts.
        m_notCounted.objects += inText;
        m_now.inObject = true;
        return;
    case Action::fontTable:
        return enter(Destination::fontTable);
    case Action::font:
        if (m_now.destination == Destination::fontTable) {
            m_definedFont = parameter;
            return;
        }
        m_text.flush();
        m_now.page = &pageOfFont(parameter);
        return;
    case Action::associatedFont:
        m_text.flush();
        if (m_now.rightToLeft)
            m_now.associatedPage = &pageOfFont(parameter);
        return;
    case Action::leftToRight:
    case Action::rightToLeft:
        m_text.flush();
        m_now.rightToLeft = control.action == Action::rightToLeft;
        return;
    case Action::fontCharset:
        if (m_now.destination == Destination::fontTable)
            m_fontPages[m_definedFont] = RtfCodePages::ofCharset(parameter, m_documentPage);
        return;
    case Action::fontCodePage:
        if (m_now.destination == Destination::fontTable)
            m_fontPages[m_definedFont] = parameter;
        return;
    case Action::codePage:
        m_text.flush();
        m_documentPage = control.value != 0 ? control.value : parameter;
        m_now.page = m_now.associatedPage = &m_pages[m_documentPage];
        return;
    case Action::defaultFont:
        m_defaultFont = parameter;
        return;
    case Action::plain:
        m_text.flush();
        m_now.hidden = m_now.deleted = m_now.rightToLeft = false;
        m_now.page = m_now.associatedPage = &pageOfFont(m_defaultFont);
        return;
    case Action::hidden:
        m_text.flush();
        m_now.hidden = isOn;
        return;
    case Action::deleted:
        m_text.flush();
        m_now.deleted = isOn;
        return;
    case Action::unicode:
        m_toSkip = m_now.unicodeSkip;
        return m_text.unicode(parameter);
    case Action::unicodeSkip:
        m_now.unicodeSkip = std::max(parameter, 0);
        return;
    case Action::binary:
        return skipBinary(parameter);
    case Action::bothEncodings:
        m_now.bothEncodings = true;
        return enter(Destination::skipped);
    case Action::unicodeText:
        if (m_outer.size() > 1 && m_outer.back().bothEncodings)
            enter(m_outer[m_outer.size() - 2].destination);
        return;
    }
}

void RtfParser::openContainer(Part part)
{
    m_text.flush();
    if (m_now.opened)
        m_text.leave();
    m_now.opened = true;
    // A note or box is hidden with what it is anchored in.
    const bool hides = m_now.hidden && (part == Part::footnotes || part == Part::textBoxes);
    m_now.part = SegmentWriter::nested(m_now.part, hides ? Part::hidden : part);
    m_text.enter(m_now.part);
}

const RtfCodePage& RtfParser::pageOfFont(std::int32_t font)
{
    const auto page = m_fontPages.find(font);
    // Where the whole document is UTF-8, fonts keep their character sets out of habit.
    const bool own = page != m_fontPages.end() && m_documentPage != RtfCodePage::utf8;
    return m_pages[own ? page->second : m_documentPage];
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
    m_text.put(m_rest.substr(0, length));
    m_rest.remove_prefix(length);
}

void RtfParser::byte(unsigned char byte)
{
    if (m_toSkip > 0)
        --m_toSkip;
    else
        m_text.byte(byte);
}

} // namespace

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
