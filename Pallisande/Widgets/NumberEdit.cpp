#include "Pallisande/Widgets/NumberEdit.h"

#include "TamberlinKit/Quotes/Money.h"

#include <QKeyEvent>

namespace Pallisande {

DecimalEdit::DecimalEdit(const QLocale& locale, QWidget* parent)
    : LineField(parent)
{
    m_syntax.locale = locale;
    setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    setWidthInCharacters(12);
}

void DecimalEdit::setCurrency(const QString& currency)
{
    m_currency = currency;
    m_syntax.readsSingleGroup = true;
    m_syntax.unit = currency;
    setPlaces(Tamberlin::Money::minorDigits(currency.toStdString()));
}

void DecimalEdit::setPlaces(int places)
{
    const bool wasPending = isPending();
    m_places = places;
    if (!wasPending)
        showCommitted();
}

void DecimalEdit::setValue(const std::optional<Base::Decimal>& value)
{
    const bool isAnother = value != m_value;
    m_value = value;
    valueWasSet(isAnother);
}

QString DecimalEdit::shown() const
{
    return m_value ? fieldText(*m_value, m_syntax.locale, m_places) : QString();
}

QString DecimalEdit::notRead(const QString& typed) const
{
    return QStringLiteral("“%1” isn’t a number.").arg(typed.trimmed());
}

LineField::Taken DecimalEdit::take(const QString& typed)
{
    if (typed.trimmed().isEmpty()) {
        if (!m_isOptional)
            return { .problem = QStringLiteral("A number is needed here.") };
        const bool isNew = m_value.has_value();
        m_value.reset();
        return { .isNew = isNew };
    }
    const auto number = read(typed);
    if (!number.value)
        return { .problem = notRead(typed) };
    if (!m_currency.isEmpty()) {
        const int most = Tamberlin::Money::minorDigits(m_currency.toStdString());
        if (number.value->places() > most)
            return { .problem = QStringLiteral("%1 has %2.")
                                    .arg(m_currency,
                                        most == 0       ? QStringLiteral("no decimals")
                                            : most == 1 ? QStringLiteral("1 decimal")
                                                        : QStringLiteral("%1 decimals").arg(most)) };
    }
    if (const auto problem = m_check ? m_check(*number.value) : QString(); !problem.isEmpty())
        return { .problem = problem };
    const bool isNew = m_value != number.value;
    m_value = number.value;
    return { .hint = number.isReinterpreted ? readAs(*m_value, m_syntax.locale) : QString(), .isNew = isNew };
}

void DecimalEdit::keyPressEvent(QKeyEvent* event)
{
    const bool isMark = event->key() == Qt::Key_Period || event->key() == Qt::Key_Comma;
    if (isMark && event->modifiers() == Qt::KeypadModifier && !isReadOnly()) {
        insert(m_syntax.locale.decimalPoint()); // Whatever the keypad is printed with.
        return;
    }
    LineField::keyPressEvent(event);
}

CountEdit::CountEdit(const QLocale& locale, QWidget* parent)
    : DecimalEdit(locale, parent)
{
    setRange(0, largest);
}

void CountEdit::setRange(std::int64_t least, std::int64_t most)
{
    setCheck([least, most](const Base::Decimal& value) {
        if (value < least || value > most)
            return QStringLiteral("A number from %1 to %2 is needed here.").arg(least).arg(most);
        return QString();
    });
}

std::optional<std::int64_t> CountEdit::count() const { return value() ? value()->toInteger() : std::nullopt; }

void CountEdit::setCount(std::optional<std::int64_t> count)
{
    setValue(count ? std::optional(Base::Decimal(*count)) : std::nullopt);
}

QString CountEdit::notRead(const QString& typed) const
{
    return QStringLiteral("“%1” isn’t a whole number.").arg(typed.trimmed());
}

} // namespace Pallisande
