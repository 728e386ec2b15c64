#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>

#include <chrono>

namespace Test {

// Lets the application's events happen until the condition holds; false when that takes too long.
template <typename Condition>
bool waitUntil(Condition condition, std::chrono::milliseconds patience = std::chrono::seconds(10))
{
    const QDeadlineTimer deadline(patience);
    while (!condition()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents | QEventLoop::WaitForMoreEvents, 10);
    }
    return true;
}

// Lets them happen for as long as that.
inline void pass(std::chrono::milliseconds time)
{
    waitUntil([] { return false; }, time);
}

} // namespace Test
