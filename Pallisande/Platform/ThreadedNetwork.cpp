#include "Pallisande/Platform/ThreadedNetwork.h"

#include <QMetaObject>

namespace Pallisande {

ThreadedNetwork::ThreadedNetwork(QObject* parent)
    : QObject(parent)
{
}

ThreadedNetwork::~ThreadedNetwork()
{
    for (auto& fetching : m_fetching)
        fetching.cancel.request_stop();
}

void ThreadedNetwork::fetch(
    const Base::DownloadRequest& request, std::function<void(Base::DownloadResult)> done)
{
    const auto place = m_fetching.emplace(m_fetching.end());
    place->thread = std::jthread([this, place, request = request, done = std::move(done)]() mutable {
        // Two may ask for a stop, the caller and our end.
        const std::stop_callback byCaller(request.cancel, [&] { place->cancel.request_stop(); });
        request.cancel = place->cancel.get_token();
        auto result = Base::download(request);
        // Dropped by Qt when this object is gone before it comes.
        QMetaObject::invokeMethod(
            this,
            [this, place, done = std::move(done), result = std::move(result)]() mutable {
                m_fetching.erase(place); // Waits for the thread, which has nothing left to do.
                done(std::move(result));
            },
            Qt::QueuedConnection);
    });
}

} // namespace Pallisande
