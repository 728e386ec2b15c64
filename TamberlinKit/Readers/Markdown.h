#pragma once

#include "TamberlinKit/Text/Extracted.h"

#include <set>
#include <stop_token>
#include <string>
#include <string_view>
#include <vector>

namespace Tamberlin {

// Takes the text out of a Markdown document (CommonMark, tables and footnotes as GitHub has them): what a
// reader of the finished page sees, a segment a paragraph, heading, list item or cell. Markup isn't text:
// marks of headings, lists, quotes, tables and emphasis, fences, addresses of links, reference definitions,
// HTML tags and comments. Code is. Hidden text are the alternative texts of pictures, tool tips and what
// stands before the page between lines of "---".
void readMarkdown(std::string_view text, std::vector<Segment>& segments, const std::stop_token& cancel);

// The inline part: one paragraph of Markdown to the text that is shown.
struct MarkdownInline {
    std::string text;
    std::vector<std::string> hidden; // Alternative texts and tool tips.
};
using MarkdownLabels = std::set<std::string, std::less<>>; // Of the reference definitions.
MarkdownInline readInline(std::string_view paragraph, const MarkdownLabels& labels);

// The form in which labels of references are compared.
std::string normalLabel(std::string_view label);

} // namespace Tamberlin
