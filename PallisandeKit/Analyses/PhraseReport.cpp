#include "PallisandeKit/Analyses/PhraseReport.h"

#include "PallisandeKit/Analyses/BandedReport.h"

#include <algorithm>

namespace Pallisande::PhraseReport {

namespace {

bool isLanguageCode(std::string_view text)
{
    const auto isPart = [](char character) {
        return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z')
            || (character >= '0' && character <= '9') || character == '_' || character == '-';
    };
    return !text.empty() && std::all_of(text.begin(), text.end(), isPart);
}

// A file's cell ends in " | en_gb>de_at".
BandedReport::Languages languagesOf(std::string_view file)
{
    constexpr std::string_view separator = " | ";
    const auto place = file.rfind(separator);
    if (place == std::string_view::npos)
        return {};
    const auto pair = file.substr(place + separator.size());
    const auto arrow = pair.find('>');
    if (arrow == std::string_view::npos)
        return {};
    const auto source = pair.substr(0, arrow), target = pair.substr(arrow + 1);
    if (!isLanguageCode(source) || !isLanguageCode(target))
        return {};
    return { source, target };
}

} // namespace

// The headings are memoQ's too, so the languages in the first line decide.
bool recognizes(const DelimitedTable& table)
{
    const auto report = BandedReport::find(table);
    return report && report->layout() == BandedReport::Layout::tradosCompatible
        && !languagesOf(report->firstFile()).target.empty();
}

Analysis read(const DelimitedTable& table, const std::string& name, Base::Instant now)
{
    Analysis analysis {
        .id = Base::Uuid::random(), .source = AnalysisSource::phraseCSV, .name = name, .importedAt = now
    };
    CountColumn decimalPoint; // Phrase never groups, and writes fractions with a point.
    decimalPoint.learn("0.5");
    if (const auto doubt = table.encodingNote())
        analysis.notes.push_back(TextNote { *doubt });
    ReportTally tally;
    if (const auto report = BandedReport::find(table))
        report->read(analysis, tally, &languagesOf, decimalPoint);
    tally.finish(analysis);
    return analysis;
}

} // namespace Pallisande::PhraseReport
