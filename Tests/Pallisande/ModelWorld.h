#pragma once

#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/BusinessProfile.h"
#include "Pallisande/Model/ClientSection.h"
#include "Pallisande/Model/DeadlineSection.h"
#include "Pallisande/Model/DocumentCounts.h"
#include "Pallisande/Model/Imports.h"
#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Model/JobSection.h"
#include "Tests/Support/Folders.h"
#include "Tests/Support/Sessions.h"

#include <algorithm>
#include <map>
#include <memory>

namespace Test {

namespace fs = std::filesystem;

// Timers that go off when a test says so.
class FakeTimers {
public:
    std::unique_ptr<Pallisande::PendingTask> after(std::chrono::milliseconds wait, std::function<void()> task)
    {
        auto handle = std::make_unique<Handle>(*this, ++m_last);
        m_tasks[m_last] = { m_now + wait, std::move(task) };
        return handle;
    }
    void advance(std::chrono::milliseconds time)
    {
        const auto end = m_now + time;
        for (;;) {
            const auto next = std::min_element(m_tasks.begin(), m_tasks.end(),
                [](const auto& a, const auto& b) { return a.second.when < b.second.when; });
            if (next == m_tasks.end() || next->second.when > end)
                break;
            m_now = next->second.when;
            const auto task = std::move(next->second.task);
            m_tasks.erase(next);
            task();
        }
        m_now = end;
    }

private:
    struct Task {
        std::chrono::milliseconds when;
        std::function<void()> task;
    };
    struct Handle final : Pallisande::PendingTask {
        Handle(FakeTimers& owner, int key)
            : timers(owner)
            , number(key)
        {
        }
        ~Handle() override { timers.m_tasks.erase(number); }
        FakeTimers& timers;
        int number;
    };

    std::map<int, Task> m_tasks;
    std::chrono::milliseconds m_now {};
    int m_last = 0;
};

// Work is done at once, or, when a test holds it back, when it lets go.
class InlineBackground final : public Pallisande::Background {
public:
    void run(std::function<void()> work, std::function<void()> done) override
    {
        work();
        if (isHeld)
            held.push_back(std::move(done));
        else
            done();
    }
    void post(std::function<void()> task) override { task(); }
    void letGo()
    {
        isHeld = false;
        for (const auto& done : std::exchange(held, {}))
            done();
    }

    bool isHeld = false;
    std::vector<std::function<void()>> held;
};

class PathBookmarks final : public Pallisande::Bookmarks {
public:
    Pallisande::Bookmark make(const fs::path& folder) override { return { folder.string() }; }
    std::optional<fs::path> resolve(const Pallisande::Bookmark& bookmark) override
    {
        return fs::is_directory(bookmark.bytes) ? std::optional(fs::path(bookmark.bytes)) : std::nullopt;
    }
};

struct FakeNotifications final : Pallisande::NotificationCenter {
    void removeAllPending() override { pending.clear(); }
    void askPermission(std::function<void(bool)> answer) override { answer(isAllowed); }
    void schedule(const Pallisande::ReminderRequest& request) override { pending.push_back(request); }

    bool isAllowed = true;
    std::vector<Pallisande::ReminderRequest> pending;
};

// A model on a folder of its own, and everything around it.
struct World {
    World() { fs::create_directory(library); }

    // As at a start of the program; what was there before goes first, as it does when that ends.
    Pallisande::AppModel& start()
    {
        model.reset();
        model = std::make_unique<Pallisande::AppModel>(Pallisande::AppServices {
            .now = [this] { return now; },
            .calendar = calendar(),
            .systemCalendar = [this] { return systemCalendar; },
            .after = [this](auto wait, auto task) { return timers.after(wait, std::move(task)); },
            .background = &background,
            .preferences = &preferences,
            .renderer = drawing ? drawing : &renderer,
            .choose =
                [this](const Pallisande::ChooserRequest& request, auto chosen) {
                    asked = request;
                    chosen(answer);
                },
            .openFile = [this](const fs::path& file) { openedFiles.push_back(file); },
            .showInFolder = [this](const fs::path& file) { openedFiles.push_back(file); },
            .openAddress = [this](const std::string& address) { openedAddresses.push_back(address); },
            .bookmarks = &bookmarks,
            .notifications = &notifications,
            .defaultFolder = [this] { return library; },
        });
        model->start();
        return *model;
    }
    // On a library that is there already.
    Pallisande::AppModel& start(const Pallisande::Library& holding)
    {
        Pallisande::LibraryStore(library).save(holding);
        return start();
    }

    void settle() { timers.advance(std::chrono::milliseconds(600)); }
    std::string document() const { return fileText(library / "Pallisande Library.json"); }
    std::string problem() const { return model->problem() ? model->problem()->text : ""; }
    std::string notice() const { return model->notice() ? model->notice()->text : ""; }
    Pallisande::AppSettings settings() { return Pallisande::AppSettings::load(preferences).settings; }
    void prefer(const Pallisande::AppSettings& settings) { settings.store(preferences); }

    TemporaryFolder root;
    fs::path library = root / "Library";
    Base::Instant now = moment().now;
    Base::Calendar systemCalendar = calendar();
    FakeTimers timers;
    InlineBackground background;
    Pallisande::MemoryPreferences preferences;
    PathBookmarks bookmarks;
    FakeNotifications notifications;
    TextRenderer renderer;
    Pallisande::DocumentRenderer* drawing = nullptr; // In its place, before the start.
    Pallisande::ChooserRequest asked;
    std::vector<fs::path> answer; // To the next question for files.
    std::vector<fs::path> openedFiles;
    std::vector<std::string> openedAddresses;
    std::unique_ptr<Pallisande::AppModel> model;
};

} // namespace Test
