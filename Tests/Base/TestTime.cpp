#include "Base/Calendar.h"
#include "Base/Instant.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <string_view>

using Base::Calendar;
using Base::Day;
using Base::Instant;

namespace {

Instant instant(std::string_view text)
{
    const auto value = Instant::parse(text);
    EXPECT_TRUE(value) << text;
    return value.value_or(Instant());
}

Day day(std::string_view text)
{
    const auto value = Day::parse(text);
    EXPECT_TRUE(value) << text;
    return value.value_or(Day());
}

Calendar calendar(std::string_view zone)
{
    const auto value = Calendar::named(zone);
    EXPECT_TRUE(value) << zone;
    return value.value_or(Calendar::utc());
}

TEST(Instant, readsInternetDatesAndWritesOneForm)
{
    const struct {
        std::string text, written;
    } cases[] {
        { "2026-03-09T14:05:31Z", "2026-03-09T14:05:31.000Z" },
        { "2026-03-09T14:05:31.25Z", "2026-03-09T14:05:31.250Z" },
        { "2026-03-09T14:05:31.0005Z", "2026-03-09T14:05:31.001Z" },
        { "2026-03-09T14:05:31.00049999999999Z", "2026-03-09T14:05:31.000Z" },
        { "2026-12-31T23:59:59.9999Z", "2027-01-01T00:00:00.000Z" },
        { "2026-03-09T14:05:31+05:45", "2026-03-09T08:20:31.000Z" },
        { "2026-03-09T14:05:31-0330", "2026-03-09T17:35:31.000Z" },
        { "2026-03-09t14:05:31z", "2026-03-09T14:05:31.000Z" },
        { "2016-12-31T23:59:60Z", "2017-01-01T00:00:00.000Z" },
        { "2024-02-29T00:00:00Z", "2024-02-29T00:00:00.000Z" },
        { "1969-12-31T23:59:59.999Z", "1969-12-31T23:59:59.999Z" },
        { "0001-01-01T00:00:00.000Z", "0001-01-01T00:00:00.000Z" },
        { "9999-12-31T23:59:59.999Z", "9999-12-31T23:59:59.999Z" },
    };
    for (const auto& [text, written] : cases) {
        EXPECT_EQ(instant(text).toString(), written);
        EXPECT_EQ(instant(text).toSecondsString(), written.substr(0, 19) + "Z");
    }
    EXPECT_EQ(instant("1970-01-01T00:00:00Z").milliseconds, 0);
}

TEST(Instant, refusesOtherTexts)
{
    for (const auto* text :
        { "", "2026-03-09", "2026-03-09 14:05:31Z", "2026-03-09T14:05:31", "2026-03-09T14:05Z",
            "2026-03-09T14:05:31.Z", "2026-03-09T14:05:31Z ", "2026-02-29T00:00:00Z", "2026-13-01T00:00:00Z",
            "2026-00-10T00:00:00Z", "2026-03-09T24:00:00Z", "2026-03-09T14:60:00Z", "2026-03-09T14:05:61Z",
            "2026-03-09T14:05:31+24:00", "2026-03-09T14:05:31+5", "26-03-09T14:05:31Z",
            "+2026-03-09T14:05:31Z", "0000-12-31T23:59:59Z", "0001-01-01T00:00:00+00:01",
            "9999-12-31T23:59:59-00:01", "9999-12-31T23:59:59.9999Z", "２０２６-03-09T14:05:31Z" })
        EXPECT_FALSE(Instant::parse(text)) << text;
}

TEST(Instant, everyMillisecondReadsBackAndMovesStayInRange)
{
    std::mt19937_64 random(1);
    std::uniform_int_distribution any(Base::earliestInstant.milliseconds, Base::latestInstant.milliseconds);
    for (int round = 0; round < 20'000; ++round) {
        const Instant value { any(random) };
        ASSERT_EQ(Instant::parse(value.toString()), value);
    }
    EXPECT_EQ(Base::latestInstant.plusMilliseconds(1), Base::latestInstant);
    EXPECT_EQ(Base::earliestInstant.plusMilliseconds(INT64_MIN), Base::earliestInstant);
    EXPECT_EQ(Base::latestInstant.plusMilliseconds(INT64_MAX), Base::latestInstant);
    EXPECT_EQ(Instant { 5 }.plusMilliseconds(-7).milliseconds, -2);
}

TEST(Day, readsItsOneFormAndCountsOn)
{
    for (const auto* text : { "2026-3-9", "2026-03-9x", "2026-02-29", "2026-04-31", "1900-02-29",
             "2026-00-01", "2026-01-00", "0000-01-01", "2026/01/01", "2026-01-011", "" })
        EXPECT_FALSE(Day::parse(text)) << text;
    const struct {
        std::string from;
        std::int64_t days;
        std::string to;
    } cases[] { { "2024-02-28", 1, "2024-02-29" }, { "2000-02-29", 366, "2001-03-01" },
        { "2026-01-01", -1, "2025-12-31" }, { "0001-01-01", -1, "0001-01-01" },
        { "9999-12-31", 1, "9999-12-31" }, { "2026-01-01", INT64_MAX, "9999-12-31" },
        { "2026-01-01", INT64_MIN, "0001-01-01" } };
    for (const auto& [from, days, to] : cases)
        EXPECT_EQ(day(from).plusDays(days).toString(), to);
}

TEST(Calendar, daysBeginAndEndWhereTheZoneSays)
{
    const struct {
        std::string zone, day, start, noon;
    } cases[] {
        { "UTC", "2026-03-09", "2026-03-09T00:00:00.000Z", "2026-03-09T12:00:00.000Z" },
        { "Europe/Berlin", "2026-03-29", "2026-03-28T23:00:00.000Z", "2026-03-29T10:00:00.000Z" }, // 23 hours
        { "Europe/Berlin", "2026-10-25", "2026-10-24T22:00:00.000Z", "2026-10-25T11:00:00.000Z" }, // 25 hours
        { "America/St_Johns", "2026-03-09", "2026-03-09T02:30:00.000Z", "2026-03-09T14:30:00.000Z" },
        { "Pacific/Kiritimati", "2026-03-09", "2026-03-08T10:00:00.000Z", "2026-03-08T22:00:00.000Z" },
        // Clocks jumped over midnight: the day begins at one o'clock.
        { "America/Sao_Paulo", "2018-11-04", "2018-11-04T03:00:00.000Z", "2018-11-04T14:00:00.000Z" },
        { "Africa/Cairo", "2026-04-24", "2026-04-23T22:00:00.000Z", "2026-04-24T09:00:00.000Z" },
        // Midnight came twice: the first one counts.
        { "America/Havana", "2025-11-02", "2025-11-02T04:00:00.000Z", "2025-11-02T17:00:00.000Z" },
        // The day that Samoa skipped begins with the next one.
        { "Pacific/Apia", "2011-12-30", "2011-12-30T10:00:00.000Z", "2011-12-30T10:00:00.000Z" },
        { "Pacific/Apia", "2011-12-31", "2011-12-30T10:00:00.000Z", "2011-12-30T22:00:00.000Z" },
        { "UTC", "0001-01-01", "0001-01-01T00:00:00.000Z", "0001-01-01T12:00:00.000Z" },
        { "UTC", "9999-12-31", "9999-12-31T00:00:00.000Z", "9999-12-31T12:00:00.000Z" },
    };
    for (const auto& [zone, text, start, noon] : cases) {
        SCOPED_TRACE(zone + " " + text);
        const auto places = calendar(zone);
        EXPECT_EQ(places.startOfDay(day(text)).toString(), start);
        EXPECT_EQ(places.noon(day(text)).toString(), noon);
    }
}

TEST(Calendar, anInstantFallsOnTheDayThatHoldsIt)
{
    const struct {
        std::string zone, instant, day;
        int hour, minute;
    } cases[] {
        { "Europe/Berlin", "2026-03-29T00:59:59.999Z", "2026-03-29", 1, 59 },
        { "Europe/Berlin", "2026-03-29T01:00:00Z", "2026-03-29", 3, 0 },
        { "Europe/Berlin", "2026-03-09T23:00:00Z", "2026-03-10", 0, 0 },
        { "America/Sao_Paulo", "2018-11-04T02:59:59.999Z", "2018-11-03", 23, 59 },
        { "America/Sao_Paulo", "2018-11-04T03:00:00Z", "2018-11-04", 1, 0 },
        { "Pacific/Apia", "2011-12-30T09:59:59.999Z", "2011-12-29", 23, 59 },
        { "Pacific/Apia", "2011-12-30T10:00:00Z", "2011-12-31", 0, 0 },
        { "America/St_Johns", "1969-12-31T23:59:00Z", "1969-12-31", 20, 29 },
        { "Asia/Kathmandu", "2026-03-09T18:15:00Z", "2026-03-10", 0, 0 },
    };
    for (const auto& [zone, at, expected, hour, minute] : cases) {
        SCOPED_TRACE(zone + " " + at);
        const auto places = calendar(zone);
        EXPECT_EQ(places.day(instant(at)).toString(), expected);
        const auto components = places.components(instant(at));
        EXPECT_EQ(components.day.toString(), expected);
        EXPECT_EQ(components.hour, hour);
        EXPECT_EQ(components.minute, minute);
        EXPECT_EQ(components.second, at.find("59.999") == std::string::npos ? 0 : 59);
    }
}

TEST(Calendar, countsCalendarDaysNotHours)
{
    const struct {
        std::string zone, from, to;
        std::int64_t days;
    } cases[] {
        { "Europe/Berlin", "2026-03-28T23:30:00Z", "2026-03-29T21:59:00Z",
            0 }, // 00:30 to 23:59 of a short day
        { "Europe/Berlin", "2026-03-28T22:59:00Z", "2026-03-29T22:00:00Z", 2 },
        { "Europe/Berlin", "2026-10-24T22:00:00Z", "2026-10-25T22:59:00Z", 0 },
        { "Europe/Berlin", "2026-10-24T21:59:00Z", "2026-10-25T23:00:00Z", 2 },
        { "UTC", "2024-02-28T23:59:59Z", "2024-03-01T00:00:00Z", 2 },
        { "UTC", "2026-03-09T00:00:00Z", "2026-03-08T23:59:59Z", -1 },
        { "Pacific/Apia", "2011-12-30T09:00:00Z", "2011-12-30T11:00:00Z", 2 },
        { "UTC", "0001-01-01T00:00:00Z", "9999-12-31T00:00:00Z", 3'652'058 },
    };
    for (const auto& [zone, from, to, days] : cases)
        EXPECT_EQ(calendar(zone).daysBetween(instant(from), instant(to)), days) << zone << " " << from;
}

TEST(Calendar, localTimesThatComeTwiceOrNeverAreSettled)
{
    const auto berlin = calendar("Europe/Berlin");
    EXPECT_EQ(berlin.instant(day("2026-10-25"), 2, 30).toString(), "2026-10-25T00:30:00.000Z");
    EXPECT_EQ(berlin.instant(day("2026-03-29"), 2, 30).toString(), "2026-03-29T01:00:00.000Z");
    EXPECT_EQ(berlin.instant(day("2026-03-29"), 3, 0).toString(), "2026-03-29T01:00:00.000Z");
}

TEST(Calendar, noonKeepsItsDayInEveryZoneAndAtTheEndsOfTime)
{
    for (const auto* zone :
        { "UTC", "Pacific/Kiritimati", "Pacific/Niue", "America/St_Johns", "Asia/Kathmandu" }) {
        const auto places = calendar(zone);
        for (const auto* text : { "0001-01-01", "1900-02-28", "2024-02-29", "2026-03-09", "9999-12-31" }) {
            EXPECT_EQ(places.day(places.noon(day(text))), day(text)) << zone << " " << text;
            EXPECT_EQ(places.noon(places.noon(day(text))), places.noon(day(text)));
            EXPECT_LE(places.startOfDay(day(text)), places.noon(day(text)));
        }
        for (const auto end : { Base::earliestInstant, Base::latestInstant }) {
            const auto noon = places.noon(end);
            EXPECT_TRUE(noon >= Base::earliestInstant && noon <= Base::latestInstant) << zone;
        }
    }
}

TEST(Calendar, isNamedOnlyByZonesOfTheDatabase)
{
    for (const auto* zone :
        { "", "Mars/Olympus", "../../etc/passwd", "/etc/localtime", "europe berlin", "Europe/" })
        EXPECT_FALSE(Calendar::named(zone)) << zone;
    EXPECT_EQ(calendar("America/New_York").zone(), "America/New_York");
    EXPECT_EQ(Calendar::utc().zone(), "UTC");
}

} // namespace
