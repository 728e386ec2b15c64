#pragma once

#include "PallisandeKit/Analyses/DelimitedTable.h"
#include "PallisandeKit/Analyses/ReportTally.h"

#include <array>
#include <optional>
#include <string_view>
#include <vector>

namespace Pallisande {

// A report of a line per file under two lines of headings, the bands over what is counted of each. memoQ
// exports two layouts of it, Phrase one, which differ in small things: columns are found by their names under
// each band.
class BandedReport {
public:
    enum class Layout { allInformation, tradosCompatible };

    struct Languages {
        std::string_view source, target; // Empty when the file's cell doesn't say.
    };
    using LanguagesOf = Languages (*)(std::string_view file);

    // Nothing when the table has no such headings, or one of a band that isn't known. Refers to the table.
    static std::optional<BandedReport> find(const DelimitedTable& table);

    Layout layout() const { return m_layout; }
    std::string_view firstFile() const; // The cell; empty when the report has no files.

    // Adds the rows. Where no column shows what a mark in its numbers means, it is what `example` shows.
    void read(
        Analysis& analysis, ReportTally& tally, LanguagesOf languagesOf, const CountColumn& example) const;

private:
    static constexpr std::size_t metrics = 3; // Segments, words and characters.

    struct Block {
        BandLabel label;
        std::string_view text;
        std::size_t start = 0; // Its first column.
        std::array<std::optional<std::size_t>, metrics> columns;
    };
    using Numbers = std::vector<std::array<CountColumn, metrics>>; // By block.

    BandedReport(const DelimitedTable& table, Layout layout)
        : m_table(&table)
        , m_layout(layout)
    {
    }

    bool findBlocks(std::size_t bandLine, std::size_t metricLine);
    Numbers learnNumbers(const CountColumn& example) const;

    const DelimitedTable* m_table;
    Layout m_layout;
    std::vector<Block> m_blocks;
    std::size_t m_firstRow = 0;
};

} // namespace Pallisande
