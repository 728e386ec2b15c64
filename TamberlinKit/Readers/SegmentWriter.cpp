#include "TamberlinKit/Readers/SegmentWriter.h"

namespace Tamberlin {

void SegmentWriter::hideParagraph()
{
    auto& level = m_levels.back();
    if (level.part == Part::comments)
        return;
    level.part = Part::hidden;
    if (level.shown != none)
        m_segments[level.shown].part = Part::hidden;
}

void SegmentWriter::append(std::string_view text, bool hidden)
{
    if (text.empty())
        return;
    auto& level = m_levels.back();
    const bool apart = hidden && level.part != Part::comments && level.part != Part::hidden;
    auto& place = apart ? level.hidden : level.shown;
    if (!apart)
        level.hidden = none;
    if (place == none) {
        place = m_segments.size();
        m_segments.push_back({ .text = {}, .part = apart ? Part::hidden : level.part });
    }
    m_segments[place].text += text;
}

Part SegmentWriter::nested(Part outer, Part inner)
{
    const bool keeps = outer == Part::comments || outer == Part::hidden;
    return keeps && inner != Part::comments ? outer : inner;
}

} // namespace Tamberlin
