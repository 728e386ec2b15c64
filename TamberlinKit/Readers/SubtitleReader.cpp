#include "Base/Text.h"
#include "TamberlinKit/Markup/CharacterReferences.h"
#include "TamberlinKit/Readers/PlainText.h"
#include "TamberlinKit/Readers/Readers.h"
#include "TamberlinKit/Text/TextDecoder.h"

#include <algorithm>
#include <array>
#include <optional>
#include <utility>
#include <vector>

namespace Tamberlin {

namespace {

constexpr std::size_t betweenChecks = 65'536;

constexpr bool isDigit(char c) { return c >= '0' && c <= '9'; }
constexpr bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
constexpr bool mayBeMarkup(char c) { return c == '<' || c == '{' || c == '&' || c == '\\'; }

// "00:00:01,000 --> 00:00:02,000" and what stands behind it. Also a damaged one: its text is shown by some
// players.
bool isTiming(std::string_view line)
{
    const auto arrow = line.find("-->");
    if (arrow == line.npos)
        return false;
    const auto from = withoutBlanks(line.substr(0, arrow));
    return !from.empty() && isDigit(from.front()) && from.find(':') != from.npos
        && from.find_first_not_of("0123456789:., \t") == from.npos;
}

std::optional<std::string_view> number(std::string_view line)
{
    const auto digits = withoutBlanks(line);
    const bool isNumber = !digits.empty() && std::all_of(digits.begin(), digits.end(), isDigit);
    return isNumber ? std::optional(digits) : std::nullopt;
}

// Whether one number is the other's successor, however long.
bool follows(std::string_view number, std::string_view last)
{
    std::string next(last);
    auto at = next.size();
    while (at > 0 && next[at - 1] == '9')
        next[--at] = '0';
    if (at > 0)
        ++next[at - 1];
    else
        next.insert(0, 1, '1');
    return number == next;
}

// One cue to the text that is shown: without tags (<i>, <c.class>, <v Name>, <00:00:01.000>), override codes
// ({\an8}) and the glosses of ruby, with character references replaced.
class CueText {
public:
    explicit CueText(ReferencePlace references)
        : m_references(references)
    {
    }

    std::string read(std::string_view cue);

private:
    std::size_t tag(std::string_view rest);
    std::size_t code(std::string_view rest) const;
    void add(std::string_view text)
    {
        if (!m_isInGloss)
            m_text += text;
    }

    ReferencePlace m_references;
    std::string m_text;
    bool m_isInGloss = false;
};

std::string CueText::read(std::string_view cue)
{
    m_text.clear();
    m_isInGloss = false;
    while (!cue.empty()) {
        std::size_t length = 0;
        switch (cue.front()) {
        case '<':
            length = tag(cue);
            break;
        case '{':
            length = code(cue);
            break;
        case '&': {
            std::string character;
            length = appendReference(character, cue, m_references);
            add(character);
            break;
        }
        case '\\': // Of the same family as the codes: a line break and a no-break space.
            if (cue.starts_with("\\N") || cue.starts_with("\\h")) {
                add(cue[1] == 'N' ? "\n" : "\u00A0");
                length = 2;
            }
            break;
        default:
            break;
        }
        if (length == 0) {
            for (length = 1; length < cue.size() && !mayBeMarkup(cue[length]);)
                ++length;
            add(cue.substr(0, length));
        }
        cue.remove_prefix(length);
    }
    return std::move(m_text);
}

// Gives the length of the tag, 0 if it is none: "2 < 3" is text, and so is what isn't closed.
std::size_t CueText::tag(std::string_view rest)
{
    const auto end = rest.find_first_of("<>", 1);
    if (end == rest.npos || rest[end] == '<')
        return 0;
    const auto inside = rest.substr(1, end - 1);
    const bool isEnd = inside.starts_with('/');
    const auto name = inside.substr(isEnd ? 1 : 0);
    const bool isTime
        = !isEnd && name.find(':') != name.npos && name.find_first_not_of("0123456789:.,") == name.npos;
    if (!isTime && (name.empty() ? !isEnd : !isLetter(name[0])))
        return 0;
    if (name == "rt" || name.starts_with("rt."))
        m_isInGloss = !isEnd;
    else if (isEnd && name == "ruby")
        m_isInGloss = false;
    else if (name == "br" || name == "br/" || name == "br /")
        add("\n");
    return end + 1;
}

std::size_t CueText::code(std::string_view rest) const
{
    const bool isCode = rest.size() > 2 && (rest[1] == '\\' || (isLetter(rest[1]) && rest[2] == ':'));
    const auto end = isCode ? rest.find_first_of("{}", 1) : rest.npos;
    return end == rest.npos || rest[end] == '{' ? 0 : end + 1;
}

// Goes through the lines of SubRip and WebVTT files, which have damage in common: cues without numbers or
// blank lines, blank lines within cues.
class Subtitles {
public:
    Subtitles(std::string_view text, std::vector<Segment>& segments)
        : m_whole(text)
        , m_segments(segments)
        , m_isVtt(text.starts_with("WEBVTT"))
        , m_text(m_isVtt ? ReferencePlace::text : ReferencePlace::strict)
    {
    }

