#pragma once

#include "Pallisande/Model/AppSettings.h"
#include "Pallisande/Model/Preferences.h"

namespace Pallisande {

// The user's preferences while another library than their own is open: which folder is theirs and where its
// second backup goes holds for that one alone and stays as it was. Sample data remind of nothing, either.
class VisitingPreferences final : public Preferences {
public:
    VisitingPreferences(Preferences& own, bool isSample);

    std::optional<std::string> load(const std::string& key) const override;
    bool store(const std::string& key, const std::string& text) override;

private:
    Preferences& m_own;
    bool m_isSample;
};

} // namespace Pallisande
