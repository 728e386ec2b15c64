#include "Tests/Pallisande/ModelWorld.h"

#include <gtest/gtest.h>

#include <map>

namespace fs = std::filesystem;
using namespace Pallisande;
using std::chrono::milliseconds;
using ::Test::id;
using ::Test::World;

namespace {

const fs::path documentName = "Pallisande Library.json";

void rename(AppModel& model, const std::string& name)
{
    model.clients().edit(id(1), "Change Name", [&](Client& client) { client.name = name; });
}

std::map<std::string, std::string> filesIn(const fs::path& folder)
{
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file())
            files[entry.path().string()] = ::Test::fileText(entry.path());
    }
    return files;
}

} // namespace

TEST(AppModelStart, everyKindOfLibraryIsMetWithItsWords)
{
    const auto good = LibraryStore::encode(::Test::sampleLibrary());
    const struct {
        std::string name;
        std::function<void(World&)> prepare;
        std::string problem; // "" is none; {} is the end of the damaged file's name.
        Problem::Action action;
        ReadOnlyReason reason;
    } cases[] {
        { "new", [](World&) {}, "", Problem::Action::none, ReadOnlyReason::none },
        { "good", [&](World& world) { ::Test::writeFile(world.library / documentName, good); }, "",
            Problem::Action::none, ReadOnlyReason::none },
        { "damaged", [](World& world) { ::Test::writeFile(world.library / documentName, "{"); },
            "Your library couldn’t be read, so Pallisande started a new one. The old file was kept as "
            "“Pallisande "
            "Library (damaged 2026-03-09T14-05-31Z).json”, and the dated copies are in the Backups folder.",
            Problem::Action::showBackups, ReadOnlyReason::none },
        { "newer", [](World& world) { ::Test::writeFile(world.library / documentName, R"({"version": 2})"); },
            "Your library was saved by a newer version of Pallisande. Update Pallisande to open it; nothing "
            "was "
            "changed.",
            Problem::Action::checkForUpdates, ReadOnlyReason::newerVersion },
        { "unreadable", [](World& world) { fs::create_directory(world.library / documentName); },
            "Your library couldn’t be opened: not a regular file", Problem::Action::chooseFolder,
            ReadOnlyReason::unreadable },
        { "missing",
            [](World& world) {
                fs::create_directory(world.library / "Invoices");
                ::Test::writeFile(world.library / "Invoices" / "INV-1.pdf", "%PDF");
            },
            "Your library couldn’t be opened: the library file is missing", Problem::Action::showBackups,
            ReadOnlyReason::missingFile },
        { "no folder", [](World& world) { fs::remove(world.library); },
            "Pallisande couldn’t open its library folder: No such file or directory",
            Problem::Action::chooseFolder, ReadOnlyReason::unreadable },
        { "bookmark lost", [](World& world) { world.prefer({ .libraryBookmark = Bookmark { "/nowhere" } }); },
            "Your library folder couldn’t be found, so Pallisande is using its own folder. Choose the folder "
            "again "
            "in Settings › Library.",
            Problem::Action::chooseFolder, ReadOnlyReason::none },
    };
    for (const auto& [name, prepare, problem, action, reason] : cases) {
        SCOPED_TRACE(name);
        World world;
        prepare(world);
        auto& model = world.start();
        EXPECT_EQ(world.problem(), problem);
        EXPECT_EQ(model.problem() ? model.problem()->action : Problem::Action::none, action);
        EXPECT_EQ(model.readOnly(), reason);
        EXPECT_EQ(model.canEdit(), reason == ReadOnlyReason::none);
        if (reason == ReadOnlyReason::none)
            continue;
        EXPECT_EQ(model.readOnlyText(), problem);
        const auto before = fs::exists(world.library) ? filesIn(world.library) : decltype(filesIn({})) {};
        model.dismissProblem();
        EXPECT_FALSE(model.clients().add());
        EXPECT_EQ(world.problem(), problem);
        world.settle();
        EXPECT_TRUE(model.prepareToQuit());
        EXPECT_EQ(fs::exists(world.library) ? filesIn(world.library) : before, before);
    }
}

TEST(AppModelStart, aLibraryInUseIsReadAndNotWritten)
{
    World first, second;
    first.start(::Test::sampleLibrary());
    second.library = first.library;
    auto& model = second.start();
    EXPECT_EQ(model.library(), ::Test::sampleLibrary());
    EXPECT_EQ(model.readOnly(), ReadOnlyReason::inUse);
    EXPECT_EQ(second.problem(), "Your library couldn’t be opened: another Pallisande is using it");
}

