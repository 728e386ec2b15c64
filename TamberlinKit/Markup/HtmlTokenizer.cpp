#include "TamberlinKit/Markup/HtmlTokenizer.h"

#include <algorithm>

namespace Tamberlin {

namespace {

constexpr char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; }
constexpr bool isLetter(char c) { return lowered(c) >= 'a' && lowered(c) <= 'z'; }
constexpr bool endsTagName(char c) { return isHtmlBlank(c) || c == '/' || c == '>'; }

} // namespace

bool equalsLower(std::string_view text, std::string_view lower)
{
    return text.size() == lower.size()
        && std::equal(
            text.begin(), text.end(), lower.begin(), [](char a, char b) { return lowered(a) == b; });
}

HtmlTokenizer::Token HtmlTokenizer::next()
{
    m_hasReferences = false;
    if (m_content != Content::markup)
        return content();
    while (m_at < m_document.size()) {
        auto end = m_at;
        while (true) { // To the next "<" that begins markup.
            end = m_document.find('<', end);
            if (end == m_document.npos)
                return textUpTo(m_document.size(), true);
            const char c = at(end + 1);
            if (isLetter(c) || c == '!' || c == '?' || (c == '/' && end + 2 < m_document.size()))
                break;
            ++end;
        }
        if (end > m_at)
            return textUpTo(end, true);
        if (const auto token = markup())
            return *token;
    }
    return Token::end;
}

HtmlTokenizer::Token HtmlTokenizer::textUpTo(std::size_t end, bool hasReferences)
{
    m_text = m_document.substr(m_at, end - m_at);
    m_hasReferences = hasReferences;
    m_at = end;
    return Token::text;
}

// Behind the start tag of an element without markup in it: its text, if it has any, then its end tag.
HtmlTokenizer::Token HtmlTokenizer::content()
{
    const auto end = endOfContent();
    const bool hasReferences = m_content == Content::referencesOnly;
    m_content = Content::markup;
    if (end > m_at)
        return textUpTo(end, hasReferences);
    return next();
}

// Where the end tag begins that ends the content of the last element.
std::size_t HtmlTokenizer::endOfContent() const
{
    if (m_content == Content::script)
        return endOfScript();
    if (m_content == Content::rest)
        return m_document.size();
    for (auto end = m_at; (end = m_document.find("</", end)) != m_document.npos; end += 2) {
        if (isTag(end + 2, m_name))
            return end;
    }
    return m_document.size();
}

bool HtmlTokenizer::isTag(std::size_t begin, std::string_view element) const
{
    return equalsLower(m_document.substr(begin, element.size()), element)
        && begin + element.size() < m_document.size() && endsTagName(m_document[begin + element.size()]);
}

// A script that writes a script inside a comment isn't ended by the end tag of the inner one (13.2.5.18 to
// 31).
std::size_t HtmlTokenizer::endOfScript() const
{
    bool isInComment = false, isInScript = false;
    for (auto place = m_at; place < m_document.size();) {
        place = isInComment ? m_document.find_first_of("<-", place) : m_document.find('<', place);
        if (place == m_document.npos)
            break;
        const auto rest = m_document.substr(place);
        if (isInComment && rest.starts_with("-->")) {
            isInComment = isInScript = false;
            place += 3;
        } else if (!isInComment && rest.starts_with("<!--")) {
            isInComment = true;
            place += 2; // "<!-->" ends at once.
        } else if (rest.starts_with("</") && isTag(place + 2, "script")) {
            if (!isInScript)
                return place;
            isInScript = false;
            place += 8;
        } else if (isInComment && !isInScript && rest.front() == '<' && isTag(place + 1, "script")) {
            isInScript = true;
            place += 7;
        } else {
            ++place;
        }
    }
    return m_document.size();
}

// One piece of markup; nothing when it is none that matters.
std::optional<HtmlTokenizer::Token> HtmlTokenizer::markup()
{
    const auto rest = m_document.substr(m_at);
    if (isLetter(rest[1]))
        return tag(Token::startTag, m_at + 1);
    if (rest[1] == '/' && rest.size() > 2 && isLetter(rest[2]))
        return tag(Token::endTag, m_at + 2);
    if (rest.starts_with("<!--")) {
        passComment();
    } else if (rest.starts_with("<![CDATA[") && (m_isForeign || m_dialect == Dialect::xhtml)) {
        const auto begin = m_at + 9;
        pass(begin, "]]>");
        m_text = m_document.substr(begin, m_at - begin);
        if (m_text.ends_with("]]>"))
            m_text.remove_suffix(3);
        if (!m_text.empty())
            return Token::text;
    } else if (m_dialect == Dialect::xhtml && equalsLower(rest.substr(0, 9), "<!doctype")
        && rest[std::min(rest.find_first_of("[>"), rest.size() - 1)] == '[') {
        pass(m_at, "]>"); // Declarations of its own.
    } else {
        pass(m_at, ">");
    }
    return std::nullopt;
}

