#include "TamberlinKit/Readers/Markdown.h"

#include "Base/Text.h"
#include "TamberlinKit/Readers/PlainText.h"
#include "TamberlinKit/Text/ReadError.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace Tamberlin {

namespace {

constexpr std::size_t betweenChecks = 65'536;

std::size_t countOf(std::string_view text, char c)
{
    return std::min(text.find_first_not_of(c), text.size());
}

// How far a line is set in; a tab reaches to the next fourth column.
std::size_t indentation(std::string_view line)
{
    std::size_t columns = 0;
    for (const char c : line) {
        if (c != ' ' && c != '\t')
            break;
        columns += c == ' ' ? 1 : 4 - columns % 4;
    }
    return columns;
}

// How long the mark of a list item is with the blank behind it ("- ", "12. "), or 0.
std::size_t listMark(std::string_view line)
{
    auto end = std::min(line.find_first_not_of("0123456789"), line.size());
    if (end > 9 || end == line.size()
        || std::string_view(end > 0 ? ".)" : "-+*").find(line[end]) == line.npos)
        return 0;
    ++end;
    return end == line.size() ? end : line[end] == ' ' || line[end] == '\t' ? end + 1 : 0;
}

bool isOnly(std::string_view line, std::string_view characters)
{
    return line.find_first_not_of(characters) == line.npos;
}

// A line across the page: three or more of the same, with blanks between.
bool isRule(std::string_view line)
{
    if (line.empty() || std::string_view("-*_").find(line.front()) == line.npos)
        return false;
    const std::string allowed { line.front(), ' ', '\t' };
    return isOnly(line, allowed) && std::count(line.begin(), line.end(), line.front()) >= 3;
}

bool isTableRule(std::string_view line)
{
    return isOnly(line, "|-: \t") && line.find('-') != line.npos && line.find('|') != line.npos;
}

// The label of "[label]: address" and where the rest begins.
std::optional<std::pair<std::string_view, std::size_t>> definition(std::string_view line)
{
    if (!line.starts_with('['))
        return std::nullopt;
    const auto end = line.find_first_of("[]", 1);
    if (end == line.npos || end == 1 || !line.substr(end).starts_with("]:"))
        return std::nullopt;
    return std::pair { line.substr(1, end - 1), end + 2 };
}

class BlockReader {
public:
    BlockReader(std::vector<Segment>& segments, const MarkdownLabels& labels)
        : m_segments(segments)
        , m_labels(labels)
    {
    }

    void line(std::string_view line);
    void endParagraph();
    void endDocument();

private:
    void block(std::string_view content, std::size_t indent);
    void fenced(std::string_view line);
    void tableRow(std::string_view row);
    void add(std::string_view paragraph);
    void addAsWritten(std::string& text);

