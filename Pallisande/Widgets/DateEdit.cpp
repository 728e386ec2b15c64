#include "Pallisande/Widgets/DateEdit.h"

#include "Pallisande/Widgets/Buttons.h"
#include "Pallisande/Widgets/Painting.h"
#include "Pallisande/Widgets/Popup.h"
#include "Pallisande/Widgets/Theme.h"

#include <QAction>
#include <QCalendarWidget>
#include <QEvent>
#include <QKeyEvent>
#include <QTextCharFormat>
#include <QVBoxLayout>

namespace Pallisande {

namespace {

QDate dateOf(Base::Day day) { return { day.year, static_cast<int>(day.month), static_cast<int>(day.day) }; }
Base::Day dayOf(const QDate& date)
{
    return { date.year(), static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()) };
}

QCalendarWidget* makeCalendar(const QLocale& locale, Base::Day shown, Base::Day today, QWidget* parent)
{
    const auto& colours = Theme::of(parent).colours;
    auto* calendar = new QCalendarWidget(parent);
    calendar->setLocale(QLocale(QLocale::English));
    calendar->setFirstDayOfWeek(locale.firstDayOfWeek());
    calendar->setVerticalHeaderFormat(QCalendarWidget::NoVerticalHeader);
    calendar->setDateRange(QDate(1900, 1, 1), QDate(9999, 12, 31));
    calendar->setSelectedDate(dateOf(shown));
    auto surface = Theme::of(parent).palette(colours.raised);
    surface.setColor(QPalette::Base, colours.raised);
    calendar->setPalette(surface);
    QTextCharFormat head, day, now;
    head.setForeground(colours.muted);
    head.setBackground(colours.raised);
    calendar->setHeaderTextFormat(head);
    day.setForeground(colours.muted); // Saturdays and Sundays are red otherwise, like what is overdue here.
    calendar->setWeekdayTextFormat(Qt::Saturday, day);
    calendar->setWeekdayTextFormat(Qt::Sunday, day);
    now.setForeground(colours.accent);
    now.setFontWeight(QFont::DemiBold);
    calendar->setDateTextFormat(dateOf(today), now);
    const std::pair<const char*, Icon> arrows[] { { "qt_calendar_prevmonth", Icon::chevronLeft },
        { "qt_calendar_nextmonth", Icon::chevronRight } };
    for (const auto& [name, icon] : arrows)
        if (auto* button = calendar->findChild<QToolButton*>(QLatin1String(name)))
            button->setIcon(themedIcon(icon));
    if (auto* bar = calendar->findChild<QWidget*>(QStringLiteral("qt_calendar_navigationbar")))
        bar->setBackgroundRole(QPalette::Window); // It is drawn like a selected row otherwise.
    return calendar;
}

} // namespace

DateEdit::DateEdit(const QLocale& locale, Today today, QWidget* parent)
    : LineField(parent)
    , m_locale(locale)
    , m_today(std::move(today))
    , m_open(addAction(themedIcon(Icon::calendar), QLineEdit::TrailingPosition))
{
    m_open->setToolTip(QStringLiteral("Show calendar"));
    connect(m_open, &QAction::triggered, this, &DateEdit::showCalendar);
}

void DateEdit::setValue(const std::optional<Base::Day>& value)
{
    const bool isAnother = value != m_value;
    m_value = value;
    valueWasSet(isAnother);
}

QSize DateEdit::sizeHint() const
{
    const int text = fontMetrics().horizontalAdvance(QStringLiteral("Wed 30 Mar 2026"));
    return { text + Theme::of(this).iconSize() + 2 * Space::large, LineField::sizeHint().height() };
}

LineField::Taken DateEdit::take(const QString& typed)
{
    if (typed.trimmed().isEmpty()) {
        if (!m_isOptional)
            return { .problem = QStringLiteral("A date is needed here.") };
        const bool isNew = m_value.has_value();
        m_value.reset();
        return { .isNew = isNew };
    }
    const auto day = readDay(typed, m_today(), m_locale);
    if (!day)
        return { .problem = QStringLiteral("“%1” isn’t a date.").arg(typed.trimmed()) };
    if (const auto problem = m_check ? m_check(*day) : QString(); !problem.isEmpty())
        return { .problem = problem };
    const bool isNew = m_value != day;
    m_value = day;
    return { .isNew = isNew };
}

