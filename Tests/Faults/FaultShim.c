// Makes the file system of a program under test go wrong, or the program die, at a chosen call. Preload it:
//
//     LD_PRELOAD=libFaultShim.so FAULT_FOLDER=/tmp/library FAULT_AT=7 FAULT_MODE=kill-after program …
//
// FAULT_FOLDER  Only calls that concern this folder, or something below it, are counted. It must exist.
// FAULT_AT      The number of the counted call that goes wrong, from 1; none without it.
// FAULT_MODE    kill-before  Dies (SIGKILL) in place of the call.
//               kill-after   Dies when the call is done.
//               kill-half    Dies when half the bytes of a write are written; other calls as kill-before.
//               fail         The call fails with FAULT_ERRNO and does nothing.
//               fail-on      So do all that follow.
//               short        A write writes half its bytes and says so; other calls are as always.
//               eintr        The call is interrupted by a signal before it did anything.
// FAULT_ERRNO   A number; EIO without it.
// FAULT_LOG     A file outside of the folder that gets a line "number call path" for each counted call,
// before it is made. For calls with
//               two paths it has the second.
//
// Child processes inherit all that and count for themselves. What the C library does inside (fopen(),
// opendir()) isn't seen. All calls are made by their numbers: the C library's own functions would lead back
// here.

#undef _FORTIFY_SOURCE // It would define some of the functions below in the headers.
#define _GNU_SOURCE

#include <errno.h>
#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdbool.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

_Static_assert(sizeof(long) == 8, "lengths and offsets are handed on in one register");

enum Mode { countOnly, killBefore, killAfter, killHalf, failOnce, failOn, writeShort, interrupt };

static const char* const modeNames[]
    = { "count", "kill-before", "kill-after", "kill-half", "fail", "fail-on", "short", "eintr" };

static struct {
    char folder[PATH_MAX];
    size_t folderLength; // 0 until the folder is known, and nothing is counted.
    const char* log;
    long at;
    int error;
    enum Mode mode;
} plan;

static atomic_long callsCounted;

__attribute__((constructor)) static void readPlan(void)
{
    const char* const folder = getenv("FAULT_FOLDER");
    const char* const at = getenv("FAULT_AT");
    const char* const mode = getenv("FAULT_MODE");
    const char* const error = getenv("FAULT_ERRNO");
    if (!folder)
        return;
    plan.log = getenv("FAULT_LOG");
    plan.at = at ? atol(at) : 0;
    plan.error = error ? atoi(error) : EIO;
    bool isKnown = !mode;
    for (size_t index = 0; mode && index < sizeof modeNames / sizeof *modeNames; ++index) {
        if (strcmp(mode, modeNames[index]) == 0) {
            plan.mode = (enum Mode)index;
            isKnown = true;
        }
    }
    // Descriptors lead to real paths, so the folder's is needed. A test that silently tests nothing is worse
    // than none.
    if (!isKnown || !realpath(folder, plan.folder)) {
        fprintf(stderr, "FaultShim: FAULT_MODE or FAULT_FOLDER is wrong\n");
        abort();
    }
    plan.folderLength = strlen(plan.folder);
}

// --- Which calls concern the folder

struct Path {
    char text[2 * PATH_MAX];
};

static bool isInFolder(const struct Path* path)
{
    if (plan.folderLength == 0 || strncmp(path->text, plan.folder, plan.folderLength) != 0)
        return false;
    const char after = path->text[plan.folderLength];
    return after == '\0' || after == '/';
}

// The path behind a descriptor. An unnamed file has one too: "/folder/#123 (deleted)".
static void pathOfDescriptor(long descriptor, struct Path* path)
{
    char link[64];
    snprintf(link, sizeof link, "/proc/self/fd/%ld", descriptor);
    const long length = syscall(SYS_readlinkat, AT_FDCWD, link, path->text, PATH_MAX);
    path->text[length > 0 ? length : 0] = '\0';
}

// The path of a name, with all links resolved but the last: that one is what most of the calls work on.
static void pathOfName(int folder, const char* name, struct Path* path)
{
    const char* const slash = strrchr(name, '/');
    const char* const last = slash ? slash + 1 : name;
    char parent[PATH_MAX] = ".";
    if (slash)
        snprintf(parent, sizeof parent, "%.*s", (int)(slash == name ? 1 : slash - name), name);
    path->text[0] = '\0';
    const long opened = syscall(SYS_openat, folder, parent, O_PATH | O_DIRECTORY | O_CLOEXEC, 0);
    if (opened < 0)
        return;
    pathOfDescriptor(opened, path);
    syscall(SYS_close, opened);
    const size_t length = strlen(path->text);
    if (strcmp(last, ".") != 0 && last[0] != '\0')
        snprintf(path->text + length, sizeof path->text - length, "%s%s", length > 1 ? "/" : "", last);
}

