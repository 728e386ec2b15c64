#include "Pallisande/Screens/CommandTexts.h"
#include "Pallisande/Screens/Text.h"
#include "Tests/Pallisande/Keyboard.h"
#include "Tests/Pallisande/SampleWindow.h"
#include "Tests/Pallisande/WidgetChecks.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QMenu>
#include <QMenuBar>
#include <QShortcut>

#include <map>
#include <set>

using namespace Pallisande;
using ::Test::Keyboard;
using ::Test::SampleWindow;
using ::Test::WindowWorld;

namespace {

// What an act is called wherever it is offered.
std::string nameOf(QString text)
{
    text.remove(QLatin1Char('&'));
    if (text.endsWith(QChar(0x2026)))
        text.chop(1);
    return text.toStdString();
}

struct Offer {
    std::string where, name;
    bool isEnabled;
    std::string explanation;
};

void offersOf(const QMenu& menu, const std::string& where, std::vector<Offer>& offers)
{
    for (auto* action : menu.actions()) {
        if (action->menu())
            offersOf(*action->menu(), where + " › " + nameOf(action->text()), offers);
        else if (!action->isSeparator() && action->isVisible())
            offers.push_back(
                { where, nameOf(action->text()), action->isEnabled(), plain(action->toolTip()) });
    }
}

// Acts of one record alone, whatever is selected: the status popup and the counts of a job, the invoices of a
// client.
bool isOfOneRecord(const QObject* offer, bool areSeveral)
{
    for (; offer; offer = offer->parent()) {
        const auto* const button = qobject_cast<const QAbstractButton*>(offer);
        if (button && (!button->isEnabled() || areSeveral) && button->objectName() == QLatin1String("status"))
            return true;
        if (offer->objectName() == QLatin1String("delivered")
            || (button && button->objectName() == QLatin1String("countDocuments")))
            return true;
    }
    return false;
}

// Everything that can be pressed now: in menus, on the page, in the toolbar.
std::vector<Offer> offersOf(WindowWorld& world)
{
    std::vector<Offer> offers;
    const bool areSeveral = world.window->commands().selected(world.model->section()).size() > 1;
    for (auto* menu : menusOf(*world.window)) {
        if (!isOfOneRecord(menu, areSeveral))
            offersOf(*menu, "menu " + nameOf(menu->title()), offers);
    }
    for (auto* button : world.window->findChildren<QAbstractButton*>()) {
        if (button->isVisible() && !button->text().isEmpty() && !isOfOneRecord(button, areSeveral))
            offers.push_back({ "button " + plain(button->objectName()), nameOf(button->text()),
                button->isEnabled(), plain(button->toolTip()) });
    }
    return offers;
}

// By the Menu key.
std::vector<Offer> offersBeside()
{
    std::vector<Offer> offers;
    Keyboard::press("Shift+F10");
    if (auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget())) {
        offersOf(*menu, "context menu", offers);
        menu->close();
    }
    return offers;
}

struct State {
    const char* name;
    std::function<void(SampleWindow&)> lead;
};

std::vector<State> states()
{
    using W = SampleWindow;
    const auto section = [](AppSection shown) {
        return [shown](W& world) {
            world.model->setSection(shown);
            world.model->select(shown, std::nullopt);
        };
    };
    const auto invoice
        = [](InvoiceStatus status) { return [status](W& world) { world.showInvoice(status); }; };
    const auto job = [](const char* title) { return [title](W& world) { world.showJob(title); }; };
    return {
        { "deadlines, nothing selected", section(AppSection::deadlines) },
        { "deadlines, a job",
            [](W& world) {
                world.model->select(AppSection::deadlines, world.job("Annual report, part 2"));
            } },
        { "jobs, nothing selected", section(AppSection::jobs) },
        { "an open job", job("Annual report, part 2") },
        { "an invoiced job", job("Spring catalogue") },
        { "several jobs",
            [](W& world) {
                world.showJob("Annual report, part 2");
                WindowWorld::settleEvents();
                world.window->page()->focusList();
                Keyboard::press("Ctrl+A");
            } },
        { "clients, nothing selected", section(AppSection::clients) },
        { "a client",
            [](W& world) {
                world.model->show(AppSection::clients, world.model->library().clients.front().id);
            } },
        { "invoices, nothing selected", section(AppSection::invoices) },
        { "a draft", invoice(InvoiceStatus::draft) },
        { "an open invoice", invoice(InvoiceStatus::open) },
        { "a paid invoice", invoice(InvoiceStatus::paid) },
        { "a credited invoice", invoice(InvoiceStatus::credited) },
        { "a credit note", invoice(InvoiceStatus::creditNote) },
        { "nothing at all",
            [](W& world) {
                world.window.reset();
                world.model.reset();
                std::filesystem::remove_all(world.library);
                std::filesystem::create_directory(world.library);
                world.open();
                world.model->setSection(AppSection::jobs);
            } },
        { "a library that is being opened",
            [](W& world) {
                world.window.reset();
                world.background.isHeld = true;
                world.open();
            } },
    };
}