DateEdit::Part DateEdit::partAtCaret() const
{
    if (selectedText() == text())
        return Part::day;
    // “Fri 6 Mar 2026”
    const auto before = text().left(cursorPosition()).count(QLatin1Char(' '));
    return before >= 3 ? Part::year : before == 2 ? Part::month : Part::day;
}

void DateEdit::step(Part part, int amount)
{
    const auto base = readDay(text(), m_today(), m_locale);
    if (!base && !text().trimmed().isEmpty())
        return; // Makes no sense; not to be changed behind the user’s back.
    const auto date = dateOf(base.value_or(m_today()));
    const auto moved = !base || part == Part::day ? date.addDays(base ? amount : 0)
        : part == Part::month                     ? date.addMonths(amount)
                                                  : date.addYears(amount);
    const bool wasWhole = selectedText() == text();
    const int caret = cursorPosition();
    setText(dayText(dayOf(moved)));
    if (wasWhole)
        selectAll();
    else
        setCursorPosition(caret);
}

void DateEdit::choose(Base::Day day)
{
    setText(dayText(day));
    commit();
    selectAll();
}

void DateEdit::keyPressEvent(QKeyEvent* event)
{
    const bool isWhole = text().isEmpty() || selectedText() == text(); // Then a key can’t be part of a date.
    const bool isAlone = !(event->modifiers() & ~(Qt::KeypadModifier | Qt::ShiftModifier));
    const int key = event->key();
    if (isReadOnly())
        return LineField::keyPressEvent(event);
    if (key == Qt::Key_F4 || (key == Qt::Key_Down && event->modifiers() & Qt::AltModifier))
        return showCalendar();
    if (isAlone && (key == Qt::Key_Up || key == Qt::Key_Down))
        return step(partAtCaret(), key == Qt::Key_Up ? 1 : -1);
    if (isAlone && isWhole && (key == Qt::Key_Plus || key == Qt::Key_Minus))
        return step(Part::day, key == Qt::Key_Plus ? 1 : -1);
    if (isAlone && isWhole && key == Qt::Key_T) {
        setText(dayText(m_today()));
        return selectAll();
    }
    LineField::keyPressEvent(event);
}

void DateEdit::wheelEvent(QWheelEvent* event) { event->ignore(); }

void DateEdit::changeEvent(QEvent* event)
{
    LineField::changeEvent(event);
    if (event->type() == QEvent::ReadOnlyChange && m_open)
        m_open->setEnabled(!isReadOnly());
}

void DateEdit::showCalendar()
{
    if (isReadOnly() || !isEnabled())
        return;
    const auto today = m_today();
    const auto shown = readDay(text(), today, m_locale).value_or(m_value.value_or(today));
    auto* popup = new Popup(this);
    auto* calendar = makeCalendar(m_locale, shown, today, popup);
    auto* buttons = new QHBoxLayout;
    auto* now = makeButton(QStringLiteral("Today"), ButtonKind::quiet, popup);
    buttons->addWidget(now);
    buttons->addStretch();
    popup->content()->addWidget(calendar);
    popup->content()->addLayout(buttons);
    const auto take = [this, popup](Base::Day day) {
        popup->close();
        setFocus(Qt::OtherFocusReason);
        choose(day);
    };
    connect(calendar, &QCalendarWidget::clicked, this, [take](const QDate& date) { take(dayOf(date)); });
    connect(calendar, &QCalendarWidget::activated, this, [take](const QDate& date) { take(dayOf(date)); });
    connect(now, &QPushButton::clicked, this, [take, today] { take(today); });
    if (m_isOptional) {
        auto* none = makeButton(QStringLiteral("None"), ButtonKind::quiet, popup);
        buttons->addWidget(none);
        connect(none, &QPushButton::clicked, this, [this, popup] {
            popup->close();
            setFocus(Qt::OtherFocusReason);
            clear();
            commit();
        });
    }
    popup->showBelow(this);
    calendar->setFocus();
}

} // namespace Pallisande
