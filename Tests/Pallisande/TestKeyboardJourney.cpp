#include "Tests/Pallisande/Keyboard.h"
#include "Tests/Pallisande/SampleWindow.h"

#include <gtest/gtest.h>

#include <QPushButton>
#include <QRadioButton>
#include <QTimer>

#include <algorithm>
#include <set>

using namespace Pallisande;
using ::Test::Keyboard;
using ::Test::SampleWindow;
using ::Test::WindowWorld;

namespace {

std::string described(const QWidget* widget)
{
    const auto* const button = qobject_cast<const QAbstractButton*>(widget);
    return widget ? std::string(widget->metaObject()->className()) + " " + widget->objectName().toStdString()
            + (button ? " “" + button->text().toStdString() + "”" : "")
                  : "nothing";
}

std::string described(const std::vector<QWidget*>& widgets)
{
    std::string all;
    for (const auto* widget : widgets)
        all += described(widget) + "\n";
    return all;
}

// What Tab must come by. Of radio buttons that exclude each other, the arrows reach those that aren't chosen.
std::set<QWidget*> tabStops(QWidget& root)
{
    std::set<QWidget*> stops;
    for (auto* widget : root.findChildren<QWidget*>()) {
        const auto* const radio = qobject_cast<QRadioButton*>(widget);
        if (widget->isVisible() && widget->isEnabled() && (widget->focusPolicy() & Qt::TabFocus)
            && widget->window() == root.window() && !widget->focusProxy() && (!radio || radio->isChecked()))
            stops.insert(widget);
    }
    return stops;
}

// Where a key leads from here until it is back. A text with links keeps the focus for each of them.
std::vector<QWidget*> walk(const char* key)
{
    std::vector<QWidget*> visited { Keyboard::focus() };
    for (int stays = 0; stays < 5;) {
        Keyboard::press(key);
        auto* const now = Keyboard::focus();
        stays = now == visited.back() ? stays + 1 : 0;
        if (stays == 0 && std::count(visited.begin(), visited.end(), now) > 0)
            return visited;
        if (stays == 0)
            visited.push_back(now);
    }
    ADD_FAILURE() << "It is stuck in " << described(visited.back());
    return visited;
}

} // namespace

// The first client, a job for it, its counts, and its invoice until money arrives: no mouse, and no call that
// a hand couldn't make.
TEST(KeyboardJourney, fromTheFirstClientToTheFirstPayment)
{
    WindowWorld world;
    world.now = ::Test::instant("2026-03-09T09:00:00.000Z");
    auto& window = world.open();
    const auto& library = world.model->library();

    Keyboard::press("Ctrl+Shift+N");
    ASSERT_EQ(Keyboard::name(), "clientName");
    Keyboard::type("Nordwind GmbH"); // Over “New client”, which is selected.
    ASSERT_TRUE(Keyboard::tabTo("clientRate"));
    Keyboard::enter("0.12");
    ASSERT_TRUE(Keyboard::tabTo("paymentDays"));
    Keyboard::enter("30");
    ASSERT_EQ(library.clients.size(), 1U);
    EXPECT_EQ(library.clients[0].name, "Nordwind GmbH");
    EXPECT_EQ(library.clients[0].defaultRate, ::Test::decimal("0.12"));

    Keyboard::press("Ctrl+N");
    ASSERT_TRUE(window.sheet());
    ASSERT_EQ(Keyboard::name(), "jobTitle");
    Keyboard::type("Annual report");
    ASSERT_TRUE(Keyboard::tabTo("jobSource"));
    Keyboard::type("de");
    ASSERT_TRUE(Keyboard::tabTo("jobTarget"));
    Keyboard::type("en");
    ASSERT_TRUE(Keyboard::tabTo("deadlineDay"));
    Keyboard::type("12 March 2026");
    Keyboard::press("Return");
    EXPECT_FALSE(window.sheet());
    ASSERT_EQ(library.jobs.size(), 1U);
    EXPECT_EQ(library.jobs[0].title, "Annual report");
    EXPECT_EQ(library.jobs[0].pair, (LanguagePair { "de", "en" }));
    EXPECT_EQ(library.jobs[0].deadline, ::Test::instant("2026-03-12T16:00:00.000Z"));

    ASSERT_EQ(Keyboard::name(), "importAnalysis"); // What comes next.
    const std::vector<SampleFile> files { { "Terms.docx", { 0, 0, 0, 100, 0, 0, 0, 0, 900 } } };
    ::Test::writeFile(world.root / "Terms.csv", sampleMemoQReport(files));
    world.answer = { world.root / "Terms.csv" };
    Keyboard::press("Return");
    ASSERT_TRUE(window.sheet());
    Keyboard::press("Return"); // Attach to Job.
    EXPECT_FALSE(window.sheet());
    ASSERT_EQ(library.jobs[0].analyses.size(), 1U);

    Keyboard::press("Ctrl+Shift+I");
    ASSERT_EQ(Keyboard::name(), "countWords0");
    Keyboard::press("Down"); // Context matches.
    Keyboard::type("250");
    Keyboard::press("Return"); // Down the column; nothing is attached yet.
    Keyboard::type("50");
    EXPECT_TRUE(window.sheet());
    Keyboard::press("Ctrl+Return");
    EXPECT_FALSE(window.sheet());
    ASSERT_EQ(library.jobs[0].analyses.size(), 2U);
    EXPECT_EQ(library.jobs[0].analyses[1].totals().words,
        (BandMap<std::int64_t> { { MatchBand::context, 250 }, { MatchBand::repetitions, 50 } }));

    ASSERT_TRUE(Keyboard::tabTo("status"));
    QTimer::singleShot(0, [] { // While the menu is open, nothing goes on here.
        Keyboard::press("Down");
        Keyboard::press("Return");
    });
    Keyboard::press("Space");
    EXPECT_EQ(library.jobs[0].status, JobStatus::inProgress);
    Keyboard::press("Ctrl+Shift+D");
    EXPECT_EQ(library.jobs[0].status, JobStatus::delivered);
    Keyboard::press("Ctrl+Shift+M");
    EXPECT_EQ(world.model->section(), AppSection::invoices);
    ASSERT_EQ(library.invoices.size(), 1U);
    ASSERT_TRUE(Keyboard::tabTo("lineTitle"));
    Keyboard::enter("Annual report, translation");
    ASSERT_TRUE(Keyboard::tabTo("lineQuantity"));
    Keyboard::enter("1000");
    ASSERT_TRUE(Keyboard::tabTo("linePrice"));
    Keyboard::enter("0.15");
    const auto& line = library.invoices[0].lines.front();
    EXPECT_EQ(line.title, "Annual report, translation");
    EXPECT_EQ(line.amount, 150);

    Keyboard::press("Ctrl+Return");
    ASSERT_TRUE(window.sheet());
    ASSERT_TRUE(::Test::waitUntil([&] {
        world.timers.advance(std::chrono::milliseconds(300));
        return world.find<QPushButton>("issue")->isEnabled();
    }));
    Keyboard::press("Return"); // In a field, never issues.
    Keyboard::press("Ctrl+Return");
    EXPECT_FALSE(library.invoices[0].isIssued());
    ASSERT_TRUE(Keyboard::tabTo("issue"));
    Keyboard::press("Space");
    ASSERT_TRUE(library.invoices[0].isIssued()) << world.problem();
    EXPECT_FALSE(window.sheet());
    EXPECT_TRUE(std::filesystem::exists(world.library / "Invoices" / "INV-2026-001.pdf"));

    Keyboard::press("Ctrl+R");
    ASSERT_TRUE(window.sheet());
    ASSERT_TRUE(Keyboard::tabTo("paymentSum"));
    Keyboard::enter("100"); // Return records it.
    EXPECT_FALSE(window.sheet());
    ASSERT_EQ(library.invoices[0].payments.size(), 1U);
    EXPECT_EQ(world.model->invoices().status(library.invoices[0]), InvoiceStatus::partlyPaid);
    Keyboard::press("Ctrl+Q");
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(LibraryStore(world.library).load(::Test::moment()).library, library);
}

