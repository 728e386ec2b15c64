#include "TamberlinKit/Readers/HtmlPage.h"

#include "Base/Text.h"
#include "TamberlinKit/Markup/CharacterReferences.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace Tamberlin {

namespace {

using Attributes = std::vector<HtmlTokenizer::Attribute>;

// Far deeper than any page; tags beyond it have no effect, so that a file of nothing but tags takes no more
// memory.
constexpr std::size_t deepest = 2'000'000;

std::string_view withoutBlanks(std::string_view text)
{
    while (!text.empty() && isHtmlBlank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isHtmlBlank(text.back()))
        text.remove_suffix(1);
    return text;
}

std::optional<std::string_view> find(const Attributes& attributes, std::string_view name)
{
    const auto found = std::find_if(attributes.begin(), attributes.end(),
        [&](const auto& attribute) { return equalsLower(attribute.name, name); });
    return found == attributes.end() ? std::nullopt : std::optional(found->value);
}

bool isOneOf(std::string_view text, std::initializer_list<std::string_view> texts)
{
    return std::any_of(
        texts.begin(), texts.end(), [&](std::string_view one) { return equalsLower(text, one); });
}

// What a style attribute says of visibility and white space.
void applyStyle(std::string_view style, HtmlState& state)
{
    while (!style.empty()) {
        const auto end = std::min(style.find(';'), style.size());
        const auto declaration = style.substr(0, end);
        style.remove_prefix(std::min(end + 1, style.size()));
        const auto colon = declaration.find(':');
        if (colon == declaration.npos)
            continue;
        const auto property = withoutBlanks(declaration.substr(0, colon));
        auto value = withoutBlanks(declaration.substr(colon + 1));
        value = withoutBlanks(value.substr(0, value.find('!')));
        if (equalsLower(property, "display"))
            state.isHidden = state.isHidden || equalsLower(value, "none");
        else if (equalsLower(property, "visibility"))
            state.isHidden = state.isHidden || isOneOf(value, { "hidden", "collapse" });
        else if (equalsLower(property, "white-space"))
            state.keepsBlanks = isOneOf(value, { "pre", "pre-wrap", "pre-line", "break-spaces" });
    }
}

} // namespace

void HtmlPage::text(std::string_view text, bool hasReferences)
{
    if (!m_now.isLeftOut)
        paragraph().append(text, hasReferences, m_now.keepsBlanks);
}

void HtmlPage::boundary(const HtmlState& state)
{
    auto& [shown, hidden] = m_paragraphs[state.isApart ? 1 : 0];
    if (!state.isHidden)
        shown.finish(state.isApart ? m_apart : m_segments, Part::body);
    hidden.finish(state.isApart || !shown.isEmpty() ? m_apart : m_segments, Part::hidden);
    if (!state.isApart && !state.isHidden && !m_apart.empty()) {
        std::move(m_apart.begin(), m_apart.end(), std::back_inserter(m_segments));
        m_apart.clear();
    }
}

void HtmlPage::finish()
{
    closeDownTo(0);
    HtmlState state { .isApart = true };
    boundary(state);
    state.isApart = false;
    boundary(state);
}

void HtmlPage::closeDownTo(std::size_t open)
{
    while (m_elements.size() > open) {
        const auto& top = m_elements.top();
        const bool endsParagraph = m_elements[top.element].is(HtmlElement::isBlock)
            || m_now.isApart != top.outside.isApart || m_now.isHidden != top.outside.isHidden;
        if (endsParagraph && !m_now.isLeftOut)
            boundary(m_now);
        m_now = m_elements.pop().outside;
    }
}

void HtmlPage::lineBreak()
{
    if (m_now.isLeftOut)
        return;
    // Two in a row leave an empty line: that is how paragraphs are set apart where they have no tags.
    if (paragraph().endsWithLineBreak() && !m_now.keepsBlanks)
        boundary(m_now);
    else
        paragraph().lineBreak();
}

