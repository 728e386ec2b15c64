#include "Pallisande/Widgets/DateText.h"

#include <QDate>
#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace Pallisande {

namespace {

std::optional<Base::Day> valid(int year, int month, int day)
{
    if (year < 1900 || year > 9999 || month < 1 || month > 12 || day < 1
        || !Base::isValidDate(year, static_cast<unsigned>(month), static_cast<unsigned>(day)))
        return std::nullopt;
    return Base::Day { year, static_cast<unsigned>(month), static_cast<unsigned>(day) };
}

QString folded(const QString& word)
{
    QString letters;
    for (const auto character : word.normalized(QString::NormalizationForm_KD).toCaseFolded())
        if (character.category() != QChar::Mark_NonSpacing)
            letters += character;
    return letters;
}

// By its name or at least its first three letters, in English or the language of the locale.
int monthOf(const QString& word, const QLocale& locale)
{
    const auto typed = folded(word);
    if (typed.size() < 3)
        return 0;
    for (const auto& language : { QLocale(QLocale::English), locale })
        for (int month = 1; month <= 12; ++month)
            if (folded(language.monthName(month)).startsWith(typed)
                || folded(language.standaloneMonthName(month)).startsWith(typed)
                || folded(language.monthName(month, QLocale::ShortFormat)).remove(QLatin1Char('.')) == typed)
                return month;
    return 0;
}

bool isWeekDay(const QString& word, const QLocale& locale)
{
    const auto typed = folded(word);
    for (const auto& language : { QLocale(QLocale::English), locale })
        for (int day = 1; day <= 7; ++day)
            if (typed.size() >= 2 && folded(language.dayName(day)).startsWith(typed))
                return true;
    return false;
}

int fullYear(const QString& digits)
{
    const int year = digits.toInt();
    return digits.size() == 2 ? 2000 + year : digits.size() == 4 ? year : 0;
}

// Where the locale puts the day, the month and the year: “dmy”, “mdy”, “ymd”.
QString order(const QLocale& locale)
{
    QString letters;
    for (const auto character : locale.dateFormat(QLocale::ShortFormat))
        if (const auto letter = character.toLower();
            QStringLiteral("dmy").contains(letter) && !letters.contains(letter))
            letters += letter;
    return letters.size() == 3 ? letters : QStringLiteral("dmy");
}

std::optional<Base::Day> readDigits(const QStringList& numbers, Base::Day today, const QLocale& locale)
{
    auto places = order(locale);
    if (numbers.size() == 1)
        return valid(
            today.year, static_cast<int>(today.month), numbers[0].size() > 2 ? 0 : numbers[0].toInt());
    if (numbers.first().size() == 4)
        places = QStringLiteral("ymd");
    else if (numbers.last().size() == 4 && places == u"ymd")
        places = QStringLiteral("dmy");
    if (numbers.size() == 2)
        places.remove(QLatin1Char('y'));
    if (numbers.size() != places.size())
        return std::nullopt;
    int year = today.year, month = 0, day = 0;
    for (qsizetype at = 0; at < places.size(); ++at) {
        const auto& number = numbers[at];
        if (places[at] == u'y')
            year = fullYear(number);
        else if (number.size() > 2)
            return std::nullopt;
        else
            (places[at] == u'm' ? month : day) = number.toInt();
    }
    return valid(year, month, day);
}

} // namespace

