#include "Base/Instant.h"

#include <date/date.h>

#include <algorithm>
#include <chrono>

namespace Base {

namespace {

constexpr std::int64_t millisecondsPerMinute = 60'000;
constexpr std::int64_t millisecondsPerDay = 86'400'000;

// Reads text from the left; a failed step leaves `ok` false.
struct Cursor {
    std::string_view text;
    bool ok = true;

    int number(std::size_t digits)
    {
        if (text.size() < digits)
            return fail();
        int value = 0;
        for (const char c : text.substr(0, digits)) {
            if (c < '0' || c > '9')
                return fail();
            value = value * 10 + (c - '0');
        }
        text.remove_prefix(digits);
        return value;
    }

    bool take(char wanted)
    {
        if (text.empty() || text.front() != wanted)
            return false;
        text.remove_prefix(1);
        return true;
    }

    void expect(char wanted)
    {
        if (!take(wanted))
            fail();
    }

    int fail()
    {
        ok = false;
        return 0;
    }
};

void writeDigits(char* at, std::int64_t value, int digits)
{
    for (int place = digits - 1; place >= 0; --place) {
        at[place] = static_cast<char>('0' + value % 10);
        value /= 10;
    }
}

// Milliseconds from ".25" and the like, rounded to the nearest; the cursor stands behind the point.
int fraction(Cursor& cursor)
{
    int milliseconds = 0, digits = 0;
    bool roundUp = false;
    while (!cursor.text.empty() && cursor.text.front() >= '0' && cursor.text.front() <= '9') {
        const int digit = cursor.text.front() - '0';
        if (digits < 3)
            milliseconds = milliseconds * 10 + digit;
        else if (digits == 3)
            roundUp = digit >= 5;
        ++digits;
        cursor.text.remove_prefix(1);
    }
    if (digits == 0)
        return cursor.fail();
    for (int place = digits; place < 3; ++place)
        milliseconds *= 10;
    return milliseconds + (roundUp ? 1 : 0);
}

// Minutes east of UTC from "Z", "+02:00" or "+0200".
int offsetMinutes(Cursor& cursor)
{
    if (cursor.take('Z') || cursor.take('z'))
        return 0;
    const bool west = cursor.take('-');
    if (!west)
        cursor.expect('+');
    const int hours = cursor.number(2);
    cursor.take(':');
    const int minutes = cursor.number(2);
    if (hours > 23 || minutes > 59)
        return cursor.fail();
    return (west ? -1 : 1) * (hours * 60 + minutes);
}

// "2026-03-09T14:05:31" into 19 characters at `at`; gives the milliseconds left over.
std::int64_t writeSeconds(char* at, std::int64_t milliseconds)
{
    const auto days = std::chrono::floor<date::days>(std::chrono::milliseconds(milliseconds));
    const date::year_month_day day { date::sys_days(days) };
    auto rest = milliseconds - days.count() * millisecondsPerDay;
    writeDigits(at, int(day.year()), 4);
    writeDigits(at + 5, unsigned(day.month()), 2);
    writeDigits(at + 8, unsigned(day.day()), 2);
    writeDigits(at + 11, rest / 3'600'000, 2);
    writeDigits(at + 14, rest / 60'000 % 60, 2);
    writeDigits(at + 17, rest / 1000 % 60, 2);
    at[4] = at[7] = '-';
    at[10] = 'T';
    at[13] = at[16] = ':';
    return rest % 1000;
}

} // namespace

bool isValidDate(int year, unsigned month, unsigned day)
{
    return year >= 1 && year <= 9999 && (date::year(year) / date::month(month) / date::day(day)).ok();
}

Instant Instant::now()
{
    const auto time = std::chrono::system_clock::now().time_since_epoch();
    return { std::chrono::duration_cast<std::chrono::milliseconds>(time).count() };
}

std::optional<Instant> Instant::parse(std::string_view text)
{
    Cursor cursor { text };
    const int year = cursor.number(4);
    cursor.expect('-');
    const int month = cursor.number(2);
    cursor.expect('-');
    const int day = cursor.number(2);
    if (!cursor.take('T') && !cursor.take('t'))
        return std::nullopt;
    const int hour = cursor.number(2);
    cursor.expect(':');
    const int minute = cursor.number(2);
    cursor.expect(':');
    const int second = cursor.number(2);
    const int milliseconds = cursor.take('.') ? fraction(cursor) : 0;
    const int offset = offsetMinutes(cursor);
    if (!cursor.ok || !cursor.text.empty() || hour > 23 || minute > 59 || second > 60
        || !isValidDate(year, static_cast<unsigned>(month), static_cast<unsigned>(day)))
        return std::nullopt;
    const auto days = date::sys_days(date::year(year) / month / day).time_since_epoch().count();
    const Instant instant { days * millisecondsPerDay + hour * std::int64_t { 3'600'000 }
        + (minute - offset) * millisecondsPerMinute + second * 1000 + milliseconds };
    if (instant < earliestInstant || instant > latestInstant)
        return std::nullopt;
    return instant;
}

std::string Instant::toString() const
{
    std::string text;
    appendTo(text);
    return text;
}

void Instant::appendTo(std::string& text) const
{
    char buffer[24];
    const auto rest = writeSeconds(buffer, milliseconds);
    buffer[19] = '.';
    writeDigits(buffer + 20, rest, 3);
    buffer[23] = 'Z';
    text.append(buffer, sizeof buffer);
}

std::string Instant::toSecondsString() const
{
    char buffer[20];
    writeSeconds(buffer, milliseconds);
    buffer[19] = 'Z';
    return std::string(buffer, sizeof buffer);
}

Instant Instant::plusMilliseconds(std::int64_t amount) const
{
    std::int64_t sum = 0;
    if (__builtin_add_overflow(milliseconds, amount, &sum))
        return amount < 0 ? earliestInstant : latestInstant;
    return { std::clamp(sum, earliestInstant.milliseconds, latestInstant.milliseconds) };
}

} // namespace Base
