#include "Pallisande/Widgets/TimeEdit.h"

#include <QKeyEvent>

namespace Pallisande {

namespace {

constexpr int dayLength = 24 * 60;

} // namespace

TimeEdit::TimeEdit(const QLocale& locale, QWidget* parent)
    : LineField(parent)
    , m_locale(locale)
{
    setWidthInCharacters(8);
    showCommitted();
}

void TimeEdit::setValue(int minutes)
{
    const bool isAnother = minutes != m_value;
    m_value = minutes;
    valueWasSet(isAnother);
}

LineField::Taken TimeEdit::take(const QString& typed)
{
    const auto time = readTime(typed);
    if (!time)
        return { .problem = QStringLiteral("“%1” isn’t a time.").arg(typed.trimmed()) };
    const bool isNew = m_value != *time;
    m_value = *time;
    return { .isNew = isNew };
}

void TimeEdit::keyPressEvent(QKeyEvent* event)
{
    const bool isStep = event->key() == Qt::Key_Up || event->key() == Qt::Key_Down;
    const auto time = readTime(text());
    if (!isStep || isReadOnly() || !time)
        return LineField::keyPressEvent(event);
    const bool isWhole = selectedText() == text();
    const int caret = cursorPosition();
    const bool isHour = isWhole || caret <= text().indexOf(QLatin1Char(':'));
    const int step = (isHour ? 60 : 15) * (event->key() == Qt::Key_Up ? 1 : -1);
    setText(timeText((*time + step + dayLength) % dayLength, m_locale));
    if (isWhole)
        selectAll();
    else
        setCursorPosition(caret);
}

} // namespace Pallisande
