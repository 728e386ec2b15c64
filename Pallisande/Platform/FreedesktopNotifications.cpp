#include "Pallisande/Platform/FreedesktopNotifications.h"

#include "Base/Text.h"

#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>

#include <algorithm>

namespace Pallisande {

namespace {

const QString service = "org.freedesktop.Notifications";
const QString path = "/org/freedesktop/Notifications";

constexpr int patience = 5000; // Milliseconds for an answer; the service may have to be started first.
// The clock is looked at again at least this often: timers stand still while the computer sleeps.
constexpr std::int64_t longestWait = 30'000;
constexpr std::size_t longestText = 1000; // Bytes; no service shows as many.

QString shown(const std::string& text)
{
    return QString::fromStdString(std::string(Base::firstBytes(text, longestText)));
}

} // namespace

FreedesktopNotifications::FreedesktopNotifications(
    std::function<Base::Instant()> now, std::function<QDBusConnection()> bus, QObject* parent)
    : QObject(parent)
    , m_now(std::move(now))
    , m_makeBus(std::move(bus))
{
    m_timer.setSingleShot(true);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        fireDue();
        waitForNext();
    });
}

QDBusConnection& FreedesktopNotifications::bus()
{
    if (!m_bus) {
        m_bus = m_makeBus();
        m_bus->connect(service, path, service, "ActionInvoked", this, SLOT(actionInvoked(uint, QString)));
        m_bus->connect(
            service, path, service, "NotificationClosed", this, SLOT(notificationClosed(uint, uint)));
    }
    return *m_bus;
}

void FreedesktopNotifications::call(const QString& method, const QVariantList& arguments,
    std::function<void(const QDBusPendingCall& reply)> done)
{
    auto message = QDBusMessage::createMethodCall(service, path, service, method);
    message.setArguments(arguments);
    // Without a bus there would be no answer at all.
    const auto pending = bus().isConnected()
        ? bus().asyncCall(message, patience)
        : QDBusPendingCall::fromError(QDBusError(QDBusError::Disconnected, "no session bus"));
    auto* const watcher = new QDBusPendingCallWatcher(pending, this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [watcher, done = std::move(done)] {
        watcher->deleteLater();
        done(*watcher);
    });
}

void FreedesktopNotifications::removeAllPending()
{
    fireDue();
    m_pending.clear();
    m_timer.stop();
}

// A desktop of this kind has no question to ask: there is a service that takes notifications, or there is
// none.
void FreedesktopNotifications::askPermission(std::function<void(bool granted)> answer)
{
    call("GetCapabilities", {},
        [answer = std::move(answer)](const QDBusPendingCall& reply) { answer(!reply.isError()); });
}

void FreedesktopNotifications::schedule(const ReminderRequest& request)
{
    m_pending[request.identifier] = request;
    waitForNext();
}

void FreedesktopNotifications::fireDue()
{
    const auto now = m_now();
    std::erase_if(m_pending, [&](const auto& entry) {
        const bool isDue = entry.second.fireTime <= now;
        if (isDue)
            show(entry.second);
        return isDue;
    });
}

void FreedesktopNotifications::waitForNext()
{
    if (m_pending.empty())
        return;
    auto next = Base::latestInstant;
    for (const auto& [identifier, request] : m_pending)
        next = std::min(next, request.fireTime);
    const auto wait = next.milliseconds - m_now().milliseconds;
    m_timer.start(std::chrono::milliseconds(std::clamp<std::int64_t>(wait, 0, longestWait)));
}

// What the service can do is asked each time, since another may have taken its place.
void FreedesktopNotifications::show(const ReminderRequest& request)
{
    call("GetCapabilities", {}, [this, request](const QDBusPendingCall& reply) {
        const QDBusPendingReply<QStringList> capabilities = reply;
        if (capabilities.isError()) // Nobody shows anything; the board in the window still does.
            return;
        const bool readsMarkup = capabilities.value().contains("body-markup");
        const bool hasActions = capabilities.value().contains("actions");
        const QVariantList arguments {
            "Pallisande",
            0u, // Replaces none.
            "pallisande", // Icon.
            shown(request.title), readsMarkup ? shown(request.body).toHtmlEscaped() : shown(request.body),
            hasActions ? QStringList { "default", QStringLiteral("Open") } : QStringList {},
            QVariantMap { { "desktop-entry", "pallisande" }, { "sound-name", "message-new-instant" } },
            -1, // On show for as long as the service likes.
        };
        call("Notify", arguments,
            [this, identifier = QString::fromStdString(request.identifier)](const QDBusPendingCall& answer) {
                const QDBusPendingReply<uint> number = answer;
                if (!number.isError())
                    m_shown[number.value()] = identifier;
            });
    });
}

void FreedesktopNotifications::actionInvoked(uint notification, const QString& action)
{
    if (const auto found = m_shown.constFind(notification);
        found != m_shown.constEnd() && action == "default")
        emit opened(*found);
}

void FreedesktopNotifications::notificationClosed(uint notification, uint) { m_shown.remove(notification); }

} // namespace Pallisande
