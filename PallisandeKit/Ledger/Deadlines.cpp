#include "PallisandeKit/Ledger/Deadlines.h"

#include <algorithm>
#include <tuple>

namespace Pallisande::Deadlines {

DeadlineLane lane(std::optional<Base::Instant> deadline, const Base::Moment& moment)
{
    if (!deadline)
        return DeadlineLane::none;
    if (*deadline < moment.now)
        return DeadlineLane::overdue;
    const auto days = moment.calendar.daysBetween(moment.now, *deadline);
    if (days < 1)
        return DeadlineLane::today;
    if (days == 1)
        return DeadlineLane::tomorrow;
    return days < 7 ? DeadlineLane::week : DeadlineLane::later;
}

DeadlineLane lane(const Job& job, const Base::Moment& moment) { return lane(job.deadline, moment); }

Board board(const Library& library, const Base::Moment& moment)
{
    Board board;
    for (const auto& job : library.jobs) {
        if (job.status == JobStatus::quote || job.status == JobStatus::inProgress)
            board.lanes[static_cast<std::size_t>(lane(job, moment))].push_back(&job);
        else if (job.status == JobStatus::delivered && !job.invoiceID)
            board.deliveredNotInvoiced.push_back(&job);
    }
    const auto sortBy = [](std::vector<const Job*>& jobs, std::optional<Base::Instant> Job::*time) {
        const auto key = [time](const Job* job) {
            return std::tuple<Base::Instant, std::string_view>(
                (job->*time).value_or(Base::latestInstant), job->title);
        };
        std::stable_sort(jobs.begin(), jobs.end(),
            [&](const Job* left, const Job* right) { return key(left) < key(right); });
    };
    for (auto& jobs : board.lanes)
        sortBy(jobs, &Job::deadline);
    sortBy(board.deliveredNotInvoiced, &Job::deliveredAt);
    return board;
}

} // namespace Pallisande::Deadlines
