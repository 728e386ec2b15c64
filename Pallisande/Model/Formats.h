#pragma once

#include "Base/Calendar.h"
#include "Base/Decimal.h"
#include "PallisandeKit/Records/LanguagePair.h"

#include <QLocale>

#include <cstdint>
#include <string>
#include <string_view>

namespace Pallisande {

// How figures and days are shown: English words, with the separators and the clock of the system's locale.
// Everything comes from exact decimals.
class Formats {
public:
    explicit Formats(const QLocale& locale = QLocale::system());

    std::string count(std::int64_t count) const; // "4,812"
    // Grouped, with at least `places` digits after the mark and a true minus.
    std::string number(const Base::Decimal& value, int places = 0) const;
    std::string amount(const Base::Decimal& value, std::string_view currency) const; // "1,234.50"
    std::string money(const Base::Decimal& value, std::string_view currency) const; // "1,234.50 EUR"
    std::string rate(const Base::Decimal& rate) const; // "0.12", "0.0835"
    std::string exchangeRate(const Base::Decimal& rate) const; // "1.171200"
    std::string percent(const Base::Decimal& percent) const; // "25%"

    std::string time(const Base::Calendar::Components& at) const; // "17:00", "5:00 PM"
    static std::string day(Base::Day day); // "6 Mar 2026"
    // "6 Mar", with the year when it isn't this one.
    static std::string shortDay(Base::Day day, Base::Day today);
    // "Fri 6 Mar", likewise.
    static std::string weekDay(Base::Day day, Base::Day today);

    // How near or late: "3 days late", "in 40 minutes", "tomorrow".
    static std::string nearness(Base::Instant deadline, const Base::Moment& moment);

private:
    std::string m_group, m_decimal, m_beforePercent, m_afterPercent;
    bool m_hasTwelveHours = false;
};

// "1 job", "3 jobs"
std::string counted(std::int64_t count, std::string_view one, std::string_view many);

// As it is said: "German to English (United States)"; what is no code stays as it is.
std::string spokenPair(const LanguagePair& pair);

// The city of an IANA zone: "Tokyo" of "Asia/Tokyo".
std::string cityOf(std::string_view zone);

} // namespace Pallisande
