#include "Printing/PrintingError.h"

#include "Base/Text.h"

#include <fmt/format.h>

namespace Pallisande {

PrintingError PrintingError::missingCharacters(std::string_view text)
{
    constexpr std::size_t mostNamed = 30;
    const auto named = Base::firstCharacters(text, mostNamed);
    return { Case::missingCharacters,
        fmt::format("No installed font has the characters “{}{}”; they would print as empty boxes.", named,
            named.size() < text.size() ? "…" : "") };
}

} // namespace Pallisande
