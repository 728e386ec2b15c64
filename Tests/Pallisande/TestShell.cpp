#include "Pallisande/Screens/CommandRules.h"
#include "Pallisande/Screens/CommandTexts.h"
#include "Pallisande/Shell/SearchField.h"
#include "Pallisande/Widgets/Banner.h"
#include "Pallisande/Widgets/EmptyPage.h"
#include "Pallisande/Widgets/LineField.h"
#include "Pallisande/Widgets/SheetDialog.h"
#include "Pallisande/Widgets/SidebarView.h"
#include "Pallisande/Widgets/Toast.h"
#include "Tests/Pallisande/WidgetChecks.h"
#include "Tests/Pallisande/WindowWorld.h"

#include <gtest/gtest.h>

#include <QListView>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QToolButton>

#include <set>

using namespace Pallisande;
using ::Test::id;
using ::Test::WindowWorld;

namespace {

std::string text(const QString& text) { return text.toStdString(); }

// Every action below a menu, with the name of the menu that holds it.
void gather(const QMenu& menu, std::vector<std::pair<QAction*, std::string>>& found)
{
    for (auto* action : menu.actions()) {
        if (action->menu())
            gather(*action->menu(), found);
        else if (!action->isSeparator())
            found.emplace_back(action, text(menu.title()));
    }
}

std::vector<std::string> repeatedMnemonics(const QMenu& menu)
{
    std::vector<std::string> repeated;
    std::map<QChar, QString> letters;
    for (auto* action : menu.actions()) {
        const auto at = action->text().indexOf(QLatin1Char('&'));
        if (action->menu()) {
            const auto below = repeatedMnemonics(*action->menu());
            repeated.insert(repeated.end(), below.begin(), below.end());
        }
        if (at < 0 || action->isSeparator())
            continue;
        auto& other = letters[action->text()[at + 1].toLower()];
        if (!other.isEmpty())
            repeated.push_back(text(other + " / " + action->text()));
        other = action->text();
    }
    return repeated;
}

// Open, delivered and invoiced jobs, two invoices of which one is a draft.
Library mixedLibrary()
{
    auto library = ::Test::sampleLibrary();
    auto open = ::Test::job(13, 1, 300);
    open.status = JobStatus::inProgress;
    open.deliveredAt.reset();
    open.deadline = ::Test::instant("2026-03-09T17:00:00.000Z");
    library.jobs.push_back(open);
    const auto first = ::Test::draft(library, { 11 }).id;
    ::Test::issue(library, first);
    ::Test::draft(library, { 21 });
    return library;
}

QPushButton* buttonNamed(QWidget& parent, const QString& name)
{
    for (auto* button : parent.findChildren<QPushButton*>()) {
        if (button->text() == name && button->isVisible())
            return button;
    }
    return nullptr;
}

} // namespace

TEST(Shell, everyCommandStandsInAMenuAndNoTwoShareAKey)
{
    WindowWorld world;
    auto& window = world.open(mixedLibrary());
    std::vector<std::pair<QAction*, std::string>> inMenus;
    std::set<QString> bar;
    for (auto* top : window.menuBar()->actions()) {
        EXPECT_TRUE(bar.insert(top->text().mid(top->text().indexOf('&') + 1, 1).toLower()).second)
            << text(top->text());
        gather(*top->menu(), inMenus);
        EXPECT_EQ(repeatedMnemonics(*top->menu()), std::vector<std::string>()) << text(top->text());
    }
    std::map<QKeySequence, std::string> keys;
    EXPECT_EQ(commandTexts().size(), window.commands().actions().size());
    for (const auto& [command, action] : window.commands().actions()) {
        const bool isThere = std::any_of(inMenus.begin(), inMenus.end(),
            [&, shown = action](const auto& entry) { return entry.first == shown; });
        EXPECT_TRUE(isThere) << text(action->text());
        for (const auto& key : action->shortcuts()) {
            EXPECT_FALSE(key.isEmpty()) << text(action->text());
            EXPECT_TRUE(keys.emplace(key, text(action->text())).second)
                << text(action->text()) << " and " << keys[key] << ": " << text(key.toString());
            EXPECT_FALSE(text(key.toString()).starts_with("Ctrl+Alt+")); // AltGr types with it.
        }
    }
}

