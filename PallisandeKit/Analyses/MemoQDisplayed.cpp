#include "PallisandeKit/Analyses/MemoQDisplayed.h"

#include "Base/Text.h"
#include "PallisandeKit/Analyses/BandAliases.h"
#include "PallisandeKit/Analyses/ImportResult.h"

#include <algorithm>

namespace Pallisande {

namespace {

constexpr std::size_t linesToRecognize = 200; // Two blocks and more.
constexpr std::size_t mostLinesOfBlock = 64; // Real blocks have up to 15.

using Row = DelimitedTable::Row;
using Kind = BandLabel::Kind;

bool startsWithDigit(std::string_view text) { return !text.empty() && text[0] >= '0' && text[0] <= '9'; }

bool isHeading(const Row& row)
{
    for (std::size_t cell = 1; cell < row.size(); ++cell) {
        if (!row[cell].empty())
            return false;
    }
    return !row[0].empty();
}

bool isCategory(const Row& row) { return startsWithDigit(row[1]) && startsWithDigit(row[2]); }

// The name of the file when the scope is one: `"name" ("full path")`, in older versions `name (full path)`.
std::optional<std::string_view> fileOf(std::string_view scope)
{
    constexpr std::string_view between = "\" (\"", end = "\")";
    if (const auto place = scope.find(between);
        scope.starts_with('"') && place != scope.npos && scope.ends_with(end))
        return scope.substr(1, place - 1);
    if (!scope.ends_with(')'))
        return std::nullopt;
    for (auto place = scope.find(" ("); place != scope.npos; place = scope.find(" (", place + 1)) {
        const auto name = scope.substr(0, place), path = scope.substr(place + 2, scope.size() - place - 3);
        if (!name.empty() && path.size() > name.size() && path.ends_with(name))
            return name;
    }
    return std::nullopt;
}

} // namespace

// Lines of the table. The rows of percentages are the same in every language and tell what stands around
// them.
struct MemoQDisplayed::Block {
    std::string_view scope;
    std::size_t first = 0; // All words.
    std::size_t firstPercentage = 0, lastPercentage = 0; // From 101% to 50%-74%.
    std::size_t end = 0;
    std::size_t segments = 1, words = 2, characters = 3; // Columns.
};

std::optional<MemoQDisplayed::Block> MemoQDisplayed::findBlock(
    const DelimitedTable& table, std::size_t from, std::size_t end)
{
    if (end - from < 5 || end - from > mostLinesOfBlock || !isHeading(table[from]))
        return std::nullopt;
    Block block { .first = from + 1, .end = end };
    while (block.first < end && !isCategory(table[block.first]))
        ++block.first;
    const auto headers = table[block.first - 1];
    if (block.first == end || block.first < from + 3 || headers[1].empty() || headers[2].empty())
        return std::nullopt;

    bool hasExact = false, hasFuzzy = false;
    for (auto line = block.first + 1; line < end; ++line) {
        const auto text = table[line][0];
        const auto label = startsWithDigit(text) ? BandLabel::of(text) : BandLabel {};
        if (!label.isBand())
            continue;
        hasExact = hasExact || label.band == MatchBand::exact;
        hasFuzzy = hasFuzzy || minimumPercent(label.band).value_or(100) < 100;
        block.firstPercentage = block.firstPercentage == 0 ? line : block.firstPercentage;
        block.lastPercentage = line;
    }
    if (!hasExact || !hasFuzzy)
        return std::nullopt;

    const auto scope = table[from + 1]; // Its cells may hold delimiters and quotation marks as they like.
    const auto text = scope.text();
    if (const auto place = text.find(table.delimiter()); place != text.npos)
        block.scope = Base::trimmed(text.substr(place + 1));

    // With Asian characters counted, two more columns stand before the characters.
    block.characters = headers.size() > 7 ? 5 : 3;
    const auto find = [&](BandLabel::Metric metric, std::size_t& column) {
        for (std::size_t place = 1; place < std::min(headers.size(), mostLinesOfBlock); ++place) {
            if (BandAliases::metric(headers[place]) == metric) {
                column = place;
                return;
            }
        }
    };
    find(BandLabel::Metric::segments, block.segments);
    find(BandLabel::Metric::words, block.words);
    find(BandLabel::Metric::characters, block.characters);
    return block;
}

template <typename Visit>
void MemoQDisplayed::forEachBlock(const DelimitedTable& table, std::size_t end, Visit visit)
{
    std::size_t from = 0;
    for (std::size_t line = 0; line <= end; ++line) {
        if (line < end && !table[line].isBlank())
            continue;
        if (const auto block = findBlock(table, from, line))
            visit(*block);
        from = line + 1;
    }
}

bool MemoQDisplayed::recognizes(const DelimitedTable& table)
{
    bool found = false;
    forEachBlock(table, std::min(table.size(), linesToRecognize), [&](const Block&) { found = true; });
    return found;
}

void MemoQDisplayed::learn(const Block& block)
{
    for (auto line = block.first; line < block.end; ++line) {
        m_segments.learn(m_table[line][block.segments]);
        m_words.learn(m_table[line][block.words]);
        m_characters.learn(m_table[line][block.characters]);
    }
}

// In a language that isn't known, the place of a category tells its band, and a note tells that it was taken.
BandLabel MemoQDisplayed::labelOf(const Block& block, std::size_t line) const
{
    const auto label = BandAliases::label(m_table[line][0]);
    const auto inPlaceOf = [](MatchBand band) { return BandLabel { Kind::band, band, false }; };
    if (line == block.first)
        return { .kind = Kind::total };
    if (label.isBand() || label.kind == Kind::ignored)
        return label;
    if (line < block.firstPercentage)
        return inPlaceOf(line + 1 == block.firstPercentage ? MatchBand::repetitions : MatchBand::perfect);
    if (line > block.lastPercentage && line + 1 == block.end)
        return inPlaceOf(MatchBand::noMatch);
    return { .kind = line == block.lastPercentage + 1 ? Kind::ignored : Kind::unknown };
}

AnalysisRow MemoQDisplayed::row(const Block& block, ReportTally& tally) const
{
    AnalysisRow row { .id = Base::Uuid::random() };
    for (auto line = block.first; line < block.end; ++line) {
        const auto cells = m_table[line];
        const auto label = labelOf(block, line);
        const ReportFigures figures { tally.read(m_segments, cells[block.segments]),
            tally.read(m_words, cells[block.words]), tally.read(m_characters, cells[block.characters]) };
        if (label.kind == Kind::total)
            ReportTally::setStated(row, figures);
        else
            tally.add(row, label, cells[0], figures);
    }
    return row;
}

void MemoQDisplayed::read(Analysis& analysis, ReportTally& tally)
{
    std::optional<Block> whole; // The first block, unless it is a file's.
    std::size_t blocks = 0;
    forEachBlock(m_table, m_table.size(), [&](const Block& block) {
        if (blocks++ == 0 && !fileOf(block.scope))
            whole = block;
        learn(block);
    });
    const bool isDivided = whole && blocks > 1;
    if (isDivided) { // Its words come again by file: only what it states is kept.
        ReportTally notKept;
        analysis.statedTotalWords = row(*whole, notKept).statedWords;
    }
    // Only a report of one block can do without a file's name in the scope; then its title has more to say.
    std::string_view title;
    for (std::size_t line = 0; title.empty() && line < m_table.size(); ++line)
        title = Base::trimmed(m_table[line].text());
    forEachBlock(m_table, m_table.size(), [&](const Block& block) {
        if (isDivided && block.first == whole->first)
            return;
        if (analysis.rows.size() == mostReportRows)
            throw ImportError::tooManyFiles(analysis.name);
        auto found = row(block, tally);
        found.file = fileOf(block.scope).value_or(isDivided || block.scope.empty() ? block.scope : title);
        analysis.rows.push_back(std::move(found));
    });
}

} // namespace Pallisande
