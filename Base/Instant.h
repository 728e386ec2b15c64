#pragma once

#include <compare>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace Base {

// A point in time: milliseconds since 1970-01-01 00:00:00 UTC, within the years 1 to 9999.
struct Instant {
    std::int64_t milliseconds = 0;

    static Instant now(); // Only `main` calls this; everything else is handed its time.

    // ISO 8601 internet date-time text (RFC 3339) with or without fractions of a second, "Z" or an offset.
    static std::optional<Instant> parse(std::string_view text);

    std::string toString() const; // "2026-03-09T14:05:31.250Z"
    void appendTo(std::string& text) const;
    std::string toSecondsString() const; // "2026-03-09T14:05:31Z"

    // The instant moved, but never out of the years 1 to 9999.
    Instant plusMilliseconds(std::int64_t amount) const;

    auto operator<=>(const Instant&) const = default;
};

inline constexpr Instant earliestInstant { -62'135'596'800'000 };
inline constexpr Instant latestInstant { 253'402'300'799'999 };

// Whether `year` is a leap year and the month has the day (proleptic Gregorian calendar).
bool isValidDate(int year, unsigned month, unsigned day);

} // namespace Base

template <> struct std::hash<Base::Instant> {
    std::size_t operator()(const Base::Instant& instant) const
    {
        return std::hash<std::int64_t> {}(instant.milliseconds);
    }
};