TEST(Shell, oneRuleSaysWhatCanBeDoneAndWhyNot)
{
    WindowWorld world;
    world.open(mixedLibrary());
    auto& model = *world.model;
    const auto invoiced = id(11), delivered = id(12), onDraft = id(21), open = id(13);
    const auto draftID = model.library().invoices.back().id, issuedID = model.library().invoices.front().id;
    struct {
        AppSection section;
        std::optional<Base::Uuid> selected;
        Command command;
        std::string why; // Empty: it can be done.
    } const cases[] {
        { AppSection::jobs, std::nullopt, Command::markDelivered, "Select a job first." },
        { AppSection::jobs, open, Command::markDelivered, "" },
        { AppSection::deadlines, open, Command::markDelivered, "" },
        { AppSection::clients, id(1), Command::markDelivered, "Select a job first." },
        { AppSection::jobs, delivered, Command::markDelivered, "This job is delivered already." },
        { AppSection::jobs, open, Command::statusPaid, "Reached through invoices and payments." },
        { AppSection::jobs, invoiced, Command::importAnalysis, "This job is on INV-2026-001." },
        { AppSection::jobs, onDraft, Command::deleteJob, "This job is on a draft invoice." },
        { AppSection::jobs, delivered, Command::makeInvoice, "" },
        { AppSection::jobs, invoiced, Command::duplicateJob, "" },
        { AppSection::invoices, draftID, Command::issue, "" },
        { AppSection::invoices, draftID, Command::recordPayment, "Payments go on issued invoices." },
        { AppSection::invoices, draftID, Command::copyNumber,
            "A draft has no number and no stored PDF yet." },
        { AppSection::invoices, issuedID, Command::issue,
            "INV-2026-001 is issued and can’t be changed. Make a credit note to correct it." },
        { AppSection::invoices, issuedID, Command::recordPayment, "" },
        { AppSection::invoices, issuedID, Command::makeCreditNote, "" },
        { AppSection::clients, id(1), Command::archiveClient, "" },
        { AppSection::deadlines, open, Command::find, "The deadlines have no search." },
        { AppSection::jobs, open, Command::redo, "There is nothing to redo." },
    };
    for (const auto& [section, selected, command, why] : cases) {
        model.setSection(section);
        model.select(section, selected);
        WindowWorld::settleEvents();
        SCOPED_TRACE(text(world.action(command)->text()));
        EXPECT_EQ(whyNot(model, command, world.window->commands().selected(section)).value_or(""), why);
        EXPECT_EQ(world.action(command)->isEnabled(), why.empty());
        const auto tip = text(world.action(command)->toolTip());
        EXPECT_EQ(why.empty() ? "" : tip, why);
    }
}

TEST(Shell, keysWalkSectionsAndEveryPane)
{
    WindowWorld world;
    auto& window = world.open(mixedLibrary());
    auto& model = *world.model;
    world.keys("Ctrl+3");
    EXPECT_EQ(model.section(), AppSection::clients);
    world.keys("Ctrl+PgDown");
    EXPECT_EQ(model.section(), AppSection::invoices);
    world.keys("Alt+Left");
    EXPECT_EQ(model.section(), AppSection::clients);
    world.keys("Ctrl+2");
    model.select(AppSection::jobs, id(12));
    model.refuse("Something went wrong.");
    WindowWorld::settleEvents();
    std::vector<QWidget*> panes = window.page()->panes();
    panes.insert(panes.end(), { world.find("sidebar"), world.find("toolbar"), world.find("banner") });
    std::set<QWidget*> reached;
    for (std::size_t step = 0; step < panes.size() + 1; ++step) {
        world.keys("F6");
        for (auto* pane : panes) {
            if (pane && (pane == window.focusWidget() || pane->isAncestorOf(window.focusWidget())))
                reached.insert(pane);
        }
    }
    EXPECT_EQ(reached.size(), panes.size());
    const auto* const last = window.focusWidget();
    world.keys("F6");
    world.keys("Shift+F6");
    EXPECT_EQ(window.focusWidget(), last);
}

TEST(Shell, searchFindsAMomentAfterTheLastKey)
{
    WindowWorld world;
    auto& window = world.open(mixedLibrary());
    world.keys("Ctrl+2");
    world.keys("Ctrl+F");
    auto* search = world.find<SearchField>("search");
    ASSERT_EQ(window.focusWidget(), search);
    auto* list = window.page()->findChild<QListView*>("records");
    QTest::keyClicks(search, "job 13");
    EXPECT_GT(list->model()->rowCount(), 1);
    world.timers.advance(std::chrono::milliseconds(120));
    WindowWorld::settleEvents();
    EXPECT_EQ(list->model()->rowCount(), 1);
    QTest::keyClick(search, Qt::Key_Down);
    EXPECT_EQ(world.model->selection(AppSection::jobs), id(13));
    world.keys("Ctrl+F");
    QTest::keyClicks(search, "nowhere"); // Over what was selected.
    world.keys("Ctrl+3");
    EXPECT_EQ(world.model->search(AppSection::jobs), "nowhere") << "typed before the section changed";
    EXPECT_EQ(world.model->search(AppSection::clients), "");
    world.keys("Ctrl+2");
    EXPECT_EQ(text(search->text()), "nowhere");
    QTest::keyClick(search, Qt::Key_Escape);
    EXPECT_EQ(world.model->search(AppSection::jobs), "");
}

