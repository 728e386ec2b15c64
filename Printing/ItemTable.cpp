#include "Printing/ItemTable.h"

#include <algorithm>
#include <numeric>

namespace Pallisande {

namespace {

using Side = TypeStyle::Side;

constexpr double padding = millimetres(1); // Above and below the text of a row.
constexpr double belowHead = millimetres(1);
constexpr double ruleThickness = points(0.5);
constexpr double mostForFigures = 0.7; // Of the table's width.
constexpr double mostForUnit = millimetres(25); // It can be broken between words, which figures can’t.

constexpr TypeStyle textStyle { .size = 9 };
constexpr TypeStyle figureStyle { .size = 9, .side = Side::right };
constexpr TypeStyle detailStyle { .size = 8, .colour = mutedInk };
constexpr TypeStyle headStyle { .size = 8, .colour = mutedInk };
constexpr TypeStyle figureHeadStyle { .size = 8, .colour = mutedInk, .side = Side::right };
constexpr TypeStyle carriedStyle { .size = 9, .colour = mutedInk };
constexpr TypeStyle carriedFigureStyle { .size = 9, .colour = mutedInk, .side = Side::right };

double rowHeight(const Bands& bands) { return bands.empty() ? 0 : bands.height() + 2 * padding; }

} // namespace

ItemTable::ItemTable(const Tamberlin::PrintedDocument& document, TypeSetter& setter, const PaperSheet& sheet)
    : m_sheet(sheet)
{
    const auto& heads = document.heads;
    const Cells headCells { setter.set(heads.description, headStyle),
        setter.set(heads.quantity, figureHeadStyle), setter.set(heads.unit, headStyle),
        setter.set(heads.price, figureHeadStyle), setter.set(heads.amount, figureHeadStyle) };
    std::vector<Cells> cells { headCells };
    std::vector<SetText> sums;
    for (const auto& row : document.rows) {
        cells.push_back({ setter.set(row.title, textStyle), setter.set(row.quantity, figureStyle),
            setter.set(row.unit, textStyle), setter.set(row.price, figureStyle),
            setter.set(row.amount, figureStyle) });
        sums.push_back(setter.set(row.sumSoFar, carriedFigureStyle));
    }
    arrangeColumns(cells, sums);

    m_head = headBands(headCells);
    m_headHeight = m_head.height() + belowHead + ruleThickness + padding;
    for (std::size_t index = 0; index < document.rows.size(); ++index) {
        Row row { .bands = bands(cells[index + 1], setter.set(document.rows[index].detail, detailStyle)) };
        if (sums[index].lineCount() > 0) {
            row.carried
                = bands({ setter.set(document.carriedForward, carriedStyle), {}, {}, {}, sums[index] });
            row.brought
                = bands({ setter.set(document.broughtForward, carriedStyle), {}, {}, {}, sums[index] });
        }
        m_rows.push_back(std::move(row));
    }
}

// The figures get the width that the widest needs, the description what is left. Where figures would take too
// much, the widest columns give way and break their texts.
void ItemTable::arrangeColumns(const std::vector<Cells>& rows, const std::vector<SetText>& sums)
{
    constexpr std::array<double, columnCount> gaps { 0, millimetres(5), millimetres(2), millimetres(5),
        millimetres(5) };
    std::array<double, columnCount> widths {};
    for (const auto& cells : rows) {
        for (std::size_t column = quantity; column < columnCount; ++column)
            widths[column] = std::max(widths[column], cells[column].naturalWidth());
    }
    for (const auto& sum : sums)
        widths[amount] = std::max(widths[amount], sum.naturalWidth());
    widths[unit] = std::min(widths[unit], mostForUnit);

    std::array<std::size_t, columnCount - 1> narrowestFirst { quantity, unit, price, amount };
    std::sort(narrowestFirst.begin(), narrowestFirst.end(),
        [&](std::size_t left, std::size_t right) { return widths[left] < widths[right]; });
    double remaining = (m_sheet.right - m_sheet.left) * mostForFigures;
    double columnsLeft = narrowestFirst.size();
    for (const auto column : narrowestFirst) {
        if (widths[column] > 0) // One more, so that rounding never breaks the widest.
            widths[column] = std::min(widths[column] + 1, remaining / columnsLeft - gaps[column]);
        remaining -= widths[column] > 0 ? widths[column] + gaps[column] : 0;
        --columnsLeft;
    }

    double right = m_sheet.right;
    for (std::size_t column = amount; column >= quantity; --column) {
        m_places[column] = { right - widths[column], widths[column] };
        right -= widths[column] > 0 ? widths[column] + gaps[column] : 0;
    }
    m_places[description] = { m_sheet.left, right + gaps[quantity] - millimetres(5) - m_sheet.left };
}

Bands ItemTable::bands(Cells cells, SetText detail) const
{
    Bands bands;
    for (std::size_t column = 0; column < columnCount; ++column) {
        cells[column].breakAt(m_places[column].width);
        bands.add(cells[column], m_places[column].left);
    }
    detail.breakAt(m_places[description].width);
    bands.add(detail, m_places[description].left, static_cast<std::size_t>(cells[description].lineCount()));
    return bands;
}

// Heads of several lines end at the same height.
Bands ItemTable::headBands(Cells heads) const
{
    int most = 0;
    for (std::size_t column = 0; column < columnCount; ++column) {
        heads[column].breakAt(m_places[column].width);
        most = std::max(most, heads[column].lineCount());
    }
    Bands bands;
    for (std::size_t column = 0; column < columnCount; ++column)
        bands.add(
            heads[column], m_places[column].left, static_cast<std::size_t>(most - heads[column].lineCount()));
    return bands;
}

Spot ItemTable::placeHead(PageFlow& flow, Spot spot) const
{
    spot = flow.place(m_head, spot);
    spot.y += belowHead;
    flow.rule(spot, m_sheet.left, m_sheet.right, ruleThickness, ink);
    spot.y += ruleThickness + padding;
    return spot;
}

Spot ItemTable::placeRow(PageFlow& flow, const Bands& bands, Spot spot) const
{
    if (bands.empty())
        return spot;
    spot.y += padding;
    for (std::size_t index = 0; index < bands.size(); ++index) {
        if (bands[index].height() > flow.room(spot)) // Only in a row that is higher than a page.
            spot = nextPage(flow, spot);
        spot = flow.place(bands[index], spot);
    }
    spot.y += padding;
    return spot;
}

// Heads that take up much of a page, which only a mistake makes, stand once.
Spot ItemTable::nextPage(PageFlow& flow, Spot spot) const
{
    spot = flow.nextPage(spot);
    return m_headHeight > flow.wholeRoom() / 4 ? spot : placeHead(flow, spot);
}

double ItemTable::neededFor(const PageFlow& flow, std::size_t index, double following) const
{
    const double height = rowHeight(m_rows[index].bands);
    if (index + 1 < m_rows.size())
        return height + rowHeight(m_rows[index].carried);
    const bool canStayTogether = m_headHeight + height + following <= flow.wholeRoom();
    return height + (canStayTogether ? following : 0);
}

double ItemTable::firstHeight(const PageFlow& flow, double following) const
{
    return m_headHeight + (m_rows.empty() ? following : neededFor(flow, 0, following));
}

Spot ItemTable::place(PageFlow& flow, Spot spot, double following) const
{
    spot = placeHead(flow, spot);
    for (std::size_t index = 0; index < m_rows.size(); ++index) {
        if (index > 0 && neededFor(flow, index, following) > flow.room(spot)) {
            const Row& previous = m_rows[index - 1];
            if (rowHeight(previous.carried) <= flow.room(spot))
                placeRow(flow, previous.carried, spot);
            spot = placeRow(flow, previous.brought, nextPage(flow, spot));
        }
        spot = placeRow(flow, m_rows[index].bands, spot);
    }
    return spot;
}

} // namespace Pallisande
