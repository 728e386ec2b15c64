#include "Pallisande/Model/Currencies.h"

#include <unicode/ucurr.h>
#include <unicode/uenum.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <memory>

namespace Pallisande {

namespace {

std::vector<Currency> listed()
{
    std::vector<Currency> found;
    auto status = U_ZERO_ERROR;
    const std::unique_ptr<UEnumeration, void (*)(UEnumeration*)> codes(
        ucurr_openISOCurrencies(UCURR_COMMON | UCURR_NON_DEPRECATED, &status), uenum_close);
    if (U_FAILURE(status))
        return found;
    while (const char16_t* const code = uenum_unext(codes.get(), nullptr, &status)) {
        std::int32_t length = 0;
        const char16_t* const name = ucurr_getName(code, "en", UCURR_LONG_NAME, nullptr, &length, &status);
        Currency currency;
        icu::UnicodeString(code).toUTF8String(currency.code);
        icu::UnicodeString(name, length).toUTF8String(currency.name);
        found.push_back(std::move(currency));
    }
    std::sort(found.begin(), found.end(),
        [](const Currency& left, const Currency& right) { return left.code < right.code; });
    return found;
}

} // namespace

const std::vector<Currency>& currencies()
{
    static const auto all = listed();
    return all;
}

} // namespace Pallisande
