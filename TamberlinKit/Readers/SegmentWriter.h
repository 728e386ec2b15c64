#pragma once

#include "TamberlinKit/Text/Extracted.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace Tamberlin {

// Gathers text that comes in pieces into segments, one a paragraph. Paragraphs nest (a note stands inside the
// paragraph that cites it): text goes to the innermost one, and the outer one goes on behind it. What is
// hidden becomes segments of its own. A paragraph without text leaves no segment.
class SegmentWriter {
public:
    explicit SegmentWriter(std::vector<Segment>& segments)
        : m_segments(segments)
    {
    }

    void enter(Part part) { m_levels.push_back({ .part = part }); }
    void leave() { m_levels.pop_back(); }
    void leaveAll() { m_levels.clear(); }

    // Ends the innermost paragraph; what comes next begins another one of the same part.
    void endParagraph() { m_levels.back() = { .part = m_levels.back().part }; }
    // All of the innermost paragraph is hidden, what it has already too.
    void hideParagraph();

    void append(std::string_view text, bool hidden);

    // The part of what stands inside another part: a comment and what is hidden have all that is in them.
    static Part nested(Part outer, Part inner);

private:
    static constexpr std::size_t none = static_cast<std::size_t>(-1);
    struct Level {
        Part part;
        std::size_t shown = none; // Segments, from their first text on.
        std::size_t hidden = none; // Until shown text follows.
    };

    std::vector<Segment>& m_segments;
    std::vector<Level> m_levels;
};

} // namespace Tamberlin