    void line(std::string_view line);
    void endCue();
    bool hasCues() const { return m_hasCues; }

private:
    void timing();
    std::optional<std::string_view> plainText();

    std::string_view m_whole;
    std::array<Occurrences, 4> m_markup { { { m_whole, '<' }, { m_whole, '{' }, { m_whole, '&' },
        { m_whole, '\\' } } };
    std::vector<Segment>& m_segments;
    bool m_isVtt;
    bool m_hasCues = false, m_isInCue = false;
    std::vector<std::string_view> m_lines; // Of the cue, or of what stands before the first.
    std::string_view m_lastNumber;
    CueText m_text;
    std::string m_cue;
};

void Subtitles::line(std::string_view line)
{
    if (isTiming(line) || (m_isVtt && !m_isInCue && line.find("-->") != line.npos))
        return timing();
    // In WebVTT a blank line ends the cue, and what stands outside of cues isn't shown: names, notes, styles,
    // regions. In SubRip only the next cue ends it.
    if (m_isVtt && isBlank(line))
        endCue();
    else if (m_isInCue || !m_isVtt)
        m_lines.push_back(line);
}

// The number that stands above the timing isn't text of the cue before.
void Subtitles::timing()
{
    if (!m_isVtt && !m_lines.empty()) {
        const auto found = number(m_lines.back());
        const bool standsAlone = m_lines.size() == 1 || isBlank(m_lines[m_lines.size() - 2]);
        if (found && (!m_isInCue || standsAlone || follows(*found, m_lastNumber))) {
            m_lastNumber = *found;
            m_lines.pop_back();
        }
    }
    endCue();
    m_isInCue = m_hasCues = true;
}

// The text of a cue without markup as it stands in the file, as most do.
std::optional<std::string_view> Subtitles::plainText()
{
    const char* end = nullptr;
    for (const auto line : m_lines) {
        if (line.empty() || withoutBlanks(line).size() != line.size() || (end && line.data() - end > 2))
            return std::nullopt;
        end = line.data() + line.size();
    }
    if (!end)
        return std::nullopt;
    const auto begin = static_cast<std::size_t>(m_lines.front().data() - m_whole.data());
    const auto text = m_whole.substr(begin, static_cast<std::size_t>(end - m_whole.data()) - begin);
    for (auto& mark : m_markup) {
        if (mark.from(begin) < begin + text.size())
            return std::nullopt;
    }
    return text;
}

void Subtitles::endCue()
{
    while (!m_lines.empty() && isBlank(m_lines.back()))
        m_lines.pop_back();
    if (const auto plain = m_isInCue ? plainText() : std::nullopt) {
        if (!Base::trimmedOfMarks(*plain).empty())
            m_segments.push_back({ .text = SegmentText::standing(*plain) });
    } else if (m_isInCue) {
        m_cue.clear();
        for (const auto line : m_lines) {
            const auto text = withoutBlanks(line);
            if (!text.empty())
                m_cue.append(m_cue.empty() ? "" : "\n").append(text);
        }
        auto text = m_text.read(m_cue);
        if (!Base::trimmedOfMarks(text).empty())
            m_segments.push_back({ .text = std::move(text) });
    }
    m_lines.clear();
    m_isInCue = false;
}

} // namespace

Extracted readSubtitles(std::string_view file, std::string name, const std::stop_token& cancel)
{
    const auto decoded = decodeText(file);
    const auto text = decoded.text();
    Extracted extracted { .name = std::move(name), .format = FileFormat::srt };
    extracted.source.kept = decoded.converted;
    Subtitles subtitles(text, extracted.segments);
    std::size_t nextCheck = 0;
    Lines lines(text);
    for (std::string_view line; lines.next(line);) {
        if (lines.position() >= nextCheck) {
            if (cancel.stop_requested())
                throw Cancelled();
            nextCheck = lines.position() + betweenChecks;
        }
        subtitles.line(line);
    }
    subtitles.endCue();
    if (const auto note = decoded.note())
        extracted.notes.push_back(*note);
    if (!subtitles.hasCues() && !text.starts_with("WEBVTT") && !Base::trimmedOfMarks(text).empty())
        extracted.notes.emplace_back("No subtitles were found in the file.");
    return extracted;
}

} // namespace Tamberlin
