#include "Printing/PageFlow.h"

#include <algorithm>
#include <utility>

namespace Pallisande {

PageFlow::PageFlow(const PaperSheet& sheet, double bodyBottom)
    : m_sheet(sheet)
    , m_bottom(bodyBottom)
{
}

Spot PageFlow::nextPage(const Spot& spot)
{
    if (spot.page + 1 == m_pages.size())
        m_pages.emplace_back();
    return { spot.page + 1, m_sheet.top };
}

Spot PageFlow::place(const Band& band, Spot spot)
{
    if (band.height() > room(spot) && !isFresh(spot))
        spot = nextPage(spot);
    put(band, spot);
    spot.y += band.height();
    return spot;
}

void PageFlow::put(const Band& band, const Spot& spot)
{
    for (auto line : band.lines) {
        line.baseline = spot.y + band.above;
        m_pages[spot.page].lines.push_back(std::move(line));
    }
}

Spot PageFlow::place(const Bands& bands, Spot spot)
{
    for (std::size_t index = 0; index < bands.size(); ++index)
        spot = place(bands[index], spot);
    return spot;
}

Spot PageFlow::placeParagraph(const Bands& bands, Spot spot)
{
    for (std::size_t next = 0; next < bands.size();) {
        std::size_t fitting = 0;
        for (double left = room(spot); next + fitting < bands.size(); ++fitting) {
            left -= bands[next + fitting].height();
            if (left < 0)
                break;
        }
        const auto remaining = bands.size() - next;
        if (fitting + 1 == remaining && fitting > 1)
            --fitting;
        if (fitting == 1 && remaining > 1)
            fitting = 0;
        if (fitting == 0 && !isFresh(spot)) {
            spot = nextPage(spot);
            continue;
        }
        for (fitting = std::max<std::size_t>(fitting, 1); fitting > 0; --fitting)
            spot = place(bands[next++], spot);
    }
    return spot;
}

void PageFlow::rule(const Spot& spot, double left, double right, double thickness, QRgb colour)
{
    m_pages[spot.page].rules.push_back({ { left, spot.y, right - left, thickness }, colour });
}

} // namespace Pallisande