TEST(AppModelStart, aMissingLibraryIsBegunAnewOrRestoredOnlyWhenAsked)
{
    for (const bool restores : { true, false }) {
        World world;
        world.start(::Test::sampleLibrary());
        world.model.reset();
        const auto backup = LibraryStore(world.library).backups().front(); // Of the first start.
        fs::remove(world.library / documentName);
        auto& model = world.start();
        ASSERT_EQ(model.readOnly(), ReadOnlyReason::missingFile);
        EXPECT_FALSE(fs::exists(world.library / documentName));
        restores ? model.restoreBackup(backup) : model.startNewLibrary();
        EXPECT_TRUE(model.canEdit());
        EXPECT_EQ(world.problem(), "");
        EXPECT_EQ(model.library().jobs.size(), restores ? 3u : 0u);
        EXPECT_TRUE(fs::exists(world.library / documentName));
    }
}

TEST(AppModelSaving, aBurstOfEditsIsOneWrite)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    int writes = 0;
    QObject::connect(&model, &AppModel::saveStateChanged, &model,
        [&] { writes += model.saveState() == SaveState::saved; });
    const auto before = world.document();
    for (int edit = 0; edit < 10; ++edit) {
        rename(model, "Name " + std::to_string(edit));
        world.timers.advance(milliseconds(50));
        EXPECT_EQ(model.saveState(), SaveState::unsaved);
    }
    world.timers.advance(milliseconds(549));
    EXPECT_EQ(world.document(), before);
    world.timers.advance(milliseconds(1));
    EXPECT_EQ(writes, 1);
    EXPECT_NE(world.document().find("Name 9"), std::string::npos);

    rename(model, "At the end");
    EXPECT_TRUE(model.prepareToQuit());
    EXPECT_NE(world.document().find("At the end"), std::string::npos);
}

