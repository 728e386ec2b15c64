#include "TamberlinKit/Readers/HtmlElements.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace Tamberlin {

namespace {

using E = HtmlElement;
constexpr unsigned section = E::isBlock | E::endsParagraph;
constexpr unsigned foreignBlock = section | E::endsForeign;
constexpr unsigned formatting = E::isFormatting | E::endsForeign;
constexpr unsigned tablePart = E::isBlock | E::isTablePart;
constexpr unsigned cell = tablePart | E::isScope;
constexpr unsigned fallback = E::hidden; // Shown only where the element itself can't be.

// All elements that need anything.
constexpr std::array elements = std::to_array<HtmlElement>({
    { "a", E::isFormatting },
    { "address", section },
    { "applet", E::hasTexts | E::isScope | fallback },
    { "area", E::hasTexts | E::isVoid },
    { "article", section },
    { "aside", section },
    { "audio", fallback },
    { "b", formatting },
    { "base", E::isVoid },
    { "basefont", E::isVoid },
    { "bgsound", E::isVoid },
    { "big", formatting },
    { "blockquote", foreignBlock },
    { "body", E::isRoot },
    { "br", E::isVoid | E::isUnusual | E::endsForeign },
    { "button", E::isScope | E::object },
    { "canvas", fallback },
    { "caption", cell },
    { "center", foreignBlock },
    { "code", formatting },
    { "col", E::isVoid | E::isTablePart },
    { "colgroup", tablePart },
    { "datalist", E::hidden },
    { "dd", foreignBlock },
    { "details", section },
    { "dialog", section | E::isOrdinary | E::isUnusual },
    { "dir", section },
    { "div", foreignBlock },
    { "dl", foreignBlock },
    { "dt", foreignBlock },
    { "em", formatting },
    { "embed", E::isVoid | E::object | E::endsForeign },
    { "fieldset", section },
    { "figcaption", section },
    { "figure", section },
    { "font", E::isFormatting },
    { "footer", section },
    { "form", section },
    { "frame", E::isVoid },
    { "frameset", E::isBlock },
    { "h1", foreignBlock },
    { "h2", foreignBlock },
    { "h3", foreignBlock },
    { "h4", foreignBlock },
    { "h5", foreignBlock },
    { "h6", foreignBlock },
    { "head", E::isRoot },
    { "header", section },
    { "hgroup", section },
    { "hr", foreignBlock | E::isVoid },
    { "html", E::isRoot },
    { "i", formatting },
    { "iframe", E::leftOut | E::object },
    { "image", E::hasTexts | E::isVoid | E::object },
    { "img", E::hasTexts | E::isVoid | E::object | E::endsForeign },
    { "input", E::hasTexts | E::isVoid | E::object },
    { "keygen", E::isVoid },
    { "legend", E::isBlock | E::isOrdinary },
    { "li", foreignBlock },
    { "link", E::isVoid },
    { "listing", foreignBlock | E::keepsBlanks },
    { "main", section },
    { "marquee", E::isBlock | E::isScope },
    { "math", E::foreign },
    { "menu", foreignBlock },
    { "meta", E::isVoid | E::endsForeign },
    { "nav", section },
    { "nobr", formatting },
    { "noembed", E::leftOut },
    { "noframes", E::leftOut },
    { "noscript", E::hidden },
    { "object", E::isScope | E::object | fallback },
    { "ol", foreignBlock },
    { "optgroup", E::hasTexts | E::isBlock | E::isOrdinary | E::apart },
    { "option", E::hasTexts | E::isBlock | E::isOrdinary | E::apart },
    { "p", foreignBlock },
    { "param", E::isVoid },
    { "plaintext", section | E::keepsBlanks },
    { "pre", foreignBlock | E::keepsBlanks },
    { "rb" },
    { "rp", E::leftOut },
    { "rt", E::leftOut },
    { "rtc", E::leftOut },
    { "ruby", E::endsForeign },
    { "s", formatting },
    { "script", E::leftOut },
    { "search", section },
    { "section", section },
    { "select", E::object },
    { "small", formatting },
    { "source", E::isVoid },
    { "span", E::endsForeign },
    { "strike", formatting },
    { "strong", formatting },
    { "style", E::leftOut },
    { "sub", E::endsForeign },
    { "summary", section },
    { "sup", E::endsForeign },
    { "svg", E::foreign | E::leftOut | E::object },
    { "table", E::isBlock | E::isScope | E::endsParagraph | E::endsForeign },
    { "tbody", tablePart },
    { "td", cell },
    { "template", E::leftOut | E::isScope },
    { "textarea", E::hasTexts | E::isBlock | E::apart | E::keepsBlanks | E::object },
    { "tfoot", tablePart },
    { "th", cell },
    { "thead", tablePart },
    { "title", E::isBlock | E::hidden | E::apart },
    { "tr", tablePart },
    { "track", E::hasTexts | E::isVoid },
    { "tt", formatting },
    { "u", formatting },
    { "ul", foreignBlock },
    { "var", E::endsForeign },
    { "video", fallback },
    { "wbr", E::isVoid },
    { "xmp", section | E::keepsBlanks },
});

consteval std::size_t operator""_e(const char* name, std::size_t size)
{
    std::size_t number = 0;
    while (elements.at(number).name != std::string_view(name, size))
        ++number;
    return number;
}

constexpr std::size_t slots = 1024;
constexpr std::uint8_t noElement = 255;
static_assert(elements.size() < noElement);

constexpr std::size_t slotOf(std::string_view name)
{
    std::size_t hash = name.size();
    for (const char c : name)
        hash = hash * 33 + static_cast<unsigned char>(c);
    return (hash ^ hash >> 10) % slots;
}

constexpr auto table = [] {
    std::array<std::uint8_t, slots> result {};
    result.fill(noElement);
    for (std::size_t number = 0; number < elements.size(); ++number) {
        auto slot = slotOf(elements[number].name);
        while (result[slot] != noElement)
            slot = (slot + 1) % slots;
        result[slot] = static_cast<std::uint8_t>(number);
    }
    return result;
}();

bool isHeading(std::size_t number) { return number >= "h1"_e && number <= "h6"_e; }

bool isItem(std::size_t number)
{
    constexpr std::array items { "li"_e, "dd"_e, "dt"_e, "address"_e, "div"_e, "p"_e };
    return std::find(items.begin(), items.end(), number) != items.end();
}

} // namespace

