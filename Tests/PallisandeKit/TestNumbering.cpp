#include "Tests/Support/Samples.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

using namespace Pallisande;
using namespace Test;
using Ledger::Series;

namespace {

using Next = std::map<std::int64_t, std::int64_t>;

const std::string continues
    = "Numbers were already issued in this series, so it continues from the last one.";

// Issued documents by their numbers, whose last digits are the sequence. "CN…" are credit notes.
Library issuedLibrary(const NumberSeries& invoices, const std::vector<std::string>& numbers)
{
    auto library = sampleLibrary();
    library.profile.invoiceSeries = invoices;
    for (const auto& number : numbers) {
        const auto digits = number.find_last_not_of("0123456789") + 1;
        library.invoices.push_back({ .id = Base::Uuid::random(),
            .kind = number.starts_with("CN") ? DocumentKind::creditNote : DocumentKind::invoice,
            .number = number,
            .sequence = std::stoll(number.substr(digits)),
            .issuedAt = moment().now });
    }
    return library;
}

TEST(NumberSeries, padsTheCounterAndNeverCutsIt)
{
    const struct {
        std::string prefix;
        bool includeYear;
        std::int64_t digits, sequence;
        std::string number;
    } cases[] {
        { "INV-", true, 3, 7, "INV-2026-007" },
        { "INV-", true, 3, 1'000, "INV-2026-1000" },
        { "RE", false, 5, 12, "RE00012" },
        { "", true, 1, 12, "2026-12" },
        { "", false, 0, 5, "5" },
        { "X", false, -4, 5, "X5" },
        { "", false, 1'000'000'000'000, 5, "0000000000000000005" },
    };
    for (const auto& [prefix, includeYear, digits, sequence, number] : cases) {
        const NumberSeries series { .prefix = prefix, .includeYear = includeYear, .digits = digits };
        EXPECT_EQ(series.format(sequence, 2026), number);
    }
}

TEST(NumberSeries, startsAgainOnlyWhenTheYearIsPrinted)
{
    const struct {
        bool includeYear, resetEachYear;
        std::string lastOf2026, firstOf2027, again2026;
        Next next;
    } cases[] {
        { true, true, "INV-2026-001", "INV-2027-001", "INV-2026-002", { { 2026, 3 }, { 2027, 2 } } },
        { true, false, "INV-2026-001", "INV-2027-002", "INV-2026-003", { { 0, 4 } } },
        { false, true, "INV-001", "INV-002", "INV-003", { { 0, 4 } } },
        { false, false, "INV-001", "INV-002", "INV-003", { { 0, 4 } } },
    };
    for (const auto& [includeYear, resetEachYear, lastOf2026, firstOf2027, again2026, next] : cases) {
        SCOPED_TRACE(firstOf2027);
        auto library = sampleLibrary();
        auto& series = library.profile.invoiceSeries;
        series.includeYear = includeYear;
        series.resetEachYear = resetEachYear;
        const auto issueOn = [&](std::uint64_t job, std::string_view date) {
            return issue(library, draft(library, { job }).id, moment(), noon(date)).number.value();
        };
        EXPECT_EQ(issueOn(11, "2026-12-31"), lastOf2026);
        EXPECT_EQ(series.upcoming(2027).number, firstOf2027);
        EXPECT_EQ(issueOn(12, "2027-01-01"), firstOf2027);
        EXPECT_EQ(issueOn(21, "2026-06-30"), again2026);
        EXPECT_EQ(series.next, next);
        EXPECT_EQ(Ledger::checkNumbering(library),
            std::vector<std::string> { "Numbering checked: no gaps, no repeats." });
    }
}

TEST(NumberingCheck, namesWhatIsWrongSeriesBySeriesAndYearByYear)
{
    const NumberSeries yearly { .prefix = "INV-" };
    const auto next = [](NumberSeries series, const Next& counters) {
        series.next = counters;
        return series;
    };
    const NumberSeries plain { .prefix = "R", .includeYear = false, .next = { { 0, 4 } } };
    const NumberSeries through { .prefix = "INV-", .resetEachYear = false, .next = { { 0, 4 } } };
    const std::string sound = "Numbering checked: no gaps, no repeats.";
    const struct {
        NumberSeries invoices;
        std::vector<std::string> numbers, lines;
    } cases[] {
        { yearly, {}, { sound } },
        { next(yearly, { { 2026, 9 } }), {}, { sound } },
        { next(yearly, { { 2026, 3 } }), { "INV-2026-002", "INV-2026-001" }, { sound } },
        { next(yearly, { { 2026, 43 } }), { "INV-2026-041", "INV-2026-042" }, { sound } },
        { next(yearly, { { 2025, 3 }, { 2026, 2 } }), { "INV-2025-001", "INV-2026-001", "INV-2025-002" },
            { sound } },
        { next(yearly, { { 2026, 7 } }), { "INV-2026-006", "INV-2026-002", "INV-2026-004" },
            { "Invoices 2026: missing INV-2026-003, INV-2026-005" } },
        { next(yearly, { { 2026, 2 } }), { "INV-2026-001", "INV-2026-001" },
            { "Invoices 2026: a number is used twice." } },
        { next(yearly, { { 2026, 2 } }), { "INV-2026-001", "INV-2026-002" },
            { "Invoices 2026: the next number (2) doesn’t follow INV-2026-002" } },
        { yearly, { "INV-2026-004" }, { "Invoices 2026: the next number (1) doesn’t follow INV-2026-004" } },
        { next(yearly, { { 2025, 5 }, { 2026, 9 } }),
            { "INV-2025-001", "INV-2025-001", "INV-2025-004", "INV-2026-001", "CN-2026-001", "CN-2026-003" },
            { "Invoices 2025: a number is used twice.", "Invoices 2025: missing INV-2025-002, INV-2025-003",
                "Invoices 2026: the next number (9) doesn’t follow INV-2026-001",
                "Credit notes 2026: missing CN-2026-002",
                "Credit notes 2026: the next number (1) doesn’t follow CN-2026-003" } },
        { plain, { "R001", "R002", "R003" }, { sound } },
        { plain, { "R001", "R003" }, { "Invoices: missing R002" } },
        { plain, { "R001" }, { "Invoices: the next number (4) doesn’t follow R001" } },
        { through, { "INV-2025-001", "INV-2025-002", "INV-2026-003" }, { sound } },
        { through, { "INV-2025-001", "INV-2026-003" }, { "Invoices: missing INV-2025-002" } },
        { through, { "INV-2026-003", "INV-2026-003" }, { "Invoices: a number is used twice." } },
        // It began again each year before.
        { through, { "INV-2025-001", "INV-2025-002", "INV-2026-001", "INV-2026-002", "INV-2026-003" },
            { sound } },
        // The series was given its year later on: the next number goes on from its own last.
        { next(yearly, { { 0, 7 }, { 2026, 2 } }), { "INV-001", "INV-002", "INV-2026-001" }, { sound } },
        { next(yearly, { { 2026, 2 } }), { "INV-001", "INV-003", "INV-2026-001" },
            { "Invoices: missing INV-002" } },
        // And lost it again.
        { next(plain, { { 0, 2 }, { 2026, 1 } }), { "R2026-002", "R2026-003", "R001" }, { sound } },
        { next(plain, { { 0, 2 } }), { "R2026-009", "R2026-011", "R001" },
            { "Invoices 2026: missing R2026-010" } },
        // A prefix that looks like a year.
        { { .prefix = "2026-", .includeYear = false, .next = { { 0, 4 } } }, { "2026-001", "2026-003" },
            { "Invoices: missing 2026-002" } },
    };
    for (std::size_t number = 0; const auto& [invoices, numbers, lines] : cases) {
        auto library = issuedLibrary(invoices, numbers);
        library.invoices.push_back({ .id = id(80), .sequence = 7 }); // Drafts have no numbers.
        EXPECT_EQ(Ledger::checkNumbering(library), lines) << "case " << number++;
    }
}

TEST(NumberingCheck, countsAWideGapInsteadOfWalkingIt)
{
    auto library = issuedLibrary({ .prefix = "R", .includeYear = false }, { "R001", "R9000000000000000000" });
    library.profile.invoiceSeries.next[0] = 9'000'000'000'000'000'001;
    const auto lines = Ledger::checkNumbering(library);
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_TRUE(lines[0].starts_with("Invoices: missing R002, R003, ")) << lines[0];
    EXPECT_TRUE(lines[0].ends_with(", R051 and 8999999999999999948 more")) << lines[0];
}

TEST(NextNumber, isSetOnlyBeforeTheFirstOne)
{
    auto library = sampleLibrary();
    const auto set = [&](Series which, std::int64_t year, std::int64_t next) {
        return refusal(library, [&] { Ledger::setNextNumber(library, which, year, next); });
    };
    for (const auto which : { Series::invoices, Series::creditNotes, Series::quotes }) {
        EXPECT_EQ(set(which, 2026, 0), "Numbers start at 1.");
        EXPECT_EQ(set(which, 2026, -5), "Numbers start at 1.");
        EXPECT_EQ(set(which, 2026, 1'000'000'000), "Numbers end at 999,999,999.");
        EXPECT_EQ(set(which, 2026, 42), "(not refused)");
        EXPECT_EQ(set(which, 2026, 41), "(not refused)") << "not used yet";
    }
    const auto invoiceID = issued(library, { 11 }).id;
    EXPECT_EQ(library.invoices[0].number, "INV-2026-041");
    EXPECT_EQ(set(Series::invoices, 2026, 43), continues);
    EXPECT_EQ(set(Series::invoices, 2026, 0), "Numbers start at 1.");
    EXPECT_EQ(set(Series::invoices, 2027, 5), "(not refused)") << "that year has none yet";
    EXPECT_EQ(set(Series::creditNotes, 2026, 7), "(not refused)");
    EXPECT_EQ(credit(library, invoiceID, 1).number, "CN-2026-007");
    EXPECT_EQ(set(Series::creditNotes, 2026, 9), continues);
    EXPECT_EQ(Ledger::giveQuoteNumber(library, id(12), moment()), "Q-2026-041");
    EXPECT_EQ(set(Series::quotes, 2026, 1), continues);

    library.profile.invoiceSeries.includeYear = false; // A number without a year is a new series.
    EXPECT_EQ(set(Series::invoices, 2026, 300), "(not refused)");
    EXPECT_EQ(issued(library, { 12 }).number, "INV-300");
    EXPECT_EQ(set(Series::invoices, 2027, 1), continues);
}

TEST(NextNumber, bringsASeriesBackWhoseCountingWasChanged)
{
    auto library = sampleLibrary();
    auto& series = library.profile.invoiceSeries;
    EXPECT_EQ(issued(library, { 11 }).number, "INV-2026-001");
    series.resetEachYear = false;
    const auto id = draft(library, { 12 }).id;
    const auto again = [&] { issue(library, id, moment()); };
    EXPECT_EQ(refusal(library, again), "The number INV-2026-001 is already used.");
    Ledger::setNextNumber(library, Series::invoices, 2026, 2);
    again();
    EXPECT_EQ(library.invoice(id)->number, "INV-2026-002");
    EXPECT_EQ(Ledger::checkNumbering(library),
        std::vector<std::string> { "Numbering checked: no gaps, no repeats." });
}

TEST(QuoteNumbers, areGivenOnceForTheYearOfTheirDay)
{
    auto library = sampleLibrary();
    const auto give
        = [&](std::uint64_t number, std::string_view now, std::string_view zone = "Europe/Berlin") {
              return Ledger::giveQuoteNumber(library, id(number), { instant(now), calendar(zone) });
          };
    EXPECT_EQ(give(11, "2026-12-31T22:59:00Z"), "Q-2026-001");
    EXPECT_EQ(library.job(id(11))->modified, instant("2026-12-31T22:59:00Z"));
    EXPECT_EQ(give(12, "2026-12-31T23:00:00Z"), "Q-2027-001");
    EXPECT_EQ(give(21, "2026-12-31T23:00:00Z", "America/New_York"), "Q-2026-002");
    const auto before = library;
    EXPECT_EQ(give(11, "2028-01-01T12:00:00Z"), "Q-2026-001");
    EXPECT_EQ(library, before);
    EXPECT_EQ(refusal(library, [&] { give(99, "2028-01-01T12:00:00Z"); }), "That item no longer exists.");
    library.profile.quoteSeries.next[2026] = 1; // As in a restored profile.
    library.jobs.push_back(job(24, 2, 1));
    EXPECT_EQ(refusal(library, [&] { give(24, "2026-06-30T12:00:00Z"); }),
        "The number Q-2026-001 is already used.");
    library.profile.quoteSeries.includeYear = false;
    library.jobs.push_back(job(22, 2, 1));
    library.jobs.push_back(job(23, 2, 1));
    EXPECT_EQ(give(22, "2026-06-30T12:00:00Z"), "Q-001");
    EXPECT_EQ(give(23, "2027-06-30T12:00:00Z"), "Q-002");
}

} // namespace
