#pragma once

#include "Pallisande/Model/Preferences.h"
#include "PallisandeKit/Analyses/ColumnMapping.h"

namespace Pallisande {

// How the user mapped tables that no tool is known for, so that the next one with the same headings comes
// mapped. The newest stands first.
class RememberedMappings {
public:
    static constexpr auto key = "columnMappings";
    static constexpr std::size_t mostKept = 50;

    explicit RememberedMappings(Preferences& preferences)
        : m_preferences(preferences)
    {
    }

    // Takes over what is known of a table with these headings. Labels that weren't in the earlier one stay.
    void offer(ColumnMapping& guess) const;
    void keep(const ColumnMapping& mapping);

private:
    std::vector<ColumnMapping> load() const;

    Preferences& m_preferences;
};

} // namespace Pallisande