std::size_t HtmlElements::number(const std::string& name)
{
    for (auto slot = slotOf(name); table[slot] != noElement; slot = (slot + 1) % slots) {
        if (elements[table[slot]].name == name)
            return table[slot];
    }
    return m_unknown.try_emplace(name, elements.size() + m_unknown.size()).first->second;
}

const HtmlElement& HtmlElements::operator[](std::size_t number) const
{
    static constexpr HtmlElement unknown;
    return number < elements.size() ? elements[number] : unknown;
}

std::size_t HtmlElements::lastOf(Numbers numbers) const
{
    std::size_t found = 0;
    for (const auto number : numbers)
        found = std::max(found, last(number));
    return found;
}

std::size_t HtmlElements::openWithout(Numbers numbers, std::size_t around) const
{
    auto open = m_open.size();
    for (const auto number : numbers) {
        if (last(number) > around)
            open = std::min(open, last(number) - 1);
    }
    return open;
}

bool HtmlElements::isInTable() const { return last("table"_e) > 0; }

std::size_t HtmlElements::openBehindStart(std::size_t number) const
{
    auto open = m_open.size();
    if ((*this)[number].is(HtmlElement::endsParagraph))
        open = openWithout({ "p"_e }, scope());
    if (isHeading(number) && !m_open.empty() && isHeading(m_open.back().element))
        return m_open.size() - 1;
    switch (number) {
    case "li"_e:
        return std::min(open, openWithout({ "li"_e }, std::max(blockButItems(), lastOf({ "dd"_e, "dt"_e }))));
    case "dd"_e:
    case "dt"_e:
        return std::min(open, openWithout({ "dd"_e, "dt"_e }, std::max(blockButItems(), last("li"_e))));
    case "option"_e:
        return openWithout(
            { "option"_e }, std::max(scope(), lastOf({ "select"_e, "datalist"_e, "optgroup"_e })));
    case "optgroup"_e:
        return openWithout({ "option"_e, "optgroup"_e }, std::max(scope(), last("select"_e)));
    case "td"_e:
    case "th"_e:
        return openWithout({ "td"_e, "th"_e, "caption"_e }, last("table"_e));
    case "tr"_e:
        return openWithout({ "tr"_e, "td"_e, "th"_e, "caption"_e, "colgroup"_e }, last("table"_e));
    case "tbody"_e:
    case "thead"_e:
    case "tfoot"_e:
        return openWithout(
            { "tbody"_e, "thead"_e, "tfoot"_e, "tr"_e, "td"_e, "th"_e, "caption"_e, "colgroup"_e },
            last("table"_e));
    case "rt"_e:
    case "rp"_e:
    case "rb"_e:
    case "rtc"_e:
        return openWithout({ "rt"_e, "rp"_e, "rb"_e, "rtc"_e }, std::max(scope(), last("ruby"_e)));
    case "a"_e:
        return openWithout({ "a"_e }, block());
    case "button"_e:
        return last("button"_e) > 0 && last("button"_e) == scope() ? last("button"_e) - 1 : open;
    default:
        return open;
    }
}

