#pragma once

#include "TamberlinKit/Readers/PdfReader.h"
#include "TamberlinKit/Text/Extracted.h"

#include <filesystem>
#include <stop_token>

namespace Tamberlin {

// The text of a document on disk, of the format that its extension stands for. Throws ReadError with the
// sentence for the user, also for what can't be opened, and Cancelled.
Extracted readDocument(
    const std::filesystem::path& path, const std::stop_token& cancel, const PdfOptions& pdf = {});

} // namespace Tamberlin
