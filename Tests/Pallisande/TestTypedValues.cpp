#include "Pallisande/Widgets/DateText.h"
#include "Pallisande/Widgets/NumberText.h"

#include <gtest/gtest.h>

using namespace Pallisande;

namespace {

std::string read(const ReadNumber& number)
{
    if (!number.value)
        return "invalid";
    return number.value->toString() + (number.isReinterpreted ? " said" : "");
}

const char* const locales[] { "en_GB", "de_DE", "fr_FR", "de_CH" };

} // namespace

TEST(NumberText, readsExactlyWhatWasTypedOrNothing)
{
    // Plain numbers first: rates, prices, percents, quantities. Then amounts of money by locale, where they
    // are read otherwise.
    struct {
        const char *typed, *plain;
        std::array<const char*, 4> money {};
    } const cases[] {
        { "1.234,5", "1234.5" },
        { "1,234.5", "1234.5" },
        { "0,12", "0.12" },
        { "0.12", "0.12" },
        { "1,234", "1.234", { "1234 said", "1.234", "1.234", "1.234" } },
        { "1.234", "1.234", { "1.234", "1234 said", "1.234", "1.234" } },
        { "0,123", "0.123" },
        { "0.123", "0.123" },
        { "1234,567", "1234.567" },
        { "12,34", "12.34" },
        { "1’234.50", "1234.5" },
        { "1'234,50", "1234.5" },
        { "1 234,50", "1234.5" },
        { "1\u202F234,5", "1234.5" },
        { "1.234.567", "1234567" },
        { "1,234,567.8", "1234567.8" },
        { "1,234,56", "invalid" },
        { "1,23.4", "invalid" },
        { "1.2.3,4", "invalid" },
        { "0,123,456", "invalid" },
        { "1,234.5.6", "invalid" },
        { "12 EUR", "12" },
        { "12eur", "12" },
        { "12 USD", "invalid" },
        { "12%", "invalid" },
        { "−3,5", "-3.5" },
        { "-3.5", "-3.5" },
        { "3-5", "invalid" },
        { "007", "7" },
        { ".5", "0.5" },
        { "5,", "5" },
        { "1e3", "invalid" },
        { "12,3x", "invalid" },
        { "2+2", "invalid" },
        { ",", "invalid" },
        { "-", "invalid" },
        { "", "invalid" },
        { "１２．５", "12.5" },
        { "٣٫٥", "3.5" },
    };
    for (const auto& [typed, plain, money] : cases)
        for (std::size_t at = 0; at < 4; ++at) {
            SCOPED_TRACE(std::string(typed) + " in " + locales[at]);
            NumberSyntax syntax { QLocale(locales[at]), false, "EUR" };
            EXPECT_EQ(read(readNumber(typed, syntax)), plain);
            syntax.readsSingleGroup = true;
            EXPECT_EQ(read(readNumber(typed, syntax)), money[at] ? money[at] : plain);
        }
    EXPECT_EQ(read(readNumber("7,5 %", { QLocale("de"), false, "%" })), "7.5");
}

TEST(NumberText, whatAFieldShowsIsReadBackTheSame)
{
    const Base::Decimal values[] { 0, 1234, Base::Decimal::ofParts(1234, -3),
        Base::Decimal::ofParts(123456789, -2), Base::Decimal::ofParts(-5, -1),
        Base::Decimal::ofParts(1000, 0) };
    for (const auto* name : { "en_GB", "de_DE", "fr_FR", "de_CH", "ar_EG", "en_IN", "sv_SE" })
        for (const auto& value : values)
            for (const bool groups : { false, true }) {
                const QLocale locale(name);
                const auto text = fieldText(value, locale, 2);
                EXPECT_EQ(readNumber(text, { locale, groups, "" }).value, value)
                    << name << text.toStdString();
            }
    EXPECT_EQ(readAs(Base::Decimal::ofParts(12345675, -1), QLocale("en_GB")), "Read as 1,234,567.5.");
    EXPECT_EQ(readAs(1234, QLocale("de_CH")), "Read as 1’234.");
}

