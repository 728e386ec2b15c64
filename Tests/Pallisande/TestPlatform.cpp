#include "Pallisande/Platform/SingleInstance.h"
#include "Pallisande/Platform/SystemSignals.h"
#include "Pallisande/Platform/ThreadedNetwork.h"
#include "Tests/Pallisande/Events.h"
#include "Tests/Support/Folders.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <QLocalSocket>
#include <QTcpServer>
#include <QThread>

#include <csignal>
#include <future>
#include <sys/stat.h>

namespace {

using namespace Pallisande;
using namespace std::chrono_literals;
using ::Test::waitUntil;

class SingleInstanceTest : public testing::Test {
protected:
    void SetUp() override
    {
        std::filesystem::create_directories(runtime);
        ::chmod(runtime.c_str(), 0700);
        qputenv("XDG_RUNTIME_DIR", runtime.c_str());
        std::filesystem::create_directory(library);
        QObject::connect(
            &first, &SingleInstance::raised, [this](const Handover& given) { raised.push_back(given); });
    }
    // As another program would, while the first goes on.
    bool handOver(const std::filesystem::path& place, const Handover& handover = {})
    {
        auto answer
            = std::async(std::launch::async, [&] { return SingleInstance::handOver(place, handover); });
        EXPECT_TRUE(waitUntil([&] { return answer.wait_for(0s) == std::future_status::ready; }));
        return answer.get();
    }
    std::filesystem::path socket() const
    {
        for (const auto& entry : std::filesystem::directory_iterator(runtime))
            return entry.path();
        return {};
    }