std::optional<Base::Day> readDay(const QString& text, Base::Day today, const QLocale& locale)
{
    const auto typed = text.simplified().toLower();
    if (typed == u"t" || typed == u"today")
        return today;
    if (typed == u"tomorrow")
        return today.plusDays(1);
    if (typed == u"yesterday")
        return today.plusDays(-1);
    static const QRegularExpression steps(QStringLiteral("^([+\\-−])(\\d{1,4})$"));
    if (const auto match = steps.match(typed); match.hasMatch())
        return today.plusDays(match.captured(2).toInt() * (match.captured(1) == u"+" ? 1 : -1));
    static const QRegularExpression compact(QStringLiteral("^(\\d{4})(\\d\\d)(\\d\\d)$"));
    if (const auto match = compact.match(typed); match.hasMatch())
        return valid(match.captured(1).toInt(), match.captured(2).toInt(), match.captured(3).toInt());

    static const QRegularExpression iso(QStringLiteral("^(\\d{4}-\\d\\d-\\d\\d)t\\d\\d:.*$")); // With a time.
    const auto dated = iso.match(typed);
    static const QRegularExpression between(QStringLiteral("[\\s.,/\\-–年月日]+"));
    auto words = (dated.hasMatch() ? dated.captured(1) : typed).split(between, Qt::SkipEmptyParts);
    if (words.size() > 1 && isWeekDay(words.first(), locale) && !monthOf(words.first(), locale))
        words.removeFirst();
    int month = 0;
    QStringList numbers;
    for (auto word : words) {
        static const QRegularExpression ordinal(QStringLiteral("^(\\d+)(st|nd|rd|th|er)$"));
        if (const auto match = ordinal.match(word); match.hasMatch())
            word = match.captured(1);
        bool isNumber = false;
        word.toInt(&isNumber);
        if (isNumber) {
            numbers += word;
        } else if (const int named = monthOf(word, locale); named && !month) {
            month = named;
        } else if (word != u"de" && word != u"of") {
            return std::nullopt;
        }
    }
    if (numbers.isEmpty() || numbers.size() > 3)
        return std::nullopt;
    if (!month)
        return readDigits(numbers, today, locale);
    if (numbers.size() > 2)
        return std::nullopt;
    if (numbers.size() == 2 && numbers.first().size() == 4) // 2026 Mar 6
        std::swap(numbers[0], numbers[1]);
    return valid(numbers.size() == 2 ? fullYear(numbers[1]) : today.year, month,
        numbers[0].size() > 2 ? 0 : numbers[0].toInt());
}

QString dayText(Base::Day day)
{
    const QDate date(day.year, static_cast<int>(day.month), static_cast<int>(day.day));
    static const QLocale english(QLocale::English);
    return english.toString(date, QStringLiteral("ddd d MMM yyyy"));
}

std::optional<int> readTime(const QString& text)
{
    static const QRegularExpression form(
        QStringLiteral("^(\\d{1,2})(?:\\s*[:.h]\\s*(\\d{2})?|(\\d{2}))?\\s*(?:([ap])\\.?m\\.?|([ap]))?$"));
    const auto match = form.match(text.simplified().toLower());
    if (!match.hasMatch())
        return std::nullopt;
    int hour = match.captured(1).toInt();
    const int minute = (match.captured(2) + match.captured(3)).toInt();
    const auto half = match.captured(4) + match.captured(5);
    if (!half.isEmpty()) {
        if (hour < 1 || hour > 12)
            return std::nullopt;
        hour = hour % 12 + (half == u"p" ? 12 : 0);
    }
    return hour < 24 && minute < 60 ? std::optional(hour * 60 + minute) : std::nullopt;
}

QString timeText(int minutes, const QLocale& locale)
{
    const int hour = minutes / 60, minute = minutes % 60;
    const auto twoDigits = QStringLiteral("%1").arg(minute, 2, 10, QLatin1Char('0'));
    if (!locale.timeFormat(QLocale::ShortFormat).contains(QLatin1Char('a'), Qt::CaseInsensitive))
        return QStringLiteral("%1:%2").arg(hour, 2, 10, QLatin1Char('0')).arg(twoDigits);
    return QStringLiteral("%1:%2 %3")
        .arg((hour + 11) % 12 + 1)
        .arg(twoDigits, hour < 12 ? QStringLiteral("AM") : QStringLiteral("PM"));
}

} // namespace Pallisande
