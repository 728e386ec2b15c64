#include "Pallisande/Model/QtServices.h"

#include <QTimer>

namespace Pallisande {

namespace {

class TimerTask final : public PendingTask {
public:
    TimerTask(std::chrono::milliseconds wait, std::function<void()> task)
        : m_timer(new QTimer)
    {
        m_timer->setSingleShot(true);
        QObject::connect(m_timer, &QTimer::timeout, m_timer, std::move(task));
        m_timer->start(wait);
    }
    TimerTask(const TimerTask&) = delete;
    TimerTask& operator=(const TimerTask&) = delete;
    ~TimerTask() override
    {
        m_timer->stop();
        m_timer->deleteLater(); // The task itself may be what ends here.
    }

private:
    QTimer* m_timer;
};

} // namespace

std::unique_ptr<PendingTask> afterWait(std::chrono::milliseconds wait, std::function<void()> task)
{
    return std::make_unique<TimerTask>(wait, std::move(task));
}

// A count may take long; what is read and drawn meanwhile needs threads too.
ThreadedBackground::ThreadedBackground() { m_threads.setMaxThreadCount(4); }

ThreadedBackground::~ThreadedBackground() { m_threads.waitForDone(); }

void ThreadedBackground::run(std::function<void()> work, std::function<void()> done)
{
    m_threads.start([this, work = std::move(work), done = std::move(done)]() mutable {
        work();
        work = nullptr; // What it held is let go on this thread.
        post(std::move(done));
    });
}

void ThreadedBackground::post(std::function<void()> task)
{
    QMetaObject::invokeMethod(&m_mainThread, std::move(task), Qt::QueuedConnection);
}

} // namespace Pallisande
