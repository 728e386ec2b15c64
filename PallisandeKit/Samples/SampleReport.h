#pragma once

#include <string_view>

namespace Pallisande {

// An invented report of Trados Studio's Analyze Files task: two files, locked segments, cross-file
// repetitions and internal fuzzy matches that the total holds.
extern const std::string_view sampleTradosReport;

} // namespace Pallisande
