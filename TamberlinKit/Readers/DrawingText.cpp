#include "TamberlinKit/Readers/DrawingText.h"

#include "TamberlinKit/Readers/OfficeMarkup.h"

namespace Tamberlin {

void DrawingText::start(std::string_view element, const XMLScan::Attributes& attributes)
{
    ++m_depth;
    if (m_inParagraph) {
        if (element == "t")
            m_inText = true;
        else if (element == "br")
            m_text += '\n';
        else if (element == "fld") // A shape that shows a cell repeats it; the number of a page is no text.
            m_inLeftOutField = m_isMargin || attributes.find("type") == "TxLink";
    } else if (element == "p" || element == "text") { // The latter in comments.
        m_inParagraph = true;
        m_inText = element == "text";
        m_text.clear();
    } else if (element == "ph") {
        const auto type = attributes.find("type");
        m_isMargin = type == "hdr" || type == "ftr" || type == "dt" || type == "sldNum";
        m_isLeftOut = type == "sldNum" && !m_places.hasOwnNumber;
    } else if (element == "cNvPr") { // Of a shape, in its group of properties.
        if (isOn(attributes.find("hidden")) && m_hiddenAbove == never && m_depth > 2)
            m_hiddenAbove = m_depth - 2;
    } else if (element == "sp") {
        m_isMargin = m_isLeftOut = false;
    } else if (element == "pic") {
        m_pictures += m_object == never;
    } else if (element == "oleObj" && m_object == never) {
        m_object = m_depth;
        ++m_objects;
    } else if (element == "sld") {
        m_isHiddenSlide = attributes.find("show") && !isOn(attributes.find("show"));
    } else if (element == "relIds" && onDiagram) {
        onDiagram(attributes.valueOr("dm", ""), isHidden() ? Part::hidden : m_places.graphics);
    } else if (element == "chart" && onChart) {
        onChart(attributes.valueOr("id", ""), isHidden() ? Part::hidden : m_places.graphics);
    }
}

void DrawingText::end(std::string_view element)
{
    if (m_inParagraph && (element == "p" || element == "text"))
        endParagraph();
    else if (element == "t")
        m_inText = false;
    else if (element == "fld")
        m_inLeftOutField = false;
    else if (element == "sp")
        m_isMargin = m_isLeftOut = false;
    if (m_depth == m_hiddenAbove)
        m_hiddenAbove = never;
    if (m_depth == m_object)
        m_object = never;
    --m_depth;
}

void DrawingText::endParagraph()
{
    m_inParagraph = m_inText = false;
    decodeEscapes(m_text);
    const auto place = m_isMargin ? m_places.margins : m_places.text;
    if (!m_isLeftOut)
        addSegment(m_segments, m_text, isHidden() ? Part::hidden : place);
}

} // namespace Tamberlin
