#pragma once

#include "PallisandeKit/Analyses/DelimitedTable.h"
#include "PallisandeKit/Analyses/ReportTally.h"

#include <optional>
#include <string_view>

namespace Pallisande {

// memoQ's statistics as they were displayed: a page of blocks, each with a heading, a scope and a row a
// category. The first block is of everything; with results for each file, the same words come again in blocks
// of their own. Other blocks repeat the totals by status and are passed over.
class MemoQDisplayed {
public:
    static bool recognizes(const DelimitedTable& table);

    explicit MemoQDisplayed(const DelimitedTable& table)
        : m_table(table)
    {
    }

    void read(Analysis& analysis, ReportTally& tally);

private:
    struct Block;

    static std::optional<Block> findBlock(const DelimitedTable& table, std::size_t from, std::size_t end);
    template <typename Visit>
    static void forEachBlock(const DelimitedTable& table, std::size_t end, Visit visit);

    void learn(const Block& block);
    AnalysisRow row(const Block& block, ReportTally& tally) const;
    BandLabel labelOf(const Block& block, std::size_t line) const;

    const DelimitedTable& m_table;
    CountColumn m_segments, m_words, m_characters;
};

} // namespace Pallisande
