#include "Base/Folder.h"

#include <algorithm>
#include <cstdio>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <optional>
#include <stdexcept>
#include <sys/file.h>
#include <sys/stat.h>

namespace Base {

namespace {

struct CloseListing {
    void operator()(DIR* listing) const { ::closedir(listing); }
};

Descriptor tryToOpen(int above, const char* path)
{
    return Descriptor(repeated([&] { return ::openat(above, path, O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
}

Descriptor opened(int above, const char* path)
{
    Descriptor folder = tryToOpen(above, path);
    if (!folder.isOpen())
        throwSystemError(errno);
    return folder;
}

// The folder of that name, or nothing when it has to be made first.
std::optional<Descriptor> existing(int above, const char* path)
{
    Descriptor folder = tryToOpen(above, path);
    if (folder.isOpen())
        return folder;
    if (errno != ENOENT)
        throwSystemError(errno);
    return std::nullopt;
}

Descriptor made(const Folder& above, const std::string& name)
{
    if (repeated([&] { return ::mkdirat(above.descriptor(), name.c_str(), 0700); }) == 0)
        above.sync();
    else if (errno != EEXIST) // Another process was faster.
        throwSystemError(errno);
    return opened(above.descriptor(), name.c_str());
}

bool isRegular(int folder, const dirent& entry)
{
    if (entry.d_type != DT_LNK && entry.d_type != DT_UNKNOWN)
        return entry.d_type == DT_REG;
    struct stat status { };
    if (repeated([&] { return ::fstatat(folder, entry.d_name, &status, 0); }) == 0)
        return S_ISREG(status.st_mode);
    // A link that leads nowhere, or a file that was removed meanwhile.
    if (errno == ENOENT || errno == ENOTDIR || errno == ELOOP || errno == EACCES)
        return false;
    throwSystemError(errno);
}

} // namespace

Folder::Folder(Descriptor descriptor, std::filesystem::path path)
    : m_descriptor(std::move(descriptor))
    , m_path(std::move(path))
{
}

Folder Folder::open(const std::filesystem::path& path) { return { opened(AT_FDCWD, path.c_str()), path }; }

Folder Folder::make(const std::filesystem::path& path)
{
    if (auto folder = existing(AT_FDCWD, path.c_str()))
        return { std::move(*folder), path };
    if (path.empty())
        throwSystemError(ENOENT);
    if (!path.has_filename()) // "a/b/"
        return make(path.parent_path());
    const auto parent = path.has_parent_path() ? make(path.parent_path()) : open(".");
    return { made(parent, path.filename().string()), path };
}

Folder Folder::openInside(const std::string& name) const
{
    requireInside(name);
    return { opened(descriptor(), name.c_str()), m_path / name };
}

Folder Folder::makeInside(const std::string& name) const
{
    requireInside(name);
    if (auto folder = existing(descriptor(), name.c_str()))
        return { std::move(*folder), m_path / name };
    const auto slash = name.rfind('/');
    if (slash == std::string::npos)
        return { made(*this, name), m_path / name };
    return { made(makeInside(name.substr(0, slash)), name.substr(slash + 1)), m_path / name };
}

bool Folder::exists(const std::string& name) const
{
    requireInside(name);
    struct stat status { };
    if (repeated([&] { return ::fstatat(descriptor(), name.c_str(), &status, AT_SYMLINK_NOFOLLOW); }) == 0)
        return true;
    if (errno == ENOENT || errno == ENOTDIR)
        return false;
    throwSystemError(errno);
}

std::vector<std::string> Folder::files() const
{
    // Opened anew, because duplicates of a descriptor would share one reading position.
    Descriptor own = opened(descriptor(), ".");
    const std::unique_ptr<DIR, CloseListing> listing(::fdopendir(own.number()));
    if (!listing)
        throwSystemError(errno);
    own.release();
    std::vector<std::string> names;
    for (;;) {
        errno = 0;
        const dirent* const entry = ::readdir(listing.get());
        if (!entry)
            break;
        if (isRegular(descriptor(), *entry))
            names.emplace_back(entry->d_name);
    }
    if (errno != 0)
        throwSystemError(errno);
    std::sort(names.begin(), names.end());
    return names;
}

void Folder::rename(const std::string& from, const std::string& to) const
{
    requireInside(from);
    requireInside(to);
    const auto exclusive
        = [&] { return ::renameat2(descriptor(), from.c_str(), descriptor(), to.c_str(), RENAME_NOREPLACE); };
    if (repeated(exclusive) == 0)
        return;
    if (errno != EINVAL && errno != ENOSYS)
        throwSystemError(errno);
    // The file system or the kernel can't promise that; a second name can't replace anything either.
    checked([&] { return ::linkat(descriptor(), from.c_str(), descriptor(), to.c_str(), 0); });
    try {
        remove(from);
    } catch (const std::system_error&) {
        remove(to);
        throw;
    }
}

void Folder::remove(const std::string& name) const
{
    requireInside(name);
    checked([&] { return ::unlinkat(descriptor(), name.c_str(), 0); });
}

void Folder::sync() const
{
    if (repeated([&] { return ::fsync(descriptor()); }) < 0 && errno != EINVAL && errno != ENOTSUP)
        throwSystemError(errno);
}

bool Folder::isStillThere() const
{
    struct stat held {
    }, found {};
    return repeated([&] { return ::fstat(descriptor(), &held); }) == 0
        && repeated([&] { return ::stat(m_path.c_str(), &found); }) == 0 && held.st_dev == found.st_dev
        && held.st_ino == found.st_ino;
}

bool Folder::lock() const
{
    if (repeated([&] { return ::flock(descriptor(), LOCK_EX | LOCK_NB); }) == 0)
        return true;
    // Some network and FUSE file systems can't lock folders. Refusing to write there would lock the user out
    // for good; the comparison before each save still keeps two programs from overwriting each other's work.
    if (errno == EINVAL || errno == ENOTSUP || errno == ENOLCK)
        return true;
    if (errno == EWOULDBLOCK)
        return false;
    throwSystemError(errno);
}

void requireInside(const std::string& name)
{
    for (std::size_t from = 0, to = 0; to != std::string::npos; from = to + 1) {
        to = name.find('/', from);
        const auto component = std::string_view(name).substr(from, to == std::string::npos ? to : to - from);
        const bool leadsElsewhere = component.empty() || component == "." || component == "..";
        if (leadsElsewhere || component.find('\0') != std::string_view::npos)
            throw std::invalid_argument("“" + name + "” is not a name inside a folder.");
    }
}

} // namespace Base
