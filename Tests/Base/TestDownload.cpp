#include "Base/Download.h"
#include "Tests/Support/Folders.h"
#include "Tests/Support/Helper.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <memory>
#include <sstream>
#include <thread>

namespace {

using End = Base::DownloadResult::End;
using namespace std::chrono_literals;

class Download : public testing::Test {
protected:
    static void SetUpTestSuite()
    {
        ::setenv("no_proxy", "localhost", 1);
        if (std::system("command -v python3 openssl >/dev/null 2>&1") != 0)
            return;
        folder = std::make_unique<::Test::TemporaryFolder>();
        server = std::make_unique<::Test::Helper>(std::vector<std::string> {
            "python3", PALLISANDE_TEST_SOURCES "/Base/TlsServer.py", folder->path().string() });
        std::istringstream(server->line()) >> good >> expired >> elsewhere >> unknown >> plain;
    }
    static void TearDownTestSuite()
    {
        server.reset();
        folder.reset();
    }
    void SetUp() override
    {
        if (!server)
            GTEST_SKIP() << "python3 or openssl isn't installed.";
        ASSERT_NE(plain, 0);
    }

    static std::string at(int port, std::string_view path)
    {
        return fmt::format("{}://localhost:{}/{}", port == plain ? "http" : "https", port, path);
    }
    static Base::DownloadRequest request(std::string address)
    {
        return {
            .address = std::move(address), .largest = 100'000, .time = 5s, .authorities = *folder / "ca.pem"
        };
    }
    static std::string bodyAt(int port, std::string_view path)
    {
        return Base::download(request(at(port, path))).body;
    }

    inline static std::unique_ptr<::Test::TemporaryFolder> folder;
    inline static std::unique_ptr<::Test::Helper> server;
    inline static int good = 0, expired = 0, elsewhere = 0, unknown = 0, plain = 0;
};

TEST_F(Download, takesFilesAndTellsWhyItDoesNot)
{
    const struct {
        std::string address;
        End end;
        std::string reason;
        std::size_t size = 0;
    } cases[] {
        { at(good, "file?100000"), End::done, "", 100'000 },
        { at(good, "file?0"), End::done, "" },
        { at(good, "to?/file?7"), End::done, "", 7 },
        { at(good, "to?" + at(good, "to?/file?5")), End::done, "", 5 },
        { at(good, "packed"), End::done, "", 6 }, // As it was sent: nothing is unpacked unasked.
        { at(good, "file?100001"), End::tooLarge, "the file is larger than expected" },
        { at(good, "endless"), End::tooLarge, "the file is larger than expected" },
        { at(good, "titles"), End::tooLarge, "the file is larger than expected" },
        { at(good, "status?503"), End::refused, "the server answered with an error (503)" },
        { at(good, "status?204"), End::refused, "the server answered with an error (204)" },
        { at(good, "cut"), End::failed, "the connection broke off" },
        { at(good, "to?" + at(plain, "file?1")), End::failed, "the address isn’t an HTTPS address" },
        { at(good, "to?file:///etc/hostname"), End::failed, "the address isn’t an HTTPS address" },
        { at(good, "hops?4"), End::failed, "the server redirects too often" },
        { at(plain, "file?1"), End::failed, "the address isn’t an HTTPS address" },
        { "", End::failed, "the address isn’t an HTTPS address" },
        { at(expired, "file?1"), End::failed, "the server couldn’t prove that it is the right one" },
        { at(elsewhere, "file?1"), End::failed, "the server couldn’t prove that it is the right one" },
        { at(unknown, "file?1"), End::failed, "the server couldn’t prove that it is the right one" },
        { "https://nowhere.invalid/", End::failed, "the server couldn’t be found" },
        { "https://localhost:1/", End::failed, "the server couldn’t be reached" },
    };
    for (const auto& [address, end, reason, size] : cases) {
        SCOPED_TRACE(address);
        const auto result = Base::download(request(address));
        EXPECT_EQ(result.end, end);
        EXPECT_EQ(result.reason, reason);
        EXPECT_EQ(result.body.size(), size);
    }
    EXPECT_EQ(Base::download(request(at(good, "status?404"))).status, 404);
    EXPECT_EQ(bodyAt(good, "plain"), "0") << "A server was asked without TLS.";
    auto withSystemAuthorities = request(at(good, "file?1"));
    withSystemAuthorities.authorities.clear();
    EXPECT_EQ(Base::download(withSystemAuthorities).end, End::failed);
}

TEST_F(Download, tellsTheServerNothingOfTheUser)
{
    EXPECT_EQ(bodyAt(good, "hops?3"), "host;user-agent;accept;"); // No cookie that a redirect set either.
}

TEST_F(Download, endsInTimeWhenTheServerDoesNot)
{
    struct {
        std::string path;
        std::chrono::milliseconds time, cancelledAfter;
        End end;
    } const cases[] {
        { "slow?0.1", 400ms, 1h, End::tookTooLong }, // A byte now and then.
        { "slow?60", 400ms, 1h, End::tookTooLong },
        { "slow?60", 1h, 300ms, End::cancelled },
        { "slow?0.01", 1h, 300ms, End::cancelled },
        { "slow?60", 1h, 0ms, End::cancelled },
    };
    for (const auto& [path, time, cancelledAfter, end] : cases) {
        SCOPED_TRACE(path);
        std::stop_source cancel;
        auto slow = request(at(good, path));
        slow.time = time;
        slow.cancel = cancel.get_token();
        std::jthread canceller;
        if (cancelledAfter < 1h)
            canceller = std::jthread([&cancel, delay = cancelledAfter] {
                std::this_thread::sleep_for(delay);
                cancel.request_stop();
            });
        const auto start = std::chrono::steady_clock::now();
        const auto result = Base::download(slow);
        EXPECT_EQ(result.end, end);
        EXPECT_EQ(result.body, "");
        EXPECT_LT(std::chrono::steady_clock::now() - start, 3s);
    }
}

} // namespace
