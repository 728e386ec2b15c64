#pragma once

#include "TamberlinKit/Markup/XMLScan.h"
#include "TamberlinKit/Readers/NotCounted.h"
#include "TamberlinKit/Readers/OdtStyles.h"
#include "TamberlinKit/Readers/SegmentWriter.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace Tamberlin {

// Takes the text out of content.xml and styles.xml of an OpenDocument text as their elements go by. Only what
// stands in a paragraph or heading is text; in both parts the styles stand before it.
class OdtText {
public:
    // `mediaType` tells the kind of an embedded object, which stands in a folder of the package.
    OdtText(std::vector<Segment>& segments, std::function<std::string(std::string_view folder)> mediaType)
        : m_writer(segments)
        , m_mediaType(std::move(mediaType))
    {
    }

    XMLScan scan();
    // Another part begins, whether or not the one before came to its end.
    void beginPart();

    const NotCounted& notCounted() const { return m_notCounted; }
    // The element that the body of content.xml consists of, "text" in a text; empty if there was none.
    const std::string& bodyKind() const { return m_bodyKind; }

private:
    enum class Ends : std::uint8_t { nothing, paragraph, frame, hiddenText };
    // What holds inside an element; the outer one's comes back at its end.
    struct Surroundings {
        Part part = Part::body;
        bool left = false; // Out: nothing in here is text.
        bool inParagraph = false;
        bool hiddenWhole = false; // Nothing in here can be shown again, as it can in a hidden style.
        bool hidden = false;
        bool sawPicture = false, sawObject = false; // In a frame.
        Ends ends = Ends::nothing;
    };

    void start(std::string_view element, const XMLScan::Attributes& attributes);
    void end(std::string_view element);
    void text(std::string_view text);

    void startParagraph(const XMLScan::Attributes& attributes);
    void startHiddenText(const XMLScan::Attributes& attributes);
    void startObject(const XMLScan::Attributes& attributes);
    void enterContainer(Part part);
    void put(std::string_view text);

    OdtStyles m_styles;
    SegmentWriter m_writer;
    std::function<std::string(std::string_view)> m_mediaType;
    NotCounted m_notCounted;
    std::string m_bodyKind;
    bool m_beforeBodyKind = false;
    Surroundings m_now;
    std::vector<Surroundings> m_outer;
    std::vector<bool> m_blankDue; // For each open paragraph: whether white space would be one too many now.
    std::string m_hiddenText; // What a hidden-text field says if it has no text in it.
    std::size_t m_spacesLeft
        = 1'000'000; // That counts of spaces may still stand for; a hostile one knows no end.
};

} // namespace Tamberlin