TEST(Shell, bannerAndToastDoWhatTheirButtonsSay)
{
    WindowWorld world;
    world.open();
    auto* banner = world.find<Banner>("banner");
    EXPECT_FALSE(banner->isVisible());
    world.action(Command::newJob)->trigger();
    EXPECT_EQ(text(banner->sentence()),
        "Add a client first: a job belongs to a client, whose rates and weights price it.");
    ASSERT_TRUE(buttonNamed(*banner, "New Client"));
    buttonNamed(*banner, "New Client")->click();
    EXPECT_EQ(world.model->library().clients.size(), 1U);
    EXPECT_EQ(world.model->section(), AppSection::clients);
    EXPECT_FALSE(banner->isVisible());

    world.action(Command::deleteClient)->trigger();
    auto* toast = world.find<Toast>("toast");
    EXPECT_EQ(text(toast->sentence()), "“New client” was deleted.");
    ASSERT_TRUE(buttonNamed(*toast, "Undo"));
    buttonNamed(*toast, "Undo")->click();
    EXPECT_EQ(world.model->library().clients.size(), 1U);
    EXPECT_FALSE(toast->isVisible());

    // Undone by the menu, the toast's Undo would undo something else.
    world.action(Command::deleteClient)->trigger();
    world.action(Command::undo)->trigger();
    EXPECT_FALSE(toast->isVisible());
}

TEST(Shell, sheetsAndTheModelStayInStep)
{
    WindowWorld world;
    auto& window = world.open(mixedLibrary());
    world.action(Command::newJob)->trigger();
    ASSERT_TRUE(window.sheet());
    QPointer<SheetDialog> first = window.sheet();
    QTest::keyClick(first.data(), Qt::Key_Escape);
    EXPECT_FALSE(world.model->sheet());
    EXPECT_FALSE(window.sheet());
    world.model->jobs().openNewJob("Leaflet");
    ASSERT_TRUE(window.sheet());
    world.model->closeSheet();
    EXPECT_FALSE(window.sheet());
    world.model->openSheet(ManualSheet { id(13), std::nullopt });
    EXPECT_TRUE(window.sheet());
    world.model->closeSheet();
}

TEST(Shell, whatWasTypedIsSavedAtClosing)
{
    WindowWorld world;
    auto& window = world.open(mixedLibrary());
    world.keys("Ctrl+3");
    world.model->select(AppSection::clients, id(1));
    WindowWorld::settleEvents();
    TextField* name = nullptr;
    for (auto* field : window.page()->findChildren<TextField*>()) {
        if (field->value() == "Nordlicht Verlag")
            name = field;
    }
    ASSERT_TRUE(name);
    name->setFocus();
    name->setText("Südlicht Verlag");
    world.keys("Ctrl+2"); // Another section: committed first.
    EXPECT_EQ(world.model->client(id(1))->name, "Südlicht Verlag");
    world.keys("Ctrl+3");
    name->setFocus();
    name->setText("Ostlicht Verlag");
    EXPECT_TRUE(window.close());
    EXPECT_NE(world.document().find("Ostlicht Verlag"), std::string::npos);
}

TEST(Shell, aFailedSaveKeepsTheWindow)
{
    WindowWorld world;
    auto& window = world.open(mixedLibrary());
    const auto elsewhere = world.root / "Unplugged";
    std::filesystem::rename(world.library, elsewhere);
    world.model->jobs().edit(id(13), "Change Title", [](Job& job) { job.title = "Kept"; });
    EXPECT_FALSE(window.close());
    EXPECT_TRUE(window.isVisible());
    EXPECT_TRUE(text(world.find<Banner>("banner")->sentence())
                    .starts_with("Pallisande couldn’t save your library: "));
    EXPECT_EQ(text(world.find<QToolButton>("saveState")->text()), "Not saved");
    std::filesystem::rename(elsewhere, world.library);
    ASSERT_TRUE(buttonNamed(*world.find("banner"), "Try Again"));
    buttonNamed(*world.find("banner"), "Try Again")->click();
    EXPECT_FALSE(world.find("banner")->isVisible());
    EXPECT_EQ(text(world.find<QToolButton>("saveState")->text()), "Saved");
    EXPECT_TRUE(window.close());
}

