#include "Pallisande/Model/LibraryCopies.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Settings/SettingsWindow.h"
#include "Pallisande/Shell/ComparisonPane.h"
#include "Pallisande/Widgets/NoteLine.h"
#include "Pallisande/Widgets/Toast.h"
#include "Tests/Pallisande/WidgetChecks.h"
#include "Tests/Pallisande/WindowWorld.h"

#include <gtest/gtest.h>

#include <QPushButton>
#include <QTreeWidget>

using namespace Pallisande;
using ::Test::id;
using ::Test::WindowWorld;

namespace {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;

const fs::path firstCopy = "Backups/Pallisande Library 2026-03-09.json";
const fs::path documentName = "Pallisande Library.json";

// A folder whose first copy is older than two issued documents, a payment and a new name.
struct BackupsWorld : WindowWorld {
    BackupsWorld()
    {
        ::Test::Surroundings surroundings;
        LibraryStore(library).save(::Test::sampleLibrary());
        auto session = surroundings.open(library);
        for (const std::uint64_t job : { 11, 21 }) {
            const std::vector<Base::Uuid> jobs { id(job) };
            const auto draft = session.change([&](Library& changed) {
                return Ledger::draftInvoice(changed, jobs, ::Test::moment(), ::Test::labels()).id;
            });
            session.issue(draft);
        }
        session.change([](Library& changed) {
            changed.clients[1].name = "Harbour Books";
            Ledger::addPayment(changed, changed.invoices.front().id,
                { .date = ::Test::noon("2026-03-09"), .amount = ::Test::decimal("19") }, ::Test::moment());
        });
        session.save();
    }

    // As the user gets there.
    QDialog* openBackups()
    {
        window->showSettings(2);
        window->findChild<QPushButton*>("showBackups")->click();
        settleEvents();
        return backups();
    }
    QDialog* backups() const { return window->findChild<QDialog*>("backups"); }
    QTreeWidget* list() const { return backups()->findChild<QTreeWidget*>("backupList"); }
    QPushButton* button(const char* name) const { return backups()->findChild<QPushButton*>(name); }
    Strings row(int place) const
    {
        Strings texts;
        for (int column = 0; column < list()->columnCount(); ++column)
            texts.push_back(plain(list()->topLevelItem(place)->text(column)));
        return texts;
    }
    void choose(int place) const
    {
        list()->setCurrentItem(list()->topLevelItem(place));
        settleEvents();
    }
    // What the pane says, line by line.
    Strings comparison() const
    {
        Strings texts;
        for (const auto* label : backups()->findChild<ComparisonPane*>()->widget()->findChildren<Label*>()) {
            if (label->isVisibleTo(backups()))
                texts.push_back(plain(QString(label->text()).replace(QChar(0xA0), ' ')));
        }
        texts.erase(texts.begin()); // Its heading.
        return texts;
    }
    std::string note(const char* name) const
    {
        const auto* note = backups()->findChild<NoteLine*>(name);
        return note->isVisibleTo(backups()) ? plain(note->sentence()) : "";
    }
    void restoreChosen() const
    {
        button("restore")->click();
        button("confirmRestore")->click();
        settleEvents();
    }
};

} // namespace

