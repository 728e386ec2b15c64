#pragma once

#include "Base/Calendar.h"

#include <QLocale>
#include <QWidget>

#include <functional>
#include <optional>

class QPushButton;

namespace Pallisande {

class DateEdit;
class Label;
class TimeEdit;

// A moment that is typed as a day and a time in somebody else's time zone, or none. Where that zone isn't
// this computer's, a line says what time it is here then.
class DeadlineEdit : public QWidget {
    Q_OBJECT

public:
    using Now = std::function<Base::Moment()>; // With this computer's calendar.

    DeadlineEdit(const QLocale& locale, Now now, QWidget* parent = nullptr);

    const std::optional<Base::Instant>& value() const { return m_value; }
    void setValue(const std::optional<Base::Instant>& value);
    void setZone(const Base::Calendar& zone); // That it is read in; the moment itself stays.
    void moveToZone(const Base::Calendar& zone); // Five o'clock is five o'clock there.
    void setEditable(bool isEditable, const QString& reason);
    void revert(); // Before another record is shown.

    DateEdit* day() const { return m_day; }
    TimeEdit* time() const { return m_time; }

signals:
    void committed();

private:
    void take(); // What the two fields say.
    void propose(int days); // That many from today; the time stays.
    void showValue();
    void explain(bool wasSkipped);

    QLocale m_locale;
    Now m_now;
    Base::Calendar m_zone;
    std::optional<Base::Instant> m_value;
    DateEdit* m_day;
    TimeEdit* m_time;
    Label *m_here, *m_skipped;
    QWidget* m_proposals;
    QPushButton* m_none;
};

} // namespace Pallisande
