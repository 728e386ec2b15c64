#pragma once

#include <filesystem>
#include <vector>

namespace Tamberlin {

// The files to count among those given: a file as it is, a folder as the documents in it and in its folders,
// in the order in which a file browser shows them. A folder that contains itself through a link is walked
// once.
std::vector<std::filesystem::path> documentsIn(const std::vector<std::filesystem::path>& paths);

} // namespace Tamberlin