TEST(BackupsWindow, comparesRestoresAndTakesOverWhatOnlyTheIssueLogKnows)
{
    BackupsWorld world;
    world.open();
    auto& model = *world.model;
    world.openBackups();
    ASSERT_EQ(world.list()->topLevelItemCount(), 1);
    EXPECT_EQ(world.row(0), (Strings { "9 Mar 2026", "Daily copy", "2", "3", "0", "none" }));
    EXPECT_EQ(world.note("unrecorded"), "");
    EXPECT_FALSE(world.button("restore")->isEnabled());
    EXPECT_EQ(world.comparison(), Strings { "Choose a copy to see what restoring it would change." });
    world.choose(0);
    EXPECT_EQ(world.comparison(),
        (Strings { "Clients", "Different (1): Harbor Books", "Jobs", "Different (2): Job 11 and Job 21",
            "Documents", "Only in your library (2): INV-2026-001 and INV-2026-002",
            "The PDFs of issued documents stay. Their records can be taken over from the issue log "
            "afterwards.",
            "Payments", "Only in your library (1): 19.00 EUR for INV-2026-001", "Next numbers",
            "Invoices: INV-2026-001; now it is INV-2026-003", "Credit notes: CN-2026-001, as now",
            "Quotes: Q-2026-001, as now" }));

    // Asked first; nothing happens while it isn't confirmed.
    const auto before = model.library();
    world.button("restore")->click();
    EXPECT_EQ(plain(world.backups()->findChild<Label*>("question")->text()),
        "“Pallisande Library 2026-03-09.json” takes the place of your library, of which a copy is made "
        "first.");
    EXPECT_FALSE(world.button("restore")->isEnabled()) << "a double click would be an answer";
    world.button("cancelRestore")->click();
    EXPECT_FALSE(world.button("confirmRestore")->isVisible());
    EXPECT_EQ(model.library(), before);

    world.restoreChosen();
    EXPECT_TRUE(!world.backups() || !world.backups()->isVisible());
    EXPECT_EQ(model.library(), ::Test::sampleLibrary());
    EXPECT_EQ(world.document(), ::Test::fileText(world.library / firstCopy));
    EXPECT_EQ(world.notice(),
        "“Pallisande Library 2026-03-09.json” is your library now. What was there before was kept as "
        "“Pallisande "
        "Library 2026-03-09 15-05-31.json”.");
    EXPECT_EQ(::Test::fileText(world.library / "Backups/Pallisande Library 2026-03-09 15-05-31.json"),
        LibraryStore::encode(before));
    EXPECT_EQ(model.undoText(), "Undo");
    EXPECT_EQ(model.invoices().numbering(),
        Strings {
            "INV-2026-001 and INV-2026-002 have a stored PDF but no record here. Settings › Library › Show "
            "Backups… takes over what the issue log knows." });

    WindowWorld::settleEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    world.openBackups();
    ASSERT_EQ(world.list()->topLevelItemCount(), 2);
    EXPECT_EQ(
        world.row(0), (Strings { "9 Mar 2026, 15:05", "Made on demand", "2", "3", "2", "INV-2026-002" }));
    EXPECT_EQ(world.note("unrecorded"),
        "INV-2026-001 and INV-2026-002 were issued, but your library has no record of them. The issue log "
        "still "
        "has them.");
    world.choose(1);
    EXPECT_EQ(world.comparison(), Strings { "Nothing: this copy holds what your library holds now." });
    world.button("takeOver")->click();
    WindowWorld::settleEvents();
    const std::string taken
        = "INV-2026-001 and INV-2026-002 were taken over from the issue log. Payments that "
          "were recorded for them aren’t in it.";
    EXPECT_EQ(world.note("unrecorded"), taken);
    EXPECT_EQ(world.notice(), taken);
    EXPECT_FALSE(world.button("takeOver")->isVisible());
    EXPECT_EQ(model.library().invoices.size(), 2u);
    EXPECT_EQ(model.job(id(11))->status, JobStatus::invoiced);
    EXPECT_EQ(model.undoText(), "Can’t Undo Taking Over");
    EXPECT_TRUE(model.invoices().numberingIsSound());
    EXPECT_EQ(world.document(), LibraryStore::encode(model.library())) << "saved before it is told";
    EXPECT_NE(world.comparison().front(), "Nothing: this copy holds what your library holds now.");
}

