#pragma once

#include "TamberlinKit/Counting/FileCount.h"

#include <span>
#include <string>

namespace Tamberlin {

// A batch as comma-separated values (RFC 4180, UTF-8): a line a file and one for their sum. Texts that a
// spreadsheet would take for a formula begin with an apostrophe.
std::string countCSV(std::span<const FileCount> files);

} // namespace Tamberlin
