#pragma once

#include "PallisandeKit/Analyses/MatchBand.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Pallisande {

// An invented report of Trados Studio's Analyze Files task: two files, locked segments, cross-file
// repetitions and internal fuzzy matches that the total holds.
extern const std::string_view sampleTradosReport;

// Invented reports in the layouts of other tools. Phrase has no perfect matches, so that these are left out
// of its reports.
struct SampleFile {
    std::string name;
    std::array<std::int64_t, 9> words {}; // By band.
    std::int64_t misstated = 0; // By how many words the report's own total is wrong.
};
std::string samplePhraseCSV(const std::vector<SampleFile>& files);
std::string samplePhraseJSON(const SampleFile& file);
std::string sampleMemoQReport(const std::vector<SampleFile>& files);
// Of no tool that is known, so that somebody must say what its columns hold.
std::string sampleTable(const std::vector<SampleFile>& files);

} // namespace Pallisande
