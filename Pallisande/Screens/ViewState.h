#pragma once

#include "Pallisande/Model/Preferences.h"

#include <map>
#include <optional>
#include <string>

namespace Pallisande {

// What the window remembers for the next start that isn't a setting: geometry, splitters, sorts, filters,
// hidden rows. Kept as JSON under the key "window".
class ViewState {
public:
    explicit ViewState(Preferences& preferences);

    std::optional<std::string> text(const std::string& name) const;
    void setText(const std::string& name, const std::string& text);
    bool flag(const std::string& name, bool usually = false) const;
    void setFlag(const std::string& name, bool flag);

private:
    Preferences& m_preferences;
    std::map<std::string, std::string> m_texts;
};

} // namespace Pallisande
