#pragma once

#include "Base/Fields.h"
#include "Pallisande/Model/Bookmarks.h"
#include "Pallisande/Model/Preferences.h"

#include <optional>
#include <string>
#include <tuple>

namespace Pallisande {

// What the user prefers on this computer, whichever library is open. Kept as JSON under the key "settings".
struct AppSettings {
    bool onboardingDone = false; // The welcome sheet has been seen.
    std::string documentLanguage = "en"; // Of quotes and invoices (BCP 47).
    bool remindersOn = false;
    std::optional<Bookmark> libraryBookmark; // Absent: the default folder.
    std::optional<Bookmark> secondBookmark; // Of the second backup folder.
    std::optional<std::string> lastSecondBackup; // The day ("yyyy-MM-dd") of the last copy made there.
    bool tamberlinOffered = false; // The import of the counting application's settings was offered.

    bool operator==(const AppSettings&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("onboardingDone", &AppSettings::onboardingDone),
            Base::field("documentLanguage", &AppSettings::documentLanguage),
            Base::field("remindersOn", &AppSettings::remindersOn),
            Base::field("libraryBookmark", &AppSettings::libraryBookmark),
            Base::field("secondBookmark", &AppSettings::secondBookmark),
            Base::field("lastSecondBackup", &AppSettings::lastSecondBackup),
            Base::field("tamberlinOffered", &AppSettings::tamberlinOffered),
        };
    }

    static constexpr const char* key = "settings";
    static constexpr const char* damagedKey = "settings (damaged)";

    // Preferences that can't be decoded give the defaults and `damage`, a sentence for the user. They are
    // kept under `damagedKey` until others take their place there.
    struct Loaded;
    static Loaded load(Preferences& preferences);
    // False when they couldn't be kept for the next start.
    bool store(Preferences& preferences) const;
};
static_assert(Base::listsEveryMember<AppSettings>);

struct AppSettings::Loaded {
    AppSettings settings;
    std::optional<std::string> damage;
};

} // namespace Pallisande
