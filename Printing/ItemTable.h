#pragma once

#include "Printing/PageFlow.h"
#include "TamberlinKit/Quotes/PrintedDocument.h"

#include <array>
#include <vector>

namespace Pallisande {

// The table of what is charged. It decides how wide the columns are and where pages end: a row stays in one
// piece, the heads are repeated, and the sum so far is carried over.
class ItemTable {
public:
    ItemTable(const Tamberlin::PrintedDocument& document, TypeSetter& setter, const PaperSheet& sheet);

    // What must stand together at the table’s beginning: head and first row. `following` is the height of
    // what must stay with the last row.
    double firstHeight(const PageFlow& flow, double following) const;
    // Places the table from the spot on.
    Spot place(PageFlow& flow, Spot spot, double following) const;

private:
    enum Column { description, quantity, unit, price, amount, columnCount };
    using Cells = std::array<SetText, columnCount>;
    struct Place {
        double left = 0;
        double width = 0;
    };
    struct Row {
        Bands bands;
        Bands carried; // What stands below the row when the page ends there; may be empty.
        Bands brought; // And what then stands above the next one.
    };

    void arrangeColumns(const std::vector<Cells>& rows, const std::vector<SetText>& sums);
    Bands bands(Cells cells, SetText detail = {}) const;
    Bands headBands(Cells heads) const;

    double neededFor(const PageFlow& flow, std::size_t index, double following) const;
    Spot placeHead(PageFlow& flow, Spot spot) const;
    Spot placeRow(PageFlow& flow, const Bands& bands, Spot spot) const;
    Spot nextPage(PageFlow& flow, Spot spot) const;

    PaperSheet m_sheet;
    std::array<Place, columnCount> m_places;
    Bands m_head;
    double m_headHeight = 0; // With the rule below it.
    std::vector<Row> m_rows;
};

} // namespace Pallisande
