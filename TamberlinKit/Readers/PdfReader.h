#pragma once

#include "Base/Descriptor.h"
#include "TamberlinKit/Text/Extracted.h"
#include "TamberlinKit/Text/ReadError.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <stop_token>
#include <string>

namespace Tamberlin {

// How a PDF is read: by programs of their own, so that nothing that a document does to its reader reaches us.
struct PdfOptions {
    bool recognisesScans = false; // Pages without text are read by text recognition: seconds for each.
    unsigned threads = 1;
    std::filesystem::path helpers; // The folder of those programs; empty: that of the running one.
    std::chrono::milliseconds time { 90'000 }; // A third of it more for each page that is recognised.
    std::size_t outputBytes = 100 * 1024 * 1024;
};

// The text of a PDF that is open. Throws as the functions of Readers.h.
Extracted readPdf(
    const Base::Descriptor& file, std::string name, const PdfOptions& options, const std::stop_token& cancel);

} // namespace Tamberlin
