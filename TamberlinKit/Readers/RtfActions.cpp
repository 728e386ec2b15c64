#include "TamberlinKit/Readers/RtfParser.h"

#include <algorithm>
#include <utility>

namespace Tamberlin {

void RtfParser::apply(RtfControl control, std::int32_t parameter, bool hasParameter)
{
    using Action = RtfControl::Action;
    const bool starred = std::exchange(m_starred, false);
    const bool isOn = !hasParameter || parameter != 0;
    const bool inText = m_now.destination == Destination::text;
    const bool inShapeProperty = m_now.destination == Destination::shapeProperty;
    switch (control.action) {
    case Action::none:
        if (starred)
            enter(Destination::skipped);
        return;
    case Action::character:
        return m_text.character(control.value);
    case Action::paragraphEnd:
        m_text.flush();
        if (inText)
            m_text.endParagraph();
        return;
    case Action::container:
        if (inText)
            openContainer(static_cast<Part>(control.value));
        return;
    case Action::transparent:
        return;
    case Action::skipped:
        return enter(Destination::skipped);
    case Action::shapeProperty:
        if (inText)
            enter(Destination::shapeProperty);
        return;
    case Action::shapePropertyName:
        if (inShapeProperty)
            enter(Destination::shapePropertyName);
        return;
    case Action::shapePropertyValue:
        if (inShapeProperty && m_isWordArt) {
            enter(Destination::text);
            openContainer(Part::textBoxes);
        }
        return;
    case Action::picture:
        m_notCounted.pictures += (inText || inShapeProperty) && !m_now.inObject;
        return enter(Destination::skipped);
    case Action::object: // What is shown of it may be text, and counts.
        m_notCounted.objects += inText;
        m_now.inObject = true;
        return;
    case Action::fontTable:
        return enter(Destination::fontTable);
    case Action::font:
        if (m_now.destination == Destination::fontTable) {
            m_pages.beginFont(parameter);
            return;
        }
        m_text.flush();
        m_now.page = &m_pages.ofFont(parameter);
        return;
    case Action::associatedFont:
        m_text.flush();
        if (m_now.rightToLeft)
            m_now.associatedPage = &m_pages.ofFont(parameter);
        return;
    case Action::leftToRight:
    case Action::rightToLeft:
        m_text.flush();
        m_now.rightToLeft = control.action == Action::rightToLeft;
        return;
    case Action::fontCharset:
        if (m_now.destination == Destination::fontTable)
            m_pages.setCharset(parameter);
        return;
    case Action::fontCodePage:
        if (m_now.destination == Destination::fontTable)
            m_pages.setPage(parameter);
        return;
    case Action::codePage:
        m_text.flush();
        m_pages.setDocument(control.value != 0 ? control.value : parameter);
        m_now.page = m_now.associatedPage = &m_pages.ofDocument();
        return;
    case Action::defaultFont:
        m_pages.setDefaultFont(parameter);
        return;
    case Action::plain:
        m_text.flush();
        m_now.hidden = m_now.deleted = m_now.rightToLeft = false;
        m_now.page = m_now.associatedPage = &m_pages.ofDefaultFont();
        return;
    case Action::hidden:
        m_text.flush();
        m_now.hidden = isOn;
        return;
    case Action::deleted:
        m_text.flush();
        m_now.deleted = isOn;
        return;
    case Action::unicode:
        m_toSkip = m_now.unicodeSkip;
        return m_text.unicode(parameter);
    case Action::unicodeSkip:
        m_now.unicodeSkip = std::max(parameter, 0);
        return;
    case Action::binary:
        return skipBinary(parameter);
    case Action::bothEncodings:
        m_now.bothEncodings = true;
        return enter(Destination::skipped);
    case Action::unicodeText:
        if (m_outer.size() > 1 && m_outer.back().bothEncodings)
            enter(m_outer[m_outer.size() - 2].destination);
        return;
    }
}

void RtfParser::openContainer(Part part)
{
    m_text.flush();
    if (m_now.opened)
        m_text.leave();
    m_now.opened = true;
    // A note or box is hidden with what it is anchored in.
    const bool hides = m_now.hidden && (part == Part::footnotes || part == Part::textBoxes);
    m_now.part = SegmentWriter::nested(m_now.part, hides ? Part::hidden : part);
    m_text.enter(m_now.part);
}

} // namespace Tamberlin
