#include "Pallisande/Platform/FreedesktopNotifications.h"
#include "Tests/Pallisande/Events.h"
#include "Tests/Support/Folders.h"
#include "Tests/Support/Helper.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <QDBusArgument>
#include <QDBusConnectionInterface>
#include <QDBusMessage>

#include <memory>

namespace {

using namespace Pallisande;
using namespace std::chrono_literals;
using ::Test::waitUntil;

const QString service = "org.freedesktop.Notifications", path = "/org/freedesktop/Notifications";

// Notifications that a stand-in of the desktop's service gets, on a bus of the test's own.
class Notifications : public testing::Test {
protected:
    void SetUp() override
    {
        for (const std::string candidate :
            { "python3", "/usr/bin/python3" }) { // Debian's own sees Debian's modules.
            if (python.empty() && std::system((candidate + " -c 'import dbusmock' 2>/dev/null").c_str()) == 0)
                python = candidate;
        }
        if (python.empty() || std::system("command -v dbus-daemon >/dev/null") != 0)
            GTEST_SKIP() << "python3-dbusmock or dbus isn't installed.";
        // No folders of services: nothing of this computer is started by a message.
        ::Test::writeFile(folder / "bus.conf",
            fmt::format(
                R"(<busconfig><type>session</type><listen>unix:path={}</listen><policy context="default">
                <allow send_destination="*" eavesdrop="true"/><allow eavesdrop="true"/><allow own="*"/></policy></busconfig>)",
                (folder / "bus").string()));
        daemon = std::make_unique<::Test::Helper>(std::vector<std::string> { "dbus-daemon", "--nofork",
            "--print-address", "--config-file=" + (folder / "bus.conf").string() });
        address = daemon->line();
        bus = QDBusConnection::connectToBus(QString::fromStdString(address), "test");
        ASSERT_TRUE(bus.isConnected()) << address;
    }
    void TearDown() override
    {
        bus = QDBusConnection("none");
        QDBusConnection::disconnectFromBus("test");
    }
    void startService(const std::string& capabilities = "body body-markup actions")
    {
        serviceProgram = std::make_unique<::Test::Helper>(std::vector<std::string> { "env",
            "DBUS_SESSION_BUS_ADDRESS=" + address, python, "-m", "dbusmock", "--template",
            "notification_daemon", "-p", fmt::format(R"({{"capabilities": "{}"}})", capabilities) });
        ASSERT_TRUE(waitUntil([&] { return isRegistered(); }, 20s));
    }
    void endService()
    {
        serviceProgram.reset();
        ASSERT_TRUE(waitUntil([&] { return !isRegistered(); }));
    }
    bool isRegistered() { return bus.interface()->isServiceRegistered(service).value(); }

    std::unique_ptr<FreedesktopNotifications> makeCenter()
    {
        return std::make_unique<FreedesktopNotifications>([this] { return now; }, [this] { return bus; });
    }
    ReminderRequest request(const std::string& identifier, std::int64_t inMilliseconds)
    {
        return { .identifier = identifier,
            .title = identifier + " <b>bold</b> & more",
            .body = "Due in 2 hours · Smith & <i>Sons</i>",
            .fireTime = now.plusMilliseconds(inMilliseconds) };
    }
    // The arguments of every call of Notify so far.
    QList<QVariantList> shown()
    {
        auto question
            = QDBusMessage::createMethodCall(service, path, "org.freedesktop.DBus.Mock", "GetMethodCalls");
        question << "Notify";
        QList<QVariantList> calls;
        const auto answer = bus.call(question).arguments().value(0).value<QDBusArgument>();
        for (answer.beginArray(); !answer.atEnd();) {
            qulonglong time = 0;
            answer.beginStructure();
            answer >> time >> calls.emplaceBack();
            answer.endStructure();
        }
        return calls;
    }
    bool isGranted(FreedesktopNotifications& center)
    {
        std::optional<bool> granted;
        center.askPermission([&](bool answer) { granted = answer; });
        EXPECT_TRUE(waitUntil([&] { return granted.has_value(); }));
        return granted.value_or(false);
    }

