#pragma once

#include "TamberlinKit/Markup/XMLScan.h"
#include "TamberlinKit/Readers/DrawingReader.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace Tamberlin {

// Gathers the paragraphs of one part with a drawing as its events go by.
class DrawingText {
public:
    DrawingText(std::vector<Segment>& segments, const DrawingReader::Places& places)
        : m_segments(segments)
        , m_places(places)
    {
    }

    std::function<void(std::string_view relationship, Part part)> onDiagram, onChart;

    void start(std::string_view element, const XMLScan::Attributes& attributes);
    void end(std::string_view element);
    void text(std::string_view text)
    {
        if (m_inText && !m_inLeftOutField)
            m_text += text;
    }

    bool isHiddenSlide() const { return m_isHiddenSlide; }
    std::int64_t pictures() const { return m_pictures; }
    std::int64_t objects() const { return m_objects; }

private:
    void endParagraph();
    bool isHidden() const { return m_isHiddenSlide || m_hiddenAbove <= m_depth; }

    static constexpr std::size_t never = std::numeric_limits<std::size_t>::max();

    std::vector<Segment>& m_segments;
    DrawingReader::Places m_places;
    std::size_t m_depth = 0;
    std::size_t m_hiddenAbove = never; // The depth of the shape that isn't shown.
    std::size_t m_object = never; // The depth of the embedded object whose picture this is.
    bool m_isHiddenSlide = false;
    bool m_isMargin = false; // In a placeholder for header, footer, date or number.
    bool m_isLeftOut = false;
    bool m_inParagraph = false, m_inText = false, m_inLeftOutField = false;
    std::string m_text;
    std::int64_t m_pictures = 0, m_objects = 0;
};

} // namespace Tamberlin