// --- What happens to a call

static void logCall(long number, const char* call, const struct Path* path)
{
    char line[sizeof path->text + 64];
    const int length = snprintf(line, sizeof line, "%ld %s %s\n", number, call, path->text);
    const long log = syscall(SYS_openat, AT_FDCWD, plan.log, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600);
    syscall(SYS_write, log, line, (size_t)length);
    syscall(SYS_close, log);
}

// Counts a call and says what is to happen to it.
static enum Mode counted(const char* call, const struct Path* path)
{
    const long number = atomic_fetch_add(&callsCounted, 1) + 1;
    if (plan.log)
        logCall(number, call, path);
    if (plan.at == 0 || number < plan.at || (number > plan.at && plan.mode != failOn))
        return countOnly;
    return plan.mode;
}

static enum Mode countedByDescriptor(const char* call, int descriptor)
{
    struct Path path;
    const int before = errno;
    pathOfDescriptor(descriptor, &path);
    const enum Mode mode = isInFolder(&path) ? counted(call, &path) : countOnly;
    errno = before;
    return mode;
}

static enum Mode countedByName(const char* call, int folder, const char* name)
{
    struct Path path;
    const int before = errno;
    pathOfName(folder, name, &path);
    const enum Mode mode = isInFolder(&path) ? counted(call, &path) : countOnly;
    errno = before;
    return mode;
}

static enum Mode countedByNames(
    const char* call, int fromFolder, const char* from, int toFolder, const char* to)
{
    struct Path fromPath, toPath;
    const int before = errno;
    pathOfName(fromFolder, from, &fromPath);
    pathOfName(toFolder, to, &toPath);
    const enum Mode mode = isInFolder(&fromPath) || isInFolder(&toPath) ? counted(call, &toPath) : countOnly;
    errno = before;
    return mode;
}

static void die(void)
{
    syscall(SYS_kill, syscall(SYS_getpid), SIGKILL);
    abort(); // Only the first process of a system or container gets here: it can't be killed.
}

static long failed(int error)
{
    errno = error;
    return -1;
}

// Makes the call, unless the mode has it otherwise. Unused arguments are 0.
static long made(enum Mode mode, long number, long a, long b, long c, long d, long e)
{
    if (mode == killBefore || mode == killHalf)
        die();
    if (mode == failOnce || mode == failOn)
        return failed(plan.error);
    if (mode == interrupt)
        return failed(EINTR);
    const long result = syscall(number, a, b, c, d, e);
    if (mode == killAfter)
        die();
    return result;
}

static long written(enum Mode mode, long number, int descriptor, const void* bytes, size_t size, off_t offset)
{
    if (mode != killHalf && mode != writeShort)
        return made(mode, number, descriptor, (long)bytes, (long)size, offset, 0);
    const long result = syscall(number, descriptor, bytes, size > 1 ? size / 2 : size, offset);
    if (mode == killHalf)
        die();
    return result;
}

// --- The functions themselves

// The mode is only there when a file may be made.
#define MODE_ARGUMENT(flags, mode)                                                                           \
    mode_t mode = 0;                                                                                         \
    if (((flags)&O_CREAT) != 0 || ((flags)&O_TMPFILE) == O_TMPFILE) {                                        \
        va_list list;                                                                                        \
        va_start(list, flags);                                                                               \
        mode = va_arg(list, mode_t);                                                                         \
        va_end(list);                                                                                        \
    }

static int openedAt(const char* call, int folder, const char* name, int flags, mode_t mode)
{
    return (int)made(countedByName(call, folder, name), SYS_openat, folder, (long)name, flags, mode, 0);
}

