#include "Base/Text.h"
#include "PallisandeKit/Analyses/BandAliases.h"
#include "PallisandeKit/Analyses/ImportResult.h"
#include "PallisandeKit/Analyses/MappedTable.h"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_map>
#include <utility>

namespace Pallisande {

namespace {

using Row = DelimitedTable::Row;

// A part of the report with headings of its own.
struct Block {
    struct Line {
        std::size_t label = 0; // In the mapping.
        ReportFigures figures;
    };

    AnalysisRow row;
    bool hasFile = false; // Its lines name the file, not only its title.
    bool isTotal = false; // Its title says that it sums up the others.
    std::int64_t words = 0; // As it states them, or those of its bands.
    std::vector<Line> lines;
};

bool isCalledTotal(std::string_view cell)
{
    constexpr std::size_t longest = 100;
    return cell.size() <= longest && BandAliases::label(cell).kind == BandLabel::Kind::total;
}

// The file's name in "File;name;Target language;…" or "File 3: name".
std::string titleOf(const Row& title)
{
    constexpr std::size_t longest = 1000; // Bytes; a path has fewer.
    const auto shortened = [](std::string_view cell) {
        return cell.size() > longest ? Base::firstBytes(cell, longest) : cell;
    };
    const auto first = shortened(title[0]);
    if (!title[1].empty() && BandLabel::of(first).kind == BandLabel::Kind::other)
        return std::string(shortened(title[1]));
    for (const std::string_view colon : { ":", "：" }) {
        const auto at = first.find(colon);
        if (at != first.npos && at > 0 && first[at - 1] >= '0' && first[at - 1] <= '9'
            && at + colon.size() < first.size())
            return std::string(Base::trimmed(first.substr(at + colon.size())));
    }
    return std::string(first);
}

class BlockReader {
public:
    explicit BlockReader(MappedTable& mapped)
        : m_mapped(mapped)
    {
        for (std::size_t place = 0; place < mapped.mapping.labels.size(); ++place)
            m_labels.emplace(mapped.mapping.labels[place].label, place);
    }

    void read()
    {
        const auto& table = m_mapped.table;
        const auto& headings = m_mapped.headings;
        start(headings.firstRow);
        for (auto place = headings.firstRow; place < table.size(); ++place) {
            const auto cells = table[place];
            if (headings.areRepeatedIn(cells)) {
                start(place + 1);
                continue;
            }
            const bool isTitle = place + 1 < table.size() && headings.areRepeatedIn(table[place + 1]);
            if (!isTitle)
                take(cells, place);
        }
        std::erase_if(m_blocks, [](const Block& block) { return block.lines.empty(); });
        for (auto& block : m_blocks)
            settle(block);
        leaveOutTotals();
        lookAtLeftOut();
        for (std::size_t place = 0; place < m_blocks.size(); ++place)
            keep(m_blocks[place],
                m_blocks.size() == 1 ? m_mapped.analysis.name : fmt::format("Block {}", place + 1));
    }

private:
    // A block begins below its headings; the line above them names it.
    void start(std::size_t firstRow)
    {
        constexpr std::size_t widest = 16;
        auto& block = m_blocks.emplace_back();
        if (firstRow >= 1) {
            const auto headings = m_mapped.table[firstRow - 1];
            // "Total" over the files' column, where others have "File".
            block.isTotal = m_mapped.file && isCalledTotal(headings[*m_mapped.file]);
        }
        if (firstRow >= 2) {
            const auto title = m_mapped.table[firstRow - 2];
            for (std::size_t column = 0; column < std::min(title.size(), widest); ++column)
                block.isTotal = block.isTotal || isCalledTotal(title[column]);
            block.row.file = titleOf(title);
        }
    }

