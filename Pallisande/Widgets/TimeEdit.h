#pragma once

#include "Pallisande/Widgets/DateText.h"
#include "Pallisande/Widgets/LineField.h"

namespace Pallisande {

// A time of the day in minutes since midnight. Up and Down change the hour or, behind the colon, the quarter.
class TimeEdit : public LineField {
    Q_OBJECT

public:
    explicit TimeEdit(const QLocale& locale, QWidget* parent = nullptr);

    int value() const { return m_value; }
    void setValue(int minutes);

protected:
    Taken take(const QString& typed) override;
    QString shown() const override { return timeText(m_value, m_locale); }
    void keyPressEvent(QKeyEvent* event) override;

private:
    QLocale m_locale;
    int m_value = 0;
};

} // namespace Pallisande
