#include "Pallisande/Screens/AnalysisFigures.h"

#include "Pallisande/Screens/Text.h"

#include <algorithm>

namespace Pallisande {

QString title(CountMetric metric)
{
    switch (metric) {
    case CountMetric::words:
        return QStringLiteral("Words");
    case CountMetric::segments:
        return QStringLiteral("Segments");
    case CountMetric::characters:
        break;
    }
    return QStringLiteral("Characters");
}

QString shortHead(MatchBand band)
{
    static constexpr std::array<const char*, allMatchBands.size()> heads { "Perfect", "Context", "Reps",
        "100%", "95–99", "85–94", "75–84", "50–74", "No match" };
    return QString::fromUtf8(heads[static_cast<std::size_t>(band)]);
}

const BandMap<std::int64_t>& figuresOf(const BandCounts& counts, CountMetric metric)
{
    if (metric == CountMetric::words)
        return counts.words;
    return metric == CountMetric::segments ? counts.segments : counts.characters;
}

std::optional<std::int64_t> statedIn(const AnalysisRow& row, CountMetric metric)
{
    if (metric == CountMetric::words)
        return row.statedWords;
    return metric == CountMetric::segments ? row.statedSegments : row.statedCharacters;
}

std::vector<QString> fileTitles(std::span<const AnalysisRow> rows)
{
    std::string_view shared = rows.empty() ? std::string_view() : rows.front().file;
    for (const auto& row : rows) {
        const auto [end, other]
            = std::mismatch(shared.begin(), shared.end(), row.file.begin(), row.file.end());
        shared = { shared.begin(), end };
    }
    const auto folder = shared.find_last_of("/\\");
    auto cut = folder == shared.npos ? 0 : folder + 1;
    const bool leavesNothing
        = std::any_of(rows.begin(), rows.end(), [&](const auto& row) { return row.file.size() == cut; });
    if (leavesNothing)
        cut = 0;
    std::vector<QString> titles;
    for (const auto& row : rows)
        titles.push_back(qt(std::string_view(row.file).substr(cut)));
    return titles;
}

} // namespace Pallisande
