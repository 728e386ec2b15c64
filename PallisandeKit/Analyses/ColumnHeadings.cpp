#include "PallisandeKit/Analyses/ColumnHeadings.h"

#include "Base/Sha256.h"
#include "Base/Text.h"
#include "PallisandeKit/Analyses/BandAliases.h"
#include "PallisandeKit/Analyses/CountColumn.h"

#include <fmt/format.h>

#include <algorithm>

namespace Pallisande {

namespace {

constexpr std::size_t mostLines = 200; // Headings stand above this, and within so many cells.
constexpr std::size_t mostCells = 20'000;
constexpr std::size_t longestHeading = 200; // Bytes.

bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80;
}

std::string_view shortened(std::string_view cell)
{
    return cell.size() > longestHeading ? Base::firstBytes(cell, longestHeading) : cell;
}

} // namespace

// What a line holds, to tell headings from counts.
struct ColumnHeadings::Line {
    std::size_t known = 0; // Cells that are known headings or labels,
    std::size_t lettered = 0; // those of them with a letter: "100%" could also be a figure,
    std::size_t bands = 0, metrics = 0, numbers = 0, cells = 0;

    bool couldBeHeadings() const
    {
        return known >= 2 && lettered >= 1 && (numbers == 0 || lettered > numbers);
    }
};

ColumnHeadings::Line ColumnHeadings::examined(const DelimitedTable::Row& row, std::size_t& left)
{
    Line line;
    for (std::size_t column = 0; column < row.size() && left > 0; ++column, --left) {
        const auto cell = row[column];
        if (cell.empty() || cell.size() > longestHeading)
            continue;
        ++line.cells;
        if (isNumber(cell)) {
            ++line.numbers;
            continue;
        }
        const auto [label, metric, text] = BandAliases::split(cell);
        if (!metric && label.kind == BandLabel::Kind::unknown)
            continue;
        ++line.known;
        line.lettered += std::any_of(cell.begin(), cell.end(), isLetter) ? 1 : 0;
        line.metrics += metric && text.empty() ? 1 : 0;
        line.bands += label.isBand() || label.kind == BandLabel::Kind::total ? 1 : 0;
    }
    return line;
}

bool isNumber(std::string_view cell) { return CountColumn().read(cell).has_value(); }

std::optional<ColumnHeadings> ColumnHeadings::find(
    const DelimitedTable& table, std::optional<bool> areInFirstLine)
{
    std::vector<Line> lines;
    std::size_t left = mostCells;
    for (std::size_t row = 0; row < std::min(table.size(), mostLines) && left > 0; ++row)
        lines.push_back(examined(table[row], left));
    const auto first
        = std::find_if(lines.begin(), lines.end(), [](const Line& line) { return line.cells >= 2; });
    if (first == lines.end())
        return std::nullopt;
    ColumnHeadings headings;
    const auto firstLine = static_cast<std::size_t>(first - lines.begin());
    if (!areInFirstLine)
        headings.look(table, lines);
    else if (*areInFirstLine)
        headings.take(table, std::nullopt, firstLine);
    else
        headings.number(table, firstLine);
    const bool goesOn = lines.size() == mostLines || left == 0; // Beyond what was examined.
    const auto below = std::min(headings.firstRow, lines.size());
    if (!goesOn
        && std::none_of(lines.begin() + static_cast<std::ptrdiff_t>(below), lines.end(),
            [](const Line& line) { return line.numbers > 0; }))
        return std::nullopt;
    if (headings.names.size() < 2 || headings.names.size() > mostColumns)
        return std::nullopt;
    return headings;
}

void ColumnHeadings::look(const DelimitedTable& table, const std::vector<Line>& lines)
{
    const auto isBetter = [](const Line& one, const Line& other) {
        return (one.couldBeHeadings() ? one.known : 0) < (other.couldBeHeadings() ? other.known : 0);
    };
    const auto best = std::max_element(lines.begin(), lines.end(), isBetter);
    if (best->couldBeHeadings()) {
        const auto line = static_cast<std::size_t>(best - lines.begin());
        const auto holdsMetrics = [](const Line& other) { return other.metrics >= 2 && other.numbers == 0; };
        if (line + 1 < lines.size() && best->bands >= 2 && holdsMetrics(lines[line + 1]))
            take(table, line, line + 1);
        else if (line > 0 && best->metrics >= 2 && lines[line - 1].bands >= 2 && lines[line - 1].numbers == 0)
            take(table, line - 1, line);
        else
            take(table, std::nullopt, line);
        return;
    }
    const auto counts = std::find_if(
        lines.begin(), lines.end(), [](const Line& line) { return line.numbers >= 1 && line.cells >= 2; });
    if (counts == lines.end())
        return;
    const auto line = static_cast<std::size_t>(counts - lines.begin());
    if (line > 0 && lines[line - 1].cells >= 2)
        take(table, std::nullopt, line - 1);
    number(table, line);
}

// Names the columns of a line of counts that have no heading.
void ColumnHeadings::number(const DelimitedTable& table, std::size_t line)
{
    firstRow = line;
    for (auto column = names.size(); column < std::min(table[line].size(), mostColumns + 1); ++column)
        names.push_back(fmt::format("Column {}", column + 1));
}

void ColumnHeadings::take(const DelimitedTable& table, std::optional<std::size_t> bandLine, std::size_t line)
{
    constexpr std::size_t mostKeys = 4;
    const auto row = table[line];
    firstRow = line + 1;
    areInTable = true;
    auto size = std::max(row.size(), bandLine ? table[*bandLine].size() : 0);
    std::string band; // Stands over the columns up to the next one.
    for (std::size_t column = 0; column < std::min(size, mostColumns + 1); ++column) {
        if (bandLine && !table[*bandLine][column].empty())
            band = shortened(table[*bandLine][column]);
        const auto cell = shortened(row[column]);
        const auto [label, metric, text] = BandAliases::split(cell);
        names.push_back(band.empty() || cell.empty() ? std::string(cell) : band + " " + std::string(cell));
        if ((metric || label.isBand()) && !isNumber(cell) && m_keys.size() < mostKeys)
            m_keys.push_back({ column, std::string(cell) });
    }
    while (!names.empty() && names.back().empty())
        names.pop_back();
}

std::string ColumnHeadings::fingerprint() const
{
    std::string text;
    for (const auto& name : names)
        text += BandLabel::normalized(name) + '\n';
    return Base::sha256(text);
}

bool ColumnHeadings::areRepeatedIn(const DelimitedTable::Row& row) const
{
    return !m_keys.empty() && std::all_of(m_keys.begin(), m_keys.end(), [&](const Key& key) {
        return shortened(row[key.column]) == key.text;
    });
}

} // namespace Pallisande