    ::Test::TemporaryFolder folder;
    std::filesystem::path runtime = folder / "runtime", library = folder / "Library";
    SingleInstance first;
    std::vector<Handover> raised;
};

TEST_F(SingleInstanceTest, takesTheFilesOfASecondStart)
{
    EXPECT_FALSE(handOver(library));
    ASSERT_TRUE(first.listen(library));
    std::filesystem::create_directory_symlink(library, folder / "Link");
    const Handover given { { "/home/a b.xml",
                               "/home/B\xFC"
                               "cher\n.docx" },
        "token" };
    EXPECT_TRUE(handOver(library, given));
    EXPECT_TRUE(handOver(folder / "Link"));
    EXPECT_TRUE(handOver(library / "../Library", { { "../report.xml" } }));
    const Handover completed { { (std::filesystem::current_path() / "../report.xml").lexically_normal() } };
    EXPECT_EQ(raised, (std::vector<Handover> { given, {}, completed }));
    Handover thousands;
    for (int number = 0; number < 20'000; ++number)
        thousands.files.push_back(fmt::format("/home/{:0100}.docx", number));
    EXPECT_TRUE(handOver(library, thousands));
    EXPECT_EQ(raised.back(), thousands);
    EXPECT_FALSE(handOver(folder.path()));
    EXPECT_FALSE(handOver(folder / "gone"));
}

TEST_F(SingleInstanceTest, listensForOneFolderAtATime)
{
    const auto other = folder / "Other";
    std::filesystem::create_directory(other);
    ASSERT_TRUE(first.listen(library));
    ASSERT_TRUE(first.listen(other));
    EXPECT_FALSE(handOver(library));
    EXPECT_TRUE(handOver(other));
    SingleInstance second;
    EXPECT_TRUE(second.listen(library));
    EXPECT_TRUE(handOver(library));
    EXPECT_EQ(raised.size(), 1u);
    EXPECT_FALSE(first.listen(folder / "gone"));
}

TEST_F(SingleInstanceTest, takesThePlaceOfAKilledOne)
{
    // What is left is a socket on which nobody listens.
    ASSERT_TRUE(first.listen(library));
    const auto left = socket();
    std::filesystem::create_hard_link(left, folder / "kept");
    ASSERT_TRUE(first.listen(folder.path()));
    std::filesystem::rename(folder / "kept", left);
    EXPECT_FALSE(handOver(library));
    SingleInstance second;
    EXPECT_TRUE(second.listen(library));
    EXPECT_TRUE(handOver(library));
    struct stat status { };
    ASSERT_EQ(::stat(left.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 077, 0u); // Nobody else may connect.
}

TEST_F(SingleInstanceTest, isNotImpressedByOtherMessages)
{
    ASSERT_TRUE(first.listen(library));
    for (const QByteArray& message : { QByteArray("\xFF\xFF\xFF\xFF", 4) + "much",
             QByteArray("\0\0\0\x09/home", 9), QByteArray("\0\0", 2), QByteArray() }) {
        QLocalSocket socket;
        socket.connectToServer(QString::fromStdString(this->socket()));
        ASSERT_TRUE(socket.waitForConnected(1000));
        socket.write(message);
        ::Test::pass(50ms);
        socket.disconnectFromServer();
    }
    ::Test::pass(50ms);
    EXPECT_TRUE(raised.empty());
    EXPECT_TRUE(handOver(library));
}

TEST_F(SingleInstanceTest, doesNotWaitForABusyWindowForever)
{
    ASSERT_TRUE(first.listen(library));
    const auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(SingleInstance::handOver(library, {}, 200ms)); // Nobody lets events happen.
    EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
}

TEST(SystemSignals, askForAnOrderlyClose)
{
    std::signal(SIGHUP, SIG_IGN); // As nohup does.
    {
        SystemSignals systemSignals;
        int asked = 0;
        QObject::connect(&systemSignals, &SystemSignals::closeRequested, [&] { ++asked; });
        for (const int signal : { SIGTERM, SIGINT }) {
            std::raise(signal);
            EXPECT_TRUE(waitUntil([&] { return asked == 1; })) << signal;
            asked = 0;
        }
        for (int count = 0; count < 100'000; ++count)
            std::raise(SIGTERM);
        EXPECT_TRUE(waitUntil([&] { return asked > 0; }));
        ::Test::pass(20ms);
        asked = 0;
        std::raise(SIGHUP);
        ::Test::pass(50ms);
        EXPECT_EQ(asked, 0);
    }
    EXPECT_EQ(std::signal(SIGTERM, SIG_DFL), SIG_DFL);
    EXPECT_EQ(std::signal(SIGHUP, SIG_DFL), SIG_IGN);
}

TEST(ThreadedNetwork, answersLaterOnTheThreadThatAsked)
{
    ThreadedNetwork network;
    std::vector<std::string> reasons;
    for (int count = 0; count < 5; ++count) {
        network.fetch({ .address = "http://localhost/" }, [&](const Base::DownloadResult& result) {
            EXPECT_EQ(QThread::currentThread(), qApp->thread());
            reasons.push_back(result.reason);
        });
    }
    EXPECT_TRUE(reasons.empty());
    EXPECT_TRUE(waitUntil([&] { return reasons.size() == 5; }));
    EXPECT_EQ(reasons.front(), "the address isn’t an HTTPS address");
}

TEST(ThreadedNetwork, canBeCancelledAndLeft)
{
    QTcpServer mute; // Takes connections and says nothing.
    ASSERT_TRUE(mute.listen(QHostAddress::LocalHost));
    qputenv("no_proxy", "127.0.0.1");
    std::stop_source cancel;
    const Base::DownloadRequest request { .address = fmt::format("https://127.0.0.1:{}/", mute.serverPort()),
        .cancel = cancel.get_token() };
    auto network = std::make_unique<ThreadedNetwork>();
    std::vector<Base::DownloadResult::End> ends;
    network->fetch(request, [&](const Base::DownloadResult& result) { ends.push_back(result.end); });
    ::Test::pass(50ms);
    cancel.request_stop();
    EXPECT_TRUE(waitUntil([&] { return !ends.empty(); }, 2s));
    EXPECT_EQ(ends.front(), Base::DownloadResult::End::cancelled);

    network->fetch({ .address = request.address }, [&](const Base::DownloadResult&) { FAIL(); });
    ::Test::pass(50ms);
    const auto start = std::chrono::steady_clock::now();
    network.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - start, 2s);
    ::Test::pass(20ms);
}

} // namespace