TEST(Shell, pagesOfTheStartSayWhatHappened)
{
    WindowWorld world;
    world.background.isHeld = true;
    auto& window = world.open(mixedLibrary());
    ASSERT_TRUE(world.find("libraryPage")->isVisible());
    EXPECT_FALSE(window.page());
    EXPECT_FALSE(world.action(Command::newJob)->isEnabled());
    EXPECT_EQ(text(world.action(Command::newJob)->toolTip()), "The library is still being opened.");
    world.background.letGo();
    WindowWorld::settleEvents();
    EXPECT_FALSE(world.find("libraryPage")->isVisible());
    EXPECT_TRUE(window.page());

    world.window->close();
    std::filesystem::remove(
        world.library / LibraryStore::documentName); // What else was there shows it was one.
    world.open();
    ASSERT_TRUE(world.find("libraryPage")->isVisible());
    EXPECT_TRUE(world.find("startNewLibrary")->isVisible());
    EXPECT_TRUE(world.find("chooseFolder")->isVisible());
    world.find<QPushButton>("startNewLibrary")->click();
    WindowWorld::settleEvents();
    EXPECT_FALSE(world.find("libraryPage")->isVisible());
    EXPECT_TRUE(world.model->canEdit());
}

TEST(Shell, theViewComesBackAtTheNextStart)
{
    WindowWorld world;
    world.open(mixedLibrary());
    world.keys("Ctrl+2");
    world.model->select(AppSection::jobs, id(12));
    world.model->jobs().setSort(JobSort::price);
    world.model->jobs().setFilter(JobFilter::delivered);
    world.model->invoices().setYearFilter({ YearFilter::Kind::thisYear, 0 });
    world.action(Command::largerText)->trigger();
    world.action(Command::sidebar)->trigger();
    world.window->resize(1000, 700);
    EXPECT_TRUE(world.window->close());
    world.open();
    EXPECT_EQ(world.model->section(), AppSection::jobs);
    EXPECT_EQ(world.model->selection(AppSection::jobs), id(12));
    EXPECT_EQ(world.model->jobs().sort(), JobSort::price);
    EXPECT_EQ(world.model->jobs().filter(), JobFilter::delivered);
    EXPECT_EQ(world.model->invoices().yearFilter().kind, YearFilter::Kind::thisYear);
    EXPECT_FALSE(world.find("sidebar")->isVisible());
    EXPECT_EQ(world.window->view().text("textSize"), "115");
    world.action(Command::actualSize)->trigger();
}

TEST(Shell, filesFromOutsideAskWhatForThem)
{
    WindowWorld world;
    auto& window = world.open(mixedLibrary());
    world.model->setSection(AppSection::jobs);
    world.model->select(AppSection::jobs, id(13));
    struct {
        std::vector<std::filesystem::path> files;
        std::vector<std::string> choices;
    } const cases[] {
        { { "/x/report.xml" }, { "Attach to “Job 13” as an Analysis", "New Job with This Analysis" } },
        { { "/x/manual.docx", "/x/deck.pptx" },
            { "Count for a New Job", "Count for “Job 13”", "Count as the Translation of “Job 13”" } },
        { { world.library },
            { "Open This Library", "Count for a New Job", "Count for “Job 13”",
                "Count as the Translation of “Job 13”" } },
    };
    for (const auto& [files, choices] : cases) {
        window.takeOver(files, {});
        auto* dialog = window.findChild<QDialog*>("choice");
        ASSERT_TRUE(dialog);
        std::vector<std::string> found;
        for (auto* button : dialog->findChildren<QPushButton*>())
            found.push_back(text(button->text()));
        ASSERT_EQ(found.back(), "Cancel");
        found.pop_back();
        EXPECT_EQ(found, choices);
        delete dialog;
    }
}

TEST(Shell, narrowWindowsAndLargeTextClipNothing)
{
    WindowWorld world;
    auto& window = world.open(mixedLibrary());
    world.model->refuse(
        "Pallisande couldn’t save your library: the disk is full.", Problem::Action::tryAgain);
    for (const int size : { 100, 150, 200 }) {
        themeController().setTextSize(size);
        for (const auto section :
            { AppSection::deadlines, AppSection::jobs, AppSection::clients, AppSection::invoices }) {
            world.model->setSection(section);
            window.resize(MainWindow::leastWidth, MainWindow::leastHeight);
            WindowWorld::settleEvents();
            SCOPED_TRACE(
                "text " + std::to_string(size) + ", section " + std::to_string(static_cast<int>(section)));
            EXPECT_TRUE(world.find<SidebarView>("sidebar")->isNarrow());
            EXPECT_EQ(clippedTexts(*world.find("toolbar")), std::vector<std::string>());
            EXPECT_EQ(clippedTexts(*world.find("banner")), std::vector<std::string>());
            EXPECT_EQ(namelessWidgets(window), std::vector<std::string>());
            EXPECT_LE(window.width(), MainWindow::leastWidth);
        }
    }
    themeController().setTextSize(100);
}
