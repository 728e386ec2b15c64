#include "PallisandeKit/Analyses/Analysis.h"

#include "Base/Checked.h"

#include <fmt/format.h>

namespace Pallisande {

namespace {

struct Sentence {
    std::string operator()(const InternalFuzzyAsNew& note) const
    {
        return fmt::format("Internal fuzzy matches ({} words) are billed as No match.", note.words);
    }
    std::string operator()(const InternalFuzzyOutsideTotal& note) const
    {
        return fmt::format(
            "Internal fuzzy matches ({} words) are reported outside the file’s total and were left out.",
            note.words);
    }
    std::string operator()(const MergedCategory& note) const
    {
        return fmt::format("“{}” ({} words) is counted with {}.", note.label, note.words, label(note.into));
    }
    std::string operator()(const IgnoredCategory& note) const
    {
        return fmt::format("“{}” ({} words) isn’t billed.", note.label, note.words);
    }
    std::string operator()(const NoCharacters&) const { return "This report has no character counts."; }
    std::string operator()(const UnverifiedLayout& note) const
    {
        return fmt::format(
            "{} import: tested on documented layouts, not yet on a real export. Check the totals "
            "against the report.",
            note.tool);
    }
    std::string operator()(const UnreadableFile& note) const
    {
        return fmt::format("“{}” wasn’t counted: {}", note.file, note.reason);
    }
    std::string operator()(const TextNote& note) const { return note.text; }
};

// Whether |count| still fits below the bound; the sum so far never passes it.
bool admitOne(std::int64_t& total, std::int64_t count)
{
    constexpr auto largest = Base::Checked::largestCount;
    if (count < -largest || count > largest)
        return false;
    total += count < 0 ? -count : count;
    return total <= largest;
}

} // namespace

std::string_view label(AnalysisSource source)
{
    constexpr std::array<std::string_view, 7> labels { "Phrase TMS analysis (CSV)",
        "Phrase TMS analysis (JSON)", "memoQ statistics (CSV)", "Trados Studio analysis (XML)",
        "Spreadsheet with mapped columns", "Files counted by Pallisande", "Typed in" };
    return labels[static_cast<std::size_t>(source)];
}

std::string_view label(Verification verification)
{
    constexpr std::array<std::string_view, 5> labels { "Built from the published layout",
        "Tested on documented layouts", "Columns mapped by you", "Counted from the files", "Typed in" };
    return labels[static_cast<std::size_t>(verification)];
}

Verification verification(AnalysisSource source)
{
    switch (source) {
    case AnalysisSource::phraseCSV:
    case AnalysisSource::phraseJSON:
        return Verification::publishedLayout;
    case AnalysisSource::memoQCSV:
    case AnalysisSource::tradosXML:
        return Verification::documentedLayoutsOnly;
    case AnalysisSource::mappedCSV:
        return Verification::mappedByYou;
    case AnalysisSource::tamberlinCount:
        return Verification::counted;
    case AnalysisSource::manual:
        break;
    }
    return Verification::typed;
}

std::string sentence(const ImportNote& note) { return std::visit(Sentence {}, note); }

std::optional<std::int64_t> AnalysisRow::difference() const
{
    if (!statedWords)
        return std::nullopt;
    return Base::Checked::subtract(sum(counts.words), *statedWords);
}

std::string SumCheck::sentence() const
{
    return fmt::format("{}: the bands add up to {} words, the report says {}", file ? *file : "Whole report",
        bandWords, statedWords);
}

BandCounts Analysis::totals() const
{
    BandCounts totals;
    for (const auto& row : rows)
        totals.add(row.counts);
    return totals;
}

std::vector<SumCheck> Analysis::sumChecks() const
{
    std::vector<SumCheck> checks;
    for (const auto& row : rows) {
        if (row.statedWords)
            checks.push_back({ row.file, sum(row.counts.words), *row.statedWords });
    }
    if (statedTotalWords)
        checks.push_back({ std::nullopt, sum(totals().words), *statedTotalWords });
    return checks;
}

std::vector<SumCheck> Analysis::mismatches() const
{
    auto checks = sumChecks();
    std::erase_if(checks, [](const SumCheck& check) { return !check.fails(); });
    return checks;
}

std::int64_t Analysis::mismatchCount() const
{
    std::int64_t count = 0, total = 0;
    for (const auto& row : rows) {
        const auto words = sum(row.counts.words);
        total = Base::Checked::add(total, words);
        if (row.statedWords && *row.statedWords != words)
            ++count;
    }
    return statedTotalWords && *statedTotalWords != total ? count + 1 : count;
}

bool CountBound::admit(
    std::int64_t& total, const BandMap<std::int64_t>& counts, std::optional<std::int64_t> stated)
{
    bool fits = true;
    counts.forEach([&](MatchBand, std::int64_t count) { fits = fits && admitOne(total, count); });
    std::int64_t ofItsOwn = 0; // What a report states is compared, not added to the rest.
    return fits && (!stated || admitOne(ofItsOwn, *stated));
}

bool CountBound::admits(const AnalysisRow& row)
{
    return admit(m_words, row.counts.words, row.statedWords)
        && admit(m_segments, row.counts.segments, row.statedSegments)
        && admit(m_characters, row.counts.characters, row.statedCharacters);
}

bool CountBound::admits(const Analysis& analysis)
{
    for (const auto& row : analysis.rows) {
        if (!admits(row))
            return false;
    }
    std::int64_t ofItsOwn = 0;
    return !analysis.statedTotalWords || admitOne(ofItsOwn, *analysis.statedTotalWords);
}

} // namespace Pallisande
