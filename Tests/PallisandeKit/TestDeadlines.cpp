#include "PallisandeKit/Ledger/Deadlines.h"

#include "Tests/Support/Samples.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Pallisande;
using namespace Test;

namespace {

std::string laneOf(const std::string& deadline, const std::string& now, std::string_view zone)
{
    const auto lane = Deadlines::lane(instant(deadline), { instant(now), calendar(zone) });
    return std::string(Base::caseName(lane));
}

std::vector<std::string> titles(const std::vector<const Job*>& jobs)
{
    std::vector<std::string> titles;
    for (const auto* job : jobs)
        titles.push_back(job->title);
    return titles;
}

TEST(Deadlines, fallIntoLanesByTheDaysOfTheZone)
{
    const struct {
        std::string zone, now;
        std::vector<std::pair<std::string, std::string>> lanes;
    } cases[] {
        { "Europe/Berlin", "2026-03-09T14:05:31.250Z",
            { { "2020-01-01T00:00:00Z", "overdue" }, { "2026-03-09T14:05:31.249Z", "overdue" },
                { "2026-03-09T14:05:31.250Z", "today" }, { "2026-03-09T22:59:59.999Z", "today" },
                { "2026-03-09T23:00:00Z", "tomorrow" }, { "2026-03-10T22:59:00Z", "tomorrow" },
                { "2026-03-10T23:00:00Z", "week" }, { "2026-03-15T22:59:59Z", "week" },
                { "2026-03-15T23:00:00Z", "later" }, { "9999-12-31T00:00:00Z", "later" } } },
        // The same moments elsewhere, where it is another day.
        { "Pacific/Kiritimati", "2026-03-09T14:05:31.250Z",
            { { "2026-03-10T09:59:59Z", "today" }, { "2026-03-10T10:00:00Z", "tomorrow" },
                { "2026-03-16T09:59:59Z", "week" }, { "2026-03-16T10:00:00Z", "later" } } },
        { "America/St_Johns",
            "2026-03-09T02:29:00Z", // 23:59 on the 8th, the day on which clocks went forward.
            { { "2026-03-09T02:29:59Z", "today" }, { "2026-03-09T02:30:00Z", "tomorrow" } } },
        // Clocks change on Sunday the 29th, a day of 23 hours, and on 25 October, one of 25.
        { "Europe/Berlin", "2026-03-28T22:30:00Z",
            { { "2026-03-28T22:59:59Z", "today" }, { "2026-03-28T23:00:00Z", "tomorrow" },
                { "2026-03-29T21:59:59Z", "tomorrow" }, { "2026-03-29T22:00:00Z", "week" },
                { "2026-04-03T21:59:59Z", "week" }, { "2026-04-03T22:00:00Z", "later" } } },
        { "Europe/Berlin", "2026-10-24T22:00:00Z",
            { { "2026-10-25T22:59:59Z", "today" }, { "2026-10-25T23:00:00Z", "tomorrow" },
                { "2026-10-31T22:59:59Z", "week" }, { "2026-10-31T23:00:00Z", "later" } } },
        // In Apia the day after 29 December 2011 was the 31st; in Havana midnight is skipped in March.
        { "Pacific/Apia", "2011-12-30T09:00:00Z",
            { { "2011-12-30T09:59:59Z", "today" }, { "2011-12-30T10:00:00Z", "week" } } },
        { "America/Havana", "2026-03-07T20:00:00Z",
            { { "2026-03-08T04:59:59Z", "today" }, { "2026-03-08T05:00:00Z", "tomorrow" },
                { "2026-03-09T03:59:59Z", "tomorrow" }, { "2026-03-09T04:00:00Z", "week" } } },
    };
    for (const auto& [zone, now, lanes] : cases) {
        for (const auto& [deadline, lane] : lanes)
            EXPECT_EQ(laneOf(deadline, now, zone), lane) << deadline << " at " << now << " in " << zone;
    }
    EXPECT_EQ(Deadlines::lane(std::nullopt, moment()), DeadlineLane::none);
}

TEST(Deadlines, boardHoldsTheWorkStillToBeDone)
{
    auto library = sampleLibrary();
    library.jobs.clear();
    const std::string_view overdue = "2026-03-09T10:00:00Z", today = "2026-03-09T18:00:00Z";
    const struct {
        std::string title;
        JobStatus status;
        std::string_view deadline;
    } jobs[] {
        { "b", JobStatus::quote, today },
        { "a", JobStatus::inProgress, today },
        { "Z", JobStatus::quote, today },
        { "first", JobStatus::quote, "2026-03-09T17:59:59Z" },
        { "late", JobStatus::inProgress, overdue },
        { "same", JobStatus::quote, "" },
        { "same", JobStatus::inProgress, "" },
        { "next", JobStatus::quote, "2026-03-10T12:00:00Z" },
        { "soon", JobStatus::quote, "2026-03-12T12:00:00Z" },
        { "far", JobStatus::quote, "2026-04-12T12:00:00Z" },
        { "x", JobStatus::delivered, overdue },
        { "x", JobStatus::invoiced, overdue },
        { "x", JobStatus::paid, overdue },
        { "x", JobStatus::cancelled, overdue },
    };
    for (std::uint64_t number = 30; const auto& [title, status, deadline] : jobs) {
        library.jobs.push_back(job(number++, 1, 1));
        library.jobs.back().title = title;
        library.jobs.back().status = status;
        library.jobs.back().deadline = Base::Instant::parse(deadline);
    }
    const auto board = Deadlines::board(library, moment());
    const std::vector<std::string> expected[] { { "late" }, { "first", "Z", "a", "b" }, { "next" },
        { "soon" }, { "far" }, { "same", "same" } };
    for (std::size_t lane = 0; lane < board.lanes.size(); ++lane)
        EXPECT_EQ(titles(board.lanes[lane]), expected[lane]);
    EXPECT_EQ(board.lanes[5][0]->status, JobStatus::quote) << "equal ones in the order of the library";
    EXPECT_EQ(titles(board.deliveredNotInvoiced), std::vector<std::string> { "x" });
}

TEST(Deadlines, deliveredJobsWaitUntilTheyAreOnADraft)
{
    auto library = sampleLibrary();
    const auto waiting = [&] { return titles(Deadlines::board(library, moment()).deliveredNotInvoiced); };
    library.jobs[2].deliveredAt = instant("2026-01-01T10:00:00Z");
    library.jobs[0].deliveredAt.reset();
    EXPECT_EQ(waiting(), (std::vector<std::string> { "Job 21", "Job 12", "Job 11" }));
    const auto draftID = draft(library, { 21 }).id;
    EXPECT_EQ(waiting(), (std::vector<std::string> { "Job 12", "Job 11" }));
    Ledger::deleteDraft(library, draftID, moment().now);
    credit(library, issued(library, { 21 }).id, 200);
    EXPECT_EQ(waiting().front(), "Job 21") << "free again";
}

} // namespace
