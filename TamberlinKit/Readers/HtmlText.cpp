#include "TamberlinKit/Readers/HtmlText.h"

#include "Base/Text.h"
#include "TamberlinKit/Markup/CharacterReferences.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Tamberlin {

namespace {

enum class Kind : unsigned char { plain, blank, reference, null };

constexpr auto kinds = [] {
    std::array<Kind, 256> result {};
    for (const unsigned char blank : { '\t', '\n', '\f', '\r', ' ' })
        result[blank] = Kind::blank;
    result['&'] = Kind::reference;
    result['\0'] = Kind::null; // Browsers drop them.
    return result;
}();

Kind kindOf(char c) { return kinds[static_cast<unsigned char>(c)]; }

// Letters and digits, and all that isn't ASCII.
bool isWordLike(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c & 0x80) != 0;
}

} // namespace

void HtmlParagraph::append(std::string_view text, bool hasReferences, bool keepsBlanks)
{
    for (std::size_t at = 0; at < text.size();) {
        switch (kindOf(text[at])) {
        case Kind::blank:
            if (!keepsBlanks)
                m_isBehindBlank = true;
            else if (text[at] != '\r')
                m_text += text[at];
            else if (at + 1 == text.size() || text[at + 1] != '\n')
                m_text += '\n';
            ++at;
            continue;
        case Kind::null:
            ++at;
            continue;
        case Kind::reference:
            if (hasReferences) {
                if (const auto length = appendReference(text.substr(at), keepsBlanks)) {
                    at += length;
                    continue;
                }
            }
            break;
        case Kind::plain:
            break;
        }
        // A run of words with single spaces between them goes over in one piece.
        auto end = at + 1;
        while (end < text.size()
            && (kindOf(text[end]) == Kind::plain
                || (text[end] == ' ' && end + 1 < text.size() && kindOf(text[end + 1]) == Kind::plain)))
            ++end;
        appendRun(text.substr(at, end - at));
        at = end;
    }
}

void HtmlParagraph::appendRun(std::string_view run)
{
    if (!m_text.empty() && !m_text.ends_with('\n')) {
        const bool keepsApart = m_isBehindObject && isWordLike(m_text.back()) && isWordLike(run.front());
        if (m_isBehindBlank || keepsApart)
            m_text += ' ';
    }
    m_isBehindBlank = m_isBehindObject = false;
    m_text += run;
}

// Blanks that are written as references collapse like others.
std::size_t HtmlParagraph::appendReference(std::string_view text, bool keepsBlanks)
{
    std::string character;
    const auto length = Tamberlin::appendReference(character, text, ReferencePlace::text);
    if (length > 0)
        append(character, false, keepsBlanks);
    return length;
}

void HtmlParagraph::lineBreak()
{
    m_isBehindBlank = m_isBehindObject = false;
    if (!m_text.empty())
        m_text += '\n';
}

void HtmlParagraph::finish(std::vector<Segment>& segments, Part part)
{
    m_isBehindBlank = m_isBehindObject = false;
    if (m_text.empty())
        return;
    const auto trimmed = Base::trimmedOfMarks(m_text);
    if (trimmed.size() == m_text.size())
        segments.push_back({ .text = std::move(m_text), .part = part });
    else if (!trimmed.empty())
        segments.push_back({ .text = std::string(trimmed), .part = part });
    m_text.clear();
}

} // namespace Tamberlin
