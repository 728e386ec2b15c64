#pragma once

#include <cstddef>
#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace Tamberlin {

// What the text inside an element is, beside that of the elements around it.
struct HtmlState {
    bool isLeftOut = false; // Scripts and the like.
    bool isHidden = false;
    bool isApart = false; // A unit of its own inside a paragraph that goes on behind it.
    bool keepsBlanks = false;
    bool isForeign = false; // SVG and MathML.
    bool isSvg = false;
};

struct HtmlElement {
    enum Trait : unsigned {
        isVoid = 1 << 0, // Has no content and no end tag.
        isBlock = 1 << 1, // Stands on lines of its own.
        isOrdinary = 1 << 2, // A block that isn't among the standard's special elements.
        isScope = 1 << 3, // Tags inside end nothing outside.
        isFormatting = 1 << 4, // Its end tag works across blocks too.
        isTablePart = 1 << 5, // Nothing without a table around it.
        isRoot = 1 << 6, // There without tags as well: html, head, body.
        isUnusual = 1 << 7, // The page treats it in a way of its own.
        endsParagraph = 1 << 8, // Its start tag ends an open p.
        endsForeign = 1 << 9, // Can't stand in SVG and MathML: its start tag ends them.
        foreign = 1 << 10,
        leftOut = 1 << 11,
        hidden = 1 << 12,
        apart = 1 << 13,
        keepsBlanks = 1 << 14,
        object = 1 << 15, // Takes its place in the line like a character, but is none.
        hasTexts = 1 << 16, // In attributes that others don't have.
    };

    std::string_view name;
    unsigned traits = 0;

    bool is(unsigned trait) const { return (traits & trait) != 0; }
};

// The open elements of an HTML document, as far as segments need them: which start and end tags end which
// elements. It takes constant time a tag however deep they nest; that is why it isn't the tree construction
// of the standard but an approach to it.
class HtmlElements {
public:
    struct Open {
        std::size_t element; // Its number.
        std::size_t sameOutside; // The place of the one of the same name around it, + 1, or 0.
        // The same of these, itself among them. Items are li, dt and dd, and what an item's tag looks
        // through.
        std::size_t innermostScope, innermostBlock, innermostBlockButItems;
        HtmlState outside;
    };

    // The number of an element, known or not.
    std::size_t number(const std::string& name);
    // What is known of it; for unknown ones nothing.
    const HtmlElement& operator[](std::size_t number) const;

    bool isInTable() const;
    // How many stay open when this start tag comes.
    std::size_t openBehindStart(std::size_t number) const;
    // The same of an end tag; `size()` when it ends nothing.
    std::size_t openBehindEnd(std::size_t number) const;

    void push(std::size_t number, const HtmlState& outside);
    Open pop();
    std::size_t size() const { return m_open.size(); }
    const Open& top() const { return m_open.back(); }

private:
    using Numbers = std::initializer_list<std::size_t>;
    // All of these are 0 when there is none, else its place + 1.
    std::size_t last(std::size_t number) const { return number < m_last.size() ? m_last[number] : 0; }
    std::size_t lastOf(Numbers numbers) const;
    std::size_t scope() const { return m_open.empty() ? 0 : m_open.back().innermostScope; }
    std::size_t block() const { return m_open.empty() ? 0 : m_open.back().innermostBlock; }
    std::size_t blockButItems() const { return m_open.empty() ? 0 : m_open.back().innermostBlockButItems; }
    // How many stay open when all of these end that stand inside the place `around`.
    std::size_t openWithout(Numbers numbers, std::size_t around) const;

    std::vector<Open> m_open;
    std::vector<std::size_t> m_last; // Of each element: the place of the innermost open one, + 1.
    std::map<std::string, std::size_t, std::less<>> m_unknown;
};

} // namespace Tamberlin
