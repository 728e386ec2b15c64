#include "Pallisande/Model/Reminders.h"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_map>

namespace Pallisande::Reminders {

namespace {

struct Offset {
    std::int64_t seconds;
    std::string_view tag, text;
};
constexpr Offset offsets[] {
    { 86'400, "24h", "Due in 24 hours" },
    { 7'200, "2h", "Due in 2 hours" },
};

bool wantsReminders(const Job& job)
{
    return job.deadline && (job.status == JobStatus::quote || job.status == JobStatus::inProgress);
}

} // namespace

std::vector<ReminderRequest> requests(
    std::span<const Job> jobs, std::span<const Client> clients, const Base::Moment& moment)
{
    std::vector<const Job*> open;
    for (const Job& job : jobs) {
        if (wantsReminders(job) && *job.deadline > moment.now)
            open.push_back(&job);
    }
    std::stable_sort(open.begin(), open.end(),
        [](const Job* left, const Job* right) { return *left->deadline < *right->deadline; });

    std::unordered_map<Base::Uuid, std::string_view> names;
    for (const Client& client : clients)
        names.emplace(client.id, client.name);

    std::vector<ReminderRequest> requests;
    for (const Job* job : open) {
        const auto name = names.find(job->clientID);
        for (const auto& [seconds, tag, text] : offsets) {
            const auto fireTime = job->deadline->plusMilliseconds(-1000 * seconds);
            if (fireTime <= moment.now)
                continue;
            if (requests.size() == mostPending)
                return requests;
            requests.push_back({
                .identifier = fmt::format("{}-{}", job->id.toString(), tag),
                .title = job->title.empty() ? "Untitled job" : job->title,
                .body = name == names.end() || name->second.empty()
                    ? std::string(text)
                    : fmt::format("{} · {}", text, name->second),
                .fireTime = fireTime,
                .trigger = moment.calendar.components(fireTime),
            });
        }
    }
    return requests;
}

void schedule(NotificationCenter& center, const Library& library, bool on, const Base::Moment& moment)
{
    center.removeAllPending();
    if (!on)
        return;
    for (const auto& request : requests(library.jobs, library.clients, moment))
        center.schedule(request);
}

} // namespace Pallisande::Reminders
