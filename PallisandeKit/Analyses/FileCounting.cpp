#include "PallisandeKit/Analyses/FileCounting.h"

#include <fmt/format.h>

#include <algorithm>

namespace Pallisande {

namespace {

using Tamberlin::FileCount;
using Tamberlin::TextStats;

// What a rate per character is agreed on: with spaces, which is what word processors call characters.
std::int64_t billedCharacters(const TextStats& stats) { return stats.charactersWithSpaces; }

AnalysisRow row(const FileCount& file)
{
    AnalysisRow row { .id = Base::Uuid::random(), .file = file.name };
    const auto put = [&](BandMap<std::int64_t>& metric, auto count) {
        const std::int64_t total = count(file.total), repeated = count(file.repeated);
        metric[MatchBand::repetitions] = repeated;
        metric[MatchBand::noMatch] = Base::Checked::subtract(total, repeated);
    };
    put(row.counts.words, [](const TextStats& stats) { return stats.words; });
    put(row.counts.segments, [](const TextStats& stats) { return stats.segments; });
    put(row.counts.characters, billedCharacters);
    return row;
}

} // namespace

Analysis FileCounting::analysis(const Tamberlin::BatchCount& batch, Base::Instant now)
{
    Analysis analysis { .id = Base::Uuid::random(),
        .source = AnalysisSource::tamberlinCount,
        .name
        = batch.files.size() == 1 ? batch.files.front().name : fmt::format("{} files", batch.files.size()),
        .importedAt = now };
    for (const auto& file : batch.files)
        analysis.rows.push_back(row(file));
    std::vector<std::string> texts;
    const bool isApproximate = std::any_of(
        batch.files.begin(), batch.files.end(), [](const FileCount& file) { return file.approximate; });
    if (isApproximate)
        texts.emplace_back("PDF counts come from the text layer and are approximate (≈).");
    for (const auto& file : batch.files) {
        for (const auto& text : file.notes)
            texts.push_back(fmt::format("{}: {}", file.name, text));
    }
    for (auto& text : texts)
        std::get<TextNote>(analysis.notes.emplace_back(std::in_place_type<TextNote>)).text = std::move(text);
    for (const auto& failure : batch.failures)
        analysis.notes.push_back(UnreadableFile { failure.file, failure.message });
    return analysis;
}

} // namespace Pallisande
