#pragma once

#include "Base/Fields.h"

#include <optional>
#include <string>
#include <tuple>

namespace Tamberlin {

// Who quotes and invoices come from, as printed at their top.
struct SenderProfile {
    std::string name;
    std::string address; // Several lines.
    std::string email;
    std::string phone;
    std::string website;
    std::string taxID;
    std::optional<std::string> logo; // A PNG or JPEG image in Base64 (RFC 4648).

    bool operator==(const SenderProfile&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("name", &SenderProfile::name),
            Base::field("address", &SenderProfile::address),
            Base::field("email", &SenderProfile::email),
            Base::field("phone", &SenderProfile::phone),
            Base::field("website", &SenderProfile::website),
            Base::field("taxID", &SenderProfile::taxID),
            Base::field("logo", &SenderProfile::logo),
        };
    }
};
static_assert(Base::listsEveryMember<SenderProfile>);

} // namespace Tamberlin