TEST(BackupsWindow, listsOtherVersionsAndCopiesThatCantBeRestored)
{
    BackupsWorld world;
    auto elsewhere = ::Test::sampleLibrary();
    elsewhere.clients.push_back(::Test::client(3));
    elsewhere.clients.back().name = "Added & typed on the laptop";
    const auto conflict = world.library / "Pallisande Library (conflicted copy 2026-03-09).json";
    ::Test::writeFile(conflict, LibraryStore::encode(elsewhere));
    fs::last_write_time(conflict, fs::file_time_type::clock::now() - std::chrono::hours(1));
    ::Test::writeFile(world.library / "Backups/Pallisande Library 2026-03-08.json", R"({"version": 9})");
    ::Test::writeFile(
        world.library / "Backups/Pallisande Library 2026-03-07.json", R"({"version": 1, "jobs)");
    ::Test::writeFile(world.library / "Backups/Pallisande Library 2026-03-06.json", "{}");
    world.open();
    EXPECT_EQ(world.notice(),
        "A sync program left “Pallisande Library (conflicted copy 2026-03-09).json” in the library folder. "
        "Compare "
        "it with your library; it is never read in its place.");
    emit world.window->findChild<Toast*>("toast")->acted(); // “Show”
    WindowWorld::settleEvents();
    ASSERT_TRUE(world.backups());
    ASSERT_EQ(world.list()->topLevelItemCount(), 5);
    EXPECT_EQ(world.row(0)[1], "From a sync program");
    const auto row = world.row(0);
    EXPECT_EQ(Strings(row.begin() + 2, row.end()), (Strings { "3", "3", "0", "none" }));
    fs::remove(world.library / "Backups/Pallisande Library 2026-03-06.json");
    const struct {
        int row;
        std::string sentence;
    } refused[] {
        { 2,
            "“Pallisande Library 2026-03-08.json” was saved by a newer version of Pallisande and can’t be "
            "restored by "
            "this one." },
        { 3, "“Pallisande Library 2026-03-07.json” is damaged and can’t be restored." },
        { 4, "“Pallisande Library 2026-03-06.json” isn’t there any more." },
    };
    for (const auto& [place, sentence] : refused) {
        world.choose(place);
        EXPECT_EQ(world.comparison(), Strings { sentence });
        EXPECT_FALSE(world.button("restore")->isEnabled());
        EXPECT_EQ(world.button("restore")->toolTip().toStdString(), sentence);
        EXPECT_EQ(world.row(place).back(), "can’t be read");
    }
    const auto present = world.model->library();
    world.model->restoreBackup(world.library / "Backups/Pallisande Library 2026-03-07.json");
    EXPECT_TRUE(world.problem().starts_with("“Pallisande Library 2026-03-07.json” couldn’t be restored: "));
    EXPECT_EQ(world.model->library(), present);

    world.choose(0);
    EXPECT_EQ(world.comparison()[1], "Only in this copy (1): Added & typed on the laptop");
    world.button("showInFolder")->click();
    EXPECT_EQ(world.openedFiles.back(), conflict);
    world.restoreChosen();
    EXPECT_EQ(world.model->library(), elsewhere);
    EXPECT_TRUE(fs::exists(conflict)) << "never removed by us";
    EXPECT_EQ(::Test::fileText(world.library / "Backups/Pallisande Library 2026-03-09 15-05-31.json"),
        LibraryStore::encode(present));
}