// Each function that opens has a plain and a 64-bit name, and for each of those a checked variant without a
// mode.
#define OPENING(name)                                                                                        \
    int name(const char* path, int flags, ...)                                                               \
    {                                                                                                        \
        MODE_ARGUMENT(flags, mode)                                                                           \
        return openedAt(#name, AT_FDCWD, path, flags, mode);                                                 \
    }                                                                                                        \
    int __##name##_2(const char* path, int flags);                                                           \
    int __##name##_2(const char* path, int flags) { return openedAt(#name, AT_FDCWD, path, flags, 0); }

#define OPENING_AT(name)                                                                                     \
    int name(int folder, const char* path, int flags, ...)                                                   \
    {                                                                                                        \
        MODE_ARGUMENT(flags, mode)                                                                           \
        return openedAt(#name, folder, path, flags, mode);                                                   \
    }                                                                                                        \
    int __##name##_2(int folder, const char* path, int flags);                                               \
    int __##name##_2(int folder, const char* path, int flags)                                                \
    {                                                                                                        \
        return openedAt(#name, folder, path, flags, 0);                                                      \
    }

#define ON_DESCRIPTOR(name, number, parameters, argument)                                                    \
    int name parameters                                                                                      \
    {                                                                                                        \
        return (int)made(countedByDescriptor(#name, descriptor), number, descriptor, argument, 0, 0, 0);     \
    }

#define ON_NAME(name, number, parameters, folder, argument)                                                  \
    int name parameters                                                                                      \
    {                                                                                                        \
        return (int)made(countedByName(#name, folder, path), number, folder, (long)path, argument, 0, 0);    \
    }

#define ON_NAMES(name, number, parameters, fromFolder, toFolder, argument)                                   \
    int name parameters                                                                                      \
    {                                                                                                        \
        return (int)made(countedByNames(#name, fromFolder, from, toFolder, to), number, fromFolder,          \
            (long)from, toFolder, (long)to, argument);                                                       \
    }

#define WRITING(name, number, parameters, offset)                                                            \
    ssize_t name parameters                                                                                  \
    {                                                                                                        \
        return written(countedByDescriptor(#name, descriptor), number, descriptor, bytes, size, offset);     \
    }

OPENING(open)
OPENING(open64)
OPENING_AT(openat)
OPENING_AT(openat64)

WRITING(write, SYS_write, (int descriptor, const void* bytes, size_t size), 0)
WRITING(pwrite, SYS_pwrite64, (int descriptor, const void* bytes, size_t size, off_t offset), offset)
WRITING(pwrite64, SYS_pwrite64, (int descriptor, const void* bytes, size_t size, off64_t offset), offset)

ON_DESCRIPTOR(fsync, SYS_fsync, (int descriptor), 0)
ON_DESCRIPTOR(fdatasync, SYS_fdatasync, (int descriptor), 0)
ON_DESCRIPTOR(ftruncate, SYS_ftruncate, (int descriptor, off_t size), size)
ON_DESCRIPTOR(ftruncate64, SYS_ftruncate, (int descriptor, off64_t size), size)
ON_DESCRIPTOR(fchmod, SYS_fchmod, (int descriptor, mode_t mode), mode)

ON_NAME(unlink, SYS_unlinkat, (const char* path), AT_FDCWD, 0)
ON_NAME(unlinkat, SYS_unlinkat, (int folder, const char* path, int flags), folder, flags)
ON_NAME(mkdir, SYS_mkdirat, (const char* path, mode_t mode), AT_FDCWD, mode)
ON_NAME(mkdirat, SYS_mkdirat, (int folder, const char* path, mode_t mode), folder, mode)

ON_NAMES(rename, SYS_renameat2, (const char* from, const char* to), AT_FDCWD, AT_FDCWD, 0)
ON_NAMES(renameat, SYS_renameat2, (int fromFolder, const char* from, int toFolder, const char* to),
    fromFolder, toFolder, 0)
ON_NAMES(renameat2, SYS_renameat2,
    (int fromFolder, const char* from, int toFolder, const char* to, unsigned flags), fromFolder, toFolder,
    flags)
ON_NAMES(link, SYS_linkat, (const char* from, const char* to), AT_FDCWD, AT_FDCWD, 0)
ON_NAMES(linkat, SYS_linkat, (int fromFolder, const char* from, int toFolder, const char* to, int flags),
    fromFolder, toFolder, flags)

// The descriptor is gone even when closing it fails; that is how Linux does it.
int close(int descriptor)
{
    const enum Mode mode = countedByDescriptor("close", descriptor);
    if (mode == failOnce || mode == failOn || mode == interrupt)
        syscall(SYS_close, descriptor);
    return (int)made(mode, SYS_close, descriptor, 0, 0, 0, 0);
}
