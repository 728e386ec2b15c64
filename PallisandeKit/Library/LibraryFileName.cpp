#include "PallisandeKit/Library/LibraryFileName.h"

#include <algorithm>

namespace Pallisande {

namespace {

constexpr std::size_t daySize = 10, timeSize = 8;
constexpr std::size_t mostCountDigits = 3; // Four are a year.

bool isDigit(char c) { return c >= '0' && c <= '9'; }

char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool saysConflict(std::string_view text)
{
    constexpr std::string_view word = "conflict";
    return std::search(text.begin(), text.end(), word.begin(), word.end(), [](char left, char right) {
        return lowered(left) == right;
    }) != text.end();
}

bool isCount(std::string_view text)
{
    return !text.empty() && text.size() <= mostCountDigits && std::all_of(text.begin(), text.end(), isDigit);
}

// Sync programs write the word, a count (" (1)", " 2") or the name of the other computer ("-LAPTOP").
bool isConflict(std::string_view addition)
{
    if (saysConflict(addition))
        return true;
    const bool isHost = addition.size() > 1 && addition.front() == '-'
        && addition.find(' ') == std::string_view::npos && addition[1] != '-';
    if (isHost)
        return true;
    if (addition.starts_with(' '))
        addition.remove_prefix(1);
    if (addition.starts_with('(') && addition.ends_with(')'))
        addition = addition.substr(1, addition.size() - 2);
    return isCount(addition);
}

// "15-05-31"
bool isTime(std::string_view text)
{
    for (std::size_t place = 0; place < text.size(); ++place) {
        const bool isDash = place % 3 == 2;
        if (isDash ? text[place] != '-' : !isDigit(text[place]))
            return false;
    }
    return text.size() == timeSize;
}

} // namespace

LibraryFileName LibraryFileName::of(std::string_view fileName)
{
    if (fileName.size() < stem.size() + ending.size() || !fileName.starts_with(stem)
        || !fileName.ends_with(ending))
        return {};
    const auto addition = fileName.substr(stem.size(), fileName.size() - stem.size() - ending.size());
    if (addition.empty())
        return { .kind = Kind::document };
    if (addition.starts_with(" (damaged "))
        return { .kind = Kind::damaged };
    if (addition.size() > daySize && addition.front() == ' ') {
        const auto day = Base::Day::parse(addition.substr(1, daySize));
        const auto rest = addition.substr(1 + daySize);
        if (day && rest.empty())
            return { .kind = Kind::dated, .day = day };
        if (day && rest.front() == ' ' && isTime(rest.substr(1)))
            return { .kind = Kind::onDemand, .day = day, .time = std::string(rest.substr(1)) };
    }
    return { .kind = isConflict(addition) ? Kind::conflict : Kind::other };
}

} // namespace Pallisande
