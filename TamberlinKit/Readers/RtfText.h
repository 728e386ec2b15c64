#pragma once

#include "TamberlinKit/Readers/RtfCodePage.h"
#include "TamberlinKit/Readers/SegmentWriter.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Tamberlin {

// What a group of RTF inherits from the one that it stands in.
struct RtfState {
    enum class Destination : std::uint8_t { text, skipped, shapeProperty, shapePropertyName, fontTable };
    Destination destination = Destination::text;
    Part part = Part::body;
    bool opened = false; // The group is a container of its own.
    bool inObject = false;
    bool bothEncodings = false;
    bool hidden = false;
    bool deleted = false;
    bool rightToLeft = false;
    std::int32_t unicodeSkip = 1; // Characters behind each Unicode one that stand in for it.
    const RtfCodePage* page = nullptr;
    const RtfCodePage* associatedPage = nullptr; // For right-to-left scripts.
};

// Makes segments of the bytes and characters of RTF. Those of a multi-byte code page and halves of surrogate
// pairs wait for what completes them: flush before the state changes.
class RtfText {
public:
    RtfText(std::vector<Segment>& segments, const RtfState& state)
        : m_state(state)
        , m_writer(segments)
    {
    }

    void enter(Part part) { m_writer.enter(part); }
    void leave() { m_writer.leave(); }
    void endParagraph() { m_writer.endParagraph(); }

    void byte(unsigned char byte);
    void character(char32_t codePoint);
    void unicode(std::int32_t parameter); // Of the control word: a UTF-16 unit, mostly signed.
    void put(std::string_view text);
    void flush();

    // Whether the next byte, even an ASCII one, is the second half of a character.
    bool isTrailDue() const { return m_trailDue; }

private:
    const RtfCodePage& page() const { return m_state.rightToLeft ? *m_state.associatedPage : *m_state.page; }

    const RtfState& m_state;
    SegmentWriter m_writer;
    std::string m_bytes; // Not decoded yet.
    bool m_trailDue = false;
    char32_t m_highSurrogate = 0;
};

} // namespace Tamberlin
