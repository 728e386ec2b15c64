#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Tamberlin {

// Cuts an HTML document into text, start tags and end tags as the WHATWG HTML standard does (13.2.5), damaged
// ones too. Comments and document types are passed over. The time is linear in the document, the views point
// into it.
class HtmlTokenizer {
public:
    enum class Token { text, startTag, endTag, end };
    enum class Dialect {
        html,
        xhtml, // "<title/>" ends at once, and CDATA sections may stand anywhere.
    };
    struct Attribute {
        std::string_view name, value; // As written.
    };

    HtmlTokenizer(std::string_view document, Dialect dialect)
        : m_document(document)
        , m_dialect(dialect)
    {
    }

    Token next();

    std::string_view text() const { return m_text; }
    bool hasReferences() const { return m_hasReferences; } // Character references in the text count as such.
    // Of the tag; in lower case.
    const std::string& name() const { return m_name; }
    const std::vector<Attribute>& attributes() const { return m_attributes; }
    bool isSelfClosing() const { return m_isSelfClosing; }

    // Inside SVG and MathML there are CDATA sections, and no element whose content isn't markup. To be said
    // before the token behind the tag is asked for.
    void setForeign(bool isForeign) { m_isForeign = isForeign; }

    std::size_t position() const { return m_at; }
    // The document ended inside a tag or comment: some of it is neither text nor markup.
    bool isCutOff() const { return m_isCutOff; }

private:
    // What the text up to an end tag is.
    enum class Content { markup, referencesOnly, raw, script, rest };
    static Content contentOf(std::string_view element);

    Token textUpTo(std::size_t end, bool hasReferences);
    Token content();
    std::size_t endOfContent() const;
    std::size_t endOfScript() const;
    bool isTag(std::size_t at, std::string_view element) const;
    std::optional<Token> markup();
    std::optional<Token> tag(Token kind, std::size_t at);
    bool readAttributes(std::size_t at);
    bool readAttribute(std::size_t& at);
    void pass(std::size_t begin, std::string_view end);
    void passComment();
    char at(std::size_t place) const { return place < m_document.size() ? m_document[place] : '\0'; }

    std::string_view m_document;
    Dialect m_dialect;
    std::size_t m_at = 0;
    bool m_isForeign = false;
    bool m_isCutOff = false;
    Content m_content = Content::markup; // Of the element whose start tag came last.
    std::string_view m_text;
    bool m_hasReferences = false;
    std::string m_name;
    std::vector<Attribute> m_attributes;
    bool m_isSelfClosing = false;
};

// The blanks of HTML: tab, line feed, form feed, carriage return, space.
constexpr bool isHtmlBlank(char c) { return c == ' ' || c == '\n' || c == '\t' || c == '\r' || c == '\f'; }

// Whether they are the same when the case of ASCII letters doesn't matter; `lower` is in lower case.
bool equalsLower(std::string_view text, std::string_view lower);

} // namespace Tamberlin
