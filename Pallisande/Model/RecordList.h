#pragma once

#include "Base/Uuid.h"

#include <cstddef>
#include <functional>
#include <string>
#include <unordered_set>
#include <vector>

namespace Pallisande {

// The ids that a list shows, in order: filtered, searched and sorted when somebody next looks. A record that
// was changed stays in it until the selection moves.
class RecordList {
public:
    using Kept = std::unordered_set<Base::Uuid>;
    using Make = std::function<std::vector<Base::Uuid>(const Kept& kept)>;

    explicit RecordList(Make make)
        : m_make(std::move(make))
    {
    }

    const std::vector<Base::Uuid>& ids() const;
    bool shows(const Base::Uuid& id) const;
    std::size_t place(const Base::Uuid& id) const; // Beyond the end when it isn't shown.

    void outdate() { m_isCurrent = false; }
    void keep(const Base::Uuid& id); // If it is shown now.
    bool letGo(); // The selection moved. Whether that outdates the list.

private:
    Make m_make;
    Kept m_kept;
    mutable std::vector<Base::Uuid> m_ids;
    mutable std::unordered_set<Base::Uuid> m_shown;
    mutable bool m_isCurrent = false;
};

} // namespace Pallisande
