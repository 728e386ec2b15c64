#include "PallisandeKit/Analyses/MemoQReport.h"

#include "PallisandeKit/Analyses/BandedReport.h"
#include "PallisandeKit/Analyses/MemoQDisplayed.h"
#include "PallisandeKit/Analyses/PhraseReport.h"

#include <algorithm>

namespace Pallisande::MemoQReport {

namespace {

// A file's cell begins with "[ger] " or "[fre-CA] ", where it isn't only the path.
BandedReport::Languages languagesOf(std::string_view file)
{
    const auto end = file.find("] ");
    const auto isPart = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '-'; };
    constexpr std::size_t shortest = 3, longest = 12;
    if (!file.starts_with('[') || end == file.npos || end - 1 < shortest || end - 1 > longest)
        return {};
    const auto target = file.substr(1, end - 1);
    if (!std::all_of(target.begin(), target.end(), isPart))
        return {};
    return { {}, target };
}

} // namespace

bool recognizes(const DelimitedTable& table)
{
    if (BandedReport::find(table))
        return !PhraseReport::recognizes(table);
    return MemoQDisplayed::recognizes(table);
}

Analysis read(const DelimitedTable& table, const std::string& name, Base::Instant now)
{
    Analysis analysis {
        .id = Base::Uuid::random(), .source = AnalysisSource::memoQCSV, .name = name, .importedAt = now
    };
    analysis.notes.push_back(UnverifiedLayout { "memoQ" });
    if (const auto doubt = table.encodingNote())
        analysis.notes.push_back(TextNote { *doubt });
    ReportTally tally;
    if (const auto report = BandedReport::find(table))
        report->read(analysis, tally, &languagesOf, {});
    else
        MemoQDisplayed(table).read(analysis, tally);
    tally.finish(analysis);
    return analysis;
}

} // namespace Pallisande::MemoQReport
