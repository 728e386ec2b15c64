#pragma once

#include "Base/Folder.h"
#include "Base/LargePages.h"

#include <cstdint>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace Base {

// A pipe, a device, a folder or a file of /proc where a file with contents of its own is needed.
class NotARegularFile : public std::runtime_error {
public:
    NotARegularFile()
        : std::runtime_error("not a regular file")
    {
    }
};

// What tells one state of a file from another without reading it.
struct FileIdentity {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;
    std::int64_t size = 0;
    std::int64_t modifiedNanoseconds = 0;

    bool operator==(const FileIdentity&) const = default;
};

struct FileContents {
    std::string bytes;
    FileIdentity identity;
};

// The whole regular file. Anything else is refused at once (NotARegularFile); a file of more than `limit`
// bytes with EFBIG, before it is read.
FileContents readFile(const Folder& folder, const std::string& name, std::int64_t limit = INT64_MAX);
// The same for a path that the user gave.
FileContents readFile(const std::filesystem::path& path, std::int64_t limit = INT64_MAX);
// The bytes alone, as fast as may be.
LargeVector<char> readBytes(const std::filesystem::path& path, std::int64_t limit);
// The regular file, open for reading; refused as above, and with EFBIG when it is larger than `limit`.
Descriptor openFile(const std::filesystem::path& path, std::int64_t limit);
// The size of the regular file at `path`; refused as above when it isn't one.
std::int64_t fileSize(const std::filesystem::path& path);

// Nothing when there is no such file.
std::optional<FileIdentity> fileIdentity(const Folder& folder, const std::string& name);

// Replaces or makes a file so that at every moment either the whole old or the whole new content is there,
// and the new one is durable on return: temporary file in the same folder (0600, exclusive), write, the old
// file's mode, sync, rename, sync of the folder. When any step fails the temporary file is removed, the old
// file is untouched and the error is passed on; a failed sync is never repeated on the same descriptor. Only
// when the very last step fails, the sync of the folder, the new file is in place all the same. An old file
// that we may not write is not replaced; a symbolic link is, it isn't followed. Gives the identity of what
// was written.
FileIdentity writeDurably(const Folder& folder, const std::string& name, std::string_view bytes);

// Makes a file only when none of that name exists: complete from the first moment, durable on return, with
// mode 0444. False (and nothing changed) when the name is taken; nothing is left of a file that couldn't be
// finished. An unnamed temporary file linked into place; file systems without those get an exclusive link, an
// exclusive rename or, last, an exclusively made file.
bool writeIfAbsent(const Folder& folder, const std::string& name, std::string_view bytes);

// Adds `bytes` at the end of a file (made with mode 0600 when missing) and syncs. When writing fails the file
// is cut back to its former length as far as the system lets us.
void appendDurably(const Folder& folder, const std::string& name, std::string_view bytes);

// Cuts a file to `size` bytes, if it is longer, and syncs.
void truncateDurably(const Folder& folder, const std::string& name, std::int64_t size);

// Removes temporary files that a killed process left behind in `folder` (only names of our own pattern). One
// that can't be removed now does no harm and waits for the next time.
void removeLeftovers(const Folder& folder);

} // namespace Base
