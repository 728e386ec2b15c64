#include "Pallisande/Widgets/NumberText.h"

#include <QStringList>

#include <algorithm>

namespace Pallisande {

namespace {

constexpr QChar minus(u'\u2212');

bool isDropped(QChar character)
{
    return character.isSpace() || character == u'\'' || character == u'\u2019' || character == u'\u02BC';
}

// Digits, marks and signs in their plain forms, without what separates them.
QString plainForm(const QString& text)
{
    QString plain;
    for (const auto character : text) {
        if (isDropped(character))
            continue;
        if (const int digit = character.digitValue(); digit >= 0)
            plain += QChar(u'0' + digit);
        else if (character == minus || character == u'\uFF0D')
            plain += u'-';
        else if (character == u'\uFF0E' || character == u'\u066B') // Full width; Arabic decimal mark.
            plain += u'.';
        else if (character == u'\uFF0C' || character == u'\u066C') // Full width; Arabic group mark.
            plain += u',';
        else
            plain += character;
    }
    return plain;
}

// "1", "234" and "567": one to three digits, not a lone 0, and threes after them.
bool isGrouped(const QStringList& groups)
{
    return !groups.first().isEmpty() && groups.first().size() <= 3 && groups.first() != u'0'
        && std::all_of(groups.begin() + 1, groups.end(), [](const auto& group) { return group.size() == 3; });
}

struct Parts {
    bool isNegative = false;
    QString digits; // And marks.
};

std::optional<Parts> partsOf(const QString& text, const QString& unit)
{
    auto plain = plainForm(text);
    const auto plainUnit = plainForm(unit);
    if (!plainUnit.isEmpty() && plain.endsWith(plainUnit, Qt::CaseInsensitive))
        plain.chop(plainUnit.size());
    Parts parts;
    if (plain.startsWith(u'-') || plain.startsWith(u'+')) {
        parts.isNegative = plain.startsWith(u'-');
        plain.remove(0, 1);
    }
    bool hasDigit = false;
    for (const auto character : plain) {
        const bool isDigit = character >= u'0' && character <= u'9';
        if (!isDigit && character != u'.' && character != u',')
            return std::nullopt;
        hasDigit = hasDigit || isDigit;
    }
    parts.digits = plain;
    return hasDigit ? std::optional(parts) : std::nullopt;
}

ReadNumber decimal(
    const Parts& parts, const QString& whole, const QString& fraction, bool isReinterpreted = false)
{
    const auto text = (parts.isNegative ? "-0" : "0") + whole + (fraction.isEmpty() ? "" : "." + fraction);
    // Decimal::parse takes the number syntax of JSON, which has no leading zeros.
    auto digits = text.toStdString();
    const auto first = digits.find_first_of("0123456789");
    const auto point = std::min(digits.find('.'), digits.size());
    const auto kept = std::min(digits.find_first_not_of('0', first), point - 1);
    digits.erase(first, kept - first);
    const auto value = Base::Decimal::parse(digits);
    return { value, value && isReinterpreted };
}

} // namespace

ReadNumber readNumber(const QString& text, const NumberSyntax& syntax)
{
    const auto parts = partsOf(text, syntax.unit);
    if (!parts)
        return {};
    const auto& digits = parts->digits;
    const auto points = digits.count(u'.'), commas = digits.count(u',');
    if (points + commas == 0)
        return decimal(*parts, digits, {});
    const auto lastMark = std::max(digits.lastIndexOf(u'.'), digits.lastIndexOf(u','));
    const auto last = digits[lastMark];
    const QChar other = last == u'.' ? u',' : u'.';
    const auto whole = digits.left(lastMark), fraction = digits.mid(lastMark + 1);
    if (points > 0 && commas > 0) {
        const auto groups = whole.split(other);
        if (digits.count(last) != 1 || !isGrouped(groups))
            return {};
        return decimal(*parts, groups.join(QString()), fraction);
    }
    const auto groups = digits.split(last);
    if (groups.size() > 2)
        return isGrouped(groups) ? decimal(*parts, groups.join(QString()), {}) : ReadNumber {};
    const bool isGroupMark = syntax.locale.groupSeparator() == last && syntax.locale.decimalPoint() != last;
    if (syntax.readsSingleGroup && isGroupMark && isGrouped(groups))
        return decimal(*parts, groups.join(QString()), {}, true);
    return decimal(*parts, whole, fraction);
}

ReadNumber readWholeNumber(const QString& text, const NumberSyntax& syntax)
{
    const auto parts = partsOf(text, syntax.unit);
    if (!parts || parts->isNegative)
        return {};
    const auto& digits = parts->digits;
    if (!digits.contains(u'.') && !digits.contains(u','))
        return decimal(*parts, digits, {});
    if (digits.contains(u'.') && digits.contains(u','))
        return {};
    const auto groups = digits.split(digits.contains(u'.') ? u'.' : u',');
    return isGrouped(groups) ? decimal(*parts, groups.join(QString()), {}, groups.size() == 2)
                             : ReadNumber {};
}

QString fieldText(const Base::Decimal& value, const QLocale& locale, int places)
{
    auto text = QString::fromStdString(value.magnitude().toString(places));
    text.replace(u'.', locale.decimalPoint());
    return value.isNegative() ? minus + text : text;
}

QString readAs(const Base::Decimal& value, const QLocale& locale)
{
    auto text = QString::fromStdString(value.magnitude().toString());
    const auto point = text.indexOf(u'.');
    const auto end = point < 0 ? text.size() : point;
    text.replace(u'.', locale.decimalPoint());
    for (auto at = end - 3; at > 0; at -= 3)
        text.insert(at, locale.groupSeparator());
    return QStringLiteral("Read as %1.").arg(value.isNegative() ? minus + text : text);
}

} // namespace Pallisande
