#pragma once

#include "TamberlinKit/Markup/Package.h"
#include "TamberlinKit/Readers/NotCounted.h"
#include "TamberlinKit/Text/Extracted.h"

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace Tamberlin {

// Reads the text of drawings (DrawingML, ISO/IEC 29500-1, 20 and 21): slides, notes pages, comments on slides
// and the drawings of sheets, and the diagrams and charts that these and Word documents refer to. Each part
// is read once.
//
// Of a chart, the titles and other texts typed into it count, the names of its series and categories don't:
// they are copies of the cells that it shows.
class DrawingReader {
public:
    struct Places {
        Part text = Part::body;
        Part margins = Part::headersFooters; // Placeholders of header, footer, date and number.
        Part graphics = Part::textBoxes; // Diagrams and charts.
        bool hasOwnNumber = true; // Otherwise the placeholder of the number is left out.
    };

    DrawingReader(const Package& package, Extracted& extracted)
        : m_package(package)
        , m_extracted(extracted)
    {
    }

    // Adds the text of a part to the segments. Gives whether it is a slide that isn't shown; its text is
    // hidden then.
    bool read(const std::string& path, const Places& places);

    void readDiagram(const std::string& path, Part part);
    void readChart(const std::string& path, Part part);

    // How many parts were read, and forgetting those read since then, whose text the caller has thrown away.
    std::size_t partsRead() const { return m_read.size(); }
    void forgetSince(std::size_t partsRead);

    // Adds the notes on what was seen and not counted, here and elsewhere in the document. The data of charts
    // in a workbook are cells of it and need no note.
    void addNotes(NotCounted elsewhere, bool isWorkbook);

private:
    struct Read {
        std::set<std::string, std::less<>>::iterator path;
        bool isChartWithData = false;
    };
    bool isNew(const std::string& path);

    const Package& m_package;
    Extracted& m_extracted;
    std::set<std::string, std::less<>> m_seen;
    std::vector<Read> m_read; // The same in the order in which they were begun.
    NotCounted m_notCounted; // In drawings that were read with read().
};

} // namespace Tamberlin
