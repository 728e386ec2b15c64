#pragma once

#include <compare>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace Base {

__extension__ using UInt128 = unsigned __int128;

// An exact base-10 number: 38 significant digits, exponents −128…127. Money, rates, weights and percentages
// are nothing else. Sums and products are exact; where 38 digits or the smallest exponent don't suffice, the
// result is rounded half away from zero, once, and beyond the largest number it stays at the largest. Nothing
// traps. Equality, order and hash ignore trailing zeros.
class Decimal {
public:
    static constexpr int digits = 38;
    static constexpr int smallestExponent = -128;
    static constexpr int largestExponent = 127;

    constexpr Decimal() = default;
    constexpr Decimal(std::int64_t value)
        : m_coefficient(value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value))
        , m_negative(value < 0)
    {
    }
    constexpr Decimal(int value)
        : Decimal(std::int64_t { value })
    {
    }
    Decimal(double) = delete; // Binary fractions never become money.

    // `coefficient` × 10^`exponent`: ofParts(1234, -2) is 12.34. The exponent must lie in the range above.
    static constexpr Decimal ofParts(std::int64_t coefficient, int exponent)
    {
        Decimal result(coefficient);
        result.m_exponent = static_cast<std::int16_t>(exponent);
        return result;
    }

    // Reads "-12.50", "1e3" (the number syntax of JSON, and a leading "+" or "." too). Nothing for any other
    // text and for a number that can't be held exactly.
    static std::optional<Decimal> parse(std::string_view text);

    // Plain and shortest: no exponent, no trailing zeros after the point, no "-0".
    std::string toString() const;
    // The same with at least `places` digits after the point: 12.5 with 2 is "12.50".
    std::string toString(int places) const;
    // Appends toString() without making a string of it.
    void appendTo(std::string& text) const;

    bool isZero() const { return m_coefficient == 0; }
    bool isNegative() const { return m_negative && m_coefficient != 0; }
    // The value as a whole number, when it is one that fits.
    std::optional<std::int64_t> toInteger() const;
    // How many digits stand after the point, trailing zeros left out.
    int places() const;

    // To `places` digits after the point (negative: before it), half away from zero.
    Decimal rounded(int places) const;
    // The quotient to `places` digits after the point, half away from zero. The divisor mustn't be zero.
    Decimal dividedBy(const Decimal& divisor, int places) const;
    // The value × 10^`power`, exactly: shifted(-2) is a hundredth.
    Decimal shifted(int power) const
    {
        const std::int64_t exponent = std::int64_t { m_exponent } + power;
        if (exponent >= smallestExponent && exponent <= largestExponent) [[likely]]
            return { m_coefficient, static_cast<int>(exponent), m_negative };
        return shiftedOutside(power);
    }
    Decimal magnitude() const { return { m_coefficient, m_exponent, false }; }

    Decimal operator-() const { return { m_coefficient, m_exponent, !m_negative }; }
    friend Decimal operator+(const Decimal& left, const Decimal& right)
    {
        if (left.m_exponent == right.m_exponent && left.m_negative == right.m_negative) {
            const UInt128 sum = left.m_coefficient + right.m_coefficient; // Can't wrap: both are below 10^38.
            if (sum < limit) [[likely]]
                return { sum, left.m_exponent, left.m_negative };
        }
        return alignedSum(left, right);
    }
    friend Decimal operator-(const Decimal& left, const Decimal& right) { return left + -right; }
    friend Decimal operator*(const Decimal& left, const Decimal& right)
    {
        const int exponent = left.m_exponent + right.m_exponent;
        if ((left.m_coefficient | right.m_coefficient) >> 64 == 0) [[likely]] {
            const UInt128 product = left.m_coefficient * right.m_coefficient;
            if (product < limit && exponent >= smallestExponent && exponent <= largestExponent) [[likely]]
                return { product, exponent, left.m_negative != right.m_negative };
        }
        return roundedProduct(left, right);
    }
    Decimal& operator+=(const Decimal& other) { return *this = *this + other; }
    Decimal& operator-=(const Decimal& other) { return *this = *this - other; }

    friend bool operator==(const Decimal& left, const Decimal& right);
    friend std::strong_ordering operator<=>(const Decimal& left, const Decimal& right)
    {
        if (left.m_exponent == right.m_exponent && !left.m_negative && !right.m_negative) [[likely]]
            return left.m_coefficient <=> right.m_coefficient;
        return compare(left, right);
    }

    std::size_t hash() const;

private:
    static constexpr std::uint64_t squareRootOfLimit = 10'000'000'000'000'000'000u;
    static constexpr UInt128 limit = UInt128(squareRootOfLimit) * squareRootOfLimit; // 10^38

    constexpr Decimal(UInt128 coefficient, int exponent, bool negative)
        : m_coefficient(coefficient)
        , m_exponent(static_cast<std::int16_t>(exponent))
        , m_negative(negative)
    {
    }

    // What the functions above leave over: different exponents or signs, long factors, and results that may
    // need rounding.
    static Decimal alignedSum(const Decimal& left, const Decimal& right);
    static Decimal roundedProduct(const Decimal& left, const Decimal& right);
    static std::strong_ordering compare(const Decimal& left, const Decimal& right);
    Decimal shiftedOutside(int power) const;

    // |value| = m_coefficient × 10^m_exponent; the coefficient is below 10^38. Zero may carry any sign and
    // exponent.
    UInt128 m_coefficient = 0;
    std::int16_t m_exponent = 0;
    alignas(8) bool m_negative = false; // Apart from the exponent: loading both at once right after storing
                                        // them stalls.
};

} // namespace Base

template <> struct std::hash<Base::Decimal> {
    std::size_t operator()(const Base::Decimal& value) const { return value.hash(); }
};