std::size_t HtmlElements::openBehindEnd(std::size_t number) const
{
    const auto& element = (*this)[number];
    switch (number) {
    case "table"_e:
        return openWithout({ number }, last("template"_e));
    case "caption"_e:
    case "tbody"_e:
    case "td"_e:
    case "tfoot"_e:
    case "th"_e:
    case "thead"_e:
    case "tr"_e:
        return openWithout({ number }, last("table"_e));
    case "template"_e:
        return openWithout({ number }, 0);
    case "li"_e:
        return openWithout({ number }, std::max(scope(), lastOf({ "ul"_e, "ol"_e })));
    default:
        break;
    }
    if (isHeading(number)) {
        const auto heading = lastOf({ "h1"_e, "h2"_e, "h3"_e, "h4"_e, "h5"_e, "h6"_e });
        return heading > scope() ? heading - 1 : m_open.size();
    }
    if (element.is(HtmlElement::isScope))
        return last(number) > 0 && last(number) == scope() ? last(number) - 1 : m_open.size();
    return openWithout(
        { number }, element.is(HtmlElement::isBlock | HtmlElement::isFormatting) ? scope() : block());
}

void HtmlElements::push(std::size_t number, const HtmlState& outside)
{
    if (number >= m_last.size())
        m_last.resize(number + 1);
    const auto& element = (*this)[number];
    const auto place = m_open.size() + 1;
    const bool isScope = element.is(E::isScope);
    const bool isBlock = isScope || (element.is(E::isBlock) && !element.is(E::isOrdinary));
    m_open.push_back({ .element = number,
        .sameOutside = m_last[number],
        .innermostScope = isScope ? place : scope(),
        .innermostBlock = isBlock ? place : block(),
        .innermostBlockButItems = isBlock && !isItem(number) ? place : blockButItems(),
        .outside = outside });
    m_last[number] = place;
}

HtmlElements::Open HtmlElements::pop()
{
    const auto open = m_open.back();
    m_last[open.element] = open.sameOutside;
    m_open.pop_back();
    return open;
}

} // namespace Tamberlin
