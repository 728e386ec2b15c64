#include "Pallisande/Model/Formats.h"

#include "TamberlinKit/Quotes/Money.h"

#include <fmt/format.h>
#include <unicode/decimfmt.h>

#include <algorithm>
#include <cstdlib>
#include <memory>

namespace Pallisande {

namespace {

constexpr std::string_view minus = "−", noBreakSpace = "\u00A0";
constexpr std::string_view months[] { "Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct",
    "Nov", "Dec" };
constexpr std::string_view weekDays[] { "Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat" };
constexpr int mostRatePlaces = 6, mostPercentPlaces = 4;
constexpr std::int64_t minute = 60'000, hour = 60 * minute;

std::string_view month(Base::Day day) { return months[day.month - 1]; }

// 0 is Sunday (Sakamoto's method).
std::size_t weekDayOf(Base::Day day)
{
    constexpr int shifts[] { 0, 3, 2, 5, 0, 3, 5, 1, 4, 6, 2, 4 };
    const int year = day.month < 3 ? day.year - 1 : day.year;
    const int days
        = year + year / 4 - year / 100 + year / 400 + shifts[day.month - 1] + static_cast<int>(day.day);
    return static_cast<std::size_t>(days % 7);
}

std::string languageName(const std::string& tag)
{
    constexpr std::size_t longestCode = 3;
    auto status = U_ZERO_ERROR;
    const auto locale = icu::Locale::forLanguageTag(tag, status);
    if (U_FAILURE(status) || std::string_view(locale.getLanguage()).size() > longestCode)
        return tag; // A name already.
    icu::UnicodeString name;
    std::string text;
    return locale.getDisplayName(icu::Locale::getEnglish(), name).toUTF8String(text);
}

} // namespace

Formats::Formats(const QLocale& locale)
    : m_group(locale.groupSeparator().toStdString())
    , m_decimal(locale.decimalPoint().toStdString())
    , m_hasTwelveHours(
          locale.timeFormat(QLocale::ShortFormat).contains(QLatin1Char('a'), Qt::CaseInsensitive))
{
    // Qt knows the sign, ICU where it stands: "25%", "25 %", "%25".
    auto status = U_ZERO_ERROR;
    const std::unique_ptr<icu::NumberFormat> format(
        icu::NumberFormat::createPercentInstance(icu::Locale(locale.name().toLatin1().data()), status));
    const auto* const percent = dynamic_cast<const icu::DecimalFormat*>(format.get());
    icu::UnicodeString affix;
    if (percent && U_SUCCESS(status)) {
        percent->getPositivePrefix(affix).toUTF8String(m_beforePercent);
        percent->getPositiveSuffix(affix).toUTF8String(m_afterPercent);
    } else {
        m_afterPercent = "%";
    }
}

std::string Formats::number(const Base::Decimal& value, int places) const
{
    auto digits = value.magnitude().toString(places);
    const auto point = std::min(digits.find('.'), digits.size());
    auto fraction = digits.substr(point);
    if (!fraction.empty())
        fraction.replace(0, 1, m_decimal);
    digits.resize(point);
    for (auto at = static_cast<std::ptrdiff_t>(point) - 3; at > 0; at -= 3)
        digits.insert(static_cast<std::size_t>(at), m_group);
    return (value.isNegative() ? std::string(minus) : "") + digits + fraction;
}

std::string Formats::count(std::int64_t count) const { return number(Base::Decimal(count)); }

std::string Formats::amount(const Base::Decimal& value, std::string_view currency) const
{
    return number(value, Tamberlin::Money::minorDigits(currency));
}

std::string Formats::money(const Base::Decimal& value, std::string_view currency) const
{
    return fmt::format("{}{}{}", amount(value, currency), noBreakSpace, currency);
}

std::string Formats::rate(const Base::Decimal& rate) const { return number(rate.rounded(mostRatePlaces), 2); }

std::string Formats::exchangeRate(const Base::Decimal& rate) const
{
    return number(rate.rounded(mostRatePlaces), mostRatePlaces);
}

std::string Formats::percent(const Base::Decimal& percent) const
{
    return m_beforePercent + number(percent.rounded(mostPercentPlaces)) + m_afterPercent;
}

std::string Formats::time(const Base::Calendar::Components& at) const
{
    if (!m_hasTwelveHours)
        return fmt::format("{:02}:{:02}", at.hour, at.minute);
    return fmt::format("{}:{:02} {}", (at.hour + 11) % 12 + 1, at.minute, at.hour < 12 ? "AM" : "PM");
}

std::string Formats::day(Base::Day day) { return fmt::format("{} {} {}", day.day, month(day), day.year); }

std::string Formats::shortDay(Base::Day day, Base::Day today)
{
    return day.year == today.year ? fmt::format("{} {}", day.day, month(day)) : Formats::day(day);
}

std::string Formats::weekDay(Base::Day day, Base::Day today)
{
    return fmt::format("{} {}", weekDays[weekDayOf(day)], shortDay(day, today));
}

std::string Formats::nearness(Base::Instant deadline, const Base::Moment& moment)
{
    const auto days = moment.calendar.daysBetween(moment.now, deadline);
    const auto distance = std::abs(deadline.milliseconds - moment.now.milliseconds);
    const bool isLate = deadline < moment.now;
    const auto text = [&](std::int64_t count, std::string_view one, std::string_view many) {
        const auto words = counted(count, one, many);
        return isLate ? words + " late" : "in " + words;
    };
    if (days == 1 && distance >= 12 * hour)
        return "tomorrow";
    if (std::abs(days) > 1 || (days == -1 && distance >= 12 * hour))
        return text(std::abs(days), "day", "days");
    if (distance >= hour)
        return text(distance / hour, "hour", "hours");
    return distance < minute ? (isLate ? "just now" : "now") : text(distance / minute, "minute", "minutes");
}

std::string counted(std::int64_t count, std::string_view one, std::string_view many)
{
    return fmt::format("{} {}", count, count == 1 ? one : many);
}

std::string spokenPair(const LanguagePair& pair)
{
    if (pair.source.empty())
        return pair.target.empty() ? "" : "to " + languageName(pair.target);
    if (pair.target.empty())
        return "from " + languageName(pair.source);
    return languageName(pair.source) + " to " + languageName(pair.target);
}

std::string cityOf(std::string_view zone)
{
    std::string city(zone.substr(std::min(zone.rfind('/') + 1, zone.size())));
    std::replace(city.begin(), city.end(), '_', ' ');
    return city;
}

} // namespace Pallisande
