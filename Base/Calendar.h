#pragma once

#include "Base/Instant.h"

#include <optional>
#include <string>
#include <string_view>

namespace date {
class time_zone;
}

namespace Base {

// A calendar day without a time zone.
struct Day {
    int year = 1970;
    unsigned month = 1;
    unsigned day = 1;

    static std::optional<Day> parse(std::string_view text); // "2026-03-09"
    std::string toString() const;
    Day plusDays(std::int64_t days) const; // Stays within the years 1 to 9999.

    auto operator<=>(const Day&) const = default;
};

// The Gregorian calendar of one time zone: which day an instant falls on, and where days begin. It is handed
// to whatever needs it, never global.
class Calendar {
public:
    struct Components {
        Day day;
        int hour = 0;
        int minute = 0;
        int second = 0;
    };

    // The zone of an IANA identifier ("Europe/Berlin"); nothing when the system doesn't know it.
    static std::optional<Calendar> named(std::string_view zone);
    static Calendar utc();
    // The computer's own: the TZ variable when it names a zone, else what the system is set to, else UTC.
    static Calendar system();

    std::string zone() const; // The IANA identifier.

    Day day(Instant instant) const;
    Components components(Instant instant) const;
    // Where the day begins: midnight, or the first moment after it where clocks jump over midnight.
    Instant startOfDay(Instant instant) const;
    Instant startOfDay(Day day) const;
    // How a day without a time is stored: its local noon, which no change of zone or clock moves to another
    // day.
    Instant noon(Day day) const;
    Instant noon(Instant instant) const { return noon(day(instant)); }
    // Whole calendar days from the day of `from` to the day of `to`.
    std::int64_t daysBetween(Instant from, Instant to) const;
    // The instant of a local time; the earlier of two, and moved forward where clocks jump over it.
    Instant instant(Day day, int hour, int minute) const;

private:
    explicit Calendar(const date::time_zone* zone)
        : m_zone(zone)
    {
    }

    const date::time_zone* m_zone; // Null is UTC without the zone data.
};

// When and where an operation happens.
struct Moment {
    Instant now;
    Calendar calendar;
};

} // namespace Base
