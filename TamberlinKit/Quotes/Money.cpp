#include "TamberlinKit/Quotes/Money.h"

#include <algorithm>
#include <array>

namespace Tamberlin::Money {

namespace {

// Unicode CLDR 42, supplemental currency data; every other code has 2. Sorted.
constexpr std::array<std::string_view, 43> withoutDigits { "ADP", "AFN", "ALL", "BIF", "BYR", "CLP", "DJF",
    "ESP", "GNF", "IQD", "IRR", "ISK", "ITL", "JPY", "KMF", "KPW", "KRW", "LAK", "LBP", "LUF", "MGA", "MGF",
    "MMK", "MRO", "PYG", "RSD", "RWF", "SLL", "SOS", "STD", "SYP", "TMM", "TRL", "UGX", "UYI", "VND", "VUV",
    "XAF", "XOF", "XPF", "YER", "ZMK", "ZWD" };
constexpr std::array<std::string_view, 6> withThree { "BHD", "JOD", "KWD", "LYD", "OMR", "TND" };

template <std::size_t Size>
bool holds(const std::array<std::string_view, Size>& codes, std::string_view currency)
{
    return std::binary_search(codes.begin(), codes.end(), currency);
}

} // namespace

int minorDigits(std::string_view currency)
{
    if (currency == "EUR" || currency == "USD" || currency == "GBP") // Most calls ask for these.
        return 2;
    if (holds(withoutDigits, currency))
        return 0;
    if (holds(withThree, currency))
        return 3;
    return currency == "CLF" || currency == "UYW" ? 4 : 2;
}

Base::Decimal roundToCurrency(const Base::Decimal& amount, std::string_view currency)
{
    return amount.rounded(minorDigits(currency));
}

bool isCurrencyCode(std::string_view text)
{
    return text.size() == 3
        && std::all_of(text.begin(), text.end(), [](char c) { return c >= 'A' && c <= 'Z'; });
}

} // namespace Tamberlin::Money
