#include "Base/Decimal.h"

#include <boost/multiprecision/cpp_int.hpp>

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <limits>

namespace Base {
namespace {

constexpr auto powersOfTen = [] {
    std::array<UInt128, Decimal::digits + 1> powers { 1 };
    for (std::size_t power = 1; power < powers.size(); ++power)
        powers[power] = powers[power - 1] * 10;
    return powers;
}();

constexpr UInt128 powerOfTen(std::int64_t power) { return powersOfTen[static_cast<std::size_t>(power)]; }

constexpr bool fitsIn64Bits(UInt128 value) { return value >> 64 == 0; }

struct Parts {
    UInt128 coefficient;
    int exponent;
};

// An integer of fixed width on the stack, for the rare results that pass 128 bits on their way.
template <unsigned bits>
using Wide = boost::multiprecision::number<boost::multiprecision::cpp_int_backend<bits, bits,
    boost::multiprecision::unsigned_magnitude, boost::multiprecision::unchecked, void>>;

using Product = Wide<256>; // Two coefficients multiplied: 76 digits are 253 bits.
using AnySum = Wide<1024>; // 38 digits moved across all exponents, a range of 255: 293 digits are 974 bits.

template <typename Integer> Integer widePowerOfTen(std::int64_t power)
{
    Integer result = 1;
    for (; power > Decimal::digits; power -= Decimal::digits)
        result *= powerOfTen(Decimal::digits);
    return result *= powerOfTen(power);
}

template <typename Integer> std::int64_t digitCount(const Integer& value)
{
    // log10(2) ≈ 0.30103, close enough for 1,024 bits, leaves two counts; the comparison settles which it is.
    const std::int64_t estimate = (static_cast<std::int64_t>(msb(value)) + 1) * 30103 / 100000;
    return value >= widePowerOfTen<Integer>(estimate) ? estimate + 1 : estimate;
}

// Half up, which is away from zero for a magnitude.
template <typename Integer> Integer dividedHalfUp(Integer dividend, Integer divisor)
{
    const Integer quotient = dividend / divisor;
    const Integer remainder = dividend - quotient * divisor;
    return quotient + (remainder >= divisor - remainder ? 1 : 0);
}

UInt128 roundedQuotient(UInt128 dividend, UInt128 divisor)
{
    if (fitsIn64Bits(dividend) && fitsIn64Bits(divisor)) // What money needs, at a fraction of the time.
        return dividedHalfUp(static_cast<std::uint64_t>(dividend), static_cast<std::uint64_t>(divisor));
    return dividedHalfUp(dividend, divisor);
}

// Brings a coefficient of at most 10^38, whose exponent isn't too small, into the range: above the largest
// exponent zeros move into the coefficient while there is room, and what is still too large becomes the
// largest number.
Parts withinRange(UInt128 coefficient, std::int64_t exponent)
{
    if (coefficient == 0)
        return { 0, 0 };
    if (coefficient == powerOfTen(Decimal::digits)) {
        coefficient /= 10;
        ++exponent;
    }
    if (exponent <= Decimal::largestExponent)
        return { coefficient, static_cast<int>(exponent) };
    const std::int64_t zeros = exponent - Decimal::largestExponent;
    if (zeros < Decimal::digits && coefficient < powerOfTen(Decimal::digits - zeros))
        return { coefficient * powerOfTen(zeros), Decimal::largestExponent };
    return { powerOfTen(Decimal::digits) - 1, Decimal::largestExponent };
}

// Rounds once, where the coarsest of three limits lies: 38 digits, the smallest exponent and the one asked
// for. Two roundings in a row could turn 4.49 into 5.
template <typename Integer>
Parts roundedToFit(
    const Integer& value, std::int64_t exponent, std::int64_t coarsest = Decimal::smallestExponent)
{
    if (value == 0)
        return { 0, 0 };
    const std::int64_t count = digitCount(value);
    const std::int64_t lowest = std::max<std::int64_t>(coarsest, Decimal::smallestExponent);
    const std::int64_t dropped = std::max({ std::int64_t { 0 }, count - Decimal::digits, lowest - exponent });
    if (dropped > count)
        return { 0, 0 };
    if (dropped == 0)
        return withinRange(static_cast<UInt128>(value), exponent);
    const auto divisor = widePowerOfTen<Integer>(dropped);
    return withinRange(static_cast<UInt128>(Integer((value + divisor / 2) / divisor)), exponent + dropped);
}

template <typename Integer> Parts wideSum(UInt128 high, int gap, UInt128 low, int exponent, bool subtracts)
{
    Integer sum = widePowerOfTen<Integer>(gap) * high;
    if (subtracts)
        sum -= low;
    else
        sum += low;
    return roundedToFit(sum, exponent);
}

Parts withoutTrailingZeros(Parts parts)
{
    auto& [coefficient, exponent] = parts;
    if (coefficient == 0)
        return { 0, 0 };
    while (!fitsIn64Bits(coefficient)) {
        if (coefficient % 10 != 0)
            return parts;
        coefficient /= 10;
        ++exponent;
    }
    auto rest = static_cast<std::uint64_t>(coefficient);
    for (; rest % 10 == 0; rest /= 10)
        ++exponent;
    return { rest, exponent };
}

// Neither is zero.
std::strong_ordering compareMagnitudes(Parts left, Parts right)
{
    if (left.exponent < right.exponent)
        return 0 <=> compareMagnitudes(right, left);
    const int gap = left.exponent - right.exponent;
    UInt128 scaled = 0;
    if (gap > Decimal::digits || __builtin_mul_overflow(left.coefficient, powerOfTen(gap), &scaled))
        return std::strong_ordering::greater; // 2^128 and more, against less than 10^38.
    return scaled <=> right.coefficient;
}

void appendDigits(std::string& text, UInt128 value)
{
    constexpr int perWord = 19; // 10^19 is the largest power of ten in 64 bits.
    char buffer[20];
    const auto write = [&](std::uint64_t word, std::size_t width) {
        const auto length
            = static_cast<std::size_t>(std::to_chars(buffer, std::end(buffer), word).ptr - buffer);
        if (length < width)
            text.append(width - length, '0');
        text.append(buffer, length);
    };
    if (fitsIn64Bits(value))
        return write(static_cast<std::uint64_t>(value), 0);
    write(static_cast<std::uint64_t>(value / powerOfTen(perWord)), 0);
    write(static_cast<std::uint64_t>(value % powerOfTen(perWord)), perWord);
}

void appendPlain(std::string& text, Parts parts, bool negative, int places)
{
    const auto [coefficient, exponent] = withoutTrailingZeros(parts);
    if (negative)
        text += '-';
    const std::size_t start = text.size();
    appendDigits(text, coefficient);
    const int fraction = std::max(0, -exponent);
    if (exponent > 0)
        text.append(static_cast<std::size_t>(exponent), '0');
    else if (fraction > 0) {
        const auto after = static_cast<std::size_t>(fraction);
        if (const std::size_t length = text.size() - start; length <= after)
            text.insert(start, after + 1 - length, '0'); // One digit stands before the point.
        text.insert(text.size() - after, 1, '.');
    }
    if (places > fraction) {
        if (fraction == 0)
            text += '.';
        text.append(static_cast<std::size_t>(places - fraction), '0');
    }
}

bool isDigit(char character) { return character >= '0' && character <= '9'; }

// Gathers the digits of a number as they are read. Zeros wait until a digit follows them, so that neither
// leading nor trailing ones take up room, however many there are.
class Digits {
public:
    void add(char digit)
    {
        if (digit == '0') {
            m_zeros += m_coefficient != 0 ? 1 : 0;
            return;
        }
        m_count += m_zeros + 1;
        if (fit())
            m_coefficient = m_coefficient * powerOfTen(m_zeros + 1) + static_cast<unsigned>(digit - '0');
        m_zeros = 0;
    }

