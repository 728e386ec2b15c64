#include "TamberlinKit/Readers/DrawingParts.h"

#include <cstddef>
#include <unordered_set>

namespace Tamberlin {

namespace {

class DrawingText {
public:
    explicit DrawingText(std::vector<Segment>& segments)
        : m_segments(segments)
    {
    }

    void start(std::string_view element)
    {
        // Series and categories that were filtered out of a chart are kept in it, but not shown.
        if (m_skipped > 0 || element == "Fallback" || element.starts_with("filtered")) {
            ++m_skipped;
            return;
        }
        m_open.emplace_back(element);
        m_isChart |= element == "chartSpace";
        m_isInParagraph |= element == "p";
        if (element == "p" || isValue())
            m_segments.push_back({ .text = "", .part = Part::textBoxes });
        else if (element == "br" && m_isInParagraph)
            m_segments.back().text += '\n';
        else if (element == "f")
            m_formula.clear();
    }

    void end(std::string_view element)
    {
        if (m_skipped > 0) {
            --m_skipped;
            return;
        }
        if (m_open.size() == m_repeatedDepth)
            m_repeatedDepth = 0;
        m_open.pop_back();
        m_isInParagraph &= element != "p";
        // Each series has a copy of the same categories; the formula tells what was copied.
        if (element == "f" && !m_formula.empty() && !m_formulas.insert(m_formula).second)
            m_repeatedDepth = m_open.size();
    }

    void text(std::string_view text)
    {
        if (m_skipped > 0)
            return;
        if (isAt(0, "f"))
            m_formula += text;
        // A field in a chart stands for a value that is there already.
        else if (isAt(0, "t") ? m_isInParagraph && !(m_isChart && isAt(1, "fld"))
                              : isValue() && m_repeatedDepth == 0)
            m_segments.back().text += text;
    }

private:
    bool isAt(std::size_t above, std::string_view element) const
    {
        return above < m_open.size() && m_open[m_open.size() - 1 - above] == element;
    }

    // Whether the innermost element holds a text of a chart. Numbers aren't text.
    bool isValue() const
    {
        if (isAt(0, "v") && isAt(1, "pt"))
            return isAt(2, "strCache") || isAt(2, "strLit") || isAt(2, "lvl") || isAt(2, "dlblRangeCache");
        return (isAt(0, "v") && (isAt(1, "tx") || isAt(1, "txData")))
            || (isAt(0, "pt") && isAt(1, "lvl") && isAt(2, "strDim"))
            || (isAt(0, "name") && isAt(1, "trendline"));
    }

    std::vector<Segment>& m_segments;
    std::vector<std::string> m_open;
    std::size_t m_skipped = 0; // Open elements of what is left out.
    bool m_isChart = false;
    bool m_isInParagraph = false;
    std::string m_formula;
    std::unordered_set<std::string> m_formulas; // Those whose texts were taken.
    std::size_t m_repeatedDepth = 0; // Of the element whose texts were taken before.
};

} // namespace

std::optional<std::string> readDrawingPart(
    const Package& package, std::string_view path, std::vector<Segment>& segments)
{
    DrawingText drawing(segments);
    return package.scan(path,
        {
            .onStart = [&](std::string_view element, const auto&) { drawing.start(element); },
            .onEnd = [&](std::string_view element) { drawing.end(element); },
            .onText = [&](std::string_view text) { drawing.text(text); },
        });
}

} // namespace Tamberlin
