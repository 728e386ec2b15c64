#include "TamberlinKit/Markup/HtmlTokenizer.h"
#include "TamberlinKit/Readers/HtmlPage.h"
#include "TamberlinKit/Readers/Readers.h"
#include "TamberlinKit/Text/TextDecoder.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace Tamberlin {

namespace {

constexpr std::size_t prescanned = 16'384; // More than the standard asks for: some write long comments first.
constexpr std::size_t betweenChecks = 65'536;

std::string_view value(const HtmlTokenizer& tag, std::string_view name)
{
    for (const auto& attribute : tag.attributes()) {
        if (equalsLower(attribute.name, name))
            return attribute.value;
    }
    return {};
}

// The value behind "name=" in text like "text/html; charset=utf-8".
std::string_view parameter(std::string_view text, std::string_view name)
{
    for (std::size_t at = 0; at + name.size() < text.size(); ++at) {
        if (!equalsLower(text.substr(at, name.size()), name))
            continue;
        auto rest = text.substr(at + name.size());
        rest.remove_prefix(std::min(rest.find_first_not_of(" \t\r\n"), rest.size()));
        if (!rest.starts_with('='))
            continue;
        rest.remove_prefix(std::min(rest.find_first_not_of(" \t\r\n\"'", 1), rest.size()));
        return rest.substr(0, rest.find_first_of(" \t\r\n;\"'"));
    }
    return {};
}

// The encoding that a page says it has (WHATWG HTML, 13.2.3.2), or its XML declaration.
std::string_view saidEncoding(std::string_view page)
{
    page = page.substr(0, prescanned);
    if (page.starts_with("<?xml")) {
        if (const auto said = parameter(page.substr(0, page.find("?>")), "encoding"); !said.empty())
            return said;
    }
    HtmlTokenizer tokens(page, HtmlTokenizer::Dialect::html);
    for (auto token = tokens.next(); token != HtmlTokenizer::Token::end; token = tokens.next()) {
        if (token != HtmlTokenizer::Token::startTag || tokens.name() != "meta")
            continue;
        if (const auto said = value(tokens, "charset"); !said.empty())
            return said;
        if (equalsLower(value(tokens, "http-equiv"), "content-type")) {
            if (const auto said = parameter(value(tokens, "content"), "charset"); !said.empty())
                return said;
        }
    }
    return {};
}

HtmlTokenizer::Dialect dialectOf(std::string_view page, std::string_view name)
{
    const bool isXhtml = page.starts_with("<?xml")
        || (name.size() > 6 && equalsLower(name.substr(name.size() - 6), ".xhtml"));
    return isXhtml ? HtmlTokenizer::Dialect::xhtml : HtmlTokenizer::Dialect::html;
}

} // namespace

Extracted readHtml(std::string_view file, std::string name, const std::stop_token& cancel)
{
    const auto decoded = decodeText(file, saidEncoding(file));
    const auto document = decoded.text();
    const auto dialect = dialectOf(document, name);
    Extracted extracted { .name = std::move(name), .format = FileFormat::html };
    HtmlTokenizer tokens(document, dialect);
    HtmlPage page(extracted.segments);
    std::size_t nextCheck = 0;
    for (bool isOver = false; !isOver;) {
        if (tokens.position() >= nextCheck) {
            if (cancel.stop_requested())
                throw Cancelled();
            nextCheck = tokens.position() + betweenChecks;
        }
        tokens.setForeign(page.isForeign());
        switch (tokens.next()) {
        case HtmlTokenizer::Token::text:
            page.text(tokens.text(), tokens.hasReferences());
            break;
        case HtmlTokenizer::Token::startTag:
            page.start(tokens, dialect);
            break;
        case HtmlTokenizer::Token::endTag:
            page.end(tokens);
            break;
        case HtmlTokenizer::Token::end:
            isOver = true;
            break;
        }
    }
    page.finish();
    if (const auto note = decoded.note())
        extracted.notes.push_back(*note);
    if (tokens.isCutOff())
        extracted.notes.emplace_back("The page ends inside a tag or comment, which wasn’t counted.");
    page.notCounted().tell(extracted.notes);
    return extracted;
}

} // namespace Tamberlin
