#pragma once

#include "Pallisande/Widgets/LineField.h"
#include "Pallisande/Widgets/NumberText.h"

namespace Pallisande {

// What NumberEdits hold: an exact decimal or nothing.
class DecimalEdit : public LineField {
    Q_OBJECT

public:
    // Rate, price, quantity, percent.
    explicit DecimalEdit(const QLocale& locale, QWidget* parent = nullptr);

    // An amount of a currency ("EUR"): no more decimals than it has, and "1,234" may be read as grouped.
    void setCurrency(const QString& currency);
    // The unit of a rate or percent, which may be typed after it.
    void setUnit(const QString& unit) { m_syntax.unit = unit; }
    void setPlaces(int places); // Shown at least.
    void setOptional(bool isOptional) { m_isOptional = isOptional; }
    // The sentence that says what is wrong with a number; empty: nothing.
    void setCheck(std::function<QString(const Base::Decimal&)> check) { m_check = std::move(check); }

    const std::optional<Base::Decimal>& value() const { return m_value; }
    void setValue(const std::optional<Base::Decimal>& value);

protected:
    Taken take(const QString& typed) override;
    QString shown() const override;
    void keyPressEvent(QKeyEvent* event) override;

    virtual ReadNumber read(const QString& typed) const { return readNumber(typed, m_syntax); }
    virtual QString notRead(const QString& typed) const;

    NumberSyntax m_syntax;

private:
    QString m_currency; // Of an amount.
    int m_places = 0;
    bool m_isOptional = false;
    std::function<QString(const Base::Decimal&)> m_check;
    std::optional<Base::Decimal> m_value;
};

// A whole number, 0 or more: words, characters, days.
class CountEdit : public DecimalEdit {
    Q_OBJECT

public:
    static constexpr std::int64_t largest = 9'007'199'254'740'991; // What a library holds.

    explicit CountEdit(const QLocale& locale, QWidget* parent = nullptr);

    void setRange(std::int64_t least, std::int64_t most);
    std::optional<std::int64_t> count() const;
    void setCount(std::optional<std::int64_t> count);

protected:
    ReadNumber read(const QString& typed) const override { return readWholeNumber(typed, m_syntax); }
    QString notRead(const QString& typed) const override;
};

} // namespace Pallisande
