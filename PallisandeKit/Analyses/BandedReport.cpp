#include "PallisandeKit/Analyses/BandedReport.h"

#include "PallisandeKit/Analyses/BandAliases.h"
#include "PallisandeKit/Analyses/ImportResult.h"

#include <fmt/format.h>

#include <algorithm>

namespace Pallisande {

namespace {

constexpr std::size_t latestHeading = 30; // Lines that may stand before the headings; real reports have none.
constexpr std::size_t mostBlocks = 64, mostColumns = 1'024; // Real reports have up to 11 and 91.

std::optional<BandedReport::Layout> layoutOf(const DelimitedTable::Row& metricLine)
{
    const auto is = [&](std::size_t column, std::string_view header) {
        return BandLabel::normalized(metricLine[column]) == header;
    };
    if (!is(0, "file"))
        return std::nullopt;
    if (is(1, "char/word"))
        return BandedReport::Layout::allInformation;
    if (is(1, "tagging errors") && is(2, "chars/word"))
        return BandedReport::Layout::tradosCompatible;
    return std::nullopt;
}

// Where a metric stands among segments, words and characters.
std::optional<std::size_t> placeOf(BandLabel::Metric metric)
{
    switch (metric) {
    case BandLabel::Metric::segments:
        return 0;
    case BandLabel::Metric::words:
        return 1;
    case BandLabel::Metric::characters:
        return 2;
    default:
        return std::nullopt;
    }
}

} // namespace

std::optional<BandedReport> BandedReport::find(const DelimitedTable& table)
{
    std::optional<std::size_t> lineAbove;
    for (std::size_t line = 0; line < std::min(table.size(), latestHeading); ++line) {
        if (table[line].isBlank())
            continue;
        if (const auto layout = layoutOf(table[line]); layout && lineAbove) {
            BandedReport report(table, *layout);
            if (report.findBlocks(*lineAbove, line))
                return report;
        }
        lineAbove = line;
    }
    return std::nullopt;
}

bool BandedReport::findBlocks(std::size_t bandLine, std::size_t metricLine)
{
    const auto bands = (*m_table)[bandLine], headers = (*m_table)[metricLine];
    if (headers.size() > mostColumns)
        return false;
    for (std::size_t column = 0; column < headers.size(); ++column) {
        if (const auto text = bands[column]; !text.empty()) {
            const auto label = BandAliases::label(text);
            const bool isKnown = label.isBand() || label.kind == BandLabel::Kind::total
                || label.kind == BandLabel::Kind::ignored;
            if (!isKnown || m_blocks.size() == mostBlocks)
                return false;
            m_blocks.push_back({ .label = label, .text = text, .start = column });
        }
        if (const auto place = placeOf(BandAliases::metric(headers[column])); place && !m_blocks.empty()) {
            auto& found = m_blocks.back().columns[*place];
            found = found.value_or(column);
        }
    }
    m_firstRow = metricLine + 1;
    const auto hasWords = [](const Block& block) { return block.columns[1].has_value(); };
    return std::all_of(m_blocks.begin(), m_blocks.end(), hasWords)
        && std::any_of(
            m_blocks.begin(), m_blocks.end(), [](const Block& block) { return block.label.isBand(); });
}

std::string_view BandedReport::firstFile() const
{
    for (std::size_t line = m_firstRow; line < m_table->size(); ++line) {
        if (const auto row = (*m_table)[line]; !row.isBlank())
            return row[0];
    }
    return {};
}

BandedReport::Numbers BandedReport::learnNumbers(const CountColumn& example) const
{
    Numbers numbers(m_blocks.size());
    for (std::size_t line = m_firstRow; line < m_table->size(); ++line) {
        const auto row = (*m_table)[line];
        for (std::size_t block = 0; block < m_blocks.size() && m_blocks[block].start < row.size(); ++block) {
            for (std::size_t metric = 0; metric < metrics; ++metric) {
                if (const auto column = m_blocks[block].columns[metric])
                    numbers[block][metric].learn(row[*column]);
            }
        }
    }
    auto settled = example;
    for (const auto& block : numbers) {
        for (const auto& column : block) {
            if (column.isSettled())
                settled = column;
        }
    }
    for (auto& block : numbers) {
        for (auto& column : block)
            column.settleLike(settled);
    }
    return numbers;
}

void BandedReport::read(
    Analysis& analysis, ReportTally& tally, LanguagesOf languagesOf, const CountColumn& example) const
{
    const auto numbers = learnNumbers(example);
    auto end = m_table->size();
    while (end > m_firstRow && (*m_table)[end - 1].isBlank())
        --end;
    for (std::size_t line = m_firstRow; line < end; ++line) {
        const auto cells = (*m_table)[line];
        if (cells.isBlank())
            continue;
        if (analysis.rows.size() == mostReportRows)
            throw ImportError::tooManyFiles(analysis.name);
        AnalysisRow row { .id = Base::Uuid::random(), .file = std::string(cells[0]) };
        const auto figures = [&](std::size_t block, std::size_t metric) {
            const auto column = m_blocks[block].columns[metric];
            return column ? tally.read(numbers[block][metric], cells[*column]) : std::nullopt;
        };
        // Nothing that these programs write, but a line of sums that somebody added mustn't count twice.
        const bool isTotalLine = line + 1 == end && !analysis.rows.empty()
            && BandAliases::label(row.file).kind == BandLabel::Kind::total;
        for (std::size_t block = 0; block < m_blocks.size() && m_blocks[block].start < cells.size();
             ++block) {
            const ReportFigures found { figures(block, 0), figures(block, 1), figures(block, 2) };
            if (m_blocks[block].label.kind == BandLabel::Kind::total)
                ReportTally::setStated(row, found);
            else if (!isTotalLine)
                tally.add(row, m_blocks[block].label, m_blocks[block].text, found);
        }
        if (isTotalLine) {
            analysis.statedTotalWords = row.statedWords;
            continue;
        }
        const auto languages = languagesOf(row.file);
        tally.addLanguages(languages.source, languages.target);
        if (row.file.empty())
            row.file = fmt::format("File {}", analysis.rows.size() + 1);
        analysis.rows.push_back(std::move(row));
    }
}

} // namespace Pallisande
