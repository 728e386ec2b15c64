#pragma once

#include <array>
#include <compare>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace Base {

// An RFC 4122 identifier. Written in upper case, read in either.
struct Uuid {
    std::uint64_t high = 0;
    std::uint64_t low = 0;

    static Uuid random(); // Version 4.
    static std::optional<Uuid> parse(std::string_view text);

    std::string toString() const;
    void appendTo(std::string& text) const;
    bool isNil() const { return high == 0 && low == 0; }

    auto operator<=>(const Uuid&) const = default;
};

} // namespace Base

template <> struct std::hash<Base::Uuid> {
    std::size_t operator()(const Base::Uuid& id) const { return id.high ^ (id.low * 0x9E3779B97F4A7C15u); }
};
