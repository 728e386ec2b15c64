#include "DocumentReader/Sandbox.h"

#include "Base/Descriptor.h"

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <fcntl.h>
#include <fstream>
#include <memory>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace Tamberlin {

namespace {

// --- Limits

// AddressSanitizer reserves terabytes of addresses.
#if defined(__SANITIZE_ADDRESS__)
constexpr bool canLimitMemory = false;
#else
constexpr bool canLimitMemory = true;
#endif

std::uint64_t mappedBytes()
{
    std::uint64_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    return pages * static_cast<std::uint64_t>(::sysconf(_SC_PAGESIZE));
}

// `more` leaves room between the signal that tells which limit was passed and the one that just kills.
void limit(__rlimit_resource resource, rlim_t most, rlim_t more = 0)
{
    struct rlimit now { };
    ::getrlimit(resource, &now);
    const struct rlimit wanted {
        std::min(most, now.rlim_max), std::min(most + more, now.rlim_max)
    };
    ::setrlimit(resource, &wanted);
}

// --- Landlock, which the headers of older systems don't know

constexpr long createRuleset = 444, addRule = 445, restrictSelf = 446;
constexpr unsigned askVersion = 1;
constexpr int pathBeneath = 1;
constexpr std::uint64_t readFile = 1 << 2, readFolder = 1 << 3;

struct Ruleset {
    std::uint64_t files, network, scopes;
};
struct [[gnu::packed]] PathRule {
    std::uint64_t allowed;
    std::int32_t folder;
};

// What each version of it can forbid: all that it knows.
Ruleset forbidden(long version)
{
    const std::uint64_t fileRights = version >= 5 ? 16 : version >= 3 ? 15 : version == 2 ? 14 : 13;
    return { (std::uint64_t { 1 } << fileRights) - 1, version >= 4 ? std::uint64_t { 3 } : 0,
        version >= 6 ? std::uint64_t { 3 } : 0 };
}

void enterLandlock(const std::vector<std::string>& readableFolders)
{
    const auto version = ::syscall(createRuleset, nullptr, std::size_t { 0 }, askVersion);
    if (version < 1)
        return;
    const auto rules = forbidden(version);
    const std::size_t size = version >= 6 ? sizeof(Ruleset)
        : version >= 4                    ? offsetof(Ruleset, scopes)
                                          : offsetof(Ruleset, network);
    const Base::Descriptor ruleset(static_cast<int>(::syscall(createRuleset, &rules, size, 0)));
    if (!ruleset.isOpen())
        return;
    for (const auto& name : readableFolders) {
        const Base::Descriptor folder(::open(name.c_str(), O_PATH | O_CLOEXEC));
        const PathRule rule { readFile | readFolder, folder.number() };
        if (folder.isOpen())
            ::syscall(addRule, ruleset.number(), pathBeneath, &rule, 0);
    }
    ::syscall(restrictSelf, ruleset.number(), 0);
}

// --- System calls

// What Poppler, Tesseract and the libraries below them use once they are loaded. Reading files is in it for
// encodings and fonts; where Landlock is, that ends at the folders. Whatever isn't here fails with EPERM,
// which a library can live with, rather than killing the process.
constexpr const char* allowed[] { "read", "readv", "pread64", "write", "writev", "close", "lseek", "_llseek",
    "fstat", "fstat64", "newfstatat", "fstatat64", "stat", "stat64", "lstat", "lstat64", "statx", "statfs",
    "fstatfs", "access", "faccessat", "faccessat2", "readlink", "readlinkat", "getdents64", "getcwd",
    "munmap", "mremap", "madvise", "brk", "futex", "futex_time64", "sched_yield", "sched_getaffinity",
    "getpid", "gettid", "getuid", "geteuid", "getgid", "getegid", "rt_sigaction", "rt_sigprocmask",
    "rt_sigreturn", "sigreturn", "sigaltstack", "restart_syscall", "nanosleep", "clock_nanosleep",
    "clock_nanosleep_time64", "clock_gettime", "clock_gettime64", "clock_getres", "gettimeofday", "time",
    "times", "getrusage", "getrandom", "uname", "sysinfo", "exit", "exit_group" };

void allow(scmp_filter_ctx filter, const char* call, std::initializer_list<scmp_arg_cmp> arguments = {})
{
    const int number = seccomp_syscall_resolve_name(call);
    if (number != __NR_SCMP_ERROR) // Not every processor has each of them.
        seccomp_rule_add_array(
            filter, SCMP_ACT_ALLOW, number, static_cast<unsigned>(arguments.size()), arguments.begin());
}

void enterSeccomp()
{
    const std::unique_ptr<void, decltype(&seccomp_release)> filter(
        seccomp_init(SCMP_ACT_ERRNO(EPERM)), &seccomp_release);
    if (!filter)
        return;
    for (const auto* const call : allowed)
        allow(filter.get(), call);
    constexpr std::uint64_t writes = O_ACCMODE | O_CREAT | O_TRUNC | O_APPEND | (O_TMPFILE & ~O_DIRECTORY);
    allow(filter.get(), "open", { SCMP_A1(SCMP_CMP_MASKED_EQ, writes, 0) });
    allow(filter.get(), "openat", { SCMP_A2(SCMP_CMP_MASKED_EQ, writes, 0) });
    for (const auto* const call : { "mmap", "mmap2", "mprotect" }) // No memory becomes a program.
        allow(filter.get(), call, { SCMP_A2(SCMP_CMP_MASKED_EQ, PROT_EXEC, 0) });
    for (const auto* const call : { "fcntl", "fcntl64" }) {
        for (const std::uint64_t command : { F_GETFD, F_SETFD, F_GETFL })
            allow(filter.get(), call, { SCMP_A1(SCMP_CMP_EQ, command) });
    }
    // A process that gives itself up (abort, a failed check) may say so, to itself alone.
    allow(filter.get(), "tgkill", { SCMP_A0(SCMP_CMP_EQ, static_cast<scmp_datum_t>(::getpid())) });
    seccomp_load(filter.get());
}

} // namespace

void enterSandbox(const SandboxLimits& limits)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL); // Nobody would kill it for taking too long.
    ::prctl(PR_SET_DUMPABLE, 0);
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    enterLandlock(limits.readableFolders);
    if (canLimitMemory)
        limit(RLIMIT_AS, mappedBytes() + limits.memoryBytes);
    limit(RLIMIT_CPU, limits.processorSeconds, 1);
    limit(RLIMIT_FSIZE, 0);
    limit(RLIMIT_NOFILE, 16);
    limit(RLIMIT_NPROC, 0);
    limit(RLIMIT_CORE, 0);
    enterSeccomp(); // Last, since it forbids the rest of this too.
}

} // namespace Tamberlin
