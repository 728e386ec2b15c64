#pragma once

#include "Printing/Page.h"
#include "Printing/PageGeometry.h"
#include "Printing/TypeSetter.h"

#include <cstddef>
#include <vector>

namespace Pallisande {

// A height on one of the pages.
struct Spot {
    std::size_t page = 0;
    double y = 0;

    auto operator<=>(const Spot&) const = default;
};

// The pages of a document while they are filled. What doesn’t fit goes on at the top of the next page, so
// nothing is ever lost or drawn over something else, however long a text is.
class PageFlow {
public:
    // `bodyBottom` is where the footer begins.
    PageFlow(const PaperSheet& sheet, double bodyBottom);

    double room(const Spot& spot) const { return m_bottom - spot.y; }
    double wholeRoom() const { return m_bottom - m_sheet.top; }
    bool isFresh(const Spot& spot) const { return spot.y <= m_sheet.top; }
    Spot nextPage(const Spot& spot);

    // Places bands one below the other and gives the spot below the last. A band that is higher than a page
    // stands on one all the same.
    Spot place(const Bands& bands, Spot spot);
    Spot place(const Band& band, Spot spot);
    // The same for a paragraph: leaves no single line of it on either page where there are more.
    Spot placeParagraph(const Bands& bands, Spot spot);
    // Puts a band exactly there: what doesn’t belong to the body.
    void put(const Band& band, const Spot& spot);
    void rule(const Spot& spot, double left, double right, double thickness, QRgb colour);

    std::vector<Page>& pages() { return m_pages; }

private:
    PaperSheet m_sheet;
    double m_bottom;
    std::vector<Page> m_pages { 1 };
};

} // namespace Pallisande
