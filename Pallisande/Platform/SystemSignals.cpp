#include "Pallisande/Platform/SystemSignals.h"

#include <QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>

namespace Pallisande {

namespace {

constexpr std::array closing { SIGTERM, SIGINT, SIGHUP };
int bell[2] { -1, -1 }; // A pipe: all that a signal's handler may do is to write.
std::array<struct sigaction, closing.size()> before;

void ring(int)
{
    const int error = errno;
    const char byte = 0;
    [[maybe_unused]] const auto written = ::write(bell[1], &byte, 1); // A full pipe rings already.
    errno = error;
}

} // namespace

SystemSignals::SystemSignals(QObject* parent)
    : QObject(parent)
{
    if (::pipe2(bell, O_CLOEXEC | O_NONBLOCK) != 0)
        throw std::runtime_error("no pipe for signals");
    auto* const notifier = new QSocketNotifier(bell[0], QSocketNotifier::Read, this);
    connect(notifier, &QSocketNotifier::activated, this, [this] {
        char bytes[64];
        while (::read(bell[0], bytes, sizeof bytes) > 0) { }
        emit closeRequested();
    });
    for (std::size_t index = 0; index < closing.size(); ++index) {
        ::sigaction(closing[index], nullptr, &before[index]);
        if (before[index].sa_handler == SIG_IGN)
            continue;
        struct sigaction action { };
        action.sa_handler = &ring;
        action.sa_flags = SA_RESTART;
        ::sigaction(closing[index], &action, nullptr);
    }
}

SystemSignals::~SystemSignals()
{
    for (std::size_t index = 0; index < closing.size(); ++index)
        ::sigaction(closing[index], &before[index], nullptr);
    qDeleteAll(findChildren<QSocketNotifier*>()); // Before its descriptor is closed.
    ::close(bell[0]);
    ::close(bell[1]);
}

} // namespace Pallisande
