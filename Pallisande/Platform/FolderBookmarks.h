#pragma once

#include "Pallisande/Model/Bookmarks.h"

namespace Pallisande {

// Where programs may open any folder: the path decides, byte for byte.
class FolderBookmarks final : public Bookmarks {
public:
    Bookmark make(const std::filesystem::path& folder) override
    {
        return { std::filesystem::absolute(folder).lexically_normal().string() };
    }
    std::optional<std::filesystem::path> resolve(const Bookmark& bookmark) override
    {
        const std::filesystem::path folder = bookmark.bytes;
        std::error_code error;
        if (!folder.is_absolute() || !std::filesystem::is_directory(folder, error))
            return std::nullopt;
        return folder;
    }
};

} // namespace Pallisande
