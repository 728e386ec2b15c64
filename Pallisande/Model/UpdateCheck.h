#pragma once

#include "Base/Fields.h"
#include "Base/Instant.h"
#include "Pallisande/Model/Network.h"
#include "Pallisande/Model/Preferences.h"
#include "Pallisande/Model/UpdateFeed.h"

#include <functional>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

namespace Pallisande {

// Where the feed is and whose signature counts. Without a key nothing is ever fetched.
struct UpdateSource {
    std::string address;
    std::string publicKey; // Base64 of the 32 bytes of an Ed25519 key.

    static UpdateSource builtIn(); // What was given when the program was built.
};

// What earlier checks leave behind, kept as JSON under the key "updates".
struct UpdateMemory {
    std::optional<Base::Instant> lastCheck; // Tried, whatever came of it.
    std::string highestVersion; // Of all feeds ever believed: an older feed brought back isn't.
    Base::Instant newestFeed = Base::earliestInstant;

    bool operator==(const UpdateMemory&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("lastCheck", &UpdateMemory::lastCheck),
            Base::field("highestVersion", &UpdateMemory::highestVersion),
            Base::field("newestFeed", &UpdateMemory::newestFeed),
        };
    }

    static UpdateMemory load(const Preferences& preferences);
    void store(Preferences& preferences) const;
};
static_assert(Base::listsEveryMember<UpdateMemory>);

// What came of a check, in the words of a message box.
struct UpdateResult {
    enum class Case { upToDate, found, failed };
    Case kind = Case::failed;
    std::string title, text, addition;
    UpdateFeed feed; // Of `found`: the page to open and the notes to show.
};

// Looks whether there is a newer version, about once a day and when asked. Nothing is ever downloaded or run:
// the user's browser opens the page.
class UpdateCheck {
public:
    struct Services {
        Network& network;
        Preferences& preferences;
        std::function<Base::Instant()> now;
        UpdateSource source = UpdateSource::builtIn();
        std::string version; // Of the running program.
        std::string appName = "Pallisande"; // As it is displayed.
    };
    explicit UpdateCheck(Services services)
        : m_services(std::move(services))
    {
    }
    ~UpdateCheck() { m_stop.request_stop(); } // Nothing is called afterwards.
    UpdateCheck(const UpdateCheck&) = delete;
    UpdateCheck& operator=(const UpdateCheck&) = delete;

    // To be called at start and now and then (every hour, say). Only a newer version is told.
    void checkIfDue(std::function<void(const UpdateResult&)> found);
    void checkByHand(std::function<void(const UpdateResult&)> done);

private:
    void check(std::function<void(const UpdateResult&)> done);
    UpdateResult judged(const Base::DownloadResult& download);
    UpdateResult upToDate() const;
    UpdateResult found(UpdateFeed feed) const;
    UpdateResult failed() const;

    Services m_services;
    std::stop_source m_stop;
    std::shared_ptr<UpdateCheck*> m_self = std::make_shared<UpdateCheck*>(this); // Gone with it.
};

} // namespace Pallisande
