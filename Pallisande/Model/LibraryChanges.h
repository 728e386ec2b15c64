#pragma once

#include "Base/Uuid.h"

#include <algorithm>
#include <compare>
#include <vector>

namespace Pallisande {

enum class RecordKind { client, job, invoice };

struct RecordID {
    RecordKind kind = RecordKind::job;
    Base::Uuid id;

    auto operator<=>(const RecordID&) const = default;
};

// What happened to the library, as precisely as lists need it.
struct LibraryChanges {
    std::vector<RecordID> added, changed, removed;
    bool profile = false, rates = false, counting = false;
    bool everything = false; // Another library has taken its place.

    bool isEmpty() const
    {
        return added.empty() && changed.empty() && removed.empty() && !profile && !rates && !counting
            && !everything;
    }
    // Whether any record of that kind is concerned.
    bool concerns(RecordKind kind) const
    {
        const auto isOfKind = [kind](const RecordID& record) { return record.kind == kind; };
        const auto has = [&](const auto& list) { return std::any_of(list.begin(), list.end(), isOfKind); };
        return everything || has(added) || has(changed) || has(removed);
    }
};

} // namespace Pallisande
