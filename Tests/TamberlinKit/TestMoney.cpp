#include "TamberlinKit/Quotes/Money.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <unicode/ucurr.h>
#include <unicode/uenum.h>
#include <unicode/ustring.h>

namespace Money = Tamberlin::Money;

namespace {

TEST(Money, minorDigitsAreThoseOfTheUnicodeCurrencyDataForEveryCode)
{
    UErrorCode status = U_ZERO_ERROR;
    auto* const codes = ucurr_openISOCurrencies(UCURR_ALL, &status);
    ASSERT_TRUE(U_SUCCESS(status));
    int count = 0;
    for (const char* code = uenum_next(codes, nullptr, &status); code;
         code = uenum_next(codes, nullptr, &status)) {
        const std::u16string wide(code, code + std::string_view(code).size());
        const auto digits = ucurr_getDefaultFractionDigits(wide.c_str(), &status);
        ASSERT_TRUE(U_SUCCESS(status)) << code;
        EXPECT_EQ(Money::minorDigits(code), digits) << code;
        ++count;
    }
    uenum_close(codes);
    EXPECT_GT(count, 250); // The list holds the currencies of the past too.
}

TEST(Money, aCodeThatNobodyKnowsHasTwoDigits)
{
    for (const auto* code : { "", "ZZZ", "eur", "jpy", "EURO", "JP", "€" })
        EXPECT_EQ(Money::minorDigits(code), 2) << code;
}

TEST(Money, roundsHalfAwayFromZeroToTheCurrency)
{
    const struct {
        std::string amount, currency, rounded;
    } cases[] {
        { "2.345", "EUR", "2.35" },
        { "-2.345", "EUR", "-2.35" },
        { "2.3449999999999999999999999", "EUR", "2.34" },
        { "1.005", "EUR", "1.01" }, // No binary fraction holds it.
        { "1234.5", "JPY", "1235" },
        { "-0.5", "JPY", "-1" },
        { "0.4999", "JPY", "0" },
        { "1.2345", "KWD", "1.235" },
        { "0.00005", "CLF", "0.0001" },
        { "7", "EUR", "7" },
    };
    for (const auto& [amount, currency, rounded] : cases)
        EXPECT_EQ(Money::roundToCurrency(Base::Decimal::parse(amount).value(), currency).toString(), rounded)
            << amount;
}

TEST(Money, aCurrencyCodeIsThreeCapitalLetters)
{
    EXPECT_TRUE(Money::isCurrencyCode("EUR"));
    for (const auto* text : { "", "eur", "EU", "EURO", "E R", "ÉUR", "EU1" })
        EXPECT_FALSE(Money::isCurrencyCode(text)) << text;
}

} // namespace