    bool fit() const { return m_count <= Decimal::digits; }
    UInt128 coefficient() const { return m_coefficient; }
    std::int64_t count() const { return m_count; }
    std::int64_t trailingZeros() const { return m_zeros; }

private:
    UInt128 m_coefficient = 0;
    std::int64_t m_count = 0;
    std::int64_t m_zeros = 0;
};

// What follows the "e", to the end of the text. Beyond any text's length the value no longer matters: no
// number of zeros before or after the point could bring such an exponent back into the range.
std::optional<std::int64_t> parseExponent(std::string_view text)
{
    constexpr std::int64_t beyondAnyText = 100'000'000'000'000'000;
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);
    if (text.empty() || !std::all_of(text.begin(), text.end(), isDigit))
        return std::nullopt;
    std::int64_t value = 0;
    for (const char character : text) {
        value = value * 10 + (character - '0');
        if (value >= beyondAnyText)
            break;
    }
    return negative ? -value : value;
}

} // namespace

std::optional<Decimal> Decimal::parse(std::string_view text)
{
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+'))
        text.remove_prefix(1);

    Digits significant;
    const auto readDigits = [&] {
        const auto end = std::find_if_not(text.begin(), text.end(), isDigit);
        const auto length = end - text.begin();
        std::for_each(text.begin(), end, [&](char digit) { significant.add(digit); });
        text.remove_prefix(static_cast<std::size_t>(length));
        return std::int64_t { length };
    };
    const std::int64_t whole = readDigits();
    std::int64_t exponent = 0;
    if (text.starts_with('.')) {
        text.remove_prefix(1);
        exponent = -readDigits();
        if (exponent == 0)
            return std::nullopt;
    } else if (whole == 0)
        return std::nullopt;
    if (text.starts_with('e') || text.starts_with('E')) {
        const auto written = parseExponent(text.substr(1));
        if (!written)
            return std::nullopt;
        exponent += *written;
    } else if (!text.empty())
        return std::nullopt;

    if (significant.count() == 0)
        return Decimal();
    exponent += significant.trailingZeros();
    const std::int64_t excess = std::max<std::int64_t>(0, exponent - largestExponent);
    if (!significant.fit() || exponent < smallestExponent || excess > digits - significant.count())
        return std::nullopt;
    return Decimal(
        significant.coefficient() * powerOfTen(excess), static_cast<int>(exponent - excess), negative);
}

