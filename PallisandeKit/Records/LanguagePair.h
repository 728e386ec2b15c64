#pragma once

#include "Base/Fields.h"

#include <string>
#include <tuple>

namespace Pallisande {

// Language names or codes as the user typed them.
struct LanguagePair {
    std::string source;
    std::string target;

    std::string text() const; // "de → en", an empty side as "?", empty when both are.

    // Whether both sides are the same after trimming blanks and ignoring letter case.
    bool matches(const LanguagePair& other) const;

    bool operator==(const LanguagePair&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("source", &LanguagePair::source),
            Base::field("target", &LanguagePair::target),
        };
    }
};
static_assert(Base::listsEveryMember<LanguagePair>);

} // namespace Pallisande
