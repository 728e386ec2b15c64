#pragma once

#include "Base/Checked.h"
#include "Base/Fields.h"

#include <cstdint>
#include <tuple>

namespace Tamberlin {

// The counts of a piece of text.
struct TextStats {
    std::int64_t words = 0;
    std::int64_t charactersNoSpaces = 0;
    std::int64_t charactersWithSpaces = 0;
    std::int64_t cjkCharacters = 0;
    std::int64_t segments = 0;

    TextStats& operator+=(const TextStats& other)
    {
        words = Base::Checked::add(words, other.words);
        charactersNoSpaces = Base::Checked::add(charactersNoSpaces, other.charactersNoSpaces);
        charactersWithSpaces = Base::Checked::add(charactersWithSpaces, other.charactersWithSpaces);
        cjkCharacters = Base::Checked::add(cjkCharacters, other.cjkCharacters);
        segments = Base::Checked::add(segments, other.segments);
        return *this;
    }
    friend TextStats operator+(TextStats left, const TextStats& right) { return left += right; }

    bool operator==(const TextStats&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("words", &TextStats::words, Base::Missing::fails),
            Base::field("charactersNoSpaces", &TextStats::charactersNoSpaces, Base::Missing::fails),
            Base::field("charactersWithSpaces", &TextStats::charactersWithSpaces, Base::Missing::fails),
            Base::field("cjkCharacters", &TextStats::cjkCharacters, Base::Missing::fails),
            Base::field("segments", &TextStats::segments, Base::Missing::fails),
        };
    }
};
static_assert(Base::listsEveryMember<TextStats>);

} // namespace Tamberlin
