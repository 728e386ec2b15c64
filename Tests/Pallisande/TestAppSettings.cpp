#include "Pallisande/Model/AppSettings.h"
#include "Pallisande/Platform/FolderBookmarks.h"
#include "Pallisande/Platform/SystemPreferences.h"
#include "Pallisande/Platform/VisitingPreferences.h"
#include "Tests/Support/Folders.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

namespace {

using namespace Pallisande;

const AppSettings changed { .onboardingDone = true,
    .documentLanguage = "de",
    .remindersOn = true,
    .libraryBookmark = Bookmark { "/mnt/ada/B\xFC"
                                  "cher\n" }, // No valid UTF-8.
    .secondBookmark = Bookmark { "" },
    .lastSecondBackup = "2026-03-09",
    .tamberlinOffered = true };

TEST(AppSettings, outliveTheProgram)
{
    const ::Test::TemporaryFolder folder;
    const auto file = QString::fromStdString(folder / "Pallisande.conf");
    {
        SystemPreferences preferences(file);
        EXPECT_EQ(AppSettings::load(preferences).settings, AppSettings {});
        EXPECT_EQ(AppSettings::load(preferences).damage, std::nullopt);
        EXPECT_TRUE(changed.store(preferences));
        // On disk at once, whatever becomes of this program.
        SystemPreferences another(file);
        EXPECT_EQ(AppSettings::load(another).settings, changed);
    }
    SystemPreferences later(file);
    EXPECT_EQ(AppSettings::load(later).settings, changed);
    for (const std::string text : { "", "@Variant(;,)=\\\"", "“ü”\n[General]\nsettings=x" }) {
        later.store("some key", text);
        EXPECT_EQ(SystemPreferences(file).load("some key"), text);
    }
    ::chmod(folder.path().c_str(), 0500);
    if (::access(folder.path().c_str(), W_OK) != 0) { // Root may write everywhere.
        EXPECT_FALSE(AppSettings {}.store(later));
    }
    ::chmod(folder.path().c_str(), 0700);
}

TEST(AppSettings, areReadLeniently)
{
    MemoryPreferences preferences;
    preferences.texts["settings"] = R"({"documentLanguage":null,"remindersOn":true,"sidebarWidth":240})";
    const auto [settings, damage] = AppSettings::load(preferences);
    EXPECT_EQ(settings, AppSettings { .remindersOn = true });
    EXPECT_EQ(damage, std::nullopt);
}

TEST(AppSettings, whenDamagedGiveWayToDefaultsAndAreKept)
{
    for (const std::string broken :
        { "", "{", "[]", R"({"remindersOn":"yes"})", R"({"libraryBookmark":"no Base64"})" }) {
        SCOPED_TRACE(broken);
        MemoryPreferences preferences;
        preferences.texts["settings"] = broken;
        const auto [settings, damage] = AppSettings::load(preferences);
        EXPECT_EQ(settings, AppSettings {});
        EXPECT_TRUE(damage);
        changed.store(preferences);
        EXPECT_EQ(preferences.texts["settings (damaged)"], broken);
        EXPECT_EQ(AppSettings::load(preferences).settings, changed);
    }
}

TEST(AppSettings, aDamagedPreferencesFileIsKeptBeside)
{
    const ::Test::TemporaryFolder folder;
    const auto path = folder / "Pallisande.conf";
    const auto broken = QByteArray("\0\0", 2).toStdString() + "garbage without a sign\n[General]\nfirst=1\n";
    ::Test::writeFile(path, broken);
    SystemPreferences preferences(QString::fromStdString(path));
    preferences.store("second", "2");
    EXPECT_EQ(::Test::fileText(path.string() + ".damaged"), broken);
    EXPECT_EQ(SystemPreferences(QString::fromStdString(path)).load("second"), "2");
}

TEST(FolderBookmarks, findTheFolderByItsPathWhileItIsThere)
{
    const ::Test::TemporaryFolder folder;
    const auto library = folder
        / "B\xFC"
          "cher";
    std::filesystem::create_directory(library);
    FolderBookmarks bookmarks;
    const auto bookmark = bookmarks.make(library
        / "../B\xFC"
          "cher");
    EXPECT_EQ(bookmarks.resolve(bookmark), library);
    std::filesystem::rename(library, folder / "Elsewhere");
    EXPECT_EQ(bookmarks.resolve(bookmark), std::nullopt);
    ::Test::writeFile(library, "a file now");
    EXPECT_EQ(bookmarks.resolve(bookmark), std::nullopt);
    EXPECT_EQ(bookmarks.resolve({ "" }), std::nullopt);
    EXPECT_EQ(bookmarks.resolve({ "." }), std::nullopt);
}

} // namespace

TEST(VisitingPreferences, leaveTheUsersOwnFoldersAlone)
{
    MemoryPreferences own;
    const AppSettings before { .documentLanguage = "de",
        .remindersOn = true,
        .libraryBookmark = Bookmark { "/mine" },
        .secondBookmark = Bookmark { "/copy" },
        .lastSecondBackup = "2026-03-08" };
    before.store(own);
    VisitingPreferences visiting(own, true);
    auto settings = AppSettings::load(visiting).settings;
    EXPECT_EQ(settings, (AppSettings { .documentLanguage = "de" }));
    settings.documentLanguage = "fr";
    settings.libraryBookmark = Bookmark { "/elsewhere" };
    settings.store(visiting);
    auto after = before;
    after.documentLanguage = "fr";
    EXPECT_EQ(AppSettings::load(own).settings, after);
}