std::optional<HtmlTokenizer::Token> HtmlTokenizer::tag(Token kind, std::size_t begin)
{
    auto end = begin;
    while (end < m_document.size() && !endsTagName(m_document[end]))
        ++end;
    m_name.assign(m_document, begin, end - begin);
    std::transform(m_name.begin(), m_name.end(), m_name.begin(), lowered);
    if (!readAttributes(end)) {
        m_at = m_document.size();
        m_isCutOff = true;
        return std::nullopt;
    }
    if (kind == Token::startTag && !m_isForeign && !(m_isSelfClosing && m_dialect == Dialect::xhtml))
        m_content = contentOf(m_name);
    return kind;
}

HtmlTokenizer::Content HtmlTokenizer::contentOf(std::string_view element)
{
    switch (element.front()) {
    case 't':
        return element == "title" || element == "textarea" ? Content::referencesOnly : Content::markup;
    case 's':
        return element == "script" ? Content::script : element == "style" ? Content::raw : Content::markup;
    case 'n':
        return element == "noembed" || element == "noframes" ? Content::raw : Content::markup;
    case 'i':
        return element == "iframe" ? Content::raw : Content::markup;
    case 'x':
        return element == "xmp" ? Content::raw : Content::markup;
    case 'p':
        return element == "plaintext" ? Content::rest : Content::markup;
    default:
        return Content::markup;
    }
}

// From behind a tag's name to behind its ">"; false when the document ends before.
bool HtmlTokenizer::readAttributes(std::size_t place)
{
    m_attributes.clear();
    m_isSelfClosing = false;
    while (place < m_document.size()) {
        const char c = m_document[place];
        if (c == '>') {
            m_at = place + 1;
            return true;
        }
        if (c == '/') {
            ++place;
            m_isSelfClosing = at(place) == '>';
        } else if (isHtmlBlank(c)) {
            ++place;
        } else if (!readAttribute(place)) {
            return false;
        }
    }
    return false;
}

bool HtmlTokenizer::readAttribute(std::size_t& place)
{
    const auto passBlanks = [&] {
        while (isHtmlBlank(at(place)))
            ++place;
    };
    const auto begin = place++; // Its first character may be "=".
    while (place < m_document.size() && !endsTagName(m_document[place]) && m_document[place] != '=')
        ++place;
    Attribute attribute { .name = m_document.substr(begin, place - begin), .value = {} };
    passBlanks();
    if (at(place) == '=') {
        ++place;
        passBlanks();
        const char quote = at(place);
        if (quote == '"' || quote == '\'') {
            const auto end = m_document.find(quote, place + 1);
            if (end == m_document.npos)
                return false;
            attribute.value = m_document.substr(place + 1, end - place - 1);
            place = end + 1;
        } else {
            const auto from = place;
            while (place < m_document.size() && !isHtmlBlank(m_document[place]) && m_document[place] != '>')
                ++place;
            attribute.value = m_document.substr(from, place - from);
        }
    }
    m_attributes.push_back(attribute);
    return true;
}

void HtmlTokenizer::pass(std::size_t begin, std::string_view end)
{
    const auto found = m_document.find(end, begin);
    m_isCutOff = m_isCutOff || found == m_document.npos;
    m_at = found == m_document.npos ? m_document.size() : found + end.size();
}

// "-->" and "--!>" end a comment, and ">" and "->" one that has only begun (13.2.5.43 to 52).
void HtmlTokenizer::passComment()
{
    const auto begin = m_at + 4;
    const auto rest = m_document.substr(begin);
    if (rest.starts_with(">") || rest.starts_with("->")) {
        m_at = begin + (rest[0] == '>' ? 1 : 2);
        return;
    }
    for (auto end = begin; (end = m_document.find("--", end)) != m_document.npos; ++end) {
        const bool isOdd = at(end + 2) == '!';
        if (at(end + (isOdd ? 3 : 2)) == '>') {
            m_at = end + (isOdd ? 4 : 3);
            return;
        }
    }
    m_at = m_document.size();
    m_isCutOff = true;
}

} // namespace Tamberlin
