#include "Pallisande/Platform/DesktopLook.h"

#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusVariant>

namespace Pallisande {

namespace {

const QString service = QStringLiteral("org.freedesktop.portal.Desktop");
const QString path = QStringLiteral("/org/freedesktop/portal/desktop");
const QString interface = QStringLiteral("org.freedesktop.portal.Settings");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString colourScheme = QStringLiteral("color-scheme"), contrast = QStringLiteral("contrast");

} // namespace

DesktopLook::DesktopLook(bool seemsDark, std::function<QDBusConnection()> bus, QObject* parent)
    : QObject(parent)
    , m_bus(bus())
    , m_seemsDark(seemsDark)
    , m_isDark(seemsDark)
{
    m_bus.connect(QString(), path, interface, QStringLiteral("SettingChanged"), this,
        SLOT(settingChanged(QDBusMessage)));
    ask(colourScheme);
    ask(contrast);
}

void DesktopLook::ask(const QString& key)
{
    auto call = QDBusMessage::createMethodCall(service, path, interface, QStringLiteral("Read"));
    call << appearance << key;
    auto* watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this, key, watcher] {
        watcher->deleteLater();
        const QDBusPendingReply<QDBusVariant> reply = *watcher;
        if (!reply.isError())
            take(key, reply.value().variant());
    });
}

void DesktopLook::settingChanged(const QDBusMessage& message)
{
    const auto values = message.arguments();
    if (values.size() == 3 && values[0].toString() == appearance)
        take(values[1].toString(), values[2]);
}

void DesktopLook::take(const QString& key, QVariant value)
{
    while (value.canConvert<QDBusVariant>()) // Older portals wrap it twice.
        value = value.value<QDBusVariant>().variant();
    const auto number = value.toUInt();
    const bool wasDark = m_isDark, hadContrast = m_hasHighContrast;
    if (key == colourScheme)
        m_isDark = number == 0 ? m_seemsDark : number == 1; // 0: no preference.
    else if (key == contrast)
        m_hasHighContrast = number == 1;
    if (m_isDark != wasDark || m_hasHighContrast != hadContrast)
        emit changed();
}

} // namespace Pallisande
