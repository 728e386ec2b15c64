#include "Base/ChildProcess.h"

#include <algorithm>
#include <array>
#include <climits>
#include <csignal>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <spawn.h>
#include <sys/eventfd.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>

namespace Base {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::size_t keptErrors = 64 * 1024;

// A descriptor that none of the child's standard ones can be mixed up with: in a program that was started
// without them, new descriptors take their numbers.
Descriptor aboveStandard(Descriptor descriptor)
{
    if (descriptor.number() > STDERR_FILENO)
        return descriptor;
    return Descriptor(
        checked([&] { return ::fcntl(descriptor.number(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1); }));
}

// The child reads its input from memory, at its own pace: nothing has to be fed to it while it writes, and a
// child that doesn't read it all breaks no pipe.
Descriptor inputFile(std::string_view input)
{
    Descriptor file(checked([] { return ::memfd_create("input", MFD_CLOEXEC); }));
    while (!input.empty()) {
        const auto count = checked([&] { return ::write(file.number(), input.data(), input.size()); });
        input.remove_prefix(static_cast<std::size_t>(count));
    }
    checked([&] { return ::lseek(file.number(), 0, SEEK_SET); });
    return aboveStandard(std::move(file));
}

Descriptor inputFile(const Descriptor& input)
{
    return Descriptor(checked([&] { return ::fcntl(input.number(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1); }));
}

// What the child writes to one of its descriptors.
class Output {
public:
    explicit Output(std::size_t most)
        : m_most(most)
    {
        int ends[2];
        checked([&] { return ::pipe2(ends, O_CLOEXEC); });
        m_ours = Descriptor(ends[0]);
        m_childs = Descriptor(ends[1]);
        checked([&] { return ::fcntl(m_ours.number(), F_SETFL, O_NONBLOCK); });
        m_childs = aboveStandard(std::move(m_childs));
    }

    int childsEnd() const { return m_childs.number(); }
    void closeChildsEnd() { m_childs = Descriptor(); }

    // For poll(), which passes over it once everything was read.
    int descriptor() const { return m_ours.number(); }

    // Takes some of what is there. False when there is nothing (more).
    bool gather()
    {
        if (!m_ours.isOpen())
            return false;
        std::array<char, 65536> buffer;
        const auto count = repeated([&] { return ::read(m_ours.number(), buffer.data(), buffer.size()); });
        if (count < 0 && errno == EAGAIN)
            return false;
        if (count <= 0) {
            m_ours = Descriptor();
            return false;
        }
        const auto size = static_cast<std::size_t>(count);
        const auto kept = std::min(size, m_most - m_text.size());
        m_text.append(buffer.data(), kept);
        m_isTooMuch = m_isTooMuch || kept < size;
        return true;
    }

    bool isTooMuch() const { return m_isTooMuch; }
    std::string take() { return std::move(m_text); }

private:
    Descriptor m_ours, m_childs;
    std::size_t m_most;
    std::string m_text;
    bool m_isTooMuch = false;
};

// How the child is started: its standard descriptors and no others, signals as in a program of its own, and a
// process group of its own, so that its children can be killed with it.
class SpawnPlan {
public:
    SpawnPlan(int input, int output, int errors)
    {
        ::posix_spawn_file_actions_init(&m_actions);
        ::posix_spawn_file_actions_adddup2(&m_actions, input, STDIN_FILENO);
        ::posix_spawn_file_actions_adddup2(&m_actions, output, STDOUT_FILENO);
        ::posix_spawn_file_actions_adddup2(&m_actions, errors, STDERR_FILENO);
        ::posix_spawn_file_actions_addclosefrom_np(&m_actions, STDERR_FILENO + 1);
        ::posix_spawnattr_init(&m_attributes);
        ::posix_spawnattr_setflags(
            &m_attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK);
        ::posix_spawnattr_setpgroup(&m_attributes, 0);
        sigset_t signals;
        ::sigfillset(&signals);
        ::posix_spawnattr_setsigdefault(&m_attributes, &signals);
        ::sigemptyset(&signals);
        ::posix_spawnattr_setsigmask(&m_attributes, &signals);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;
    ~SpawnPlan()
    {
        ::posix_spawn_file_actions_destroy(&m_actions);
        ::posix_spawnattr_destroy(&m_attributes);
    }

    pid_t start(const std::filesystem::path& program, const std::vector<std::string>& arguments) const
    {
        // The pointers aren't to constants for historical reasons; nothing is changed through them.
        std::vector<char*> pointers { const_cast<char*>(program.c_str()) };
        for (const auto& argument : arguments)
            pointers.push_back(const_cast<char*>(argument.c_str()));
        pointers.push_back(nullptr);
        pid_t child = 0;
        if (const int error
            = ::posix_spawn(&child, program.c_str(), &m_actions, &m_attributes, pointers.data(), environ))
            throwSystemError(error);
        return child;
    }

private:
    posix_spawn_file_actions_t m_actions;
    posix_spawnattr_t m_attributes;
};

// A running child, which doesn't outlive the object.
class Child {
public:
    explicit Child(pid_t number)
        : m_number(number)
    {
    }
    Child(const Child&) = delete;
    Child& operator=(const Child&) = delete;
    ~Child()
    {
        if (m_number > 0)
            end();
    }

    pid_t number() const { return m_number; }

    // Kills what is left of its group. As long as the child isn't waited for, no other group can have its
    // number.
    void kill() const { ::kill(-m_number, SIGKILL); }

    // Kills and waits; how it ended is told by the status, or nothing when the system was told to forget its
    // children.
    std::optional<int> end()
    {
        kill();
        int status = 0;
        const pid_t child = std::exchange(m_number, 0);
        if (repeated([&] { return ::waitpid(child, &status, 0); }) < 0)
            return std::nullopt;
        return status;
    }

private:
    pid_t m_number;
};

// A descriptor that becomes readable when the process ends. Called by number, because glibc 2.36 declares
// pidfd_open() for C only.
Descriptor openProcess(pid_t process)
{
    return Descriptor(static_cast<int>(checked([&] { return ::syscall(SYS_pidfd_open, process, 0); })));
}

// A descriptor that becomes readable when a stop is asked for.
class StopDescriptor {
public:
    explicit StopDescriptor(const std::stop_token& stop)
        : m_descriptor(checked([] { return ::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK); }))
        , m_callback(stop, Signal { m_descriptor.number() })
    {
    }

    int number() const { return m_descriptor.number(); }

private:
    struct Signal {
        int descriptor;
        void operator()() const { ::eventfd_write(descriptor, 1); }
    };

    Descriptor m_descriptor;
    std::stop_callback<Signal> m_callback;
};

int millisecondsUntil(Clock::time_point deadline)
{
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
    return static_cast<int>(std::clamp<std::chrono::milliseconds::rep>(left, 0, INT_MAX));
}

// Gathers what the child writes until it has ended or goes too far. The child's own end is waited for, not
// that of the pipes, which a process that it left behind could hold open.
ChildResult::End watch(const Child& child, int processDescriptor, Output& output, Output& errors,
    Clock::time_point deadline, const std::stop_token& cancel)
{
    const StopDescriptor stop(cancel);
    bool hasEnded = false;
    for (;;) {
        std::array<pollfd, 4> ready { pollfd { output.descriptor(), POLLIN, 0 },
            pollfd { errors.descriptor(), POLLIN, 0 }, pollfd { processDescriptor, POLLIN, 0 },
            pollfd { stop.number(), POLLIN, 0 } };
        checked([&] { return ::poll(ready.data(), ready.size(), millisecondsUntil(deadline)); });
        if (cancel.stop_requested())
            return ChildResult::End::cancelled;
        if (!hasEnded && ready[2].revents != 0) {
            hasEnded = true;
            child.kill();
        }
        const bool hasWritten = output.gather();
        const bool hasComplained = errors.gather();
        if (output.isTooMuch())
            return ChildResult::End::wroteTooMuch;
        if (hasEnded && !hasWritten && !hasComplained)
            return ChildResult::End::exited;
        if (Clock::now() >= deadline) // Even if it has ended: half an output must not pass for a whole one.
            return ChildResult::End::tookTooLong;
    }
}

// `input` is opened here, so that memory that stands for a file is let go as soon as the child has it.
template <typename Input>
ChildResult run(const std::filesystem::path& program, const std::vector<std::string>& arguments,
    const Input& input, const ChildLimits& limits)
{
    const auto deadline = Clock::now() + limits.time;
    Output output(limits.outputBytes), errors(keptErrors);
    Child child([&] {
        const auto file = inputFile(input);
        return SpawnPlan(file.number(), output.childsEnd(), errors.childsEnd()).start(program, arguments);
    }());
    output.closeChildsEnd();
    errors.closeChildsEnd();
    const Descriptor process(openProcess(child.number()));

    ChildResult result;
    result.end = watch(child, process.number(), output, errors, deadline, limits.cancel);
    const auto status = child.end();
    result.output = output.take();
    result.errors = errors.take();
    if (result.end != ChildResult::End::exited)
        return result;
    if (!status)
        throwSystemError(ECHILD);
    if (WIFSIGNALED(*status))
        result.end = ChildResult::End::killedBySignal;
    result.code = WIFSIGNALED(*status) ? WTERMSIG(*status) : WEXITSTATUS(*status);
    return result;
}

template <typename Input>
ChildResult runWith(const std::filesystem::path& program, const std::vector<std::string>& arguments,
    const Input& input, const ChildLimits& limits)
{
    try {
        return run(program, arguments, input, limits);
    } catch (const std::system_error& error) {
        return { .end = ChildResult::End::couldNotStart, .code = error.code().value() };
    }
}

} // namespace

ChildResult runChild(const std::filesystem::path& program, const std::vector<std::string>& arguments,
    std::string_view input, const ChildLimits& limits)
{
    return runWith(program, arguments, input, limits);
}

ChildResult runChild(const std::filesystem::path& program, const std::vector<std::string>& arguments,
    const Descriptor& input, const ChildLimits& limits)
{
    return runWith(program, arguments, input, limits);
}

std::filesystem::path programFolder()
{
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

} // namespace Base