std::string Decimal::toString() const { return toString(0); }

std::string Decimal::toString(int places) const
{
    std::string text;
    appendPlain(text, { m_coefficient, m_exponent }, isNegative(), places);
    return text;
}

void Decimal::appendTo(std::string& text) const
{
    appendPlain(text, { m_coefficient, m_exponent }, isNegative(), 0);
}

std::optional<std::int64_t> Decimal::toInteger() const
{
    const auto [coefficient, exponent] = withoutTrailingZeros({ m_coefficient, m_exponent });
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    UInt128 whole = 0;
    if (exponent < 0 || exponent > digits || __builtin_mul_overflow(coefficient, powerOfTen(exponent), &whole)
        || whole > UInt128(largest) + (m_negative ? 1 : 0))
        return std::nullopt;
    const auto bits = static_cast<std::uint64_t>(whole);
    return static_cast<std::int64_t>(m_negative ? 0 - bits : bits); // Wraps to the right value, −2^63 too.
}

int Decimal::places() const
{
    return std::max(0, -withoutTrailingZeros({ m_coefficient, m_exponent }).exponent);
}

Decimal Decimal::rounded(int places) const
{
    const std::int64_t exponent = -std::int64_t { places };
    const std::int64_t dropped = exponent - m_exponent;
    if (dropped <= 0)
        return *this;
    if (dropped > digits)
        return {};
    const auto [coefficient, held]
        = withinRange(roundedQuotient(m_coefficient, powerOfTen(dropped)), exponent);
    return { coefficient, held, m_negative };
}

Decimal Decimal::dividedBy(const Decimal& divisor, int places) const
{
    if (divisor.isZero()) {
        std::fputs("A decimal number was divided by zero.\n", stderr);
        std::abort();
    }
    if (isZero())
        return {};
    const bool negative = m_negative != divisor.m_negative;
    const std::int64_t exponent = -std::int64_t { places };
    const std::int64_t shift = m_exponent - divisor.m_exponent - exponent;
    if (exponent >= smallestExponent && exponent <= largestExponent && shift >= -digits && shift <= digits) {
        UInt128 dividend = m_coefficient;
        UInt128 divides = divisor.m_coefficient;
        UInt128& moved = shift >= 0 ? dividend : divides;
        if (!__builtin_mul_overflow(moved, powerOfTen(std::abs(shift)), &moved)) {
            const UInt128 quotient = roundedQuotient(dividend, divides);
            if (quotient < limit)
                return { quotient, static_cast<int>(exponent), negative };
        }
    }
    // One digit more than asked for, or than can be held, decides the rounding; what follows it doesn't
    // matter. At most 39 + 38 digits are divided, which fit in 256 bits just so.
    const std::int64_t most
        = digits + 1 + digitCount(Product(divisor.m_coefficient)) - digitCount(Product(m_coefficient));
    const std::int64_t scale = std::clamp<std::int64_t>(shift + 1, 0, most);
    const Product quotient = widePowerOfTen<Product>(scale) * m_coefficient / divisor.m_coefficient;
    const auto [coefficient, held]
        = roundedToFit(quotient, m_exponent - divisor.m_exponent - scale, exponent);
    return { coefficient, held, negative };
}

