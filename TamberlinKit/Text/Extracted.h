#pragma once

#include "TamberlinKit/Text/FileFormat.h"
#include "TamberlinKit/Text/Part.h"
#include "TamberlinKit/Text/SegmentText.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Tamberlin {

// One unit of text of a document: a paragraph, cell, note, comment or the like.
struct Segment {
    SegmentText text;
    Part part = Part::body;

    bool operator==(const Segment&) const = default;
};

// Keeps what texts of segments stand in. It says nothing of a document's content.
struct TextSource {
    std::shared_ptr<const void> kept;

    bool operator==(const TextSource&) const { return true; }
};

// What a reader takes out of one file.
struct Extracted {
    std::string name; // As the file is shown.
    FileFormat format = FileFormat::txt;
    std::vector<Segment> segments; // In document order.
    std::vector<std::string> notes; // For the user: what was or wasn't read.
    bool approximate = false; // The counts are an estimate.
    std::optional<std::int64_t> pages; // Or slides, where the reader knows.
    TextSource source;

    bool operator==(const Extracted&) const = default;
};

} // namespace Tamberlin
