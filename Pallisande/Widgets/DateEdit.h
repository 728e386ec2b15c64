#pragma once

#include "Pallisande/Widgets/DateText.h"
#include "Pallisande/Widgets/LineField.h"

class QAction;

namespace Pallisande {

// A day, or none. It is typed as people write days; Up and Down change the part at the caret, + and − the
// day, t is today, and F4 or Alt+Down shows a calendar.
class DateEdit : public LineField {
    Q_OBJECT

public:
    using Today = std::function<Base::Day()>;

    DateEdit(const QLocale& locale, Today today, QWidget* parent = nullptr);

    const std::optional<Base::Day>& value() const { return m_value; }
    void setValue(const std::optional<Base::Day>& value);
    void setOptional(bool isOptional) { m_isOptional = isOptional; }
    // The sentence that says what is wrong with a day; empty: nothing.
    void setCheck(std::function<QString(Base::Day)> check) { m_check = std::move(check); }
    void showCalendar();
    QSize sizeHint() const override;

protected:
    Taken take(const QString& typed) override;
    QString shown() const override { return m_value ? dayText(*m_value) : QString(); }
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
    void changeEvent(QEvent* event) override;

private:
    enum class Part { day, month, year };
    Part partAtCaret() const;
    void step(Part part, int amount);
    void choose(Base::Day day); // And commits.

    QLocale m_locale;
    Today m_today;
    QAction* m_open;
    std::optional<Base::Day> m_value;
    bool m_isOptional = false;
    std::function<QString(Base::Day)> m_check;
};

} // namespace Pallisande
