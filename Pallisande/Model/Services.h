#pragma once

#include "Base/Calendar.h"
#include "Pallisande/Model/Bookmarks.h"
#include "Pallisande/Model/Preferences.h"
#include "Pallisande/Model/Reminders.h"
#include "PallisandeKit/Library/DocumentRenderer.h"
#include "PallisandeKit/Library/LibraryStore.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Pallisande {

// Something that is to happen later; destroying it calls it off.
class PendingTask {
public:
    virtual ~PendingTask() = default;
};

// Work beside the main thread.
class Background {
public:
    virtual ~Background() = default;
    // Does `work` off the main thread, then `done` on it. Neither throws.
    virtual void run(std::function<void()> work, std::function<void()> done) = 0;
    // Has the main thread do something soon; called from any thread.
    virtual void post(std::function<void()> task) = 0;
};

// A question for files or folders.
struct ChooserRequest {
    enum class Kind { report, documents, folder, image, saveFile };

    Kind kind = Kind::report;
    std::string message;
    std::string prompt; // Of the button; empty is the system's own.
    std::string fileName; // Proposed for saving.
};

// What the model is handed by whoever runs it.
struct AppServices {
    using Paths = std::vector<std::filesystem::path>; // Empty: the user chose nothing.

    std::function<Base::Instant()> now;
    Base::Calendar calendar; // The user's.
    std::function<Base::Calendar()> systemCalendar; // Asked every minute for another zone; may be missing.
    std::function<std::unique_ptr<PendingTask>(std::chrono::milliseconds, std::function<void()>)> after;
    Background* background = nullptr;
    Preferences* preferences = nullptr;
    DocumentRenderer* renderer = nullptr; // Called off the main thread, for one document at a time.
    std::function<void(const ChooserRequest&, std::function<void(Paths)>)> choose;
    std::function<void(const std::filesystem::path&)> openFile, showInFolder;
    std::function<void(const std::string&)> openAddress; // A URL, of a letter for instance; may be missing.
    Bookmarks* bookmarks = nullptr;
    NotificationCenter* notifications = nullptr; // May be missing.
    std::function<std::filesystem::path()> defaultFolder = LibraryStore::defaultFolder;
    std::function<void(std::chrono::milliseconds)> wait; // Off the main thread.
};

} // namespace Pallisande
