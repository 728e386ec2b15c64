#pragma once

#include "TamberlinKit/Text/Extracted.h"

#include <string>
#include <string_view>
#include <vector>

namespace Tamberlin {

// Gathers one paragraph of an HTML page: collapses white space as CSS does (CSS Text 3, 4.1), replaces
// references.
class HtmlParagraph {
public:
    void append(std::string_view text, bool hasReferences, bool keepsBlanks);
    void lineBreak();
    // A picture or control stands here: it keeps the words at its sides apart, without being a character.
    void object() { m_isBehindObject = !m_text.empty(); }

    bool isEmpty() const { return m_text.empty(); }
    bool endsWithLineBreak() const { return m_text.ends_with('\n'); }
    // Adds what was gathered as a segment, unless it is blank, and begins anew.
    void finish(std::vector<Segment>& segments, Part part);

private:
    void appendRun(std::string_view run);
    std::size_t appendReference(std::string_view text, bool keepsBlanks);

    std::string m_text;
    bool m_isBehindBlank = false; // A blank that counts only if text follows on the line.
    bool m_isBehindObject = false;
};

} // namespace Tamberlin