// Gives how many of the offers are commands.
int expectOneRule(const WindowWorld& world, const std::vector<Offer>& offers)
{
    std::map<std::string, const QAction*> actions;
    for (const auto& [command, action] : world.window->commands().actions())
        actions[nameOf(action->text())] = action;
    int count = 0;
    for (const auto& [place, name, isEnabled, explanation] : offers) {
        const auto action = actions.find(name);
        if (action == actions.end())
            continue;
        ++count;
        EXPECT_EQ(isEnabled, action->second->isEnabled()) << name << " in " << place;
        if (!isEnabled) {
            EXPECT_NE(nameOf(qt(explanation)), name) << place << " doesn’t say why not.";
        }
    }
    return count;
}

void expectOneRule(WindowWorld& world)
{
    WindowWorld::settleEvents();
    if (auto* const page = world.window->page())
        page->focusList();
    Keyboard::settle();
    EXPECT_GT(expectOneRule(world, offersOf(world)), 60);
    expectOneRule(world, offersBeside());
}

} // namespace

// Wherever an act is offered, it can be done or it can't, and what can't says why.
TEST(OneRule, holdsInMenusToolbarPagesAndContextMenus)
{
    for (const auto& [name, lead] : states()) {
        SCOPED_TRACE(name);
        SampleWindow world;
        lead(world);
        expectOneRule(world);
    }
}

// The library is open in another program: whatever would change it is off, the rest is on.
TEST(OneRule, holdsWhereNothingCanBeChanged)
{
    using enum Command;
    const std::set<Command> reads { showLibraryFolder, openStoredPDF, showStoredPDF, copyNumber, copyTotal,
        openClient, emailClient, saveDraftPDF, savePDF, backUpNow, copyRows };
    for (const auto& [name, lead] : states()) {
        if (std::string_view(name).starts_with("nothing at all")
            || std::string_view(name).ends_with("opened"))
            continue;
        SCOPED_TRACE(name);
        SampleWindow other, world;
        world.window.reset();
        world.library = other.library;
        world.open();
        ASSERT_FALSE(world.model->canEdit());
        // The records are those of the other library.
        lead(world);
        expectOneRule(world);
        const auto before = ::Test::fileText(other.library / "Pallisande Library.json");
        for (const auto& [command, action] : world.window->commands().actions()) {
            const bool changes = (command >= newJob && command <= countDocuments)
                || (command >= statusQuote && command <= deleteDraft && !reads.contains(command)
                    && command != copyReminder)
                || command == undo || command == redo;
            if (changes) {
                EXPECT_FALSE(action->isEnabled()) << nameOf(action->text());
            }
        }
        EXPECT_EQ(::Test::fileText(other.library / "Pallisande Library.json"), before);
    }
}

// Commands, pages and the window's own keys.
TEST(OneRule, noKeyIsTakenTwiceAndEveryCommandHasOneOrALetter)
{
    for (const auto section :
        { AppSection::deadlines, AppSection::jobs, AppSection::clients, AppSection::invoices }) {
        SampleWindow world;
        world.model->setSection(section);
        WindowWorld::settleEvents();
        std::map<QKeySequence, std::string> keys;
        const auto take = [&](const QKeySequence& key, const std::string& name) {
            if (!key.isEmpty() && !keys.emplace(key, name).second)
                ADD_FAILURE() << plain(key.toString()) << ": " << name << " and " << keys[key];
        };
        for (auto* action : world.window->findChildren<QAction*>()) {
            for (const auto& key : action->shortcuts())
                take(key, nameOf(action->text()));
        }
        for (auto* shortcut : world.window->findChildren<QShortcut*>()) {
            if (shortcut->parent() == world.window.get() || shortcut->context() != Qt::WidgetShortcut)
                take(shortcut->key(), "a shortcut of " + plain(shortcut->parent()->objectName()));
        }
        for (auto* top : world.window->menuBar()->actions())
            EXPECT_FALSE(QKeySequence::mnemonic(top->text()).isEmpty()) << nameOf(top->text());
        for (const auto& [command, action] : world.window->commands().actions())
            EXPECT_FALSE(QKeySequence::mnemonic(action->text()).isEmpty()) << nameOf(action->text());
    }
}
