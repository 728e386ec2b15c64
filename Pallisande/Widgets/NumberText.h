#pragma once

#include "Base/Decimal.h"

#include <QLocale>
#include <QString>

#include <optional>

namespace Pallisande {

// How a number may be typed in one field.
struct NumberSyntax {
    QLocale locale;
    // A single mark of the locale's groups, before three digits, groups in amounts of money ("1,234"). In
    // rates, prices, percents and quantities it would make a thousandfold error of a slip.
    bool readsSingleGroup = false;
    QString unit; // May follow the number: "%", "EUR".
};

struct ReadNumber {
    std::optional<Base::Decimal> value;
    bool isReinterpreted = false; // A single mark was taken for grouping: show what was understood.
};

// Exactly what was typed, or nothing. Marks are never dropped to make sense of a text.
ReadNumber readNumber(const QString& text, const NumberSyntax& syntax);

// A whole number, 0 or more; every mark groups.
ReadNumber readWholeNumber(const QString& text, const NumberSyntax& syntax);

// As a field shows it, to be read back the same: the locale's decimal mark and no groups.
QString fieldText(const Base::Decimal& value, const QLocale& locale, int places = 0);

// “Read as 1,234.”
QString readAs(const Base::Decimal& value, const QLocale& locale);

} // namespace Pallisande
