#pragma once

#include "Base/Uuid.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

namespace Benchmarks {

// Made-up values that are the same on every machine for one seed (splitmix64); the distributions of the
// standard library differ between systems.
class Dice {
public:
    explicit Dice(std::uint64_t seed)
        : m_state(seed)
    {
    }

    std::uint64_t next();
    std::int64_t between(std::int64_t low, std::int64_t high); // Both may come.
    bool chance(int percent) { return between(1, 100) <= percent; }
    Base::Uuid uuid() { return { next(), next() }; }
    std::string words(std::size_t count); // In several languages, so that not all of it is ASCII.
    template <typename Values> const auto& pick(const Values& values)
    {
        return values[static_cast<std::size_t>(between(0, static_cast<std::int64_t>(std::size(values)) - 1))];
    }

private:
    std::uint64_t m_state;
};

} // namespace Benchmarks