// Every pane on show is met once, and the next round is the same one; backwards it is the other way about.
TEST(KeyboardJourney, theF6KeyMeetsEveryPaneOnce)
{
    SampleWindow world;
    auto& window = *world.window;
    world.model->select(AppSection::clients, world.model->library().clients.front().id);
    world.model->select(AppSection::invoices, world.invoice(InvoiceStatus::draft));
    world.model->select(AppSection::jobs, world.job("Annual report, part 2"));
    Keyboard::settle();
    world.action(Command::inspector)->trigger();
    world.model->refuse("Something went wrong.", Problem::Action::tryAgain);
    for (const auto section :
        { AppSection::deadlines, AppSection::jobs, AppSection::clients, AppSection::invoices }) {
        SCOPED_TRACE(static_cast<int>(section));
        world.model->setSection(section);
        Keyboard::settle();
        std::vector<QWidget*> panes { world.find("sidebar"), world.find("toolbar"), world.find("banner") };
        const auto more = window.page()->panes();
        panes.insert(panes.end(), more.begin(), more.end());
        const auto paneNow = [&]() -> QWidget* {
            for (auto* pane : panes) {
                if (pane == Keyboard::focus() || pane->isAncestorOf(Keyboard::focus()))
                    return pane;
            }
            return nullptr;
        };
        const auto round = [&](const char* key) {
            std::vector<QWidget*> met;
            for (std::size_t step = 0; step < panes.size(); ++step) {
                Keyboard::press(key);
                met.push_back(paneNow());
            }
            return met;
        };
        while (paneNow() != panes.back())
            Keyboard::press("F6");
        EXPECT_EQ(described(round("F6")), described(panes));
        EXPECT_EQ(described(round("F6")), described(panes));
        Keyboard::press("F6");
        EXPECT_EQ(described(round("Shift+F6")), described({ panes.rbegin(), panes.rend() }));
    }
}

// On every page, in every sheet and window.
TEST(KeyboardJourney, tabComesByEveryFieldOnceAndBackAgain)
{
    for (const auto& place : ::Test::places()) {
        SCOPED_TRACE(place.name);
        SampleWindow world;
        auto* const subject = place.open(world);
        ASSERT_TRUE(subject);
        subject->activateWindow();
        Keyboard::settle();
        auto stops = tabStops(*subject);
        ASSERT_FALSE(stops.empty());
        if (stops.size() == 1)
            continue; // A button alone.
        if (!stops.contains(Keyboard::focus()))
            (*stops.begin())->setFocus(Qt::TabFocusReason);
        auto there = walk("Tab");
        stops = tabStops(*subject); // Where a field was committed, a button may have come.
        std::vector<QWidget*> missed;
        for (auto* stop : stops) {
            if (std::find(there.begin(), there.end(), stop) == there.end())
                missed.push_back(stop);
        }
        EXPECT_EQ(described(missed), "");
        EXPECT_EQ(described(Keyboard::focus()), described(there.front())) << "It goes round.";
        there.front()->setFocus(Qt::BacktabFocusReason);
        auto back = walk("Shift+Tab");
        std::reverse(back.begin() + 1, back.end());
        EXPECT_EQ(described(back), described(there));
    }
}