void HtmlPage::start(const HtmlTokenizer& tag, HtmlTokenizer::Dialect dialect)
{
    const auto number = m_elements.number(tag.name());
    const auto& element = m_elements[number];
    if (element.is(HtmlElement::isRoot)) {
        if (element.name == "body")
            boundary({});
        return; // A body that is hidden waits for a script to show it.
    }
    if (element.is(HtmlElement::isTablePart) && !m_elements.isInTable() && !m_now.isForeign) {
        if (!m_now.isLeftOut)
            boundary(m_now);
        return;
    }
    if (m_now.isForeign && element.is(HtmlElement::endsForeign)) {
        while (m_now.isForeign && m_elements.size() > 0)
            closeDownTo(m_elements.size() - 1);
    }
    if (!m_now.isForeign)
        closeDownTo(m_elements.openBehindStart(number));

    const bool isUnusual = element.is(HtmlElement::isUnusual);
    HtmlState inside = m_now;
    if (m_now.isForeign)
        startForeign(tag, inside);
    inside.isLeftOut = inside.isLeftOut || element.is(HtmlElement::leftOut);
    inside.isHidden = inside.isHidden || element.is(HtmlElement::hidden)
        || (isUnusual && element.name == "dialog" && !find(tag.attributes(), "open"));
    inside.isApart = inside.isApart || element.is(HtmlElement::apart);
    inside.keepsBlanks = inside.keepsBlanks || element.is(HtmlElement::keepsBlanks);
    inside.isForeign = inside.isForeign || element.is(HtmlElement::foreign);
    // Nothing in what is left out altogether is drawn.
    if (element.name == "svg")
        inside.isSvg = inside.isSvg || !m_now.isLeftOut;
    else if (!inside.isForeign || element.is(HtmlElement::leftOut))
        inside.isSvg = false;
    if (!tag.attributes().empty())
        readAttributes(tag, element, inside);

    if (!m_now.isLeftOut) {
        if (isUnusual && element.name == "br")
            lineBreak();
        if (element.is(HtmlElement::object)) {
            paragraph().object();
            if (!m_now.isHidden)
                note(element);
        }
    }
    if (element.is(HtmlElement::isBlock) && !inside.isLeftOut)
        boundary(inside);
    const bool endsAtOnce
        = tag.isSelfClosing() && (inside.isForeign || dialect == HtmlTokenizer::Dialect::xhtml);
    if (!element.is(HtmlElement::isVoid) && !endsAtOnce && m_elements.size() < deepest) {
        m_elements.push(number, m_now);
        m_now = inside;
    }
}

// Of SVG only what is drawn as text counts, of MathML all but what was written for programs.
void HtmlPage::startForeign(const HtmlTokenizer& tag, HtmlState& inside) const
{
    const std::string_view name = tag.name();
    if (name == "annotation" || name == "annotation-xml" || name == "metadata" || name == "desc") {
        inside.isLeftOut = true;
        inside.isSvg = false;
    } else if (m_now.isSvg && (name == "text" || name == "title" || name == "foreignobject")) {
        inside.isLeftOut = false;
        inside.isApart = true;
        inside.isForeign = name == "text";
    } else if (!m_now.isSvg && (name == "mtext" || name == "ms")) {
        inside.isForeign = false;
    }
}

void HtmlPage::readAttributes(const HtmlTokenizer& tag, const HtmlElement& element, HtmlState& inside)
{
    const auto& attributes = tag.attributes();
    for (const auto& attribute : attributes) {
        if (equalsLower(attribute.name, "hidden"))
            inside.isHidden = true;
        else if (equalsLower(attribute.name, "style"))
            applyStyle(attribute.value, inside);
    }
    if (inside.isLeftOut)
        return;
    const std::string_view name = element.name;
    const auto type = name == "input" ? find(attributes, "type") : std::nullopt;
    if (type && equalsLower(*type, "hidden"))
        return;
    const auto add = [&](std::string_view attribute, bool isHidden) {
        if (const auto value = find(attributes, attribute))
            addApart(*value, isHidden);
    };
    const bool hasTexts = element.is(HtmlElement::hasTexts);
    if (hasTexts)
        add("alt", true);
    add("title", true);
    if (!hasTexts)
        return;
    if (name == "optgroup" || name == "option" || name == "track")
        add("label", inside.isHidden);
    if (name == "input" || name == "textarea")
        add("placeholder", inside.isHidden);
    // A value that the visitor can change is data, the one on a button is text.
    if (type && isOneOf(*type, { "submit", "button", "reset" }))
        add("value", inside.isHidden);
}

void HtmlPage::addApart(std::string_view attribute, bool isHidden)
{
    HtmlParagraph paragraph;
    paragraph.append(withoutReferences(attribute, ReferencePlace::attribute), false, false);
    paragraph.finish(m_apart, isHidden ? Part::hidden : Part::body);
}

void HtmlPage::note(const HtmlElement& element)
{
    if (element.name == "img" || element.name == "image")
        ++m_notCounted.pictures;
    else if (element.name == "object" || element.name == "embed" || element.name == "iframe")
        ++m_notCounted.objects;
}

void HtmlPage::end(const HtmlTokenizer& tag)
{
    const auto number = m_elements.number(tag.name());
    const auto& element = m_elements[number];
    if (element.is(HtmlElement::isRoot))
        return; // What comes behind still belongs to the page.
    if (element.is(HtmlElement::isUnusual) && element.name == "br")
        return lineBreak();
    const auto open = m_elements.openBehindEnd(number);
    if (open == m_elements.size()) {
        if (element.name == "p" && !m_now.isLeftOut)
            boundary(m_now); // An empty paragraph.
    } else if (element.is(HtmlElement::object) && !m_now.isLeftOut) {
        paragraph().object();
    }
    closeDownTo(open);
}

} // namespace Tamberlin
