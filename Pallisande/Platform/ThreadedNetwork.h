#pragma once

#include "Pallisande/Model/Network.h"

#include <QObject>

#include <list>
#include <thread>

namespace Pallisande {

// Fetches on threads of its own, one a file; those under way are cancelled when it goes.
class ThreadedNetwork final : public QObject, public Network {
public:
    explicit ThreadedNetwork(QObject* parent = nullptr);
    ~ThreadedNetwork() override;

    void fetch(const Base::DownloadRequest& request, std::function<void(Base::DownloadResult)> done) override;

private:
    struct Fetching {
        std::stop_source cancel;
        std::jthread thread;
    };

    std::list<Fetching> m_fetching;
};

} // namespace Pallisande
