#include "PallisandeKit/Analyses/ColumnMapping.h"

#include "Base/Text.h"
#include "PallisandeKit/Analyses/BandAliases.h"
#include "PallisandeKit/Analyses/ColumnHeadings.h"
#include "PallisandeKit/Analyses/ImportResult.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <set>

namespace Pallisande {

namespace {

using Kind = BandLabel::Kind;
using Metric = BandLabel::Metric;

constexpr std::size_t sampleRows = 20, sampleCharacters = 100;
constexpr std::size_t examinedRows = 500; // By which a column is judged.
constexpr std::size_t mostLabels = 500;

std::optional<CountMetric> countMetric(std::optional<Metric> metric)
{
    if (metric == Metric::words)
        return CountMetric::words;
    if (metric == Metric::segments)
        return CountMetric::segments;
    return metric == Metric::characters ? std::optional(CountMetric::characters) : std::nullopt;
}

bool namesFiles(std::string_view heading)
{
    constexpr std::string_view names[] { "file", "file name", "filename", "name", "document", "documents",
        "datei", "dateiname", "archivo", "nombre", "fichier", "documento", "asset" };
    return std::find(std::begin(names), std::end(names), BandLabel::normalized(heading)) != std::end(names);
}

// What a column holds by its heading alone. A bare "Words" is left open (`counts`).
MappedColumn byHeading(const std::string& heading)
{
    const auto split = BandAliases::split(heading);
    const auto& label = split.label; // Not bound at once: Clang 14 can't capture that.
    const auto metric = split.metric;
    MappedColumn column { .heading = heading };
    const auto be = [&](ColumnRole role) {
        column.role = role;
        column.metric = metric ? countMetric(metric) : std::optional(CountMetric::words);
    };
    if (metric && !countMetric(metric))
        return column;
    if (label.isBand()) {
        be(ColumnRole::band);
        column.band = label.band;
    } else if (label.kind == Kind::total) {
        be(ColumnRole::total);
    } else if (metric && split.text.empty()) {
        be(ColumnRole::counts);
    } else if (label.kind == Kind::ignored || (label.kind == Kind::unknown && metric == Metric::words)) {
        be(ColumnRole::notBilled);
    }
    return column;
}

class Guess {
public:
    Guess(const DelimitedTable& table, ColumnHeadings headings)
        : m_table(table)
        , m_headings(std::move(headings))
    {
        for (const auto& name : m_headings.names)
            m_mapping.columns.push_back(byHeading(name));
        m_mapping.fingerprint = m_headings.fingerprint();
    }

    ColumnMapping made()
    {
        const bool hasBands = std::any_of(m_mapping.columns.begin(), m_mapping.columns.end(),
            [](const MappedColumn& column) { return column.role == ColumnRole::band; });
        const auto labels = hasBands ? std::nullopt : labelColumn();
        if (labels)
            bandsInRows(*labels);
        else
            bandsInColumns();
        return std::move(m_mapping);
    }

    std::vector<MappedLabel> labelsOf(const ColumnMapping& given)
    {
        const auto column = std::find_if(given.columns.begin(), given.columns.end(),
            [](const MappedColumn& mapped) { return mapped.role == ColumnRole::label; });
        if (column == given.columns.end() || given.columns.size() != m_mapping.columns.size())
            return {};
        m_mapping.columns = given.columns;
        auto labels = labelsIn(static_cast<Column>(column - given.columns.begin()));
        for (auto& label : labels) {
            const auto known = std::find_if(given.labels.begin(), given.labels.end(),
                [&](const MappedLabel& other) { return other.label == label.label; });
            if (known != given.labels.end())
                label = *known;
        }
        return labels;
    }

private:
    using Column = std::size_t;

    template <typename Visit> void forSomeRows(Visit visit) const
    {
        const auto end = std::min(m_table.size(), m_headings.firstRow + examinedRows);
        for (auto row = m_headings.firstRow; row < end; ++row)
            visit(m_table[row]);
    }

    // The column with the most different labels of bands, two at least.
    std::optional<Column> labelColumn() const
    {
        constexpr std::size_t mostExamined = 16;
        std::vector<std::set<MatchBand>> bands(std::min(m_mapping.columns.size(), mostExamined));
        forSomeRows([&](const auto& row) {
            for (Column column = 0; column < bands.size(); ++column) {
                const auto label = row[column].size() > 100 ? BandLabel() : BandAliases::label(row[column]);
                if (label.isBand() && !isNumber(row[column]))
                    bands[column].insert(label.band);
            }
        });
        const auto best = std::max_element(bands.begin(), bands.end(),
            [](const auto& left, const auto& right) { return left.size() < right.size(); });
        return best->size() >= 2 ? std::optional(static_cast<Column>(best - bands.begin())) : std::nullopt;
    }

    // Of columns with the same meaning the first is taken.
    void keepFirst(ColumnRole role)
    {
        std::set<CountMetric> seen;
        for (auto& column : m_mapping.columns) {
            if (column.role == role && !seen.insert(*column.metric).second)
                column = { .heading = column.heading };
        }
    }

    // A bare "Words" beside bands is the total, unless it comes several times.
    void bandsInColumns()
    {
        std::map<CountMetric, std::size_t> bare;
        for (const auto& column : m_mapping.columns)
            bare[column.metric.value_or(CountMetric::words)]
                += column.role == ColumnRole::counts || column.role == ColumnRole::total ? 1 : 0;
        for (auto& column : m_mapping.columns) {
            if (column.role == ColumnRole::counts && bare[*column.metric] == 1)
                column.role = ColumnRole::total;
            else if (column.role == ColumnRole::counts)
                column = { .heading = column.heading };
        }
        keepFirst(ColumnRole::total);
        if (const auto column = fileColumn())
            m_mapping.columns[*column].role = ColumnRole::file;
    }

