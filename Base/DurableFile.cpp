#include "Base/DurableFile.h"

#include "Base/Descriptor.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <fcntl.h>
#include <linux/magic.h>
#include <sys/stat.h>
#include <sys/vfs.h>
#include <sys/xattr.h>

namespace Base {

namespace {

constexpr mode_t privateMode = 0600;
constexpr mode_t keptMode = 0444; // Issued documents aren't edited.

// --- Names

constexpr std::size_t longestName = 255; // Bytes, on nearly all file systems.
constexpr std::size_t randomDigits = 12;
constexpr std::string_view temporaryEnding = ".pallisande-tmp";
constexpr std::size_t temporaryFrame
    = 2 + randomDigits + temporaryEnding.size(); // All but the file's own name.

// "Invoice.pdf" becomes ".Invoice.pdf.0123456789ab.pallisande-tmp".
std::string temporaryName(std::string_view name)
{
    std::uint64_t random = 0;
    checked([&] { return ::getentropy(&random, sizeof random); });
    std::size_t length = std::min(name.size(), longestName - temporaryFrame);
    const auto isInsideCharacter = [&](std::size_t at) { return (name[at] & 0xC0) == 0x80; };
    while (length > 0 && length < name.size() && isInsideCharacter(length))
        --length;
    return fmt::format(".{}.{:012x}{}", name.substr(0, length), random >> 16, temporaryEnding);
}

bool isTemporaryName(std::string_view name)
{
    if (name.size() < temporaryFrame || !name.starts_with('.') || !name.ends_with(temporaryEnding))
        return false;
    name.remove_suffix(temporaryEnding.size());
    const auto digits = name.substr(name.size() - randomDigits);
    return name[name.size() - randomDigits - 1] == '.'
        && digits.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

// Where a file stands: its name, and the folder directly around it, which is where its temporary file and the
// sync of its name belong.
class Place {
public:
    Place(const Folder& folder, const std::string& name)
        : m_folder(folder)
        , m_name(name)
    {
        requireInside(name);
        if (const auto slash = name.rfind('/'); slash != std::string::npos) {
            m_inner = folder.openInside(name.substr(0, slash));
            m_name = name.substr(slash + 1);
        }
    }

    const Folder& folder() const { return m_inner ? *m_inner : m_folder; }
    int descriptor() const { return folder().descriptor(); }
    const std::string& name() const { return m_name; }

    // What has the name, be it a link; nothing when it is free.
    std::optional<struct stat> occupant() const
    {
        struct stat status { };
        const auto look
            = [&] { return ::fstatat(descriptor(), m_name.c_str(), &status, AT_SYMLINK_NOFOLLOW); };
        if (repeated(look) == 0)
            return status;
        if (errno == ENOENT)
            return std::nullopt;
        throwSystemError(errno);
    }

private:
    const Folder& m_folder;
    std::optional<Folder> m_inner;
    std::string m_name;
};

// --- Open files

struct OpenFile {
    Descriptor descriptor;
    struct stat status;
};

struct stat statusOf(int descriptor)
{
    struct stat status { };
    checked([&] { return ::fstat(descriptor, &status); });
    return status;
}

FileIdentity identityOf(const struct stat& status)
{
    return { .device = status.st_dev,
        .inode = status.st_ino,
        .size = status.st_size,
        .modifiedNanoseconds
        = status.st_mtim.tv_sec * std::int64_t { 1'000'000'000 } + status.st_mtim.tv_nsec };
}

// Not blocking, because opening a pipe waits for its other end.
OpenFile openRegular(int folder, const char* path, int flags)
{
    OpenFile file {};
    file.descriptor = Descriptor(repeated(
        [&] { return ::openat(folder, path, flags | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, privateMode); }));
    if (!file.descriptor.isOpen()) {
        if (errno == ENXIO) // A socket, or a pipe without a reader.
            throw NotARegularFile();
        throwSystemError(errno);
    }
    file.status = statusOf(file.descriptor.number());
    if (!S_ISREG(file.status.st_mode))
        throw NotARegularFile();
    return file;
}

// The kernel's own files call themselves regular, but have no size and sometimes no end.
bool belongsToKernel(int descriptor)
{
    struct statfs system { };
    checked([&] { return ::fstatfs(descriptor, &system); });
    return system.f_type == PROC_SUPER_MAGIC || system.f_type == SYSFS_MAGIC;
}

// The size was true a moment ago; the file may have grown or shrunk since, so what counts is where reading
// ends.
template <typename Bytes> Bytes readWhole(const OpenFile& file, std::int64_t limit)
{
    const int descriptor = file.descriptor.number();
    if (belongsToKernel(descriptor))
        throw NotARegularFile();
    if (file.status.st_size > limit)
        throwSystemError(EFBIG);
    const auto most = static_cast<std::size_t>(std::max(limit, std::int64_t { 0 }));
    Bytes bytes;
    bytes.resize(static_cast<std::size_t>(file.status.st_size) + 1); // One more, to see the end.
    for (std::size_t filled = 0;;) {
        if (filled == bytes.size())
            bytes.resize(filled + filled / 2 + 4096);
        const auto room = std::min(bytes.size() - filled, most - filled + 1);
        const auto count = checked([&] { return ::read(descriptor, bytes.data() + filled, room); });
        filled += static_cast<std::size_t>(count);
        if (filled > most)
            throwSystemError(EFBIG);
        if (count == 0) {
            bytes.resize(filled);
            return bytes;
        }
    }
}

FileContents readContents(const OpenFile& file, std::int64_t limit)
{
    return { readWhole<std::string>(file, limit), identityOf(file.status) };
}

void writeWhole(int descriptor, std::string_view bytes)
{
    while (!bytes.empty()) {
        const auto count = checked([&] { return ::write(descriptor, bytes.data(), bytes.size()); });
        if (count == 0) // Never on a regular file; but it would go on for ever.
            throwSystemError(EIO);
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

// After an error the kernel takes the lost pages for clean, and a second sync of them succeeds: never repeat
// it.
void syncFile(int descriptor)
{
    checked([&] { return ::fsync(descriptor); });
}

void setMode(int descriptor, mode_t mode)
{
    // File systems without modes (FAT, some network shares) refuse; the content is what counts.
    if (repeated([&] { return ::fchmod(descriptor, mode); }) < 0 && errno != EPERM && errno != ENOTSUP)
        throwSystemError(errno);
}

// Gives a new file the permissions of the old one at `place`. Where that has an access list, its mode shows
// the list's mask in place of the group's rights, so copying the mode alone would open the file to the whole
// group.
void keepPermissions(int descriptor, const Place& place, const struct stat& old)
{
    static constexpr const char* attribute = "system.posix_acl_access";
    const auto path = fmt::format("/proc/self/fd/{}/{}", place.descriptor(), place.name());
    std::array<char, 4096> list; // No file system has longer ones than a block.
    const auto size = ::lgetxattr(path.c_str(), attribute, list.data(), list.size());
    if (size <= 0)
        return setMode(descriptor, old.st_mode & 0777);
    // A list that can't be carried over leaves the file to its owner alone.
    static_cast<void>(::fsetxattr(descriptor, attribute, list.data(), static_cast<std::size_t>(size), 0));
}

// --- Temporary files

// A new file under a temporary name, which goes with the object.
class TemporaryFile {
public:
    explicit TemporaryFile(const Place& place)
        : m_place(place)
        , m_name(temporaryName(place.name()))
        , m_descriptor(checked([&] {
            return ::openat(
                place.descriptor(), m_name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, privateMode);
        }))
    {
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile()
    {
        if (!m_name.empty())
            repeated([&] { return ::unlinkat(m_place.descriptor(), m_name.c_str(), 0); });
    }

    int descriptor() const { return m_descriptor.number(); }
    const std::string& name() const { return m_name; }

    // Some network file systems report only now that a write was lost. The descriptor is gone in any case.
    void close()
    {
        if (::close(m_descriptor.release()) < 0 && errno != EINTR)
            throwSystemError(errno);
    }

    // Gives the file its name; below zero (and errno) when that fails.
    int rename(unsigned flags)
    {
        const int folder = m_place.descriptor();
        const char* const to = m_place.name().c_str();
        const int result = repeated([&] {
            return flags ? ::renameat2(folder, m_name.c_str(), folder, to, flags)
                         : ::renameat(folder, m_name.c_str(), folder, to);
        });
        if (result == 0)
            m_name.clear();
        return result;
    }

private:
    const Place& m_place;
    std::string m_name;
    Descriptor m_descriptor;
};

// --- Exclusive files

enum class Outcome { made, taken, unsupported };

// What failing to make something says about the file system: that it can't, or (thrown) that it went wrong.
Outcome unsupportedOrThrow(int error)
{
    switch (error) {
    case EINVAL:
    case EISDIR: // Unnamed files, where they aren't known.
    case EMLINK:
    case ENOENT: // Links through /proc, where there is none.
    case ENOSYS:
    case ENOTSUP:
    case EPERM:
        return Outcome::unsupported;
    default:
        throwSystemError(error);
    }
}

// What became of an exclusive link or rename of the file behind `descriptor`.
Outcome outcomeOf(int result, int descriptor, const Place& place)
{
    if (result == 0)
        return Outcome::made;
    if (errno != EEXIST)
        return unsupportedOrThrow(errno);
    // On network file systems the answer can get lost, and the request made again finds its own work.
    const auto occupant = place.occupant();
    const auto own = statusOf(descriptor);
    const bool isOurs = occupant && occupant->st_dev == own.st_dev && occupant->st_ino == own.st_ino;
    return isOurs ? Outcome::made : Outcome::taken;
}

void finish(int descriptor, std::string_view bytes)
{
    writeWhole(descriptor, bytes);
    setMode(descriptor, keptMode);
    syncFile(descriptor);
}

Outcome linkUnnamed(const Place& place, std::string_view bytes)
{
    const int folder = place.descriptor();
    const Descriptor file(
        repeated([&] { return ::openat(folder, ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, privateMode); }));
    if (!file.isOpen())
        return unsupportedOrThrow(errno);
    finish(file.number(), bytes);
    const auto self = fmt::format("/proc/self/fd/{}", file.number());
    const auto link
        = [&] { return ::linkat(AT_FDCWD, self.c_str(), folder, place.name().c_str(), AT_SYMLINK_FOLLOW); };
    return outcomeOf(repeated(link), file.number(), place);
}

Outcome linkNamed(const Place& place, std::string_view bytes)
{
    const int folder = place.descriptor();
    TemporaryFile file(place);
    finish(file.descriptor(), bytes);
    const auto link = [&] { return ::linkat(folder, file.name().c_str(), folder, place.name().c_str(), 0); };
    const auto linked = outcomeOf(repeated(link), file.descriptor(), place);
    if (linked != Outcome::unsupported)
        return linked;
    return outcomeOf(file.rename(RENAME_NOREPLACE), file.descriptor(), place);
}

// The last resort, where a killed process leaves a part of the file.
Outcome writeInPlace(const Place& place, std::string_view bytes)
{
    const int folder = place.descriptor();
    const char* const name = place.name().c_str();
    const Descriptor file(repeated(
        [&] { return ::openat(folder, name, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, privateMode); }));
    if (!file.isOpen() && errno == EEXIST)
        return Outcome::taken;
    if (!file.isOpen())
        throwSystemError(errno);
    try {
        finish(file.number(), bytes);
    } catch (const std::system_error&) {
        repeated([&] { return ::unlinkat(folder, name, 0); });
        throw;
    }
    return Outcome::made;
}

} // namespace

FileContents readFile(const Folder& folder, const std::string& name, std::int64_t limit)
{
    requireInside(name);
    return readContents(openRegular(folder.descriptor(), name.c_str(), O_RDONLY), limit);
}

FileContents readFile(const std::filesystem::path& path, std::int64_t limit)
{
    return readContents(openRegular(AT_FDCWD, path.c_str(), O_RDONLY), limit);
}

LargeVector<char> readBytes(const std::filesystem::path& path, std::int64_t limit)
{
    return readWhole<LargeVector<char>>(openRegular(AT_FDCWD, path.c_str(), O_RDONLY), limit);
}

Descriptor openFile(const std::filesystem::path& path, std::int64_t limit)
{
    auto file = openRegular(AT_FDCWD, path.c_str(), O_RDONLY);
    if (belongsToKernel(file.descriptor.number()))
        throw NotARegularFile();
    if (file.status.st_size > limit)
        throwSystemError(EFBIG);
    return std::move(file.descriptor);
}

std::int64_t fileSize(const std::filesystem::path& path)
{
    struct stat status { };
    checked([&] { return ::stat(path.c_str(), &status); });
    if (!S_ISREG(status.st_mode))
        throw NotARegularFile();
    return status.st_size;
}

std::optional<FileIdentity> fileIdentity(const Folder& folder, const std::string& name)
{
    requireInside(name);
    struct stat status { };
    if (repeated([&] { return ::fstatat(folder.descriptor(), name.c_str(), &status, 0); }) == 0)
        return identityOf(status);
    if (errno == ENOENT || errno == ENOTDIR)
        return std::nullopt;
    throwSystemError(errno);
}

FileIdentity writeDurably(const Folder& folder, const std::string& name, std::string_view bytes)
{
    const Place place(folder, name);
    const auto old = place.occupant();
    const bool replacesFile = old && S_ISREG(old->st_mode);
    if (replacesFile) // Renaming over it asks only for rights on the folder.
        checked([&] { return ::faccessat(place.descriptor(), place.name().c_str(), W_OK, 0); });

    TemporaryFile file(place);
    writeWhole(file.descriptor(), bytes);
    if (replacesFile)
        keepPermissions(file.descriptor(), place, *old);
    syncFile(file.descriptor());
    const auto identity = identityOf(statusOf(file.descriptor()));
    file.close();
    if (file.rename(0) < 0)
        throwSystemError(errno);
    place.folder().sync();
    return identity;
}

bool writeIfAbsent(const Folder& folder, const std::string& name, std::string_view bytes)
{
    const Place place(folder, name);
    if (place.occupant())
        return false;
    auto outcome = linkUnnamed(place, bytes);
    if (outcome == Outcome::unsupported)
        outcome = linkNamed(place, bytes);
    if (outcome == Outcome::unsupported)
        outcome = writeInPlace(place, bytes);
    if (outcome == Outcome::taken)
        return false;
    try {
        place.folder().sync();
    } catch (const std::system_error&) { // Whoever hears that it failed will make it again.
        repeated([&] { return ::unlinkat(place.descriptor(), place.name().c_str(), 0); });
        throw;
    }
    return true;
}

void appendDurably(const Folder& folder, const std::string& name, std::string_view bytes)
{
    const Place place(folder, name);
    const auto file = openRegular(place.descriptor(), place.name().c_str(), O_WRONLY | O_APPEND | O_CREAT);
    const int descriptor = file.descriptor.number();
    // Before the first byte, so that a process killed in between leaves an empty file, whose name is synced
    // next time.
    if (file.status.st_size == 0)
        place.folder().sync();
    try {
        writeWhole(descriptor, bytes);
        syncFile(descriptor);
    } catch (const std::system_error&) {
        repeated([&] { return ::ftruncate(descriptor, file.status.st_size); });
        throw;
    }
}

void truncateDurably(const Folder& folder, const std::string& name, std::int64_t size)
{
    requireInside(name);
    const auto file = openRegular(folder.descriptor(), name.c_str(), O_WRONLY);
    const int descriptor = file.descriptor.number();
    if (size < file.status.st_size)
        checked([&] { return ::ftruncate(descriptor, size); });
    syncFile(descriptor);
}

void removeLeftovers(const Folder& folder)
{
    for (const auto& name : folder.files()) {
        if (isTemporaryName(name))
            repeated([&] { return ::unlinkat(folder.descriptor(), name.c_str(), 0); });
    }
}

} // namespace Base
