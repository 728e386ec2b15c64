#pragma once

#include "TamberlinKit/Markup/XMLScan.h"
#include "TamberlinKit/Readers/XlsxStrings.h"
#include "TamberlinKit/Text/Extracted.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Tamberlin {

// What is counted over all sheets of a workbook.
struct WorkbookCounts {
    std::int64_t otherCells = 0; // With numbers, dates, truth values or errors.
    std::int64_t objects = 0;
    std::uint64_t bytes = 0; // Taken by the segments of cells; a shared text can stand in any number of them.
};

// The text in the left, middle and right of a header or footer, without its codes (ISO/IEC
// 29500-1, 18.3.1.46).
std::array<std::string, 3> headerSections(std::string_view written);

// Gathers the texts of one sheet (SpreadsheetML) as its events go by.
class SheetText {
public:
    SheetText(std::vector<Segment>& segments, WorkbookCounts& counts, const SharedStrings& strings,
        bool isHidden, std::string_view workbook);

    void start(std::string_view element, const XMLScan::Attributes& attributes);
    void end(std::string_view element);
    void text(std::string_view text)
    {
        if (!m_isOpen)
            return;
        m_text += text;
        if (m_cell == Cell::shared)
            m_strings.prefetch(m_text);
    }

private:
    enum class Cell { none, number, shared, text, inlined };

    void startCell(const XMLScan::Attributes& attributes);
    void hideColumns(const XMLScan::Attributes& attributes);
    void endCell();
    void endHeader(std::string_view element);

    std::vector<Segment>& m_segments;
    WorkbookCounts& m_counts;
    const SharedStrings& m_strings;
    bool m_isHidden;
    std::string_view m_workbook; // The name for the user.
    RunText m_run;
    std::vector<bool> m_hiddenColumns; // As far as any is hidden.
    std::size_t m_column = 0;
    bool m_isRowHidden = false;
    bool m_isCustomView = false;
    Cell m_cell = Cell::none;
    bool m_isOpen = false; // Text belongs to a value or a header.
    bool m_hasEven = false, m_hasFirst = false; // Whether these headers and footers are in use.
    std::string m_text;
};

} // namespace Tamberlin
