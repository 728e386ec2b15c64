#pragma once

#include <filesystem>

namespace Pallisande {

// Written by a CAT tool, by its extension. A text file may be one, too, but rarely is.
bool isReport(const std::filesystem::path& file);

// A document whose words can be counted, by its extension, or a folder of them.
bool isCountable(const std::filesystem::path& file);

bool isTextFile(const std::filesystem::path& file);

} // namespace Pallisande
