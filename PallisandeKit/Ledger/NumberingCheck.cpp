#include "PallisandeKit/Ledger/Ledger.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <map>

namespace Pallisande::Ledger {

namespace {

constexpr std::int64_t largestNumber = 999'999'999; // Far from where a counter could overflow.
constexpr std::size_t mostNamed = 50; // Missing numbers that a line names; the rest is counted.

bool isDigit(char c) { return c >= '0' && c <= '9'; }

// The year printed in a number, by its form "…2026-007"; 0 when it has none. A prefix of the series may look
// like a year.
std::int64_t printedYear(std::string_view number, const NumberSeries& series)
{
    if (number.starts_with(series.prefix)
        && std::all_of(
            number.begin() + static_cast<std::ptrdiff_t>(series.prefix.size()), number.end(), isDigit))
        return 0;
    const auto dash = number.rfind('-');
    if (dash == std::string_view::npos || dash < 4 || dash + 1 == number.size()
        || !std::all_of(number.begin() + static_cast<std::ptrdiff_t>(dash) + 1, number.end(), isDigit))
        return 0;
    const auto year = number.substr(dash - 4, 4);
    std::int64_t value = 0;
    return std::all_of(year.begin(), year.end(), isDigit)
            && std::from_chars(year.data(), year.data() + year.size(), value).ec == std::errc()
        ? value
        : 0;
}

struct Issued {
    std::int64_t sequence = 0;
    std::int64_t year = 0; // As printed.
    std::string_view number;

    auto operator<=>(const Issued&) const = default;
};

bool startsEachYear(const NumberSeries& series) { return series.includeYear && series.resetEachYear; }

// The issued numbers of one series, per year where each year starts again.
std::map<std::int64_t, std::vector<Issued>> groups(
    const Library& library, DocumentKind kind, const NumberSeries& series)
{
    const bool runsThroughYears = series.includeYear && !series.resetEachYear;
    std::map<std::int64_t, std::vector<Issued>> groups;
    for (const auto& document : library.invoices) {
        if (document.kind != kind || !document.isIssued())
            continue;
        const auto year = printedYear(*document.number, series);
        groups[runsThroughYears ? 0 : year].push_back(
            { document.sequence.value_or(0), year, *document.number });
    }
    for (auto& [year, issued] : groups)
        std::sort(issued.begin(), issued.end());
    return groups;
}

// The number with another counter in the place of its own, of the same width at least.
std::string withSequence(const Issued& issued, std::int64_t sequence)
{
    auto stem = issued.number;
    if (const auto own = std::to_string(issued.sequence); stem.ends_with(own))
        stem.remove_suffix(own.size());
    while (stem.ends_with('0'))
        stem.remove_suffix(1);
    return fmt::format("{}{:0{}}", stem, sequence, issued.number.size() - stem.size());
}

// The numbers between those issued, in the form of their neighbours, which the series may have had before.
std::string missingNumbers(const std::vector<Issued>& issued)
{
    std::string text;
    std::size_t named = 0;
    std::int64_t left = 0;
    for (std::size_t place = 1; place < issued.size(); ++place) {
        for (auto sequence = issued[place - 1].sequence + 1; sequence < issued[place].sequence; ++sequence) {
            if (named == mostNamed) { // A gap can be as wide as a counter; it is counted, not walked.
                left += issued[place].sequence - sequence;
                break;
            }
            text += (text.empty() ? "" : ", ") + withSequence(issued[place - 1], sequence);
            ++named;
        }
    }
    return left > 0 ? fmt::format("{} and {} more", text, left) : text;
}

void checkGroup(std::vector<std::string>& lines, std::string_view label, const NumberSeries& series,
    std::int64_t year, const std::vector<Issued>& issued)
{
    const auto name = year > 0 ? fmt::format("{} {}", label, year) : std::string(label);
    const auto isRepeat = [](const Issued& left, const Issued& right) {
        return left.sequence == right.sequence && left.year == right.year;
    };
    if (std::adjacent_find(issued.begin(), issued.end(), isRepeat) != issued.end())
        lines.push_back(name + ": a number is used twice.");
    if (const auto missing = missingNumbers(issued); !missing.empty())
        lines.push_back(name + ": missing " + missing);
    // Numbers of a form that the series had before it was changed are no longer counted on.
    const bool isCountedOn = startsEachYear(series) == (year > 0);
    const auto upcoming = series.upcoming(year).sequence;
    if (isCountedOn && upcoming != issued.back().sequence + 1)
        lines.push_back(
            fmt::format("{}: the next number ({}) doesn’t follow {}", name, upcoming, issued.back().number));
}

} // namespace

std::vector<std::string> checkNumbering(const Library& library)
{
    const struct {
        std::string_view label;
        DocumentKind kind;
        const NumberSeries& series;
    } checked[] {
        { "Invoices", DocumentKind::invoice, library.profile.invoiceSeries },
        { "Credit notes", DocumentKind::creditNote, library.profile.creditSeries },
    };
    std::vector<std::string> lines;
    for (const auto& [label, kind, series] : checked) {
        for (const auto& [year, issued] : groups(library, kind, series))
            checkGroup(lines, label, series, year, issued);
    }
    if (lines.empty())
        lines.push_back("Numbering checked: no gaps, no repeats.");
    return lines;
}

NumberSeries& series(Profile& profile, Series which)
{
    return which == Series::invoices   ? profile.invoiceSeries
        : which == Series::creditNotes ? profile.creditSeries
                                       : profile.quoteSeries;
}

const NumberSeries& series(const Profile& profile, Series which)
{
    return series(const_cast<Profile&>(profile), which);
}

void setNextNumber(Library& library, Series which, std::int64_t year, std::int64_t next)
{
    if (next < 1)
        throw LedgerError::numberBelowOne();
    if (next > largestNumber)
        throw LedgerError::numberTooLarge();
    auto& numbers = series(library.profile, which);
    bool continues = true;
    if (which == Series::quotes) {
        const auto last = numbers.format(numbers.upcoming(year).sequence - 1, year);
        continues = std::none_of(library.jobs.begin(), library.jobs.end(),
            [&](const Job& job) { return job.quoteNumber == last; });
    } else {
        const auto kind = which == Series::invoices ? DocumentKind::invoice : DocumentKind::creditNote;
        const auto issued = groups(library, kind, numbers);
        const auto group = issued.find(numbers.key(year));
        continues = group == issued.end() || next == group->second.back().sequence + 1;
    }
    if (!continues)
        throw LedgerError::seriesContinues();
    numbers.next[numbers.key(year)] = next;
}

} // namespace Pallisande::Ledger