Decimal Decimal::shiftedOutside(int power) const
{
    const auto [coefficient, exponent]
        = roundedToFit(Product(m_coefficient), std::int64_t { m_exponent } + power);
    return { coefficient, exponent, m_negative };
}

Decimal Decimal::alignedSum(const Decimal& left, const Decimal& right)
{
    if (left.isZero())
        return right;
    if (right.isZero())
        return left;
    const bool leftIsHigh = left.m_exponent >= right.m_exponent;
    const Decimal& high = leftIsHigh ? left : right;
    const Decimal& low = leftIsHigh ? right : left;
    const int gap = high.m_exponent - low.m_exponent;
    const bool subtracts = left.m_negative != right.m_negative;

    UInt128 aligned = 0;
    if (gap <= digits && !__builtin_mul_overflow(high.m_coefficient, powerOfTen(gap), &aligned)) {
        if (subtracts && aligned < low.m_coefficient)
            return { low.m_coefficient - aligned, low.m_exponent, low.m_negative };
        UInt128 sum = aligned - low.m_coefficient;
        const bool overflows = !subtracts && __builtin_add_overflow(aligned, low.m_coefficient, &sum);
        if (!overflows && sum < limit)
            return { sum, low.m_exponent, high.m_negative };
    }
    // What comes here is larger on the high side or is added, so the sign is settled.
    const auto add = gap <= digits ? wideSum<Product> : wideSum<AnySum>;
    const auto [coefficient, exponent]
        = add(high.m_coefficient, gap, low.m_coefficient, low.m_exponent, subtracts);
    return { coefficient, exponent, high.m_negative };
}

Decimal Decimal::roundedProduct(const Decimal& left, const Decimal& right)
{
    const Product product = Product(left.m_coefficient) * right.m_coefficient;
    const auto [coefficient, exponent] = roundedToFit(product, left.m_exponent + right.m_exponent);
    return { coefficient, exponent, left.m_negative != right.m_negative };
}

bool operator==(const Decimal& left, const Decimal& right)
{
    if (left.m_exponent == right.m_exponent && left.m_negative == right.m_negative)
        return left.m_coefficient == right.m_coefficient;
    return (left <=> right) == 0;
}

std::strong_ordering Decimal::compare(const Decimal& left, const Decimal& right)
{
    const auto sign = [](const Decimal& value) { return value.isZero() ? 0 : value.m_negative ? -1 : 1; };
    const int leftSign = sign(left);
    if (const auto order = leftSign <=> sign(right); order != 0 || leftSign == 0)
        return order;
    const auto order = compareMagnitudes(
        { left.m_coefficient, left.m_exponent }, { right.m_coefficient, right.m_exponent });
    return leftSign > 0 ? order : 0 <=> order;
}

std::size_t Decimal::hash() const
{
    constexpr std::uint64_t golden = 0x9E3779B97F4A7C15u;
    const auto [coefficient, exponent] = withoutTrailingZeros({ m_coefficient, m_exponent });
    std::uint64_t mixed = static_cast<std::uint64_t>(coefficient);
    for (const std::uint64_t part :
        { static_cast<std::uint64_t>(coefficient >> 64),
            static_cast<std::uint64_t>(static_cast<std::int64_t>(exponent)), std::uint64_t { isNegative() } })
        mixed = (std::rotl(mixed, 29) ^ part) * golden;
    return mixed ^ mixed >> 32;
}

} // namespace Base
