#pragma once

#include "Base/Decimal.h"

#include <string_view>

namespace Tamberlin::Money {

// How many digits of a currency stand after the point: 2 for most, 0 for JPY, 3 for KWD; 2 for a code that
// isn't known. The figures are those of Unicode CLDR's currency data, which is what currency formatters go
// by.
int minorDigits(std::string_view currency);

// To the currency's minor digits, half away from zero.
Base::Decimal roundToCurrency(const Base::Decimal& amount, std::string_view currency);

// Whether the text has the form of an ISO 4217 code: three capital letters.
bool isCurrencyCode(std::string_view text);

} // namespace Tamberlin::Money
