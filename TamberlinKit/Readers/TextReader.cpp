#include "Base/Text.h"
#include "TamberlinKit/Readers/Markdown.h"
#include "TamberlinKit/Readers/PlainText.h"
#include "TamberlinKit/Readers/Readers.h"
#include "TamberlinKit/Text/TextDecoder.h"

#include <algorithm>
#include <utility>

namespace Tamberlin {

namespace {

constexpr std::size_t betweenChecks = 65'536;
// Columns. Narrower paragraphs are lists of short lines, wider ones are lines as long as their text.
constexpr std::size_t narrowest = 50, widest = 120, longestWord = 30;

std::size_t width(std::string_view text)
{
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char c) { return (c & 0xC0) != 0x80; }));
}

// The width of the widest line, or 0 where the lines are too narrow or too wide to be wrapped text.
std::size_t widthOfWrapped(const std::vector<std::string_view>& lines)
{
    std::size_t whole = 0;
    for (const auto line : lines) {
        whole = std::max(whole, width(line));
        if (whole > widest)
            return 0;
    }
    return whole >= narrowest ? whole : 0;
}

std::string_view joined(std::string_view first, std::string_view last)
{
    return { first.data(), static_cast<std::size_t>(last.data() + last.size() - first.data()) };
}

bool isMarkdown(std::string_view name)
{
    const auto lower = Base::asciiLowered(name);
    return lower.ends_with(".md") || lower.ends_with(".markdown");
}

} // namespace

bool Lines::next(std::string_view& line)
{
    if (m_at >= m_text.size())
        return false;
    const auto end = std::min(m_feeds.from(m_at), m_returns.from(m_at));
    line = m_text.substr(m_at, end - m_at);
    m_at = end + (m_text.substr(end).starts_with("\r\n") ? 2 : 1);
    return true;
}

std::string_view withoutBlanks(std::string_view text)
{
    const auto isBlankByte = [](char c) { return c == ' ' || c == '\t' || c == '\f' || c == '\v'; };
    while (!text.empty() && isBlankByte(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isBlankByte(text.back()))
        text.remove_suffix(1);
    return text;
}

bool isBlank(std::string_view line) { return withoutBlanks(line).empty(); }

void addParagraph(std::vector<Segment>& segments, const std::vector<std::string_view>& lines)
{
    const auto add = [&](std::string_view text) {
        if (!Base::trimmedOfMarks(text).empty())
            segments.push_back({ .text = SegmentText::standing(text) });
    };
    const auto whole = lines.size() > 1 ? widthOfWrapped(lines) : 0;
    for (std::size_t first = 0, last = 0; first < lines.size(); first = ++last) {
        while (whole > 0 && last + 1 < lines.size()) {
            const auto next = withoutBlanks(lines[last + 1]);
            const auto word = width(next.substr(0, next.find(' ')));
            if (word > longestWord || width(lines[last]) + 1 + word <= whole)
                break;
            ++last;
        }
        add(joined(lines[first], lines[last]));
    }
}

Extracted readText(std::string_view file, std::string name, const std::stop_token& cancel)
{
    const auto decoded = decodeText(file);
    Extracted extracted { .name = std::move(name), .format = FileFormat::txt };
    if (isMarkdown(extracted.name)) {
        readMarkdown(decoded.text(), extracted.segments, cancel);
    } else {
        extracted.source.kept = decoded.converted;
        Lines lines(decoded.text());
        std::vector<std::string_view> paragraph;
        std::size_t nextCheck = 0;
        for (std::string_view line; lines.next(line);) {
            if (lines.position() >= nextCheck) {
                if (cancel.stop_requested())
                    throw Cancelled();
                nextCheck = lines.position() + betweenChecks;
            }
            if (!isBlank(line)) {
                paragraph.push_back(line);
                continue;
            }
            addParagraph(extracted.segments, paragraph);
            paragraph.clear();
        }
        addParagraph(extracted.segments, paragraph);
    }
    if (const auto note = decoded.note())
        extracted.notes.push_back(*note);
    return extracted;
}

} // namespace Tamberlin