TEST(BackupsWindow, readOnlyLibrariesAreComparedAndMissingOnesRestored)
{
    BackupsWorld world;
    {
        auto holder = std::make_unique<Base::Folder>(Base::Folder::open(world.library));
        ASSERT_TRUE(holder->lock());
        world.open();
        ASSERT_EQ(world.model->readOnly(), ReadOnlyReason::inUse);
        world.openBackups();
        EXPECT_EQ(world.note("readOnlyNote"), "Your library is read-only, so nothing can be restored now.");
        world.choose(0);
        EXPECT_EQ(world.comparison().front(), "Clients");
        EXPECT_FALSE(world.button("restore")->isEnabled());
        EXPECT_EQ(plain(world.button("restore")->toolTip()),
            "Your library couldn’t be opened: another Pallisande is using it");
        world.window.reset();
        world.model.reset();
    }
    fs::remove(world.library / documentName);
    world.open();
    ASSERT_EQ(world.model->readOnly(), ReadOnlyReason::missingFile);
    world.find<QPushButton>("restoreBackup")->click();
    WindowWorld::settleEvents();
    EXPECT_EQ(world.note("readOnlyNote"), "");
    EXPECT_EQ(world.note("unrecorded"), "") << "nobody knows what the library lacks";
    world.choose(0);
    EXPECT_EQ(world.comparison(), (Strings { "In this copy", "2 clients", "3 jobs", "0 issued documents" }));
    world.button("restore")->click();
    EXPECT_EQ(plain(world.backups()->findChild<Label*>("question")->text()),
        "“Pallisande Library 2026-03-09.json” becomes your library, whose file is missing.");
    world.button("confirmRestore")->click();
    WindowWorld::settleEvents();
    EXPECT_EQ(world.model->library(), ::Test::sampleLibrary());
    EXPECT_TRUE(world.model->canEdit());
    EXPECT_EQ(world.notice(), "“Pallisande Library 2026-03-09.json” is your library now.");
    EXPECT_EQ(world.model->backups().size(), 1u);
    EXPECT_EQ(world.model->copies().unrecorded(), (Strings { "INV-2026-001", "INV-2026-002" }));
}

TEST(BackupsWindow, readsCopiesBesideTheWindowAndForgetsThemWithIt)
{
    BackupsWorld world;
    for (int day = 1; day <= 8; ++day)
        fs::copy(world.library / firstCopy,
            world.library / ("Backups/Pallisande Library 2026-02-0" + std::to_string(day) + ".json"));
    world.open();
    world.background.isHeld = true;
    world.openBackups();
    ASSERT_EQ(world.list()->topLevelItemCount(), 9);
    EXPECT_EQ(world.row(0).back(), "Reading…");
    // Of the copies that were chosen in passing, only the last is compared.
    for (int place = 0; place < 4; ++place)
        world.choose(place);
    EXPECT_EQ(world.comparison(), Strings { "Comparing…" });
    const auto waiting = world.background.held.size();
    EXPECT_EQ(waiting, 3u) << "one that is read, one that is compared, and the issue log";
    world.background.letGo();
    WindowWorld::settleEvents();
    EXPECT_EQ(world.row(8).back(), "none");
    EXPECT_EQ(world.comparison().front(), "Clients");
    // A copy made meanwhile joins the list, and the choice stays.
    world.model->backUpNow();
    EXPECT_EQ(world.list()->topLevelItemCount(), 10);
    EXPECT_EQ(world.list()->indexOfTopLevelItem(world.list()->currentItem()), 4);
    EXPECT_EQ(world.comparison().front(), "Clients");

    world.background.isHeld = true;
    world.choose(2);
    delete world.backups();
    world.background.letGo(); // Nobody is left to hear of it.
    EXPECT_TRUE(world.model->copies().all().empty());
}

TEST(BackupsWindow, fitsAndIsNamedInEverySize)
{
    BackupsWorld world;
    ::Test::writeFile(world.library / "Pallisande Library-LAPTOP.json", "{}");
    world.open();
    world.model->restoreBackup(world.library / firstCopy);
    world.openBackups();
    for (const auto appearance : { Appearance::light, Appearance::dark }) {
        themeController().setAppearance(appearance);
        for (const int size : { 100, 150, 200 }) {
            themeController().setTextSize(size);
            WindowWorld::settleEvents();
            for (int place = 0; place < world.list()->topLevelItemCount(); ++place) {
                world.choose(place);
                world.button("restore")->click();
                WindowWorld::settleEvents();
                EXPECT_EQ(clippedTexts(*world.backups()), Strings()) << size << ", row " << place;
                EXPECT_EQ(namelessWidgets(*world.backups()), Strings());
            }
        }
    }
    themeController().setTextSize(100);
    themeController().setAppearance(Appearance::system);
}