    std::vector<Segment>& m_segments;
    const MarkdownLabels& m_labels;
    std::string m_paragraph; // Its lines.
    std::string m_code;
    std::string m_fence; // The marks that end the code, if there is an open one.
    Part m_part = Part::body;
    bool m_isInComment = false, m_isInTable = false, m_isInList = false, m_isBehindBlank = true;
};

void BlockReader::line(std::string_view line)
{
    auto content = withoutBlanks(line);
    auto indent = indentation(line);
    bool isQuoted = false;
    while (content.starts_with('>')) {
        isQuoted = true;
        indent = indentation(content.substr(1));
        indent -= indent > 0 ? 1 : 0;
        content = withoutBlanks(content.substr(1));
    }
    if (!m_fence.empty())
        return fenced(isQuoted ? content : line);
    if (m_isInComment) {
        m_isInComment = content.find("-->") == content.npos;
        return;
    }
    if (content.empty()) {
        endParagraph();
        m_isBehindBlank = true;
        return;
    }
    if (m_isBehindBlank && indent == 0) {
        m_isInList = false;
        m_part = Part::body;
    }
    const bool isCode = indent >= 4 && m_paragraph.empty() && !m_isInList && m_part == Part::body;
    if (isCode) {
        m_code.append(line).append("\n");
    } else {
        addAsWritten(m_code);
        block(content, indent);
    }
    m_isBehindBlank = false;
}

void BlockReader::block(std::string_view content, std::size_t indent)
{
    if (isRule(content) || (isOnly(content, "=") && !m_paragraph.empty())) // The latter underlines a heading.
        return endParagraph();
    if (isOnly(content, "-") && !m_paragraph.empty())
        return endParagraph();
    while (const auto mark = listMark(content)) {
        // A number in the middle of a paragraph begins a list only if it is 1.
        if (!m_paragraph.empty() && !m_isInList && content[0] >= '0' && content[0] <= '9' && mark != 3)
            break;
        endParagraph();
        m_isInList = true;
        content = withoutBlanks(content.substr(std::min(mark, content.size())));
        if (content.starts_with("[ ] ") || content.starts_with("[x] ") || content.starts_with("[X] "))
            content = withoutBlanks(content.substr(4));
    }
    while (content.starts_with('>')) // A quotation in a list.
        content = withoutBlanks(content.substr(1));
    if (content.empty())
        return;
    if (const auto fence = countOf(content, content[0]); fence >= 3
        && (content[0] == '~' || (content[0] == '`' && content.find('`', fence) == content.npos))) {
        endParagraph();
        m_fence.assign(fence, content[0]);
        return;
    }
    if (const auto marks = countOf(content, '#'); marks > 0 && marks <= 6
        && (marks == content.size() || content[marks] == ' ' || content[marks] == '\t')) {
        endParagraph();
        auto title = withoutBlanks(content.substr(marks));
        const auto last = title.find_last_not_of('#') + 1;
        if (last == 0 || title[last - 1] == ' ')
            title = withoutBlanks(title.substr(0, last));
        return add(title);
    }
    if (content.starts_with("<!--") && content.find("-->") == content.npos) {
        endParagraph();
        m_isInComment = true;
        return;
    }
    if (m_paragraph.empty() && indent < 4) {
        if (const auto found = definition(content)) {
            if (found->first[0] != '^')
                return;
            m_part = Part::footnotes;
            content = withoutBlanks(content.substr(found->second));
        }
    }
    if (isTableRule(content) && m_paragraph.find('|') != m_paragraph.npos) {
        const auto header = m_paragraph.rfind('\n') + 1; // The line above; 0 if there is only one.
        const auto row = m_paragraph.substr(header);
        m_paragraph.erase(header == 0 ? 0 : header - 1);
        endParagraph();
        m_isInTable = true;
        return tableRow(row);
    }
    if (m_isInTable)
        return tableRow(content);
    if (!m_paragraph.empty())
        m_paragraph += '\n';
    m_paragraph += content;
}

void BlockReader::fenced(std::string_view line)
{
    const auto content = withoutBlanks(line);
    if (content.starts_with(m_fence) && isOnly(content, m_fence.substr(0, 1))) {
        m_fence.clear();
        addAsWritten(m_code);
    } else {
        m_code.append(line).append("\n");
    }
}

void BlockReader::tableRow(std::string_view row)
{
    if (row.starts_with('|'))
        row.remove_prefix(1);
    while (!row.empty()) {
        auto end = row.find('|');
        while (end != row.npos && end > 0 && row[end - 1] == '\\')
            end = row.find('|', end + 1);
        add(withoutBlanks(row.substr(0, end)));
        row.remove_prefix(std::min(end == row.npos ? end : end + 1, row.size()));
    }
}

void BlockReader::endParagraph()
{
    if (!m_paragraph.empty())
        add(m_paragraph);
    m_paragraph.clear();
    if (!m_isInList || m_isInTable)
        m_isInTable = false;
}

void BlockReader::endDocument()
{
    endParagraph();
    addAsWritten(m_code);
}

void BlockReader::add(std::string_view paragraph)
{
    auto [text, hidden] = readInline(paragraph, m_labels);
    if (!Base::trimmedOfMarks(text).empty())
        m_segments.push_back({ .text = std::move(text), .part = m_part });
    for (auto& one : hidden) {
        if (!Base::trimmedOfMarks(one).empty())
            m_segments.push_back({ .text = std::move(one), .part = Part::hidden });
    }
}

void BlockReader::addAsWritten(std::string& text)
{
    while (text.ends_with('\n'))
        text.pop_back();
    if (!Base::trimmedOfMarks(text).empty())
        m_segments.push_back({ .text = std::move(text), .part = m_part });
    text.clear();
}

// Behind the settings at the top, if there are any; their values become hidden text.
std::string_view withoutSettings(std::string_view text, std::vector<Segment>& segments)
{
    Lines lines(text);
    std::string_view line;
    if (!lines.next(line) || line != "---")
        return text;
    std::vector<Segment> values;
    while (lines.next(line)) {
        auto value = withoutBlanks(line);
        if (value == "---" || value == "...") {
            std::move(values.begin(), values.end(), std::back_inserter(segments));
            return text.substr(std::min(lines.position(), text.size()));
        }
        if (value.empty())
            return text; // A rule and a paragraph, then.
        if (const auto colon = value.find(": "); colon != value.npos)
            value = withoutBlanks(value.substr(colon + 1));
        else if (value.starts_with("- "))
            value = withoutBlanks(value.substr(2));
        else if (value.ends_with(':'))
            continue;
        if (value.size() > 1 && (value[0] == '"' || value[0] == '\'') && value.back() == value[0])
            value = value.substr(1, value.size() - 2);
        if (!value.empty())
            values.push_back({ .text = std::string(value), .part = Part::hidden });
    }
    return text;
}

} // namespace

void readMarkdown(std::string_view text, std::vector<Segment>& segments, const std::stop_token& cancel)
{
    text = withoutSettings(text, segments);
    MarkdownLabels labels;
    std::string_view line;
    for (Lines lines(text); lines.next(line);) {
        if (const auto found = definition(withoutBlanks(line)); found && found->first[0] != '^')
            labels.insert(normalLabel(found->first));
    }
    BlockReader blocks(segments, labels);
    std::size_t nextCheck = 0;
    for (Lines lines(text); lines.next(line);) {
        if (lines.position() >= nextCheck) {
            if (cancel.stop_requested())
                throw Cancelled();
            nextCheck = lines.position() + betweenChecks;
        }
        blocks.line(line);
    }
    blocks.endDocument();
}

} // namespace Tamberlin
