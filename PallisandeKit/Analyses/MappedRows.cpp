#include "PallisandeKit/Analyses/BandAliases.h"
#include "PallisandeKit/Analyses/ImportResult.h"
#include "PallisandeKit/Analyses/MappedTable.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

namespace Pallisande {

namespace {

using Words = BandMap<std::int64_t>;
using Row = DelimitedTable::Row;

void addWords(Words& sums, const Words& words)
{
    words.forEach([&](MatchBand band, std::int64_t count) { addCount(sums[band], count); });
}

// False for what is known to be something else: percentages, characters, tags, a ratio.
bool mayBeWords(std::string_view heading)
{
    const auto split = BandAliases::split(heading);
    if (split.metric || split.label.kind == BandLabel::Kind::other)
        return split.metric == BandLabel::Metric::words;
    constexpr std::string_view others[] { "% segment", "tags", "placeables", "codes" };
    return std::none_of(std::begin(others), std::end(others),
        [&](std::string_view other) { return split.text.ends_with(other); });
}

class RowReader {
public:
    explicit RowReader(MappedTable& mapped)
        : m_mapped(mapped)
    {
    }

    void read()
    {
        auto& rows = m_mapped.analysis.rows;
        for (auto place = m_mapped.headings.firstRow; place < m_mapped.table.size(); ++place) {
            const auto cells = m_mapped.table[place];
            if (cells.size() == 0 || m_mapped.headings.areRepeatedIn(cells))
                continue;
            const auto file = m_mapped.file ? cells[*m_mapped.file] : std::string_view();
            const auto line = figures(cells);
            if (!line.hasCounts && (file.empty() || !line.hasTexts))
                continue;
            if (!rows.empty() && isTotal(cells, line))
                continue;
            if (rows.size() == mostReportRows)
                throw ImportError::tooManyFiles(m_mapped.analysis.name);
            keep(cells, line, file.empty() ? fmt::format("Line {}", place + 1) : std::string(file));
        }
        if (!m_mapped.file && rows.size() == 1)
            rows.front().file = m_mapped.analysis.name;
        stateTotal();
        std::vector<std::string> leftOut;
        for (const auto& [column, heading] : m_leftOut)
            leftOut.push_back(heading);
        m_mapped.noteLeftOut(leftOut);
    }

private:
    // What a line holds, before it is known whether it is a file's.
    struct Line {
        bool hasCounts = false, hasTexts = false; // In the columns that are counted.
        Words words;
        ReportFigures stated;
    };

    // A line that sums up files.
    struct Total {
        std::int64_t words = 0;
        bool isSumOfGroup = false; // Of the files since the total before.
    };

    Line figures(const Row& cells) const
    {
        Line line;
        for (const auto& source : reached(m_mapped.counted, cells)) {
            const auto cell = cells[source.column];
            const auto count = cell.empty() ? std::nullopt : source.numbers.read(cell);
            line.hasTexts = line.hasTexts || !cell.empty();
            line.hasCounts = line.hasCounts || count;
            if (!count)
                continue;
            if (source.role == ColumnRole::total)
                addTo(figure(line.stated, source.metric), count->value);
            else if (source.role == ColumnRole::band && source.metric == CountMetric::words)
                addCount(line.words[source.label.band], count->value);
        }
        return line;
    }

    // Whether a line sums up those above: it is called a total, or has their words and a name like
    // "Italian (Italy) Total".
    bool isTotal(const Row& cells, const Line& line)
    {
        constexpr std::size_t longest = 100;
        bool isCalledTotal = false, isCalledLikeIt = false;
        const auto look = [&](std::string_view cell) {
            if (cell.empty() || cell.size() > longest)
                return;
            const auto name = BandLabel::normalized(cell);
            isCalledTotal = isCalledTotal || BandAliases::label(name).kind == BandLabel::Kind::total;
            isCalledLikeIt = isCalledLikeIt || name.ends_with(" total") || name.starts_with("total ");
        };
        if (m_mapped.file && !cells[*m_mapped.file].empty()) {
            look(cells[*m_mapped.file]);
        } else {
            for (const auto& source : reached(m_mapped.leftOut, cells))
                look(cells[source.column]);
        }
        const bool isSumOfGroup = line.words == m_wordsOfGroup;
        if (!isCalledTotal && !(isCalledLikeIt && (isSumOfGroup || line.words == m_words)))
            return false;
        std::int64_t sum = 0;
        line.words.forEach([&](MatchBand, std::int64_t words) { addCount(sum, words); });
        m_totals.push_back({ line.stated.words.value_or(sum), isSumOfGroup });
        m_wordsOfGroup.clear();
        return true;
    }

    void keep(const Row& cells, const Line& line, std::string file)
    {
        addWords(m_words, line.words);
        addWords(m_wordsOfGroup, line.words);
        auto& row = m_mapped.analysis.rows.emplace_back();
        row.id = Base::Uuid::random();
        row.file = std::move(file);
        for (const auto& source : reached(m_mapped.counted, cells)) {
            const auto count = m_mapped.tally.read(source.numbers, cells[source.column]);
            if (!count || source.role == ColumnRole::total)
                continue;
            ReportFigures figures;
            figure(figures, source.metric) = count;
            m_mapped.tally.add(row, source.label, source.heading, figures);
        }
        ReportTally::setStated(row, line.stated);
        lookAtLeftOut(cells);
    }

    // Columns that aren't counted but hold figures; what is known not to be words needs no note.
    void lookAtLeftOut(const Row& cells)
    {
        auto& sources = m_mapped.leftOut;
        for (auto place = reached(sources, cells).size(); place-- > 0;) {
            const auto& source = sources[place];
            const auto count = source.numbers.read(cells[source.column]);
            if (!count || count->value == 0)
                continue;
            if (mayBeWords(source.heading))
                m_leftOut.insert({ source.column, source.heading });
            sources.erase(sources.begin() + static_cast<std::ptrdiff_t>(place)); // Needs no second look.
        }
    }

    // The total of all files: the last one stated, or the sum of those of groups.
    void stateTotal()
    {
        if (m_totals.empty())
            return;
        std::int64_t sum = 0;
        for (const auto& total : m_totals)
            addCount(sum, total.words);
        const bool areGroups = std::all_of(
            m_totals.begin(), m_totals.end(), [](const Total& total) { return total.isSumOfGroup; });
        m_mapped.analysis.statedTotalWords = areGroups ? sum : m_totals.back().words;
    }

    MappedTable& m_mapped;
    Words m_words, m_wordsOfGroup; // Of the files so far, and of those since the last total.
    std::vector<Total> m_totals;
    std::map<std::size_t, std::string> m_leftOut; // Headings, by column.
};

} // namespace

void readMappedRows(MappedTable& mapped) { RowReader(mapped).read(); }

} // namespace Pallisande
