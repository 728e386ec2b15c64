#include "PallisandeKit/Analyses/ReportTally.h"

#include "PallisandeKit/Analyses/ImportResult.h"

#include <fmt/format.h>

#include <algorithm>

namespace Pallisande {

namespace {

template <typename Map> auto& entry(Map& map, std::string_view key)
{
    const auto found = map.find(key);
    return found != map.end() ? found->second : map[std::string(key)];
}

bool isCount(std::int64_t words) { return words > -Count::absurd && words < Count::absurd; }

void insert(std::set<std::string, std::less<>>& set, std::string_view text)
{
    if (!set.contains(text))
        set.emplace(text);
}

} // namespace

std::optional<std::int64_t> ReportTally::read(const CountColumn& column, std::string_view cell)
{
    const auto count = column.read(cell);
    if (!count) {
        m_unreadable += cell.empty() ? 0 : 1;
        return std::nullopt;
    }
    m_hasFractions = m_hasFractions || count->wasFractional;
    return count->value;
}

std::int64_t ReportTally::rounded(const Base::Decimal& number)
{
    const auto count = Count::of(number);
    m_hasFractions = m_hasFractions || count.wasFractional;
    return count.value;
}

void ReportTally::add(
    AnalysisRow& row, const BandLabel& label, std::string_view text, const ReportFigures& figures)
{
    const auto words = figures.words.value_or(0);
    if (!label.isBand())
        return addCount(entry(label.kind == BandLabel::Kind::unknown ? m_unknown : m_ignored, text), words);
    if (!label.isExact) {
        auto& merged = entry(m_merged, text);
        merged.band = label.band;
        addCount(merged.words, words);
    }
    const auto add = [&](BandMap<std::int64_t>& metric, std::optional<std::int64_t> count) {
        if (count)
            addCount(metric[label.band], *count);
    };
    add(row.counts.segments, figures.segments);
    add(row.counts.words, words);
    add(row.counts.characters, figures.characters);
}

void ReportTally::setStated(AnalysisRow& row, const ReportFigures& totals)
{
    row.statedSegments = totals.segments;
    row.statedWords = totals.words;
    row.statedCharacters = totals.characters;
}

void ReportTally::addLanguages(std::string_view source, std::string_view target)
{
    insert(m_sources, source);
    insert(m_targets, target);
}

void ReportTally::finish(Analysis& analysis) const
{
    if (analysis.rows.empty())
        throw ImportError(fmt::format("“{}” has no files in its analysis.", analysis.name));
    bool fits = CountBound().admits(analysis);
    if (m_sources.size() == 1)
        analysis.sourceLanguage = *m_sources.begin();
    if (m_targets.size() == 1)
        analysis.targetLanguage = *m_targets.begin();
    for (const auto& [label, merged] : m_merged) {
        if (merged.words != 0)
            analysis.notes.push_back(MergedCategory { label, merged.band, merged.words });
        fits = fits && isCount(merged.words);
    }
    for (const auto& [label, words] : m_ignored) {
        if (words != 0)
            analysis.notes.push_back(IgnoredCategory { label, words });
        fits = fits && isCount(words);
    }
    for (const auto& [label, words] : m_unknown) {
        if (words != 0)
            analysis.notes.push_back(TextNote {
                fmt::format("“{}” ({} words) isn’t a known category and was left out.", label, words) });
        fits = fits && isCount(words);
    }
    if (!fits)
        throw ImportError::absurdCounts(analysis.name);
    if (m_unreadable > 0)
        analysis.notes.push_back(TextNote {
            fmt::format("Counts that couldn’t be read as numbers and were left out: {}.", m_unreadable) });
    if (const auto targets = m_targets.size() - m_targets.count(std::string_view()); targets > 1)
        analysis.notes.push_back(TextNote { fmt::format(
            "This report covers {} target languages, and its totals are those of all of them together.",
            targets) });
    if (m_hasFractions)
        analysis.notes.push_back(fractionalCountsNote());
    const auto hasNone = [](const AnalysisRow& row) { return row.counts.characters.isEmpty(); };
    if (std::all_of(analysis.rows.begin(), analysis.rows.end(), hasNone))
        analysis.notes.push_back(NoCharacters {});
}

} // namespace Pallisande
