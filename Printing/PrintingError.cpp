#include "Printing/PrintingError.h"

#include "Base/Text.h"

#include <fmt/format.h>

namespace Pallisande {

namespace {

std::string beginning(std::string_view text)
{
    constexpr std::size_t mostNamed = 30;
    const auto named = Base::firstCharacters(text, mostNamed);
    return std::string(named) + (named.size() < text.size() ? "…" : "");
}

} // namespace

PrintingError PrintingError::missingCharacters(std::string_view text)
{
    return { Case::missingCharacters,
        fmt::format(
            "No installed font has the characters “{}”; they would print as empty boxes.", beginning(text)) };
}

PrintingError PrintingError::textTooLong(std::string_view text)
{
    return { Case::tooLong, fmt::format("The text “{}” is too long to be printed.", beginning(text)) };
}

} // namespace Pallisande
