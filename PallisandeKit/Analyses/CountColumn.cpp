#include "PallisandeKit/Analyses/CountColumn.h"

#include "Base/BoundedList.h"
#include "Base/Text.h"

#include <algorithm>

namespace Pallisande {

namespace {

constexpr std::size_t mostGroups = 12; // Of digits; counts that are let in have six.
constexpr char blank = ' '; // Any blank or apostrophe between digits.

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool take(std::string_view& text, std::string_view start)
{
    const bool isThere = text.starts_with(start);
    text.remove_prefix(isThere ? start.size() : 0);
    return isThere;
}

// What nearly every cell is: a few digits, with nothing to decide. Nothing for all others.
std::optional<std::int64_t> plainNumber(std::string_view cell)
{
    constexpr std::size_t longest = 15;
    if (cell.empty() || cell.size() > longest)
        return std::nullopt;
    std::int64_t value = 0;
    for (const char c : cell) {
        if (!isDigit(c))
            return std::nullopt;
        value = value * 10 + (c - '0');
    }
    return value;
}

char takeMark(std::string_view& text)
{
    if (take(text, "."))
        return '.';
    if (take(text, ","))
        return ',';
    for (const std::string_view mark : { " ", "'", "’", "\u00A0", "\u202F", "\u2009" }) {
        if (take(text, mark))
            return blank;
    }
    return 0;
}

// A number taken apart into groups of digits and the marks between them.
struct Number {
    bool isNegative = false;
    Base::BoundedList<std::string_view, mostGroups>
        groups; // One more than marks; those at the ends may be empty.
    Base::BoundedList<char, mostGroups> marks;

    static std::optional<Number> parse(std::string_view text);

    char lastMark() const { return marks[marks.size() - 1]; }
    std::string_view lastGroup() const { return groups[groups.size() - 1]; }

    // Whether the number itself tells what its last mark is, and then what.
    std::optional<bool> lastIsDecimal() const;
    // Whether the groups before the decimals are such as are written: 1,234,567 or, in India, 12,34,567.
    bool isWellGrouped(bool lastIsDecimal) const;
    Count value(bool lastIsDecimal) const;
};

std::optional<Number> Number::parse(std::string_view text)
{
    Number number;
    number.isNegative = take(text, "-") || take(text, "−");
    if (!number.isNegative)
        take(text, "+");
    bool hasDigits = false;
    for (;;) {
        std::size_t digits = 0;
        while (digits < text.size() && isDigit(text[digits]))
            ++digits;
        hasDigits = hasDigits || digits > 0;
        number.groups.push_back(text.substr(0, digits));
        text.remove_prefix(digits);
        if (text.empty())
            return hasDigits ? std::optional(number) : std::nullopt;
        const auto mark = takeMark(text);
        if (mark == 0 || number.groups.size() == mostGroups)
            return std::nullopt;
        number.marks.push_back(mark);
    }
}

std::optional<bool> Number::lastIsDecimal() const
{
    if (marks.empty() || lastMark() == blank)
        return false;
    if (std::count(marks.begin(), marks.end(), lastMark()) > 1)
        return false;
    if (marks.size() > 1)
        return true;
    if (lastGroup().size() != 3 || groups[0].empty() || groups[0].size() > 3 || groups[0].front() == '0')
        return true;
    return std::nullopt;
}

bool Number::isWellGrouped(bool lastIsDecimal) const
{
    const auto count = groups.size() - (lastIsDecimal ? 1 : 0);
    if (count == 1)
        return !groups[0].empty() || lastIsDecimal;
    for (std::size_t place = 0; place < count; ++place) {
        const auto size = groups[place].size();
        const bool isFirst = place == 0, isLast = place + 1 == count;
        if (size > 3 || size < (isFirst ? 1u : isLast ? 3u : 2u))
            return false;
        if (!isFirst && marks[place - 1] != marks[0])
            return false;
    }
    return true;
}

Count Number::value(bool lastIsDecimal) const
{
    Count count;
    const auto whole = groups.size() - (lastIsDecimal ? 1 : 0);
    for (std::size_t place = 0; place < whole; ++place) {
        for (const char digit : groups[place])
            count.value = std::min(count.value * 10 + (digit - '0'), Count::absurd);
    }
    if (lastIsDecimal) {
        count.wasFractional = lastGroup().find_first_not_of('0') != std::string_view::npos;
        if (!lastGroup().empty() && lastGroup().front() >= '5')
            ++count.value;
    }
    count.value = std::min(count.value, Count::absurd);
    if (isNegative)
        count.value = -count.value;
    return count;
}

} // namespace

Count Count::of(const Base::Decimal& number)
{
    const auto whole = number.rounded(0);
    if (whole.magnitude() >= absurd)
        return { number.isNegative() ? -absurd : absurd, false };
    return { *whole.toInteger(), whole != number };
}

void addCount(std::int64_t& total, std::int64_t count)
{
    total
        = std::clamp(total + std::clamp(count, -Count::absurd, Count::absurd), -Count::absurd, Count::absurd);
}

CountColumn CountColumn::withDecimalMark(char mark)
{
    CountColumn column;
    column.m_point = mark == '.' ? Mark::decimal : Mark::groups;
    column.m_comma = mark == ',' ? Mark::decimal : Mark::groups;
    return column;
}

void CountColumn::learn(std::string_view cell)
{
    if (cell.empty() || plainNumber(cell))
        return;
    const auto number = Number::parse(Base::trimmed(cell));
    if (!number || number->marks.empty() || number->lastMark() == blank)
        return;
    const auto isDecimal = number->lastIsDecimal();
    if (!isDecimal || !number->isWellGrouped(*isDecimal))
        return;
    auto& mark = number->lastMark() == '.' ? m_point : m_comma;
    const auto use = *isDecimal ? Mark::decimal : Mark::groups;
    mark = mark == Mark::open || mark == use ? use : Mark::contradictory;
    if (*isDecimal && number->marks.size() > 1 && number->marks[0] != blank) {
        auto& other = number->marks[0] == '.' ? m_point : m_comma;
        other = other == Mark::open || other == Mark::groups ? Mark::groups : Mark::contradictory;
    }
}

void CountColumn::settleLike(const CountColumn& other)
{
    const bool isOfUse = other.m_point != Mark::contradictory && other.m_comma != Mark::contradictory;
    if (!isSettled() && isOfUse)
        *this = other;
}

std::optional<Count> CountColumn::read(std::string_view cell) const
{
    if (const auto plain = plainNumber(cell))
        return Count { *plain, false };
    const auto number = Number::parse(Base::trimmed(cell));
    if (!number)
        return std::nullopt;
    auto isDecimal = number->lastIsDecimal();
    if (!isDecimal) {
        const bool isPoint = number->lastMark() == '.';
        const auto use = isPoint ? m_point : m_comma, ofOther = isPoint ? m_comma : m_point;
        if (use == Mark::contradictory)
            return std::nullopt;
        isDecimal = use == Mark::decimal || (use == Mark::open && ofOther == Mark::groups);
    }
    return number->isWellGrouped(*isDecimal) ? std::optional(number->value(*isDecimal)) : std::nullopt;
}

ImportNote fractionalCountsNote()
{
    return TextNote {
        "Some counts of this report aren’t whole numbers and were rounded half up, so sums can be "
        "off by a few. They look discounted already: priced with weights again, they would be "
        "discounted twice."
    };
}

} // namespace Pallisande