    void take(const Row& cells, std::size_t place)
    {
        const auto counted = reached(m_mapped.counted, cells);
        const auto label = m_labels.find(cells[*m_mapped.labels]);
        const bool hasNumbers = std::any_of(counted.begin(), counted.end(),
            [&](const auto& source) { return isNumber(cells[source.column]); });
        if (!hasNumbers && label == m_labels.end())
            return; // A line of text.
        if (label == m_labels.end())
            throw ImportError(fmt::format("The mapping doesn’t say what “{}” is, in line {} of “{}”.",
                Base::firstCharacters(cells[*m_mapped.labels], 100), place + 1, m_mapped.analysis.name));
        ReportFigures figures;
        for (const auto& source : counted)
            addTo(figure(figures, source.metric), m_mapped.tally.read(source.numbers, cells[source.column]));
        if (++m_lineCount > mostReportRows)
            throw ImportError::tooManyFiles(m_mapped.analysis.name);
        auto& block = m_blocks.back();
        block.lines.push_back({ label->second, figures });
        if (m_mapped.file && !cells[*m_mapped.file].empty() && !std::exchange(block.hasFile, true))
            block.row.file = cells[*m_mapped.file];
    }

    void settle(Block& block) const
    {
        BandCounts counts;
        for (const auto& [place, figures] : block.lines) {
            const auto& label = m_mapped.mapping.labels[place];
            if (label.role == ColumnRole::band)
                addCount(counts.words[*label.band], figures.words.value_or(0));
            else if (label.role == ColumnRole::total && !block.row.statedWords)
                ReportTally::setStated(block.row, figures);
        }
        block.words = block.row.statedWords.value_or(wordSum(counts));
    }

    // A block that sums up the others, by its title or its words, isn't counted again.
    void leaveOutTotals()
    {
        const auto isTotal = [](const Block& block) { return block.isTotal; };
        auto total = std::find_if(m_blocks.begin(), m_blocks.end(), isTotal);
        if (total != m_blocks.end() && !std::all_of(m_blocks.begin(), m_blocks.end(), isTotal)) {
            m_mapped.analysis.statedTotalWords = total->words;
            std::erase_if(m_blocks, isTotal);
            return;
        }
        if (m_blocks.size() < 2)
            return;
        std::int64_t sum = 0;
        for (const auto& block : m_blocks)
            addCount(sum, block.words);
        const auto isSum
            = [&](const Block& block) { return block.words > 0 && block.words == sum - block.words; };
        total = isSum(m_blocks.front()) ? m_blocks.begin() : m_blocks.end() - 1;
        if (!isSum(*total))
            return;
        m_mapped.analysis.statedTotalWords = total->words;
        m_mapped.analysis.notes.push_back(TextNote {
            fmt::format("“{}” has the words of all others together and was left out.", total->row.file) });
        m_blocks.erase(total);
    }

    void keep(Block& block, const std::string& otherName)
    {
        auto& row = m_mapped.analysis.rows.emplace_back(std::move(block.row));
        row.id = Base::Uuid::random();
        if (row.file.empty() || block.isTotal)
            row.file = otherName;
        for (const auto& [place, figures] : block.lines) {
            const auto& [label, role, band] = m_mapped.mapping.labels[place];
            if (role == ColumnRole::band)
                m_mapped.tally.add(row, mappedBand(*band, BandAliases::label(label)), label, figures);
            else if (role == ColumnRole::notBilled)
                m_mapped.tally.add(row, { .kind = BandLabel::Kind::ignored }, label, figures);
        }
    }

    // Labels that aren't counted but stand beside figures.
    void lookAtLeftOut()
    {
        const auto& labels = m_mapped.mapping.labels;
        std::vector<bool> hasWords(labels.size());
        for (const auto& block : m_blocks) {
            for (const auto& [place, figures] : block.lines)
                hasWords[place] = hasWords[place] || figures.words.value_or(0) != 0;
        }
        std::vector<std::string> names;
        for (std::size_t place = 0; place < labels.size(); ++place) {
            const auto role = labels[place].role;
            const bool isRead
                = role == ColumnRole::band || role == ColumnRole::total || role == ColumnRole::notBilled;
            if (!isRead && hasWords[place])
                names.push_back(labels[place].label);
        }
        m_mapped.noteLeftOut(names);
    }

    MappedTable& m_mapped;
    std::unordered_map<std::string_view, std::size_t> m_labels; // Places in the mapping.
    std::vector<Block> m_blocks;
    std::size_t m_lineCount = 0;
};

} // namespace

void readMappedBlocks(MappedTable& mapped) { BlockReader(mapped).read(); }

} // namespace Pallisande
