#include "Pallisande/Model/Reminders.h"
#include "Tests/Support/Samples.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <set>

namespace {

using namespace Pallisande;
using ::Test::id;
using ::Test::instant;

const Base::Moment noon { instant("2026-03-27T12:00:00Z"), ::Test::calendar() };

Job due(std::uint64_t number, std::int64_t minutes, JobStatus status = JobStatus::inProgress)
{
    auto job = ::Test::job(number, 1, 100);
    job.status = status;
    job.deadline = noon.now.plusMilliseconds(60'000 * minutes);
    return job;
}

std::vector<ReminderRequest> requestsOf(const std::vector<Job>& jobs)
{
    return Reminders::requests(jobs, std::vector { ::Test::client(1) }, noon);
}

TEST(Reminders, lieInTheFutureAndBelongToJobsStillToBeDone)
{
    constexpr std::int64_t hour = 60, day = 24 * hour;
    struct {
        std::int64_t minutes;
        JobStatus status;
        std::vector<std::string> tags;
    } const cases[] {
        { 90, JobStatus::inProgress, {} },
        { 2 * hour, JobStatus::inProgress, {} },
        { 2 * hour + 1, JobStatus::inProgress, { "2h" } },
        { 3 * hour, JobStatus::inProgress, { "2h" } },
        { day, JobStatus::quote, { "2h" } },
        { day + 1, JobStatus::quote, { "24h", "2h" } },
        { -day, JobStatus::inProgress, {} },
        { 2 * day, JobStatus::delivered, {} },
        { 2 * day, JobStatus::invoiced, {} },
        { 2 * day, JobStatus::paid, {} },
        { 2 * day, JobStatus::cancelled, {} },
    };
    for (const auto& [minutes, status, tags] : cases) {
        SCOPED_TRACE(fmt::format("{} {}", minutes, title(status)));
        std::vector<std::string> found;
        for (const auto& request : requestsOf({ due(7, minutes, status) }))
            found.push_back(request.identifier.substr(id(7).toString().size() + 1));
        EXPECT_EQ(found, tags);
    }
    auto timeless = due(1, 0);
    timeless.deadline.reset();
    EXPECT_TRUE(requestsOf({ timeless }).empty());
}

TEST(Reminders, sayWhatIsDueForWhomAndWhen)
{
    auto job = due(2, 50 * 60); // Clocks go forward meanwhile: 16:00 in Berlin.
    auto unnamed = due(3, 3 * 60);
    unnamed.title = "";
    unnamed.clientID = id(99);
    const auto requests = requestsOf({ job, unnamed });
    ASSERT_EQ(requests.size(), 3u);
    EXPECT_EQ(requests[0].title, "Untitled job");
    EXPECT_EQ(requests[0].body, "Due in 2 hours");
    EXPECT_EQ(requests[1].identifier, id(2).toString() + "-24h");
    EXPECT_EQ(requests[1].title, "Job 2");
    EXPECT_EQ(requests[1].body, "Due in 24 hours · Nordlicht Verlag");
    EXPECT_EQ(requests[1].fireTime, instant("2026-03-28T14:00:00Z"));
    EXPECT_EQ(requests[1].trigger.day.toString(), "2026-03-28");
    EXPECT_EQ(requests[1].trigger.hour, 15);
    EXPECT_EQ(requests[2].body, "Due in 2 hours · Nordlicht Verlag");
    EXPECT_EQ(requests[2].trigger.day.toString(), "2026-03-29");
    EXPECT_EQ(requests[2].trigger.hour, 14);
}

TEST(Reminders, keepToTheMostPressingJobsUnderTheCap)
{
    std::vector<Job> jobs;
    for (std::uint64_t number = 40; number > 0; --number)
        jobs.push_back(due(number, 7 * 24 * 60 + static_cast<std::int64_t>(number)));
    const auto requests = requestsOf(jobs);
    ASSERT_EQ(requests.size(), 60u);
    std::set<std::string> identifiers;
    for (std::size_t place = 0; place < requests.size(); ++place) {
        EXPECT_EQ(requests[place].identifier.substr(0, 36), id(place / 2 + 1).toString());
        identifiers.insert(requests[place].identifier);
    }
    EXPECT_EQ(identifiers.size(), 60u);
}

TEST(Reminders, replaceWhatWasPending)
{
    struct Center final : NotificationCenter {
        void removeAllPending() override { pending.clear(); }
        void askPermission(std::function<void(bool)>) override { FAIL(); }
        void schedule(const ReminderRequest& request) override { pending.push_back(request.title); }
        std::vector<std::string> pending;
    } center;
    Library library;
    library.clients = { ::Test::client(1) };
    library.jobs = { due(1, 180) };
    Reminders::schedule(center, library, true, noon);
    library.jobs = { due(2, 180) };
    Reminders::schedule(center, library, true, noon);
    EXPECT_EQ(center.pending, std::vector<std::string> { "Job 2" });
    Reminders::schedule(center, library, false, noon);
    EXPECT_TRUE(center.pending.empty());
}

} // namespace
