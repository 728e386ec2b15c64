#pragma once

#include "TamberlinKit/Markup/HtmlTokenizer.h"
#include "TamberlinKit/Readers/HtmlElements.h"
#include "TamberlinKit/Readers/HtmlText.h"
#include "TamberlinKit/Readers/NotCounted.h"
#include "TamberlinKit/Text/Extracted.h"

#include <array>
#include <cstddef>
#include <string_view>
#include <vector>

namespace Tamberlin {

// Takes the texts out of an HTML page as its tokens go by.
//
// What a visitor reads is main text, a segment a block: also what stands in form fields, on buttons and in
// lists to choose from. Hidden text is what is in the page but not on it: its title, alternative texts and
// tool tips (alt, title), elements with `hidden`, display: none or visibility: hidden of their own, closed
// dialogs, noscript, and what is shown only in place of audio, video and the like. Style sheets aren't looked
// at. Left out: scripts, styles, templates, frames, metadata, the glosses of ruby, and of SVG and MathML all
// that isn't shown as text.
class HtmlPage {
public:
    explicit HtmlPage(std::vector<Segment>& segments)
        : m_segments(segments)
    {
    }

    void text(std::string_view text, bool hasReferences);
    void start(const HtmlTokenizer& tag, HtmlTokenizer::Dialect dialect);
    void end(const HtmlTokenizer& tag);
    void finish();

    bool isForeign() const { return m_now.isForeign; }
    const NotCounted& notCounted() const { return m_notCounted; }

private:
    void startForeign(const HtmlTokenizer& tag, HtmlState& inside) const;
    void readAttributes(const HtmlTokenizer& tag, const HtmlElement& element, HtmlState& inside);
    void note(const HtmlElement& element);
    void addApart(std::string_view attribute, bool isHidden);
    void lineBreak();
    // The paragraphs of this state end.
    void boundary(const HtmlState& state);
    void closeDownTo(std::size_t open);
    HtmlParagraph& paragraph() { return m_paragraphs[m_now.isApart ? 1 : 0][m_now.isHidden ? 1 : 0]; }

    std::vector<Segment>& m_segments;
    std::vector<Segment> m_apart; // Found inside the paragraph; follow it.
    std::array<std::array<HtmlParagraph, 2>, 2> m_paragraphs; // Apart or not, hidden or not.
    HtmlElements m_elements;
    HtmlState m_now;
    NotCounted m_notCounted;
};

} // namespace Tamberlin
