#include "Pallisande/Model/RememberedMappings.h"

#include "Base/Json.h"

#include <algorithm>

namespace Pallisande {

std::vector<ColumnMapping> RememberedMappings::load() const
{
    const auto text = m_preferences.load(key);
    try {
        return text ? Base::fromJson<std::vector<ColumnMapping>>(*text, {}) : std::vector<ColumnMapping>();
    } catch (const Base::DecodingError&) { // Nothing is lost that can't be said again.
        return {};
    }
}

void RememberedMappings::offer(ColumnMapping& guess) const
{
    const auto mappings = load();
    const auto known = std::find_if(mappings.begin(), mappings.end(), [&](const ColumnMapping& mapping) {
        return mapping.fingerprint == guess.fingerprint && mapping.columns.size() == guess.columns.size();
    });
    if (known == mappings.end())
        return;
    auto labels = known->labels;
    for (const auto& label : guess.labels) {
        if (std::none_of(labels.begin(), labels.end(),
                [&](const MappedLabel& other) { return other.label == label.label; }))
            labels.push_back(label);
    }
    guess = { guess.fingerprint, known->columns, std::move(labels), known->reading };
}

void RememberedMappings::keep(const ColumnMapping& mapping)
{
    auto mappings = load();
    std::erase_if(
        mappings, [&](const ColumnMapping& other) { return other.fingerprint == mapping.fingerprint; });
    mappings.insert(mappings.begin(), mapping);
    mappings.resize(std::min(mappings.size(), mostKept));
    m_preferences.store(key, Base::toJson(mappings, Base::JsonStyle::compact));
}

} // namespace Pallisande
