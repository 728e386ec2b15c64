#pragma once

#include "PallisandeKit/Library/LibrarySession.h"

#include <filesystem>
#include <string>
#include <vector>

namespace Pallisande {

// Makes a library of invented clients and jobs in a new folder and takes one of them from a CAT report to a
// credited and a paid invoice, through the same session as any other library. Gives what was done, a sentence
// each. Refused with a SessionError when the folder already holds something.
std::vector<std::string> makeDemonstration(
    const std::filesystem::path& folder, const SessionServices& services);

} // namespace Pallisande
