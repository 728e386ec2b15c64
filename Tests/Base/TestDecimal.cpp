#include "Base/Decimal.h"

#include <gtest/gtest.h>

#include <compare>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <type_traits>
#include <unistd.h>
#include <vector>

using Base::Decimal;

namespace {

static_assert(!std::is_constructible_v<Decimal, double> && !std::is_constructible_v<Decimal, float>);

Decimal decimal(std::string_view text)
{
    const auto value = Decimal::parse(text);
    EXPECT_TRUE(value) << text;
    return value.value_or(Decimal());
}

std::string zeros(std::size_t count) { return std::string(count, '0'); }

// A number in the making, so that others can be made to fit it: half a unit of its last digit, for example.
struct Number {
    bool negative;
    std::string digits;
    int exponent;

    std::string text() const { return (negative ? "-" : "") + digits + "e" + std::to_string(exponent); }
};

// Draws operands, mostly from where rounding and limits are at stake.
class Operands {
public:
    int below(int limit) { return static_cast<int>(m_random() % static_cast<unsigned>(limit)); }
    int between(int first, int last) { return first + below(last - first + 1); }

    std::string digits(int count)
    {
        std::string result(1, static_cast<char>('1' + below(9)));
        while (result.size() < static_cast<std::size_t>(count))
            result += static_cast<char>('0' + below(10));
        return result;
    }

    Number number()
    {
        const bool negative = below(3) == 0;
        switch (below(9)) {
        case 0:
        case 1: // Money, rates and weights.
            return { negative, digits(between(1, 9)), between(-4, 0) };
        case 2: // What doesn't fit in 64 bits.
            return { negative, digits(38), between(-60, 20) };
        case 3:
            return { negative, digits(between(1, 38)), between(-128, -120) };
        case 4:
            return { negative, digits(between(1, 38)), between(120, 127) };
        case 5: // Ties and what just isn't one.
            return { negative, digits(between(1, 20)) + (below(2) ? "5" + zeros(9) : "4999999999"),
                between(-40, 0) };
        case 6: { // Trailing zeros.
            const int count = between(1, 10);
            return { negative, digits(count) + zeros(static_cast<std::size_t>(below(39 - count))),
                between(-128, 127) };
        }
        case 7:
            return { negative, std::to_string(5 * between(1, 5)), between(-3, 3) };
        default:
            return { negative, below(4) ? digits(between(15, 25)) : "0", between(-128, 127) };
        }
    }

    // A second operand, often related to the first.
    Number partner(Number first)
    {
        switch (below(7)) {
        case 0: // The same value or its opposite, spelled otherwise when there is room.
            first.negative ^= below(2) != 0;
            for (int count = below(5); count > 0 && first.digits.size() < 38 && first.exponent > -128;
                 --count) {
                first.digits += '0';
                --first.exponent;
            }
            return first;
        case 1: // Half a unit of the first one's last digit, or a little less.
            if (first.exponent > -110)
                return { below(2) != 0, below(2) ? "5" : "49999999999999",
                    first.exponent - (below(2) ? 1 : 14) };
            return number();
        case 2: // A neighbour.
            first.digits.back() = static_cast<char>('0' + below(10));
            return first;
        default:
            return number();
        }
    }

    // Somewhere among the digits of the number, or anywhere.
    int placesOf(const Number& value)
    {
        switch (below(8)) {
        case 0:
            return between(-175, 175);
        case 1:
            return below(20) ? between(0, 4)
                : below(2)   ? std::numeric_limits<int>::max()
                             : std::numeric_limits<int>::min();
        default:
            return -value.exponent - between(-2, static_cast<int>(value.digits.size()) + 1);
        }
    }