    ::Test::TemporaryFolder folder;
    std::string python, address;
    std::unique_ptr<::Test::Helper> daemon, serviceProgram;
    QDBusConnection bus { "none" };
    Base::Instant now { 1'000'000'000'000 };
};

TEST_F(Notifications, appearWhenTheyAreDueAndNotBefore)
{
    startService();
    const auto center = makeCenter();
    EXPECT_TRUE(isGranted(*center));
    center->schedule(request("removed", 20));
    center->removeAllPending();
    center->schedule(request("later", 3'600'000));
    center->schedule(request("soon", 20));
    ::Test::pass(100ms);
    EXPECT_TRUE(shown().empty()); // By the clock that counts no time has passed.
    now = now.plusMilliseconds(20);
    EXPECT_TRUE(waitUntil([&] { return shown().size() == 1; }));
    const auto call = shown().front();
    EXPECT_EQ(call[0].toString(), "Pallisande");
    EXPECT_EQ(call[3].toString(), "soon <b>bold</b> & more"); // Never markup there.
    EXPECT_EQ(call[4].toString(), "Due in 2 hours · Smith &amp; &lt;i&gt;Sons&lt;/i&gt;");

    // The computer slept past the other; a change of the library then asks for all of them anew.
    now = now.plusMilliseconds(4'000'000);
    center->removeAllPending();
    EXPECT_TRUE(waitUntil([&] { return shown().size() == 2; }));
    ::Test::pass(100ms);
    EXPECT_EQ(shown().size(), 2);
}

TEST_F(Notifications, areShownLiterallyByServicesWithoutMarkup)
{
    startService("body");
    const auto center = makeCenter();
    auto odd = request("odd", 0);
    odd.title = "nul \0 \xFF " + std::string(100'000, 'x');
    center->schedule(odd);
    EXPECT_TRUE(waitUntil([&] { return shown().size() == 1; }));
    EXPECT_EQ(shown().front()[4].toString(), "Due in 2 hours · Smith & <i>Sons</i>");
    EXPECT_LE(shown().front()[3].toString().size(), 1000);
    EXPECT_TRUE(qdbus_cast<QStringList>(shown().front()[5]).isEmpty());
}

TEST_F(Notifications, openTheirJobWhenClicked)
{
    startService();
    const auto center = makeCenter();
    QStringList opened;
    QObject::connect(
        center.get(), &FreedesktopNotifications::opened, [&](const QString& id) { opened << id; });
    center->schedule(request("job", 0));
    EXPECT_TRUE(waitUntil([&] { return shown().size() == 1; }));
    const auto emitSignal
        = [&](const QString& name, const QString& signature, const QVariantList& arguments) {
              auto message
                  = QDBusMessage::createMethodCall(service, path, "org.freedesktop.DBus.Mock", "EmitSignal");
              message << service << name << signature << QVariant(arguments);
              bus.call(message);
              ::Test::pass(100ms);
          };
    emitSignal("ActionInvoked", "us", { 1u, "default" });
    emitSignal("ActionInvoked", "us", { 2u, "default" }); // Another program's.
    EXPECT_EQ(opened, QStringList { "job" });
    emitSignal("NotificationClosed", "uu", { 1u, 2u });
    emitSignal("ActionInvoked", "us", { 1u, "default" });
    EXPECT_EQ(opened.size(), 1);
}

TEST_F(Notifications, neverHoldTheProgramUp)
{
    const auto center = makeCenter();
    EXPECT_FALSE(isGranted(*center)); // Nobody is there.
    startService();
    EXPECT_TRUE(isGranted(*center));
    endService();
    const auto start = std::chrono::steady_clock::now();
    for (int count = 0; count < 60; ++count)
        center->schedule(request(std::to_string(count), 0));
    center->removeAllPending();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 100ms);
    EXPECT_FALSE(isGranted(*center));
    startService("body");
    center->schedule(request("after", 0));
    EXPECT_TRUE(waitUntil([&] { return shown().size() == 1; }));

    FreedesktopNotifications withoutBus([this] { return now; }, [] { return QDBusConnection("none"); });
    EXPECT_FALSE(isGranted(withoutBus));
    withoutBus.schedule(request("nobody", 0));
    ::Test::pass(50ms);
}

} // namespace
