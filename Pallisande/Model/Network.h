#pragma once

#include "Base/Download.h"

#include <functional>

namespace Pallisande {

// Fetches files while the window stays responsive.
class Network {
public:
    virtual ~Network() = default;

    // `done` comes on the caller's thread, later, and exactly once, unless the network is gone before.
    virtual void fetch(const Base::DownloadRequest& request, std::function<void(Base::DownloadResult)> done)
        = 0;
};

} // namespace Pallisande
