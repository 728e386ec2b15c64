#pragma once

#include "TamberlinKit/Text/FileFormat.h"
#include "TamberlinKit/Text/Part.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Tamberlin {

// One unit of text of a document: a paragraph, cell, note, comment or the like.
struct Segment {
    std::string text; // UTF-8.
    Part part = Part::body;

    bool operator==(const Segment&) const = default;
};

// What a reader takes out of one file.
struct Extracted {
    std::string name; // As the file is shown.
    FileFormat format = FileFormat::txt;
    std::vector<Segment> segments; // In document order.
    std::vector<std::string> notes; // For the user: what was or wasn't read.
    bool approximate = false; // The counts are an estimate.
    std::optional<std::int64_t> pages; // Or slides, where the reader knows.

    bool operator==(const Extracted&) const = default;
};

} // namespace Tamberlin
