#include "PallisandeKit/Library/LibraryStore.h"

#include "Base/Json.h"
#include "Tests/Support/Folders.h"
#include "Tests/Support/Samples.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sys/stat.h>
#include <unistd.h>

using namespace Pallisande;

namespace {

namespace fs = std::filesystem;

std::vector<std::string> names(const fs::path& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        names.push_back(fs::relative(entry.path(), folder).string());
    std::sort(names.begin(), names.end());
    return names;
}

std::string failure(const LibraryStore& store)
{
    try {
        store.load(::Test::moment());
        return "(loaded)";
    } catch (const std::exception& error) {
        return error.what();
    }
}

} // namespace

TEST(LibraryStore, loadsANewLibraryWhereThereIsNoneAndWritesNothing)
{
    const ::Test::TemporaryFolder folder;
    for (const auto& path : { folder.path(), folder / "not yet there" }) {
        const auto loaded = LibraryStore(path).load(::Test::moment());
        EXPECT_FALSE(loaded.identity);
        EXPECT_FALSE(loaded.library.holdsRecords());
        ASSERT_EQ(loaded.library.counting.rateCards.size(), 1u);
        EXPECT_EQ(loaded.library.counting.rateCards.front().name, "Standard rate");
    }
    EXPECT_TRUE(names(folder.path()).empty());
}

TEST(LibraryStore, givesBackWhatItWasGivenAndWritesItAgainByteForByte)
{
    const ::Test::TemporaryFolder folder;
    const LibraryStore store(folder / "made/with its parents");
    const auto library = ::Test::sampleLibrary();
    store.save(library);
    EXPECT_TRUE(store.exists());
    const auto first = ::Test::fileText(store.folder() / LibraryStore::documentName);
    const auto loaded = store.load(::Test::moment());
    EXPECT_EQ(loaded.library, library);
    store.save(loaded.library);
    EXPECT_EQ(::Test::fileText(store.folder() / LibraryStore::documentName), first);
    EXPECT_EQ(names(store.folder()), std::vector<std::string> { std::string(LibraryStore::documentName) });
    EXPECT_NE(first.find("\"created\": \"2025-01-02T03:04:05.006Z\""), std::string::npos);
}

TEST(LibraryStore, movesADamagedDocumentAsideUnderAFreeName)
{
    const ::Test::TemporaryFolder folder;
    const LibraryStore store(folder.path());
    const auto document = folder / LibraryStore::documentName;
    const struct {
        std::string text, keptAs;
    } cases[] {
        { "no JSON at all", "Pallisande Library (damaged 2026-03-09T14-05-31Z).json" },
        { "", "Pallisande Library (damaged 2026-03-09T14-05-31Z 2).json" },
        { "{\"version\": 1, \"jobs\": [{\"title\": \"no client\"}]}",
            "Pallisande Library (damaged 2026-03-09T14-05-31Z 3).json" },
        { "{\"version\": \"new\"}", "Pallisande Library (damaged 2026-03-09T14-05-31Z 4).json" },
        { "{\"jobs\": [{\"clientID\": \"A0000000-0000-4000-8000-000000000001\", \"targetUnits\": "
          "9007199254740991},"
          "{\"clientID\": \"A0000000-0000-4000-8000-000000000001\", \"targetUnits\": 9007199254740991}]}",
            "Pallisande Library (damaged 2026-03-09T14-05-31Z 5).json" },
    };
    for (const auto& [text, keptAs] : cases) {
        SCOPED_TRACE(keptAs);
        ::Test::writeFile(document, text);
        EXPECT_EQ(failure(store), "The library file couldn’t be read; it was kept as “" + keptAs + "”.");
        EXPECT_EQ(::Test::fileText(folder / keptAs), text);
        EXPECT_FALSE(fs::exists(document));
    }
}

TEST(LibraryStore, refusesANewerVersionUntouchedWhateverItsForm)
{
    const ::Test::TemporaryFolder folder;
    const LibraryStore store(folder.path());
    for (const std::string text : { "{\"version\": 2}", "{\"version\": 3, \"jobs\": \"in another form\"}",
             "{\"clients\": [], \"version\": 9007199254740991}" }) {
        ::Test::writeFile(folder / LibraryStore::documentName, text);
        EXPECT_EQ(failure(store), "This library was saved by a newer version of Pallisande.");
        EXPECT_EQ(::Test::fileText(folder / LibraryStore::documentName), text);
    }
    for (const std::string text : { "{\"version\": 1}", "{}", "{\"version\": null}" }) {
        ::Test::writeFile(folder / LibraryStore::documentName, text);
        EXPECT_EQ(failure(store), "(loaded)");
    }
    EXPECT_EQ(names(folder.path()).size(), 1u);
}

TEST(LibraryStore, passesOnWhatTheFileSystemSays)
{
    const ::Test::TemporaryFolder folder;
    fs::create_directory(folder / LibraryStore::documentName);
    EXPECT_EQ(failure(LibraryStore(folder.path())), "not a regular file");
    EXPECT_TRUE(fs::is_directory(folder / LibraryStore::documentName));
    ::Test::writeFile(folder / "a file", "");
    EXPECT_EQ(failure(LibraryStore(folder / "a file")), std::generic_category().message(ENOTDIR));
}

