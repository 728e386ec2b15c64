#pragma once

#include "TamberlinKit/Text/Extracted.h"

#include <filesystem>
#include <stop_token>
#include <string>
#include <string_view>

namespace Tamberlin {

// The text of a document in memory; as the readers of Readers.h.
Extracted readDocument(
    std::string_view file, std::string name, FileFormat format, const std::stop_token& cancel);

// The text of a document on disk, of the format that its extension stands for. Throws ReadError with the
// sentence for the user, also for what can't be opened, and Cancelled.
Extracted readDocument(const std::filesystem::path& path, const std::stop_token& cancel);

} // namespace Tamberlin
