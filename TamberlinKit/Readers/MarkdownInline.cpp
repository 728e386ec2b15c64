#include "TamberlinKit/Markup/CharacterReferences.h"
#include "TamberlinKit/Readers/Markdown.h"

#include <algorithm>
#include <map>
#include <utility>

namespace Tamberlin {

namespace {

constexpr std::size_t longestLabel = 999; // As CommonMark has it.
constexpr int deepestParentheses = 32;

bool isSpace(char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\0'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isPunctuation(char c) { return c > ' ' && c < '\x7F' && !isLetter(c) && !isDigit(c); }

// One pass over a paragraph. Marks are written like text; those that turn out to be markup are taken out at
// the end.
class InlineReader {
public:
    InlineReader(std::string_view source, const MarkdownLabels& labels)
        : m_source(source)
        , m_labels(labels)
    {
        findCodeEnds();
    }

    MarkdownInline read();

private:
    struct Mark { // A run of * _ or ~ that may begin emphasis.
        std::size_t place, count;
    };
    struct Bracket {
        std::size_t place; // In the text.
        std::size_t source; // Behind it.
        bool isPicture, hasInner = false;
    };

    char at(std::size_t place) const { return place < m_source.size() ? m_source[place] : '\0'; }
    void findCodeEnds();
    void code();
    void angle();
    void emphasis(char mark);
    void openBracket();
    void closeBracket();
    bool linkTarget(std::size_t& place, std::string_view& title) const;
    bool isLabel(std::string_view label) const;
    void remove(std::size_t place, std::size_t count) { m_removed.emplace_back(place, count); }
    std::vector<Mark>& marks(char mark) { return m_marks[mark == '*' ? 0 : mark == '_' ? 1 : 2]; }
    void forgetMarks(std::size_t from);
    std::string kept();

    std::string_view m_source;
    const MarkdownLabels& m_labels;
    std::size_t m_at = 0;
    std::string m_text;
    std::vector<std::pair<std::size_t, std::size_t>> m_removed; // Place and count.
    std::vector<Mark> m_marks[3];
    std::vector<Bracket> m_brackets;
    std::map<std::size_t, std::size_t>
        m_codeEnds; // Of each run of backquotes: where the next one as long begins.
    std::size_t m_nextAngle = 0; // The next ">", looked for once.
    bool m_lacksCommentEnd = false;
    std::vector<std::string> m_hidden;
};

MarkdownInline InlineReader::read()
{
    while (m_at < m_source.size()) {
        const char c = m_source[m_at];
        switch (c) {
        case '\\':
            if (at(m_at + 1) != '\n')
                m_text += isPunctuation(at(m_at + 1)) ? m_source[++m_at] : c;
            ++m_at;
            break;
        case '\n':
            m_text.erase(m_text.find_last_not_of(' ') + 1);
            m_text += c;
            ++m_at;
            break;
        case '`':
            code();
            break;
        case '<':
            angle();
            break;
        case '*':
        case '_':
        case '~':
            emphasis(c);
            break;
        case '!':
        case '[':
            openBracket();
            break;
        case ']':
            closeBracket();
            break;
        case '&': {
            const auto length = appendReference(m_text, m_source.substr(m_at), ReferencePlace::strict);
            if (length == 0)
                m_text += c;
            m_at += std::max<std::size_t>(length, 1);
            break;
        }
        default: {
            const auto end = std::min(m_source.find_first_of("\\\n`<*_~![]&", m_at), m_source.size());
            m_text += m_source.substr(m_at, end - m_at);
            m_at = end;
        }
        }
    }
    return { .text = kept(), .hidden = std::move(m_hidden) };
}

void InlineReader::findCodeEnds()
{
    std::map<std::size_t, std::size_t> last; // Of each length, from the back.
    for (auto end = m_source.find_last_of('`'); end != m_source.npos;) {
        const auto before = m_source.find_last_not_of('`', end);
        const auto begin = before == m_source.npos ? 0 : before + 1;
        const auto length = end - begin + 1;
        if (const auto next = last.find(length); next != last.end())
            m_codeEnds[begin] = next->second;
        last[length] = begin;
        end = begin == 0 ? m_source.npos : m_source.find_last_of('`', begin - 1);
    }
}

void InlineReader::code()
{
    const auto behind = std::min(m_source.find_first_not_of('`', m_at), m_source.size());
    const auto length = behind - m_at;
    if (const auto end = m_codeEnds.find(m_at); end != m_codeEnds.end()) {
        m_text += m_source.substr(behind, end->second - behind);
        m_at = end->second + length;
    } else {
        m_text += m_source.substr(m_at, length);
        m_at = behind;
    }
}

// An address in angle brackets is text, a tag isn't.
void InlineReader::angle()
{
    const char next = at(m_at + 1);
    if (m_nextAngle <= m_at)
        m_nextAngle = m_source.find('>', m_at);
    auto end = m_nextAngle;
    if (end != m_source.npos && m_source.substr(m_at).starts_with("<!--")) {
        end = m_lacksCommentEnd ? m_source.npos : m_source.find("-->", m_at);
        m_lacksCommentEnd = end == m_source.npos;
        end += m_lacksCommentEnd ? 0 : 2;
    }
    if (end == m_source.npos || (!isLetter(next) && next != '/' && next != '!' && next != '?')) {
        m_text += m_source[m_at++];
        return;
    }
    const auto inside = m_source.substr(m_at + 1, end - m_at - 1);
    const bool hasBlank = inside.find_first_of(" \n\t") != inside.npos;
    const auto nameEnd
        = std::min(inside.find_first_not_of("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-",
                       next == '/' ? 1 : 0),
            inside.size());
    if (!hasBlank && isLetter(next) && inside.find_first_of(":@") != inside.npos
        && inside.find('=') == inside.npos)
        m_text += inside;
    else if (isLetter(next) && nameEnd < inside.size() && !isSpace(inside[nameEnd]) && inside[nameEnd] != '/')
        m_text += m_source.substr(m_at, end - m_at + 1);
    else if (inside.starts_with("br") && nameEnd == 2)
        m_text += '\n';
    m_at = end + 1;
}

void InlineReader::emphasis(char mark)
{
    auto behind = std::min(m_source.find_first_not_of(mark, m_at), m_source.size());
    const char before = m_at == 0 ? '\0' : m_source[m_at - 1], after = at(behind);
    const bool opensSide
        = !isSpace(after) && (!isPunctuation(after) || isSpace(before) || isPunctuation(before));
    const bool closesSide
        = !isSpace(before) && (!isPunctuation(before) || isSpace(after) || isPunctuation(after));
    // An underscore inside a word is part of it.
    const bool opens = opensSide && (mark != '_' || !closesSide || isPunctuation(before));
    const bool closes = closesSide && (mark != '_' || !opensSide || isPunctuation(after));
    auto count = behind - m_at;
    const auto place = m_text.size();
    m_text.append(count, mark);
    m_at = behind;
    if (mark == '~' && count != 2)
        return;
    auto& open = marks(mark);
    while (closes && count > 0 && !open.empty()) {
        auto& opener = open.back();
        const auto used = std::min(count, opener.count);
        opener.count -= used;
        remove(opener.place + opener.count, used);
        remove(place + count - used, used);
        count -= used;
        const auto from = opener.place + 1;
        if (opener.count == 0)
            open.pop_back();
        forgetMarks(from);
    }
    if (opens && count > 0)
        open.push_back({ place, count });
}

// What was opened inside something that is closed doesn't close outside.
void InlineReader::forgetMarks(std::size_t from)
{
    for (auto& marks : m_marks) {
        while (!marks.empty() && marks.back().place >= from)
            marks.pop_back();
    }
}

void InlineReader::openBracket()
{
    const bool isPicture = m_source[m_at] == '!';
    if (isPicture && at(m_at + 1) != '[') {
        m_text += m_source[m_at++];
        return;
    }
    if (!isPicture && at(m_at + 1) == '^') { // The mark of a footnote.
        const auto end = m_source.find_first_of("[] \n", m_at + 2);
        if (end != m_source.npos && end > m_at + 2 && m_source[end] == ']') {
            m_at = end + 1;
            return;
        }
    }
    const std::size_t length = isPicture ? 2 : 1;
    m_brackets.push_back({ .place = m_text.size(), .source = m_at + length, .isPicture = isPicture });
    m_text += m_source.substr(m_at, length);
    m_at += length;
}

void InlineReader::closeBracket()
{
    const auto close = m_at++;
    if (m_brackets.empty()) {
        m_text += ']';
        return;
    }
    const auto bracket = m_brackets.back();
    m_brackets.pop_back();
    if (!m_brackets.empty())
        m_brackets.back().hasInner = true;

    std::string_view title;
    const auto inside = m_source.substr(bracket.source, close - bracket.source);
    auto end = m_at;
    bool isLink = at(end) == '(' && linkTarget(end, title);
    if (!isLink && !m_labels.empty()) {
        isLink = !bracket.hasInner && isLabel(inside);
        if (at(end) == '[') {
            const auto labelEnd = m_source.find_first_of("[]", end + 1);
            if (labelEnd != m_source.npos && m_source[labelEnd] == ']') {
                const auto label = m_source.substr(end + 1, labelEnd - end - 1);
                if (label.empty() ? isLink : isLabel(label)) {
                    isLink = true;
                    end = labelEnd + 1;
                }
            }
        }
    }
    if (!isLink) {
        m_text += ']';
        return;
    }
    m_at = end;
    forgetMarks(bracket.place);
    if (bracket.isPicture) {
        m_hidden.emplace_back(m_text.substr(bracket.place + 2));
        remove(bracket.place, m_text.size() - bracket.place);
    } else {
        remove(bracket.place, 1);
    }
    if (!title.empty())
        m_hidden.emplace_back(title);
}

// From the "(" behind a link's text to behind its ")".
bool InlineReader::linkTarget(std::size_t& end, std::string_view& title) const
{
    auto place = end + 1;
    const auto passBlanks
        = [&] { place = std::min(m_source.find_first_not_of(" \n\t", place), m_source.size()); };
    passBlanks();
    if (at(place) == '<') {
        place = m_source.find_first_of("<>\n", place + 1);
        if (place == m_source.npos || m_source[place] != '>')
            return false;
        ++place;
    } else {
        int depth = 0;
        for (; !isSpace(at(place)) && depth <= deepestParentheses; ++place) {
            if (m_source[place] == '\\')
                ++place;
            else if (m_source[place] == '(')
                ++depth;
            else if (m_source[place] == ')' && depth-- == 0)
                break;
        }
        if (depth > deepestParentheses)
            return false;
    }
    passBlanks();
    const char quote = at(place);
    if (quote == '"' || quote == '\'') {
        const auto last = m_source.find(quote, place + 1);
        if (last == m_source.npos)
            return false;
        title = m_source.substr(place + 1, last - place - 1);
        place = last + 1;
        passBlanks();
    }
    end = place + 1;
    return at(place) == ')';
}

bool InlineReader::isLabel(std::string_view label) const
{
    return label.size() <= longestLabel && m_labels.contains(normalLabel(label));
}

std::string InlineReader::kept()
{
    std::sort(m_removed.begin(), m_removed.end());
    std::string text;
    std::size_t from = 0;
    for (const auto& [place, count] : m_removed) {
        if (place > from)
            text.append(m_text, from, place - from);
        from = std::max(from, place + count);
    }
    return text.append(m_text, std::min(from, m_text.size()));
}

} // namespace

std::string normalLabel(std::string_view label)
{
    std::string normal;
    for (const char c : label) {
        if (!isSpace(c))
            normal += c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
        else if (!normal.empty() && normal.back() != ' ')
            normal += ' ';
    }
    if (normal.ends_with(' '))
        normal.pop_back();
    return normal;
}

MarkdownInline readInline(std::string_view paragraph, const MarkdownLabels& labels)
{
    return InlineReader(paragraph, labels).read();
}

} // namespace Tamberlin
