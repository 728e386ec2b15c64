#pragma once

#include "Base/EnumMap.h"
#include "Base/Json.h"
#include "TamberlinKit/Counting/TextStats.h"
#include "TamberlinKit/Text/FileFormat.h"
#include "TamberlinKit/Text/Part.h"

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

namespace Tamberlin {

// What was counted in one file.
struct FileCount {
    std::int64_t id = 0; // Its place in the batch, from 0.
    std::string name;
    FileFormat format = FileFormat::txt;
    TextStats total; // Of the parts that were asked for.
    Base::EnumMap<Part, TextStats> byPart; // Every part that has a segment.
    TextStats repeated; // Of the sentences that stood before.
    std::vector<std::string> notes;
    bool approximate = false;

    bool operator==(const FileCount&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("id", &FileCount::id),
            Base::field("name", &FileCount::name),
            Base::field("format", &FileCount::format),
            Base::field("total", &FileCount::total),
            Base::field("byPart", &FileCount::byPart),
            Base::field("repeated", &FileCount::repeated),
            Base::field("notes", &FileCount::notes),
            Base::field("approximate", &FileCount::approximate),
        };
    }
};
static_assert(Base::listsEveryMember<FileCount>);

} // namespace Tamberlin
