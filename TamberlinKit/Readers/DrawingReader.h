#pragma once

#include "TamberlinKit/Markup/Package.h"
#include "TamberlinKit/Readers/NotCounted.h"
#include "TamberlinKit/Text/Extracted.h"

#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace Tamberlin {

// Reads the text of drawings (DrawingML, ISO/IEC 29500-1, 20 and 21): slides, notes pages, comments on slides
// and the drawings of sheets, together with the diagrams and charts that they refer to. Each part is read
// once.
class DrawingReader {
public:
    struct Places {
        Part text = Part::body;
        std::optional<Part>
            margins; // Placeholders of header, footer, date and number; left out where there is none.
        Part graphics = Part::textBoxes; // Diagrams and charts.
    };

    DrawingReader(const Package& package, Extracted& extracted)
        : m_package(package)
        , m_extracted(extracted)
    {
    }

    // Adds the text of a part to the segments. Gives whether it is a slide that isn't shown; its text is
    // hidden then.
    bool read(const std::string& path, const Places& places);

    // Adds the notes on what was seen and not counted; `otherObjects` are embedded outside of drawings.
    void addNotes(std::int64_t otherObjects, bool isChartDataElsewhere);

private:
    void readDiagram(const std::string& path, Part part);
    void readChart(const std::string& path, Part part);

    const Package& m_package;
    Extracted& m_extracted;
    std::set<std::string, std::less<>> m_seen;
    NotCounted m_notCounted;
    std::int64_t m_chartsWithData = 0;
};

} // namespace Tamberlin
