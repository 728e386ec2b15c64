#pragma once

#include "Pallisande/Model/Reminders.h"

#include <QDBusConnection>
#include <QHash>
#include <QObject>
#include <QTimer>

#include <functional>
#include <map>

class QDBusPendingCall;

namespace Pallisande {

// Reminders through the desktop's notification service (org.freedesktop.Notifications on the session bus).
// The service knows no later times: what is pending fires while the program runs. Nothing here waits for the
// bus.
class FreedesktopNotifications final : public QObject, public NotificationCenter {
    Q_OBJECT
public:
    // The bus is asked for when it is first needed.
    explicit FreedesktopNotifications(std::function<Base::Instant()> now,
        std::function<QDBusConnection()> bus = &QDBusConnection::sessionBus, QObject* parent = nullptr);

    // What has come due but wasn't shown yet (the computer slept) is shown first.
    void removeAllPending() override;
    void askPermission(std::function<void(bool granted)> answer) override;
    void schedule(const ReminderRequest& request) override;

signals:
    // The user clicked on a notification.
    void opened(const QString& identifier);

private slots:
    void actionInvoked(uint notification, const QString& action);
    void notificationClosed(uint notification, uint reason);

private:
    QDBusConnection& bus();
    void call(const QString& method, const QVariantList& arguments,
        std::function<void(const QDBusPendingCall& reply)> done);
    void fireDue();
    void waitForNext();
    void show(const ReminderRequest& request);

    std::function<Base::Instant()> m_now;
    std::function<QDBusConnection()> m_makeBus;
    std::optional<QDBusConnection> m_bus;
    std::map<std::string, ReminderRequest> m_pending; // By their identifiers.
    QHash<uint, QString> m_shown; // The identifiers of those on show.
    QTimer m_timer;
};

} // namespace Pallisande
