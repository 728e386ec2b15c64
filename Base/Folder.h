#pragma once

#include "Base/Descriptor.h"

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace Base {

// A folder held open by its descriptor, so that what is done in it is done in this very folder even if its
// path comes to mean another one. Names are single components or relative paths below it. Failures are
// std::system_error with errno's category, passed on as they are.
class Folder {
public:
    // An existing folder.
    static Folder open(const std::filesystem::path& path);
    // The same, made with its parents (mode 0700) if it doesn't exist; what is made is synced.
    static Folder make(const std::filesystem::path& path);

    // An existing folder inside this one.
    Folder openInside(const std::string& name) const;
    // A folder inside this one; made with mode 0700 and synced when it is missing.
    Folder makeInside(const std::string& name) const;

    const std::filesystem::path& path() const { return m_path; }
    int descriptor() const { return m_descriptor.number(); }

    // Whether the name is taken; a link that leads nowhere takes it too.
    bool exists(const std::string& name) const;
    // Names of the regular files directly inside, sorted; links to regular files are followed.
    std::vector<std::string> files() const;
    void rename(const std::string& from, const std::string& to) const; // Never over an existing file.
    void remove(const std::string& name) const;
    // Makes names made, moved or removed in this folder durable. File systems that can't are tolerated; EIO
    // is not.
    void sync() const;

    // Whether the path still leads to this folder (false when it was removed, replaced or unmounted).
    bool isStillThere() const;
    // Takes the folder for this process alone (flock, LOCK_EX). False when another process has it. Freed with
    // the object or the process.
    bool lock() const;

private:
    Folder(Descriptor descriptor, std::filesystem::path path);

    Descriptor m_descriptor;
    std::filesystem::path m_path;
};

// Names that could lead out of their folder (absolute, "..") or mean something else to the system ("", ".", a
// NUL) are our own mistake: std::invalid_argument.
void requireInside(const std::string& name);

} // namespace Base
