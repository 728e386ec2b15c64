#pragma once

#include "Base/Calendar.h"

#include <QLocale>
#include <QString>

#include <optional>

namespace Pallisande {

// A day as people type it: “6 Mar”, “March 6, 2026”, “6.3.26”, “2026-03-06”, “20260306”, “today”, “+3”, “6”.
// All-digit dates go by the order of the locale and are never turned round to make sense. A day without a
// year is this year’s, a day without a month this month’s.
std::optional<Base::Day> readDay(const QString& text, Base::Day today, const QLocale& locale);

// “Fri 6 Mar 2026”: never digits alone.
QString dayText(Base::Day day);

// “17”, “17:30”, “1730”, “5pm”, “5.30 PM”, “17h30”: minutes since midnight.
std::optional<int> readTime(const QString& text);
QString timeText(int minutes, const QLocale& locale); // “17:30” or “5:30 PM”.

} // namespace Pallisande