TEST(LibraryStore, keepsOneDatedBackupADayAndTheSixtyNewest)
{
    const ::Test::TemporaryFolder folder;
    const LibraryStore store(folder.path());
    const auto library = ::Test::sampleLibrary();
    const auto first = ::Test::day("2026-01-01");
    for (int day = 0; day < 61; ++day) {
        const auto moment = ::Test::momentOn(first.plusDays(day).toString());
        ASSERT_TRUE(store.dailyBackup(library, moment));
        EXPECT_FALSE(store.dailyBackup(Library::makeNew(), moment)) << "one was there already";
    }
    const auto onDemand = store.backup(library, ::Test::momentOn("2026-01-01"));
    EXPECT_EQ(onDemand.filename(), "Pallisande Library 2026-01-01 15-05-00.json");
    EXPECT_EQ(store.backup(library, ::Test::momentOn("2026-01-01")).filename(),
        "Pallisande Library 2026-01-01 15-05-01.json");
    ::Test::writeFile(folder / "Backups/Pallisande Library of a friend.json", "{}");
    ::Test::writeFile(folder / "Backups/something else.json", "{}");
    store.dailyBackup(library, ::Test::momentOn("2026-03-03"));

    std::vector<std::string> dated;
    for (const auto& path : store.backups()) {
        if (path.filename().string().size() == std::string_view("Pallisande Library 2026-01-01.json").size())
            dated.push_back(path.filename().string());
    }
    ASSERT_EQ(dated.size(), 60u);
    EXPECT_EQ(dated.front(), "Pallisande Library 2026-03-03.json");
    EXPECT_EQ(dated.back(), "Pallisande Library 2026-01-03.json");
    EXPECT_EQ(store.backups().size(), 63u) << "two on demand and the friend’s are no dated ones";
    EXPECT_EQ(::Test::fileText(onDemand), LibraryStore::encode(library));
}

TEST(LibraryStore, namesTheDayOfABackupInTheUsersZone)
{
    const ::Test::TemporaryFolder folder;
    const LibraryStore store(folder.path());
    const Base::Moment lateEvening { ::Test::instant("2026-12-31T23:30:00Z"),
        ::Test::calendar("Pacific/Kiritimati") };
    EXPECT_EQ(
        store.dailyBackup(Library::makeNew(), lateEvening)->filename(), "Pallisande Library 2027-01-01.json");
    EXPECT_EQ(store.backup(Library::makeNew(), lateEvening, folder / "elsewhere").filename(),
        "Pallisande Library 2027-01-01 13-30-00.json");
}

TEST(LibraryStore, storesReportsUnderSafeNames)
{
    const ::Test::TemporaryFolder folder;
    const LibraryStore store(folder.path());
    const auto id = ::Test::id(7);
    std::string longName;
    for (int count = 0; count < 150; ++count)
        longName += "報";
    const struct {
        std::string name, stored;
    } cases[] {
        { "a/b:c.csv", "abc.csv" },
        { " . . ", "file" },
        { "../../etc/passwd", "etcpasswd" },
        { "tab\tnew\nline?.xml", "tabnewline.xml" },
    };
    for (const auto& [name, stored] : cases)
        EXPECT_EQ(store.storeReport("data", name, id), "Reports/" + id.toString() + " " + stored);
    const auto path = store.storeReport("long", longName + ".xml", id);
    EXPECT_LE(fs::path(path).filename().string().size(), 255u);
    EXPECT_EQ(::Test::fileText(store.resolve(path)), "long");
    EXPECT_EQ(store.storeReport("again", "a/b:c.csv", id), "Reports/" + id.toString() + " abc.csv");
    EXPECT_EQ(::Test::fileText(store.resolve("Reports/" + id.toString() + " abc.csv")), "again");
}

TEST(LibraryStore, neverReplacesAnIssuedPDF)
{
    const ::Test::TemporaryFolder folder;
    const LibraryStore store(folder.path());
    EXPECT_EQ(store.storeIssuedPDF("first", "INV-2026-001"), "Invoices/INV-2026-001.pdf");
    try {
        store.storeIssuedPDF("second", "INV-2026-001");
        FAIL();
    } catch (const LibraryStoreError& error) {
        EXPECT_STREQ(
            error.what(), "A PDF for INV-2026-001 is already stored; an issued PDF is never replaced.");
    }
    const auto path = folder / "Invoices/INV-2026-001.pdf";
    EXPECT_EQ(::Test::fileText(path), "first");
    struct stat status { };
    ASSERT_EQ(::stat(path.c_str(), &status), 0);
    EXPECT_EQ(status.st_mode & 0777, 0444u);
}

TEST(LibraryStore, writesToWhereTheDocumentIsLinked)
{
    const ::Test::TemporaryFolder folder;
    fs::create_directory(folder / "library");
    fs::create_directory(folder / "elsewhere");
    ::Test::writeFile(folder / "elsewhere/real.json", "{}");
    fs::create_symlink(folder / "elsewhere/real.json", folder / "library/Pallisande Library.json");
    const LibraryStore store(folder / "library");
    store.save(::Test::sampleLibrary());
    EXPECT_TRUE(fs::is_symlink(folder / "library/Pallisande Library.json"));
    EXPECT_EQ(
        ::Test::fileText(folder / "elsewhere/real.json"), LibraryStore::encode(::Test::sampleLibrary()));
}
