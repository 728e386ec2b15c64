#include "TamberlinKit/Batch/DocumentList.h"

#include "Base/Text.h"
#include "TamberlinKit/Text/FileFormat.h"

#include <algorithm>
#include <set>
#include <sys/stat.h>
#include <utility>

namespace Tamberlin {

namespace {

namespace fs = std::filesystem;

// Goes through folders without a stack of calls, as deep as they are.
class Walker {
public:
    std::vector<fs::path> documents(const fs::path& folder)
    {
        std::vector<fs::path> found, waiting { folder };
        while (!waiting.empty()) {
            const auto path = std::move(waiting.back());
            waiting.pop_back();
            if (!isNew(path))
                continue;
            auto [files, folders] = contents(path);
            found.insert(found.end(), files.begin(), files.end());
            waiting.insert(waiting.end(), folders.rbegin(), folders.rend());
        }
        return found;
    }

private:
    bool isNew(const fs::path& folder)
    {
        struct stat status { };
        return ::stat(folder.c_str(), &status) == 0 && m_walked.emplace(status.st_dev, status.st_ino).second;
    }

    static std::pair<std::vector<fs::path>, std::vector<fs::path>> contents(const fs::path& folder)
    {
        std::vector<fs::path> files, folders;
        std::error_code none; // A folder that can't be read holds nothing to count.
        for (fs::directory_iterator entry(folder, none), end; !none && entry != end; entry.increment(none)) {
            const auto name = entry->path().filename().string();
            const bool isPassedOver
                = name.starts_with('.') || name.starts_with("~$"); // Hidden, or an editor's lock.
            std::error_code unknown;
            if (isPassedOver)
                continue;
            if (entry->is_directory(unknown))
                folders.push_back(entry->path());
            else if (entry->is_regular_file(unknown) && isDocument(entry->path()))
                files.push_back(entry->path());
        }
        const auto naturally = [](const fs::path& left, const fs::path& right) {
            return Base::naturallyBefore(left.filename().string(), right.filename().string());
        };
        std::sort(files.begin(), files.end(), naturally);
        std::sort(folders.begin(), folders.end(), naturally);
        return { std::move(files), std::move(folders) };
    }

    static bool isDocument(const fs::path& path)
    {
        const auto extension = path.extension().string();
        return !extension.empty() && formatOfExtension(extension.substr(1));
    }

    std::set<std::pair<dev_t, ino_t>> m_walked;
};

} // namespace

std::vector<fs::path> documentsIn(const std::vector<fs::path>& paths)
{
    std::vector<fs::path> documents;
    Walker walker;
    for (const auto& path : paths) {
        std::error_code none;
        if (!fs::is_directory(path, none)) {
            documents.push_back(path);
            continue;
        }
        const auto found = walker.documents(path);
        documents.insert(documents.end(), found.begin(), found.end());
    }
    return documents;
}

} // namespace Tamberlin
