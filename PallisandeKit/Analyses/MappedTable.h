#pragma once

#include "PallisandeKit/Analyses/ColumnHeadings.h"
#include "PallisandeKit/Analyses/ColumnMapping.h"
#include "PallisandeKit/Analyses/ReportTally.h"

#include <algorithm>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Pallisande {

// A table and what the user said of its columns, ready to be read; the readers of its two shapes share it.
struct MappedTable {
    using Column = std::size_t;

    // A column that holds figures.
    struct Source {
        Column column = 0;
        ColumnRole role = ColumnRole::ignore;
        CountMetric metric = CountMetric::words;
        BandLabel label; // As the tally takes it.
        std::string heading;
        CountColumn numbers = {};
    };

    const DelimitedTable& table;
    const ColumnMapping& mapping;
    ColumnHeadings headings;
    std::optional<Column> file, labels;
    std::vector<Source> counted, leftOut; // By column.
    Analysis analysis;
    ReportTally tally;

    // Throws ImportError when the mapping doesn't fit the table.
    MappedTable(const DelimitedTable& table, const ColumnMapping& mapping, const std::string& name);

    // Adds the note on figures that the mapping leaves out.
    void noteLeftOut(const std::vector<std::string>& names);

private:
    void takeColumns();
    void learnNumbers();
};

// Those of the sources whose column a line reaches, so that short lines under many headings cost little.
inline std::span<const MappedTable::Source> reached(
    const std::vector<MappedTable::Source>& sources, const DelimitedTable::Row& cells)
{
    auto count = std::min(sources.size(), cells.size()); // A column stands at its place or further right.
    while (count > 0 && sources[count - 1].column >= cells.size())
        --count;
    return { sources.data(), count };
}

// A band as the user mapped it: the label's own, or one that the label is counted with.
BandLabel mappedBand(MatchBand band, const BandLabel& own);

std::optional<std::int64_t>& figure(ReportFigures& figures, CountMetric metric);
void addTo(std::optional<std::int64_t>& sum, std::optional<std::int64_t> count);
std::int64_t wordSum(const BandCounts& counts); // May be absurd still.

// Reads a table whose bands stand beside each other, a line a file.
void readMappedRows(MappedTable& mapped);
// Reads a table whose bands stand below each other, a block of lines a file.
void readMappedBlocks(MappedTable& mapped);

} // namespace Pallisande
