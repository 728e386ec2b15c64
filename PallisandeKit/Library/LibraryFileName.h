#pragma once

#include "Base/Calendar.h"

#include <optional>
#include <string>
#include <string_view>

namespace Pallisande {

// What the name of a file says that it holds.
struct LibraryFileName {
    enum class Kind {
        document, // The library itself.
        damaged, // One that couldn't be read and was moved aside.
        dated, // The copy of a day.
        onDemand,
        conflict, // Another version of the document, set aside by a sync program.
        other,
    };

    Kind kind = Kind::other;
    std::optional<Base::Day> day; // Of dated and on-demand copies.
    std::string time; // "15-05-31", of those made on demand.

    static constexpr std::string_view stem = "Pallisande Library", ending = ".json";

    static LibraryFileName of(std::string_view fileName);
};

} // namespace Pallisande