    // A number in any spelling, with up to 42 digits and beyond the exponents' range.
    std::string spelling()
    {
        std::string text = below(3) ? "" : below(2) ? "+" : "-";
        std::string number = zeros(static_cast<std::size_t>(below(3))) + digits(between(1, 42));
        if (below(3) == 0)
            number += zeros(static_cast<std::size_t>(below(40)));
        if (below(2)) {
            // Never at the end: "1." isn't a number.
            const int place = below(static_cast<int>(number.size()));
            number.insert(static_cast<std::size_t>(place), ".");
        }
        text += number;
        if (below(4) != 0) {
            const int exponent = below(2) ? between(-10, 10)
                : below(2)                ? between(-180, -80)
                                          : between(80, 180);
            text += (below(2) ? "e" : "E") + std::string(exponent >= 0 && below(2) ? "+" : "")
                + std::to_string(exponent);
        }
        return text;
    }

private:
    std::mt19937_64 m_random { 20'260'214 };
};

std::string sign(std::strong_ordering order) { return order < 0 ? "<" : order > 0 ? ">" : "="; }

// How the two compare; equality, hash and the opposite order must agree with it.
std::string comparison(const Decimal& left, const Decimal& right)
{
    const auto order = left <=> right;
    EXPECT_EQ(left == right, order == 0);
    EXPECT_TRUE(0 <=> order == (right <=> left));
    EXPECT_TRUE(order != 0 || left.hash() == right.hash());
    return sign(order);
}

TEST(Decimal, agreesWithPythonOnRandomOperations)
{
    if (std::system("command -v python3 >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "python3 isn't installed.";
    const auto path
        = std::filesystem::temp_directory_path() / ("TestDecimal-" + std::to_string(::getpid()) + ".txt");
    {
        std::ofstream file(path);
        Operands operands;
        for (int round = 0; round < 20'000; ++round) {
            const Number first = operands.number();
            const Number second = operands.partner(first);
            const Decimal left = decimal(first.text());
            const Decimal right = decimal(second.text());
            const auto write = [&](std::string_view operation, int number, const std::string& result) {
                file << operation << ' ' << first.text() << ' ' << second.text() << ' ' << number << ' '
                     << result << '\n';
            };
            write("add", 0, (left + right).toString());
            write("subtract", 0, (left - right).toString());
            write("multiply", 0, (left * right).toString());
            write("compare", 0, comparison(left, right));
            const int places = operands.placesOf(first);
            write("round", places, left.rounded(places).toString());
            if (!right.isZero()) {
                const int quotientPlaces
                    = operands.placesOf({ false, first.digits, first.exponent - second.exponent });
                write("divide", quotientPlaces, left.dividedBy(right, quotientPlaces).toString());
            }
            const int power = operands.placesOf(first);
            write("shift", power, left.shifted(power).toString());
            const int padding = operands.between(-1, 140);
            write("pad", padding, left.toString(padding));
            write("places", 0, std::to_string(left.places()));
            const Decimal near = operands.below(2) ? left.rounded(0) : left;
            const auto whole = near.toInteger();
            file << "whole " << near.toString() << " 0 0 " << (whole ? std::to_string(*whole) : "none")
                 << '\n';
            const std::string spelling = operands.spelling();
            const auto parsed = Decimal::parse(spelling);
            file << "parse " << spelling << " 0 0 " << (parsed ? parsed->toString() : "none") << '\n';
            EXPECT_TRUE(!parsed || Decimal::parse(parsed->toString()) == parsed) << spelling;
        }
        ASSERT_TRUE(file.flush()) << path;
    }
    const std::string script = PALLISANDE_TEST_SOURCES "/Base/DecimalOracle.py";
    EXPECT_EQ(std::system(("python3 \"" + script + "\" \"" + path.string() + "\"").c_str()), 0);
    std::filesystem::remove(path);
}

TEST(Decimal, readsEverySpellingOfANumber)
{
    struct {
        std::string text, plain;
    } const cases[] {
        { "0", "0" },
        { "-0", "0" },
        { "0e999", "0" },
        { "0.000e-99999999999999999999", "0" },
        { "007", "7" },
        { "+1", "1" },
        { ".5", "0.5" },
        { "-.5", "-0.5" },
        { "-12.50", "-12.5" },
        { "1e3", "1000" },
        { "1E+0003", "1000" },
        { "1.5e-3", "0.0015" },
        { "1" + zeros(5000) + "e-5000", "1" },
        { "0." + zeros(4999) + "1e+5000", "1" },
        { zeros(5000) + "12", "12" },
        { "1." + zeros(5000), "1" },
        { "1e-128", "0." + zeros(127) + "1" },
        { "10e-129", "0." + zeros(127) + "1" },
        { "1e164", "1" + zeros(164) }, // The exponent is too large, but 37 zeros fit in the coefficient.
        { std::string(38, '9') + "e127", std::string(38, '9') + zeros(127) },
    };
    for (const auto& [text, plain] : cases) {
        SCOPED_TRACE(text.substr(0, 60));
        std::string appended = "= ";
        decimal(text).appendTo(appended);
        EXPECT_EQ(appended, "= " + plain);
        EXPECT_EQ(decimal(plain), decimal(text));
    }
}

TEST(Decimal, refusesOtherTextAndWhatCannotBeHeldExactly)
{
    using namespace std::string_literals;
    const std::string cases[] { "", "-", "+", ".", "-.", "1.", "1.e5", ".e5", "e5", "1e", "1e+", "1e-",
        "1e5.0", "1ee5", "1e 5", "--1", "+-1", " 1", "1 ", "1 000", "1,5", "1.2.3", "0x1", "1f", "\u0661",
        "NaN", "inf", "1\0"s, "1e5\0"s, "1e-129", "1.5e-128", "1e165", "1e400", "1e-2147483648",
        "1e2147483648", "1e99999999999999999999", "1e-99999999999999999999", "0.1e18446744073709551617",
        "1" + zeros(5000), "0." + zeros(5000) + "1", "123456789012345678901234567890123456789",
        "1." + zeros(37) + "1", std::string(5000, '9'), std::string(5000, '9') + "e-5000" };
    for (const auto& text : cases)
        EXPECT_EQ(Decimal::parse(text), std::nullopt) << text.substr(0, 60);
}

TEST(Decimal, roundsHalfAwayFromZeroOnceAndOnlyWhereItMust)
{
    const Decimal nines = decimal(std::string(38, '9'));
    const Decimal largest = nines.shifted(127);
    const Decimal smallest = decimal("1e-128");
    const std::string smallestText = smallest.toString();
    struct {
        Decimal result;
        std::string expected;
    } const cases[] {
        { decimal("0.125").rounded(2), "0.13" },
        { decimal("-0.125").rounded(2), "-0.13" },
        { decimal("0.1249").rounded(2), "0.12" },
        { decimal("-0.004").rounded(2), "0" },
        { decimal("1250").rounded(-2), "1300" },
        { decimal("1.5").rounded(7), "1.5" },
        { decimal("5e164").rounded(-165), largest.toString() },
        { Decimal(2).dividedBy(3, 2), "0.67" },
        { Decimal(-1).dividedBy(8, 2), "-0.13" },
        { Decimal(10).dividedBy(4, -1), "0" },
        { Decimal(2).dividedBy(3, 1000), "0." + std::string(36, '6') + "67" },
        // …99495e-130: rounded at 10^-128 first and at 38 digits then, it would end in 100 and not in 99.
        { decimal("1" + zeros(35) + "99e-100") * decimal("1005e-30"),
            "0." + zeros(89) + "1005" + zeros(32) + "99" },
        { decimal("3" + zeros(36) + "1").dividedBy(2, 1), "15" + zeros(35) + "1" },
        { nines + decimal("0.4"), nines.toString() },
        { nines + decimal("0.5"), "1" + zeros(38) },
        { nines * nines, std::string(37, '9') + "8" + zeros(38) },
        { decimal("12345678901234567890") * decimal("1e30"), "12345678901234567890" + zeros(30) },
        // 39 digits, but the last is a zero.
        { decimal("25000000000000000000") * decimal("20000000000000000001"),
            "500000000000000000025000000000000000000" },
        { decimal("1e100") - decimal("1e-100"), "1" + zeros(100) },
        { smallest * decimal("0.5"), smallestText },
        { smallest * decimal("0.4999"), "0" },
        { smallest.shifted(-1), "0" },
        { -smallest.dividedBy(2, 200), "-" + smallestText },
        { smallest.shifted(292), "1" + zeros(164) },
        { largest + largest, largest.toString() },
        { largest + decimal("5e126"), largest.toString() },
        { -largest - largest, "-" + largest.toString() },
        { largest * largest, largest.toString() },
        { decimal("-1e164").shifted(1), "-" + largest.toString() },
        { largest.dividedBy(smallest, 0), largest.toString() },
        { Decimal(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808" },
        { Decimal::ofParts(-1234, -2).magnitude(), "12.34" },
    };
    for (const auto& [result, expected] : cases)
        EXPECT_EQ(result.toString(), expected);
}

TEST(Decimal, padsTextButNeverRoundsIt)
{
    struct {
        std::string text;
        int places;
        std::string padded;
    } const cases[] {
        { "12.5", 2, "12.50" },
        { "12", 2, "12.00" },
        { "1200", 2, "1200.00" },
        { "-0.125", 2, "-0.125" },
        { "-0", 2, "0.00" },
        { "0", 0, "0" },
        { "-0.05", 3, "-0.050" },
        { "7", -3, "7" },
    };
    for (const auto& [text, places, padded] : cases)
        EXPECT_EQ(decimal(text).toString(places), padded);
}

TEST(Decimal, ordersByValueAndIgnoresSpelling)
{
    const std::vector<std::vector<std::string>> ascending {
        { "-99999999999999999999999999999999999999e127" },
        { "-1e164", "-10e163", "-10000000000000000000000000000000000000e127" },
        { "-1", "-1.0", "-100e-2" },
        { "-1e-128" },
        { "0", "-0", "0.00", "0e127", "-0e-128" },
        { "1e-128", "10e-129" },
        { "0.1", "0.10", "1" + zeros(70) + "e-71" },
        { "0.10000000000000000000000000000000000001" },
        { "3402823669209384634634", "3402823669209384634634.0000000000000000" },
        { "1e100" },
    };
    for (std::size_t left = 0; left < ascending.size(); ++left) {
        for (std::size_t right = 0; right < ascending.size(); ++right) {
            for (const auto& one : ascending[left]) {
                for (const auto& other : ascending[right])
                    EXPECT_EQ(comparison(decimal(one), decimal(other)), sign(left <=> right))
                        << one << " and " << other;
            }
        }
    }
    const Decimal negativeZero = -Decimal::ofParts(0, 50);
    EXPECT_EQ(comparison(negativeZero, Decimal(0)), "=");
    EXPECT_EQ(negativeZero.toString(), "0");
    EXPECT_FALSE(negativeZero.isNegative());
}

TEST(Decimal, givesWholeNumbersOfSixtyFourBits)
{
    struct {
        std::string text;
        std::optional<std::int64_t> whole;
    } const cases[] {
        { "9223372036854775807.000", std::numeric_limits<std::int64_t>::max() },
        { "9223372036854775808", std::nullopt },
        { "-9223372036854775808", std::numeric_limits<std::int64_t>::min() },
        { "-9223372036854775809", std::nullopt },
        { "18446744073709551616", std::nullopt },
        { "1e18", 1'000'000'000'000'000'000 },
        { "1e100", std::nullopt },
        { "-12.00", -12 },
        { "0.5", std::nullopt },
        { "-0e-7", 0 },
    };
    for (const auto& [text, whole] : cases)
        EXPECT_EQ(decimal(text).toInteger(), whole) << text;
}

TEST(DecimalDeathTest, stopsTheProgramAtADivisionByZero)
{
    EXPECT_DEATH(Decimal(1).dividedBy(decimal("0.00"), 2), "divided by zero");
}

} // namespace
