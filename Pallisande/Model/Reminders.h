#pragma once

#include "Base/Calendar.h"
#include "PallisandeKit/Records/Library.h"

#include <cstddef>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Pallisande {

// One notification that the system is asked to show later, once, with its usual sound.
struct ReminderRequest {
    std::string identifier; // A job has at most one request for each of its reminders.
    std::string title;
    std::string body;
    Base::Instant fireTime;
    Base::Calendar::Components trigger; // The fire time on the user's calendar.
};

// The system's notifications, as far as we use them.
class NotificationCenter {
public:
    virtual ~NotificationCenter() = default;

    virtual void removeAllPending() = 0;
    // Asks whether notifications may be shown; the answer comes on the caller's thread, now or later.
    virtual void askPermission(std::function<void(bool granted)> answer) = 0;
    virtual void schedule(const ReminderRequest& request) = 0;
};

namespace Reminders {

// Systems keep only so many pending notifications (macOS: 64).
inline constexpr std::size_t mostPending = 60;

#ifdef __APPLE__
inline constexpr std::string_view refusal
    = "macOS didn’t allow notifications for Pallisande. Turn them on in System Settings › Notifications.";
#else
inline constexpr std::string_view refusal
    = "The system didn’t allow notifications for Pallisande. Turn them on in its notification settings.";
#endif

// The reminders of all jobs still to be done, as far as they lie in the future: the jobs with the earliest
// deadlines first, until there are enough.
std::vector<ReminderRequest> requests(
    std::span<const Job> jobs, std::span<const Client> clients, const Base::Moment& moment);

// What was pending gives way to the requests of now; with reminders off, to none.
void schedule(NotificationCenter& center, const Library& library, bool on, const Base::Moment& moment);

} // namespace Reminders

} // namespace Pallisande
