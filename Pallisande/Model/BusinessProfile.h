#pragma once

#include "PallisandeKit/Ledger/Ledger.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>

namespace Pallisande {

class AppModel;

// The user's own business, as the settings edit it.
class BusinessProfile {
public:
    static constexpr std::int64_t logoLimit = 2'097'152; // Bytes; a logo has fewer.

    explicit BusinessProfile(AppModel& model)
        : m_model(model)
    {
    }

    bool edit(const std::string& name, const std::function<void(Profile&)>& change);
    bool setNextNumber(Ledger::Series series, std::int64_t next); // Of this year.
    std::int64_t nextNumber(Ledger::Series series) const;
    std::string nextText(Ledger::Series series) const; // "Next: INV-2026-008"

    void chooseLogo();
    bool setLogo(const std::filesystem::path& file);
    bool removeLogo();

private:
    AppModel& m_model;
};

} // namespace Pallisande
