#pragma once

#include "Pallisande/Model/Preferences.h"

#include <QSettings>

namespace Pallisande {

// The platform's preferences of this user: on Linux ~/.config/Pallisande/Pallisande.conf.
class SystemPreferences final : public Preferences {
public:
    SystemPreferences();
    explicit SystemPreferences(const QString& file); // For tests.

    std::optional<std::string> load(const std::string& key) const override;
    bool store(const std::string& key, const std::string& text) override;

private:
    void keepDamagedFile() const;

    QSettings m_settings;
};

} // namespace Pallisande
