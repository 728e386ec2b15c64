#include "Pallisande/Widgets/DeadlineEdit.h"

#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/DateEdit.h"
#include "Pallisande/Widgets/FlowLayout.h"
#include "Pallisande/Widgets/Label.h"
#include "Pallisande/Widgets/TimeEdit.h"

#include <QVBoxLayout>

namespace Pallisande {

namespace {

constexpr int usualTime = 17 * 60; // Minutes since midnight.

QString cityOf(const Base::Calendar& zone)
{
    const auto name = QString::fromStdString(zone.zone());
    return name.mid(name.lastIndexOf(QLatin1Char('/')) + 1).replace(QLatin1Char('_'), QLatin1Char(' '));
}

// “Fri 6 Mar”, with the year when it isn't this one.
QString shortDay(Base::Day day, Base::Day today)
{
    auto text = dayText(day);
    if (day.year == today.year)
        text.truncate(text.lastIndexOf(QLatin1Char(' ')));
    return text;
}

} // namespace

DeadlineEdit::DeadlineEdit(const QLocale& locale, Now now, QWidget* parent)
    : QWidget(parent)
    , m_locale(locale)
    , m_now(std::move(now))
    , m_zone(m_now().calendar)
    , m_day(new DateEdit(
          locale, [this] { return m_zone.day(m_now().now); }, this))
    , m_time(new TimeEdit(locale, this))
    , m_here(makeSentence({}, this, TextStyle::small, Ink::muted))
    , m_skipped(makeSentence({}, this, TextStyle::small, Ink::amber))
    , m_proposals(new QWidget(this))
{
    m_day->setObjectName(QStringLiteral("deadlineDay"));
    m_time->setObjectName(QStringLiteral("deadlineTime"));
    m_day->setAccessibleName(QStringLiteral("Deadline, day"));
    m_time->setAccessibleName(QStringLiteral("Deadline, time"));
    m_day->setPlaceholderText(QStringLiteral("No deadline"));
    m_day->setOptional(true);
    m_time->setValue(usualTime);
    m_time->setWidthInCharacters(timeText(12 * 60 + 30, locale).size() > 5 ? 8 : 5);

    auto* places = new QWidget(this);
    auto* fields = new FlowLayout(places);
    fields->setSpacing(Space::tiny);
    fields->addWidget(m_day);
    fields->addWidget(m_time);
    auto* proposals = new FlowLayout(m_proposals);
    proposals->setSpacing(0);
    const auto add = [&](const QString& text, auto act) {
        auto* button = makeButton(text, ButtonKind::quiet, m_proposals);
        button->setAccessibleDescription(QStringLiteral("Sets the deadline."));
        connect(button, &QPushButton::clicked, this, act);
        proposals->addWidget(button);
        return button;
    };
    add(QStringLiteral("Today"), [this] { propose(0); });
    add(QStringLiteral("Tomorrow"), [this] { propose(1); });
    add(QStringLiteral("In a week"), [this] { propose(7); });
    m_none = add(QStringLiteral("None"), [this] {
        m_day->revert();
        m_day->setValue(std::nullopt);
        take();
        m_day->setFocus(Qt::OtherFocusReason); // The button goes.
    });
    m_none->setObjectName(QStringLiteral("noDeadline"));

    auto* box = new QVBoxLayout(this);
    box->setContentsMargins(0, 0, 0, 0);
    box->setSpacing(Space::tiny);
    box->addWidget(places);
    box->addWidget(m_here);
    box->addWidget(m_skipped);
    box->addWidget(m_proposals);
    connect(m_day, &DateEdit::committed, this, &DeadlineEdit::take);
    connect(m_time, &TimeEdit::committed, this, [this] {
        if (m_day->value())
            take();
    });
    explain(false);
}

void DeadlineEdit::setValue(const std::optional<Base::Instant>& value)
{
    if (value == m_value && value.has_value() == m_day->value().has_value())
        return;
    m_value = value;
    showValue();
    explain(false);
}

void DeadlineEdit::setZone(const Base::Calendar& zone)
{
    const bool isAnother = zone.zone() != m_zone.zone();
    m_zone = zone;
    if (isAnother)
        showValue();
    explain(false);
}

void DeadlineEdit::moveToZone(const Base::Calendar& zone)
{
    if (m_value) {
        const auto at = m_zone.components(*m_value);
        m_value = zone.instant(at.day, at.hour, at.minute);
    }
    setZone(zone);
}

void DeadlineEdit::setEditable(bool isEditable, const QString& reason)
{
    for (QLineEdit* field : { static_cast<QLineEdit*>(m_day), static_cast<QLineEdit*>(m_time) }) {
        field->setReadOnly(!isEditable);
        field->setToolTip(isEditable ? QString() : reason);
    }
    m_proposals->setVisible(isEditable);
}

void DeadlineEdit::revert()
{
    m_day->revert();
    m_time->revert();
}

void DeadlineEdit::propose(int days)
{
    m_day->revert();
    m_time->commit();
    m_day->setValue(m_zone.day(m_now().now).plusDays(days));
    take();
}

void DeadlineEdit::take()
{
    std::optional<Base::Instant> typed;
    bool wasSkipped = false;
    if (const auto& day = m_day->value()) {
        const int hour = m_time->value() / 60, minute = m_time->value() % 60;
        typed = m_zone.instant(*day, hour, minute);
        const auto meant = m_zone.components(*typed);
        wasSkipped = meant.day != *day || meant.hour != hour || meant.minute != minute;
    }
    const bool isNew = typed != m_value;
    m_value = typed;
    showValue(); // Where clocks jump over it, the time that comes next.
    explain(wasSkipped);
    if (isNew)
        emit committed();
}

void DeadlineEdit::showValue()
{
    if (!m_value) {
        m_day->setValue(std::nullopt);
        m_time->setValue(usualTime);
        return;
    }
    const auto at = m_zone.components(*m_value);
    m_day->setValue(at.day);
    m_time->setValue(at.hour * 60 + at.minute);
}

void DeadlineEdit::explain(bool wasSkipped)
{
    m_none->setVisible(m_value.has_value());
    const auto moment = m_now();
    const auto& here = moment.calendar;
    QString text;
    if (here.zone() != m_zone.zone()) {
        text = QStringLiteral("in the client’s time zone, %1").arg(QString::fromStdString(m_zone.zone()));
        if (m_value) {
            const auto at = m_zone.components(*m_value), local = here.components(*m_value);
            const auto today = here.day(moment.now);
            auto then = timeText(local.hour * 60 + local.minute, m_locale);
            if (local.day != at.day)
                then.prepend(shortDay(local.day, today) + QStringLiteral(", "));
            text += QStringLiteral("\n%1, %2 in %3 is %4 here.")
                        .arg(shortDay(at.day, today), timeText(at.hour * 60 + at.minute, m_locale),
                            cityOf(m_zone), then);
        }
    }
    m_here->setText(text);
    m_here->setVisible(!text.isEmpty());
    m_skipped->setText(QStringLiteral("At that time clocks change in %1.").arg(cityOf(m_zone)));
    m_skipped->setVisible(wasSkipped);
}

} // namespace Pallisande
