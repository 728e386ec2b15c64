#include "Base/ChildProcess.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <fstream>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

using Base::ChildLimits;
using Base::ChildResult;
using End = Base::ChildResult::End;
using namespace std::chrono_literals;

ChildResult shell(const std::string& script, std::string_view input = {}, const ChildLimits& limits = {})
{
    return Base::runChild("/bin/sh", { "-c", script }, input, limits);
}

// Killed processes stay for a moment, as zombies until somebody asks for them.
bool isRunning(const std::string& process)
{
    std::ifstream status("/proc/" + process + "/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with("State:"))
            return line.find('Z') == std::string::npos && line.find('X') == std::string::npos;
    }
    return false;
}

TEST(ChildProcess, readsItsInputAndHandsBackItsOutput)
{
    std::string input;
    while (input.size() < 5'000'000)
        input += std::to_string(input.size()) + '\n';
    const auto result = Base::runChild("/bin/cat", { "-", "/dev/null" }, input);
    EXPECT_EQ(result.end, End::exited);
    EXPECT_EQ(result.code, 0);
    EXPECT_TRUE(result.output == input);
}

TEST(ChildProcess, tellsHowItEnded)
{
    std::signal(SIGPIPE, SIG_IGN); // Which the child doesn't inherit.
    const std::string large(5'000'000, 'x');
    struct {
        std::string script;
        ChildLimits limits;
        End end;
        int code;
        std::string output, errors;
    } const cases[] {
        { "echo out; echo err >&2; exit 3", {}, End::exited, 3, "out\n", "err\n" },
        { "kill -PIPE $$; echo alive", {}, End::killedBySignal, SIGPIPE, "", "" },
        { "exec <&-; echo done", {}, End::exited, 0, "done\n", "" },
        { "exec >&- 2>&-; sleep 0.1; exit 4", {}, End::exited, 4, "", "" },
        { "echo a; sleep 60", { .time = 200ms }, End::tookTooLong, 0, "a\n", "" },
        { "exec >&- 2>&-; sleep 60", { .time = 200ms }, End::tookTooLong, 0, "", "" },
        { "yes", { .outputBytes = 6 }, End::wroteTooMuch, 0, "y\ny\ny\n", "" },
        { "printf 123456", { .outputBytes = 6 }, End::exited, 0, "123456", "" },
        { "yes >&2", { .time = 200ms }, End::tookTooLong, 0, "", "*" },
        { "[ -e /proc/self/fd/50 ]", {}, End::exited, 1, "", "" },
    };
    ASSERT_EQ(::dup2(STDERR_FILENO, 50), 50);
    for (const auto& [script, limits, end, code, output, errors] : cases) {
        SCOPED_TRACE(script);
        const auto result = shell(script, large, limits);
        EXPECT_EQ(result.end, end);
        EXPECT_EQ(result.code, code);
        EXPECT_EQ(result.output, output);
        if (errors == "*")
            EXPECT_EQ(result.errors.size(), 64u * 1024);
        else
            EXPECT_EQ(result.errors, errors);
    }
    ::close(50);
    std::signal(SIGPIPE, SIG_DFL);

    const auto missing = Base::runChild(Base::programFolder() / "no such program", {}, "");
    EXPECT_EQ(missing.end, End::couldNotStart);
    EXPECT_EQ(missing.code, ENOENT);
}

TEST(ChildProcess, isNotOutlivedByItsOwnChildren)
{
    const auto start = std::chrono::steady_clock::now();
    auto result = shell("sleep 60 & echo $!");
    EXPECT_EQ(result.end, End::exited);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 20s);
    ASSERT_FALSE(result.output.empty());
    result.output.pop_back();
    for (int wait = 0; wait < 100 && isRunning(result.output); ++wait)
        std::this_thread::sleep_for(20ms);
    EXPECT_FALSE(isRunning(result.output));
}

} // namespace
