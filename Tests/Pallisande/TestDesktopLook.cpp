#include "Pallisande/Platform/DesktopLook.h"
#include "Tests/Pallisande/Events.h"
#include "Tests/Support/Folders.h"
#include "Tests/Support/Helper.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>

#include <map>
#include <memory>

namespace {

using namespace Pallisande;
using ::Test::waitUntil;

const QString service = "org.freedesktop.portal.Desktop", path = "/org/freedesktop/portal/desktop";

// A settings portal that says what a test sets.
class Portal final : public QDBusVirtualObject {
public:
    QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override
    {
        const auto key = message.arguments().value(1).toString();
        const auto found = values.find(key);
        if (message.member() != "Read" || found == values.end())
            return connection.send(message.createErrorReply("org.freedesktop.portal.Error.NotFound", "No."));
        const QDBusVariant inner(found->second); // Wrapped twice, as this old call has it.
        return connection.send(
            message.createReply(QVariant::fromValue(QDBusVariant(QVariant::fromValue(inner)))));
    }

    std::map<QString, uint> values;
};

class DesktopLooks : public testing::Test {
protected:
    void SetUp() override
    {
        if (std::system("command -v dbus-daemon >/dev/null") != 0)
            GTEST_SKIP() << "dbus isn't installed.";
        ::Test::writeFile(folder / "bus.conf",
            fmt::format(R"(<busconfig><type>session</type><listen>unix:path={}</listen>
                <policy context="default"><allow send_destination="*" eavesdrop="true"/>
                <allow eavesdrop="true"/><allow own="*"/></policy></busconfig>)",
                (folder / "bus").string()));
        daemon = std::make_unique<::Test::Helper>(std::vector<std::string> { "dbus-daemon", "--nofork",
            "--print-address", "--config-file=" + (folder / "bus.conf").string() });
        address = QString::fromStdString(daemon->line());
        theirs = QDBusConnection::connectToBus(address, "portal");
        ours = QDBusConnection::connectToBus(address, "window");
        ASSERT_TRUE(theirs.isConnected() && ours.isConnected());
    }
    void TearDown() override
    {
        theirs = ours = QDBusConnection("none");
        QDBusConnection::disconnectFromBus("portal");
        QDBusConnection::disconnectFromBus("window");
    }
    void startPortal()
    {
        ASSERT_TRUE(theirs.registerVirtualObject(path, &portal));
        ASSERT_TRUE(theirs.registerService(service));
    }
    ::Test::TemporaryFolder folder;
    std::unique_ptr<::Test::Helper> daemon;
    QString address;
    QDBusConnection theirs { "none" }, ours { "none" };
    Portal portal;
};

} // namespace

TEST_F(DesktopLooks, followThePortal)
{
    portal.values = { { "color-scheme", 1 } };
    startPortal();
    DesktopLook look(false, [this] { return ours; });
    EXPECT_FALSE(look.isDark()) << "until it answers";
    EXPECT_TRUE(waitUntil([&] { return look.isDark(); }));
    EXPECT_FALSE(look.hasHighContrast());

    const auto change = [this](const char* space, const char* key, uint value) {
        auto signal = QDBusMessage::createSignal(path, "org.freedesktop.portal.Settings", "SettingChanged");
        signal << QString(space) << QString(key) << QVariant::fromValue(QDBusVariant(value));
        EXPECT_TRUE(theirs.send(signal));
    };
    change("org.freedesktop.appearance", "contrast", 1);
    EXPECT_TRUE(waitUntil([&] { return look.hasHighContrast(); }));
    change("org.gnome.desktop", "color-scheme", 2); // Of another kind.
    change("org.freedesktop.appearance", "color-scheme", 0);
    EXPECT_TRUE(waitUntil([&] { return !look.isDark(); })) << "what it seemed, without a wish";
}

TEST_F(DesktopLooks, withoutAPortalAreWhatTheySeemed)
{
    DesktopLook look(true, [this] { return ours; });
    ::Test::pass(std::chrono::milliseconds(100));
    EXPECT_TRUE(look.isDark());
    EXPECT_FALSE(look.hasHighContrast());
}
