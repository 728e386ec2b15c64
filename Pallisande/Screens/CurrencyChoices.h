#pragma once

#include "Pallisande/Model/Currencies.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/CodeBox.h"

namespace Pallisande {

// For a CodeBox: “EUR · Euro”.
inline CodeBox::Choices currencyChoices()
{
    CodeBox::Choices choices;
    for (const auto& [code, name] : currencies())
        choices.emplace_back(qt(code), QStringLiteral("%1 · %2").arg(qt(code), qt(name)));
    return choices;
}

} // namespace Pallisande