TEST(NumberText, wholeNumbersTakeEveryMarkForGrouping)
{
    const std::pair<const char*, const char*> cases[] { { "4812", "4812" }, { "4,812", "4812 said" },
        { "4.812", "4812 said" }, { "1,234,567", "1234567" }, { "4 812", "4812" }, { "1.5", "invalid" },
        { "0,123", "invalid" }, { "1,234.5", "invalid" }, { "-4", "invalid" }, { "12 x", "invalid" } };
    for (const auto& [typed, value] : cases)
        for (const auto* name : locales)
            EXPECT_EQ(read(readWholeNumber(typed, { QLocale(name), false, "" })), value) << typed << name;
}

TEST(DateText, readsDaysAsPeopleTypeThem)
{
    constexpr Base::Day today { 2026, 3, 9 };
    struct {
        const char *typed, *day, *american = nullptr; // In the order of en_US, where that is another.
    } const cases[] {
        { "2026-03-06", "2026-03-06" },
        { "2026-03-06T17:00:00Z", "2026-03-06" },
        { "20260306", "2026-03-06" },
        { "6 Mar 2026", "2026-03-06" },
        { "Fri 6 Mar 2026", "2026-03-06" },
        { "Friday, 6th of March 2026", "2026-03-06" },
        { "March 6, 2026", "2026-03-06" },
        { "2026 March 6", "2026-03-06" },
        { "6 mar", "2026-03-06" },
        { "6 March 27", "2027-03-06" },
        { "6.3.2026", "2026-03-06", "2026-06-03" },
        { "6.3.26", "2026-03-06", "2026-06-03" },
        { "6/3", "2026-03-06", "2026-06-03" },
        { "25.3.", "2026-03-25", "invalid" },
        { "3/25/2026", "invalid", "2026-03-25" },
        { "17", "2026-03-17" },
        { "today", "2026-03-09" },
        { "t", "2026-03-09" },
        { "tomorrow", "2026-03-10" },
        { "+3", "2026-03-12" },
        { "−10", "2026-02-27" },
        { "29 Feb 2028", "2028-02-29" },
        { "29 Feb 2026", "invalid" },
        { "31.4.2026", "invalid" },
        { "6 Mar 202", "invalid" },
        { "1234", "invalid" },
        { "Mar", "invalid" },
        { "soon", "invalid" },
        { "6 Mar Apr", "invalid" },
        { "", "invalid" },
    };
    for (const auto& [typed, expected, american] : cases) {
        const auto british = readDay(typed, today, QLocale("en_GB"));
        EXPECT_EQ(british ? british->toString() : "invalid", expected) << typed;
        const auto us = readDay(typed, today, QLocale("en_US"));
        EXPECT_EQ(us ? us->toString() : "invalid", american ? american : expected) << typed;
    }
    EXPECT_EQ(readDay("6. März 2026", today, QLocale("de_DE")), (Base::Day { 2026, 3, 6 }));
    EXPECT_EQ(readDay("6 févr. 2026", today, QLocale("fr_FR")), (Base::Day { 2026, 2, 6 }));
    EXPECT_EQ(readDay("2026年3月6日", today, QLocale("ja_JP")), (Base::Day { 2026, 3, 6 }));
    EXPECT_EQ(dayText(today), "Mon 9 Mar 2026");
    for (int days = 0; days < 800; days += 37)
        EXPECT_EQ(readDay(dayText(today.plusDays(days)), today, QLocale("de_DE")), today.plusDays(days));
}

TEST(DateText, readsTimes)
{
    const std::pair<const char*, int> cases[] { { "17", 1020 }, { "17:30", 1050 }, { "1730", 1050 },
        { "17.30", 1050 }, { "17h30", 1050 }, { "17h", 1020 }, { "930", 570 }, { "5pm", 1020 },
        { "5:30 p.m.", 1050 }, { "12 am", 0 }, { "12:15pm", 735 }, { "0:00", 0 }, { "24:00", -1 },
        { "13 pm", -1 }, { "9:75", -1 }, { "noon", -1 }, { "", -1 } };
    for (const auto& [typed, minutes] : cases)
        EXPECT_EQ(readTime(typed).value_or(-1), minutes) << typed;
    EXPECT_EQ(timeText(1050, QLocale("de_DE")), "17:30");
    EXPECT_EQ(timeText(5, QLocale("en_US")), "12:05 AM");
    EXPECT_EQ(readTime(timeText(750, QLocale("en_US"))), 750);
}
