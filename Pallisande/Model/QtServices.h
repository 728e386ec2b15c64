#pragma once

#include "Pallisande/Model/Services.h"

#include <QObject>
#include <QThreadPool>

namespace Pallisande {

// A single-shot timer of Qt's event loop, for AppServices::after.
std::unique_ptr<PendingTask> afterWait(std::chrono::milliseconds wait, std::function<void()> task);

// A few threads of its own, whose results come back through the event loop. Waits for them at its end.
class ThreadedBackground final : public Background {
public:
    ThreadedBackground();
    ~ThreadedBackground() override;

    void run(std::function<void()> work, std::function<void()> done) override;
    void post(std::function<void()> task) override;

private:
    QObject m_mainThread; // Lives there, and takes what comes back along when it goes.
    QThreadPool m_threads;
};

} // namespace Pallisande
