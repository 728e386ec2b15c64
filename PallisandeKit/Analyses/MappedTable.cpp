#include "PallisandeKit/Analyses/MappedTable.h"

#include "PallisandeKit/Analyses/BandAliases.h"
#include "PallisandeKit/Analyses/ImportResult.h"

#include <fmt/format.h>

#include <algorithm>

namespace Pallisande {

namespace {

[[noreturn]] void refuseNamelessBand(const std::string& label)
{
    throw ImportError(fmt::format("The mapping doesn’t say which band “{}” is.", label));
}

} // namespace

BandLabel mappedBand(MatchBand band, const BandLabel& own)
{
    return { BandLabel::Kind::band, band, own.isBand() && own.band == band && own.isExact };
}

std::optional<std::int64_t>& figure(ReportFigures& figures, CountMetric metric)
{
    if (metric == CountMetric::words)
        return figures.words;
    return metric == CountMetric::segments ? figures.segments : figures.characters;
}

void addTo(std::optional<std::int64_t>& sum, std::optional<std::int64_t> count)
{
    if (count) {
        sum = sum.value_or(0);
        addCount(*sum, *count);
    }
}

std::int64_t wordSum(const BandCounts& counts)
{
    std::int64_t total = 0;
    counts.words.forEach([&](MatchBand, std::int64_t words) { addCount(total, words); });
    return total;
}

MappedTable::MappedTable(
    const DelimitedTable& theTable, const ColumnMapping& theMapping, const std::string& name)
    : table(theTable)
    , mapping(theMapping)
    , analysis { .source = AnalysisSource::mappedCSV, .name = name }
{
    auto found = ColumnHeadings::find(table, mapping.reading.hasHeadings);
    if (!found || found->fingerprint() != mapping.fingerprint
        || found->names.size() != mapping.columns.size())
        throw ImportError(fmt::format("The mapping was made for other columns than those of “{}”.", name));
    headings = *std::move(found);
    takeColumns();
    learnNumbers();
}

void MappedTable::takeColumns()
{
    for (Column place = 0; place < mapping.columns.size(); ++place) {
        const auto& column = mapping.columns[place];
        if (column.role == ColumnRole::file && !file)
            file = place;
        else if (column.role == ColumnRole::label && !labels)
            labels = place;
    }
    for (Column place = 0; place < mapping.columns.size(); ++place) {
        const auto& [heading, role, band, metric] = mapping.columns[place];
        if (role == ColumnRole::file || role == ColumnRole::label)
            continue;
        Source source { place, role, metric.value_or(CountMetric::words), {}, heading };
        const bool isCounted = labels
            ? role == ColumnRole::counts
            : role == ColumnRole::band || role == ColumnRole::total || role == ColumnRole::notBilled;
        if (role == ColumnRole::band && !band)
            refuseNamelessBand(heading);
        if (role == ColumnRole::band)
            source.label = mappedBand(*band, BandAliases::split(heading).label);
        else if (role == ColumnRole::notBilled)
            source.label.kind = BandLabel::Kind::ignored;
        (isCounted ? counted : leftOut).push_back(std::move(source));
    }
    if (std::none_of(counted.begin(), counted.end(), [&](const Source& source) {
            return (source.role == ColumnRole::counts || source.role == ColumnRole::band)
                && source.metric != CountMetric::segments;
        }))
        throw ImportError("The mapping names no column with the words or characters of a band.");
    for (const auto& [label, role, band] : mapping.labels) {
        if (role == ColumnRole::band && !band)
            refuseNamelessBand(label);
    }
}

void MappedTable::learnNumbers()
{
    if (const auto& mark = mapping.reading.decimalMark; mark == "." || mark == ",") {
        for (auto* const sources : { &counted, &leftOut }) {
            for (auto& source : *sources)
                source.numbers = CountColumn::withDecimalMark(mark.front());
        }
        return;
    }
    constexpr std::size_t exampleRows = 1000; // Of columns that aren't counted.
    for (auto row = headings.firstRow; row < table.size(); ++row) {
        const auto cells = table[row];
        const auto learn = [&](std::vector<Source>& sources) {
            const auto count = reached(sources, cells).size();
            for (std::size_t place = 0; place < count; ++place)
                sources[place].numbers.learn(cells[sources[place].column]);
        };
        learn(counted);
        if (row < headings.firstRow + exampleRows)
            learn(leftOut);
    }
    CountColumn example;
    for (const auto* const sources : { &counted, &leftOut }) {
        for (const auto& source : *sources)
            example.settleLike(source.numbers);
    }
    for (auto* const sources : { &counted, &leftOut }) {
        for (auto& source : *sources)
            source.numbers.settleLike(example);
    }
}

void MappedTable::noteLeftOut(const std::vector<std::string>& names)
{
    constexpr std::size_t most = 10;
    if (names.empty())
        return;
    std::string list;
    for (std::size_t place = 0; place < std::min(names.size(), most); ++place)
        list += (list.empty() ? "“" : ", “") + names[place] + "”";
    if (names.size() > most)
        list += fmt::format(" and {} more", names.size() - most);
    analysis.notes.push_back(TextNote { fmt::format("Left out, as the mapping says: {}.", list) });
}

Analysis readMapped(
    const DelimitedTable& table, const ColumnMapping& mapping, const std::string& name, Base::Instant now)
{
    MappedTable mapped(table, mapping, name);
    auto& analysis = mapped.analysis;
    analysis.id = Base::Uuid::random();
    analysis.importedAt = now;
    if (const auto note = table.encodingNote())
        analysis.notes.push_back(TextNote { *note });
    if (mapped.labels)
        readMappedBlocks(mapped);
    else
        readMappedRows(mapped);
    if (analysis.rows.empty())
        throw ImportError(fmt::format("“{}” has no counts in the mapped columns.", name));
    mapped.tally.finish(analysis);
    return std::move(analysis);
}

} // namespace Pallisande