    void bandsInRows(Column labels)
    {
        for (auto& column : m_mapping.columns) {
            if (column.role != ColumnRole::counts)
                column = { .heading = column.heading };
        }
        keepFirst(ColumnRole::counts);
        m_mapping.columns[labels]
            = { .heading = m_mapping.columns[labels].heading, .role = ColumnRole::label };
        if (!hasCounts())
            firstNumbersAreWords();
        if (labels > 0)
            m_mapping.columns[labels - 1]
                = { .heading = m_mapping.columns[labels - 1].heading, .role = ColumnRole::file };
        m_mapping.labels = labelsIn(labels);
    }

    bool hasCounts() const
    {
        return std::any_of(m_mapping.columns.begin(), m_mapping.columns.end(),
            [](const MappedColumn& column) { return column.role == ColumnRole::counts; });
    }

    void firstNumbersAreWords()
    {
        for (Column place = 0; place < m_mapping.columns.size(); ++place) {
            bool hasNumbers = false;
            forSomeRows([&](const auto& row) { hasNumbers = hasNumbers || isNumber(row[place]); });
            if (hasNumbers && m_mapping.columns[place].role != ColumnRole::label) {
                m_mapping.columns[place].role = ColumnRole::counts;
                m_mapping.columns[place].metric = CountMetric::words;
                return;
            }
        }
    }

    // The column headed as such, else the text column before the counts with the most different texts.
    std::optional<Column> fileColumn() const
    {
        const auto& columns = m_mapping.columns;
        const auto headed = std::find_if(
            columns.begin(), columns.end(), [](const auto& column) { return namesFiles(column.heading); });
        if (headed != columns.end())
            return static_cast<Column>(headed - columns.begin());
        std::optional<Column> best;
        std::size_t most = 0;
        for (Column place = 0; place < columns.size() && columns[place].role == ColumnRole::ignore; ++place) {
            std::set<std::string_view> texts;
            forSomeRows([&](const auto& row) {
                if (!row[place].empty() && !isNumber(row[place]))
                    texts.insert(row[place]);
            });
            if (texts.size() > most) {
                most = texts.size();
                best = place;
            }
        }
        return best;
    }

    std::vector<MappedLabel> labelsIn(Column labels) const
    {
        std::vector<MappedLabel> found;
        std::set<std::string_view> seen;
        for (auto row = m_headings.firstRow; row < m_table.size() && found.size() < mostLabels; ++row) {
            const auto cells = m_table[row];
            const bool isTitle = m_headings.areRepeatedIn(cells)
                || (row + 1 < m_table.size() && m_headings.areRepeatedIn(m_table[row + 1]));
            if (isTitle || !holdsCounts(cells) || !seen.insert(cells[labels]).second)
                continue;
            const auto label = BandAliases::label(cells[labels]);
            MappedLabel mapped { .label = std::string(cells[labels]) };
            if (label.isBand()) {
                mapped.role = ColumnRole::band;
                mapped.band = label.band;
            } else if (label.kind == Kind::total || label.kind == Kind::ignored) {
                mapped.role = label.kind == Kind::total ? ColumnRole::total : ColumnRole::notBilled;
            }
            found.push_back(std::move(mapped));
        }
        return found;
    }

    bool holdsCounts(const DelimitedTable::Row& row) const
    {
        for (Column place = 0; place < std::min(m_mapping.columns.size(), row.size()); ++place) {
            if (m_mapping.columns[place].role == ColumnRole::counts && isNumber(row[place]))
                return true;
        }
        return false;
    }

    const DelimitedTable& m_table;
    const ColumnHeadings m_headings;
    ColumnMapping m_mapping;
};

} // namespace

std::optional<char> TableReading::delimiterMark() const
{
    const bool isOne = delimiter.size() == 1 && DelimitedTable::canDelimit(delimiter.front());
    return isOne ? std::optional(delimiter.front()) : std::nullopt;
}

std::vector<MappedLabel> labelsOf(const DelimitedTable& table, const ColumnMapping& mapping)
{
    auto headings = ColumnHeadings::find(table, mapping.reading.hasHeadings);
    return headings ? Guess(table, *std::move(headings)).labelsOf(mapping) : std::vector<MappedLabel>();
}

MappingTable guessMapping(const DelimitedTable& table, const std::string& name, const TableReading& reading)
{
    auto headings = ColumnHeadings::find(table, reading.hasHeadings);
    if (!headings)
        throw ImportError(
            fmt::format("“{}” is no analysis report that Pallisande knows, and no table of counts.", name));
    MappingTable result {
        .name = name, .delimiter = { table.delimiter() }, .hasHeadings = headings->areInTable
    };
    const auto end = std::min(table.size(), headings->firstRow + sampleRows);
    for (auto row = headings->firstRow; row < end; ++row) {
        auto& cells = result.sample.emplace_back();
        for (std::size_t column = 0; column < std::min(table[row].size(), headings->names.size()); ++column)
            cells.emplace_back(Base::firstCharacters(table[row][column], sampleCharacters));
    }
    result.guess = Guess(table, *std::move(headings)).made();
    result.guess.reading = reading;
    return result;
}

} // namespace Pallisande
