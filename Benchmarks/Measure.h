#pragma once

#include <algorithm>
#include <ctime>
#include <string>
#include <utility>
#include <vector>

namespace Benchmarks {

enum class Clock { processor, wall };

inline double milliseconds(Clock clock)
{
    timespec time {};
    clock_gettime(clock == Clock::wall ? CLOCK_MONOTONIC : CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

// How long the call takes; what it gives is destroyed outside of that time.
template <typename Call> double timed(Clock clock, Call call)
{
    const auto begin = milliseconds(clock);
    [[maybe_unused]] const auto result = call();
    return milliseconds(clock) - begin;
}

inline double median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// The medians of two calls that take turns, so that what else the machine does meets both alike; both run
// once before anything is measured.
template <typename Ours, typename Reference>
std::pair<double, double> alternating(Clock clock, int repetitions, Ours ours, Reference reference)
{
    std::vector<double> ourTimes, referenceTimes;
    timed(clock, ours);
    timed(clock, reference);
    for (int repetition = 0; repetition < repetitions; ++repetition) {
        ourTimes.push_back(timed(clock, ours));
        referenceTimes.push_back(timed(clock, reference));
    }
    return { median(std::move(ourTimes)), median(std::move(referenceTimes)) };
}

} // namespace Benchmarks
