#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>

#include <functional>

namespace Pallisande {

// Whether the desktop is dark and asks for high contrast: what its settings portal says
// (org.freedesktop.portal.Settings), now and whenever it changes. Until it answers, and where there is none,
// what the caller saw of the desktop's own colours holds. Nothing here waits for the bus.
class DesktopLook final : public QObject {
    Q_OBJECT

public:
    explicit DesktopLook(bool seemsDark, std::function<QDBusConnection()> bus = &QDBusConnection::sessionBus,
        QObject* parent = nullptr);

    bool isDark() const { return m_isDark; }
    bool hasHighContrast() const { return m_hasHighContrast; }

signals:
    void changed();

private slots:
    void settingChanged(const QDBusMessage& message);

private:
    void ask(const QString& key);
    void take(const QString& key, QVariant value);

    QDBusConnection m_bus;
    bool m_seemsDark;
    bool m_isDark;
    bool m_hasHighContrast = false;
};

} // namespace Pallisande