TEST(AppModelSaving, aFailedSaveIsToldAndTriedAgain)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    const auto elsewhere = world.root / "Unplugged";
    fs::rename(world.library, elsewhere);
    rename(model, "Kept");
    world.settle();
    const std::string sentence
        = "Pallisande couldn’t save your library: the library folder isn’t there any more";
    EXPECT_EQ(world.problem(), sentence);
    EXPECT_EQ(model.problem()->action, Problem::Action::tryAgain);
    EXPECT_EQ(model.saveState(), SaveState::failed);
    EXPECT_FALSE(model.prepareToQuit());

    model.dismissProblem();
    world.timers.advance(milliseconds(60'000)); // It tries by itself, and tells it again.
    EXPECT_EQ(world.problem(), sentence);
    fs::rename(elsewhere, world.library);
    world.timers.advance(milliseconds(60'000));
    EXPECT_EQ(world.problem(), "");
    EXPECT_EQ(model.saveState(), SaveState::saved);
    EXPECT_NE(world.document().find("Kept"), std::string::npos);
}

TEST(AppModelSaving, anotherProgramsChangeIsNeverOverwritten)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    ::Test::writeFile(world.library / documentName, "{\"version\": 1, \"jobs\": []}");
    rename(model, "Mine");
    world.settle();
    EXPECT_EQ(model.readOnly(), ReadOnlyReason::changedElsewhere);
    EXPECT_EQ(model.readOnlyText(), world.problem());
    EXPECT_NE(world.problem().find("the file was changed by another program"), std::string::npos);
    EXPECT_EQ(world.document(), "{\"version\": 1, \"jobs\": []}");
    EXPECT_TRUE(model.prepareToQuit()); // Its version lies in Backups.
}

TEST(AppModelSaving, theSecondBackupIsWrittenOnceADay)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    const auto second = world.root / "Second";
    fs::create_directory(second);
    world.answer = { second };
    model.chooseSecondBackupFolder();
    const auto copies = [&] { return std::distance(fs::directory_iterator(second), {}); };
    EXPECT_EQ(copies(), 1);
    rename(model, "Later that day");
    world.settle();
    EXPECT_EQ(copies(), 1);
    EXPECT_EQ(world.settings().lastSecondBackup, "2026-03-09");
    world.now = world.now.plusMilliseconds(24 * 3'600'000);
    rename(model, "Next day");
    world.settle();
    EXPECT_EQ(copies(), 2);

    fs::remove_all(second); // Told once, not with every save.
    world.now = world.now.plusMilliseconds(24 * 3'600'000);
    rename(model, "A");
    world.settle();
    EXPECT_EQ(world.problem(), "The backup couldn’t be written: the second backup folder couldn’t be found");
    model.dismissProblem();
    rename(model, "B");
    world.settle();
    EXPECT_EQ(world.problem(), "");
    model.stopSecondBackup();
    model.backUpNow();
    EXPECT_EQ(world.notice(), "Backed up as “Pallisande Library 2026-03-11 15-05-31.json”.");
}

TEST(AppModelMoving, takesTheLibraryAlongOrAdoptsTheOneThatIsThere)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    fs::create_directory(world.library / "Reports");
    ::Test::writeFile(world.library / "Reports" / "report.xml", "<x/>");
    rename(model, "Unsaved yet");
    const auto empty = world.root / "Empty", used = world.root / "Used", broken = world.root / "Broken";
    for (const auto& folder : { empty, used, broken })
        fs::create_directory(folder);

    world.answer = { empty };
    model.chooseLibraryFolder();
    EXPECT_EQ(world.asked.message,
        "Choose a folder for your Pallisande library. Your records, report copies, issued PDFs and backups "
        "move "
        "there.");
    EXPECT_EQ(world.asked.prompt, "Use This Folder");
    EXPECT_EQ(world.notice(),
        "The library is now in “" + empty.string() + "”. The old copy was left where it was.");
    EXPECT_EQ(model.folder(), empty);
    EXPECT_EQ(model.library().client(id(1))->name, "Unsaved yet");
    EXPECT_TRUE(fs::exists(empty / "Reports" / "report.xml"));
    EXPECT_TRUE(fs::exists(world.library / documentName));
    EXPECT_EQ(world.settings().libraryBookmark, Bookmark { empty.string() });

    auto other = ::Test::sampleLibrary();
    other.clients[0].name = "Theirs";
    LibraryStore(used).save(other);
    model.select(AppSection::jobs, id(11));
    model.moveLibrary(used);
    EXPECT_EQ(model.library(), other);
    EXPECT_EQ(model.undoName(), std::nullopt);
    EXPECT_EQ(model.selection(AppSection::jobs), std::nullopt);
    EXPECT_NE(::Test::fileText(empty / documentName).find("Unsaved yet"), std::string::npos);

    ::Test::writeFile(broken / documentName, "not a library");
    model.moveLibrary(broken);
    EXPECT_EQ(world.problem(),
        "The library couldn’t be moved: The library file couldn’t be read; it was kept as “Pallisande "
        "Library "
        "(damaged 2026-03-09T14-05-31Z).json”.");
    ::Test::writeFile(broken / documentName, R"({"version": 2})");
    model.moveLibrary(broken);
    EXPECT_EQ(world.problem(),
        "The library couldn’t be moved: This library was saved by a newer version of Pallisande.");
    EXPECT_EQ(model.folder(), used);
    EXPECT_TRUE(model.canEdit());
}

TEST(AppModelMoving, aLostFolderIsConfirmedBeforeAnythingIsIssued)
{
    World world;
    world.prefer({ .libraryBookmark = Bookmark { "/nowhere" } });
    auto& model = world.start(::Test::sampleLibrary());
    ASSERT_TRUE(model.folderWasNotFound());
    EXPECT_EQ(world.settings().libraryBookmark, Bookmark { "/nowhere" }); // The drive may come back.
    const std::vector jobs { id(11) };
    ASSERT_TRUE(model.invoices().makeDraft(jobs));
    const auto draft = *model.selection(AppSection::invoices);
    model.invoices().issue(draft, world.now, std::nullopt);
    EXPECT_FALSE(model.invoice(draft)->isIssued());
    model.confirmFolder();
    model.invoices().issue(draft, world.now, std::nullopt);
    EXPECT_TRUE(model.invoice(draft)->isIssued());
    EXPECT_EQ(world.settings().libraryBookmark, Bookmark { world.library.string() });
}

TEST(AppModelSettings, remindersAskTheSystemAndFollowTheJobs)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    world.notifications.isAllowed = false;
    model.setRemindersOn(true);
    EXPECT_EQ(world.problem(), Reminders::refusal);
    EXPECT_FALSE(model.settings().remindersOn);
    world.notifications.isAllowed = true;
    model.setRemindersOn(true);
    ASSERT_TRUE(model.jobs().add(
        { .title = "Soon", .clientID = id(1), .deadline = world.now.plusMilliseconds(3 * 3'600'000) }));
    world.settle();
    ASSERT_EQ(world.notifications.pending.size(), 1u);
    EXPECT_EQ(world.notifications.pending.front().title, "Soon");
    EXPECT_TRUE(world.settings().remindersOn);
}
