#include "Base/Calendar.h"

#include "Base/Text.h"

#include <date/tz.h>

#include <algorithm>
#include <charconv>
#include <cstdlib>

namespace Base {

namespace {

using Milliseconds = std::chrono::milliseconds;

date::sys_time<Milliseconds> sysTime(Instant instant)
{
    return date::sys_time<Milliseconds>(Milliseconds(instant.milliseconds));
}

date::year_month_day civil(Day day)
{
    return date::year(day.year) / date::month(day.month) / date::day(day.day);
}

Day dayOf(date::year_month_day day)
{
    return { int(day.year()), unsigned(day.month()), unsigned(day.day()) };
}

date::local_time<Milliseconds> localTime(const date::time_zone* zone, Instant instant)
{
    if (!zone)
        return date::local_time<Milliseconds>(Milliseconds(instant.milliseconds));
    return zone->to_local(sysTime(instant));
}

Instant clamped(std::int64_t milliseconds)
{
    return { std::clamp(milliseconds, earliestInstant.milliseconds, latestInstant.milliseconds) };
}

// A system variable such as ":Europe/Berlin"; forms that name no zone of the database give nothing.
std::optional<Calendar> fromVariable(const char* value)
{
    if (!value)
        return std::nullopt;
    std::string_view name(value);
    if (name.starts_with(':'))
        name.remove_prefix(1);
    return Calendar::named(name);
}

} // namespace

std::optional<Day> Day::parse(std::string_view text)
{
    if (text.size() != 10 || text[4] != '-' || text[7] != '-')
        return std::nullopt;
    const auto number = [&](std::size_t from, std::size_t length) {
        int value = 0;
        for (const char c : text.substr(from, length)) {
            if (c < '0' || c > '9')
                return -1;
            value = value * 10 + (c - '0');
        }
        return value;
    };
    const int year = number(0, 4), month = number(5, 2), day = number(8, 2);
    if (year < 0 || month < 0 || day < 0
        || !isValidDate(year, static_cast<unsigned>(month), static_cast<unsigned>(day)))
        return std::nullopt;
    return Day { year, static_cast<unsigned>(month), static_cast<unsigned>(day) };
}

std::string Day::toString() const
{
    std::string text(10, '-');
    const auto put = [&](std::size_t at, unsigned value, std::size_t digits) {
        for (std::size_t place = digits; place > 0; --place, value /= 10)
            text[at + place - 1] = static_cast<char>('0' + value % 10);
    };
    put(0, static_cast<unsigned>(year), 4);
    put(5, month, 2);
    put(8, day, 2);
    return text;
}

Day Day::plusDays(std::int64_t days) const
{
    constexpr std::int64_t wholeRange = 10'000 * 366;
    const auto moved = date::sys_days(civil(*this)) + date::days(std::clamp(days, -wholeRange, wholeRange));
    const date::sys_days first(date::year(1) / 1 / 1), last(date::year(9999) / 12 / 31);
    return dayOf(std::clamp(moved, first, last));
}

std::optional<Calendar> Calendar::named(std::string_view zone)
{
    if (zone.empty())
        return std::nullopt;
    try {
        return Calendar(date::locate_zone(std::string(zone)));
    } catch (const std::runtime_error&) { // The library's way to say that there is no such zone.
        return std::nullopt;
    }
}

Calendar Calendar::utc() { return Calendar(nullptr); }

Calendar Calendar::system()
{
    if (const auto calendar = fromVariable(std::getenv("TZ")))
        return *calendar;
    try {
        return Calendar(date::current_zone());
    } catch (const std::exception&) { // No zone data or a broken setting: days then begin at midnight UTC.
        return utc();
    }
}

std::string Calendar::zone() const { return m_zone ? m_zone->name() : "UTC"; }

Day Calendar::day(Instant instant) const
{
    return dayOf(date::year_month_day(date::floor<date::days>(localTime(m_zone, instant))));
}

Calendar::Components Calendar::components(Instant instant) const
{
    const auto local = localTime(m_zone, instant);
    const auto midnight = date::floor<date::days>(local);
    const auto seconds = static_cast<int>(std::chrono::floor<std::chrono::seconds>(local - midnight).count());
    return { dayOf(date::year_month_day(midnight)), seconds / 3600, seconds / 60 % 60, seconds % 60 };
}

Instant Calendar::startOfDay(Instant instant) const { return startOfDay(day(instant)); }

Instant Calendar::startOfDay(Day day) const { return instant(day, 0, 0); }

Instant Calendar::noon(Day day) const { return instant(day, 12, 0); }

std::int64_t Calendar::daysBetween(Instant from, Instant to) const
{
    const auto first = date::floor<date::days>(localTime(m_zone, from));
    const auto second = date::floor<date::days>(localTime(m_zone, to));
    return (second - first).count();
}

Instant Calendar::instant(Day day, int hour, int minute) const
{
    const auto local = date::local_days(civil(day)) + std::chrono::hours(hour) + std::chrono::minutes(minute);
    if (!m_zone)
        return clamped(std::chrono::duration_cast<Milliseconds>(local.time_since_epoch()).count());
    const auto time
        = m_zone->to_sys(std::chrono::time_point_cast<Milliseconds>(local), date::choose::earliest);
    return clamped(time.time_since_epoch().count());
}

} // namespace Base
