#include "Pallisande/Screens/CommandTexts.h"
#include "Pallisande/Widgets/BandBar.h"
#include "Tests/Pallisande/Keyboard.h"
#include "Tests/Pallisande/SampleWindow.h"
#include "Tests/Pallisande/WidgetChecks.h"

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QHeaderView>
#include <QLabel>
#include <QListView>
#include <QMenu>
#include <QMenuBar>
#include <QPushButton>
#include <QTableView>

#include <map>
#include <set>

using namespace Pallisande;
using ::Test::id;
using ::Test::Keyboard;
using ::Test::SampleWindow;
using ::Test::WindowWorld;

namespace {

const std::vector<std::string> none;

std::string bare(QString text) { return text.remove(QLatin1Char('&')).toStdString(); }

// Amounts keep their currency on their line.
std::string usualSpaces(QString text)
{
    return text.replace(QChar(QChar::Nbsp), QChar(QChar::Space)).toStdString();
}

struct UsualLook {
    ~UsualLook()
    {
        themeController().setAppearance(Appearance::system);
        themeController().setTextSize(100);
    }
};

// Letters that two texts claim with Alt.
std::vector<std::string> repeatedLetters(const std::vector<QString>& texts)
{
    std::vector<std::string> repeated;
    std::map<QChar, QString> letters;
    for (const auto& text : texts) {
        const auto key = QKeySequence::mnemonic(text);
        if (key.isEmpty())
            continue;
        auto& other = letters[QChar(static_cast<ushort>(key[0].key()))];
        if (!other.isEmpty())
            repeated.push_back((other + " / " + text).toStdString());
        other = text;
    }
    return repeated;
}

// The rows of a list or table that a screen reader finds nothing to say about.
std::vector<std::string> muteRows(QWidget& root)
{
    std::vector<std::string> mute;
    for (auto* view : root.findChildren<QAbstractItemView*>()) {
        if (!view->isVisibleTo(&root) || !view->model() || qobject_cast<QHeaderView*>(view))
            continue;
        auto* const interface = QAccessible::queryAccessibleInterface(view);
        const int rows = view->model()->rowCount();
        for (int row = 0; row < rows; ++row) {
            auto index = view->model()->index(row, 0);
            if (index.data().toString().isEmpty() && view->model()->columnCount() > 1)
                index = index.siblingAtColumn(1); // Behind a check box, for instance.
            const auto spoken = index.data(Qt::AccessibleTextRole).toString();
            auto* const table = interface ? interface->tableInterface() : nullptr;
            const auto* const cell = table ? table->cellAt(row, index.column()) : nullptr;
            const auto heard = cell ? cell->text(QAccessible::Name) : spoken; // Cards aren’t in a table.
            if (heard.isEmpty() || (!spoken.isEmpty() && heard != spoken))
                mute.push_back(view->objectName().toStdString() + " " + std::to_string(row) + ": "
                    + spoken.toStdString() + " / " + heard.toStdString());
        }
    }
    return mute;
}

} // namespace

TEST(WholeWindow, fitsAndIsNamedInEverySizeAndLook)
{
    const UsualLook usual;
    const QSize least(MainWindow::leastWidth, MainWindow::leastHeight);
    const QSize roomy(MainWindow::usualWidth, MainWindow::usualHeight);
    for (const auto& place : ::Test::places()) {
        for (const auto& [size, room] :
            { std::pair(100, least), std::pair(150, roomy), std::pair(200, roomy) }) {
            SCOPED_TRACE(std::string(place.name) + ", text " + std::to_string(size));
            themeController().setAppearance(size == 150 ? Appearance::dark : Appearance::light);
            themeController().setTextSize(size);
            SampleWindow world;
            world.window->resize(room);
            auto* const subject = place.open(world);
            ASSERT_TRUE(subject);
            ::Test::waitUntil( // Layouts settle in several steps.
                [&] { return clippedTexts(*subject).empty() && cutOffWidgets(*subject).empty(); },
                std::chrono::milliseconds(400));
            EXPECT_EQ(world.window->size(), room);
            EXPECT_EQ(clippedTexts(*subject), none);
            EXPECT_EQ(cutOffWidgets(*subject), none);
            EXPECT_EQ(namelessWidgets(*subject), none);
            EXPECT_EQ(muteRows(*subject), none);
            if (qobject_cast<SheetDialog*>(subject)) {
                EXPECT_LE(subject->height(), room.height());
            }
        }
    }
}

TEST(WholeWindow, noTwoLettersOfAMenuOrAPageAreTheSame)
{
    for (const auto& place : ::Test::places()) {
        SCOPED_TRACE(place.name);
        SampleWindow world;
        auto* const subject = place.open(world);
        ASSERT_TRUE(subject);
        for (auto* menu : menusOf(*world.window)) {
            std::vector<QString> texts;
            for (auto* action : menu->actions())
                texts.push_back(action->isVisible() && !action->isSeparator() ? action->text() : QString());
            EXPECT_EQ(repeatedLetters(texts), none) << bare(menu->title());
        }
        std::vector<QString> texts;
        if (subject == world.window.get()) {
            for (auto* action : world.window->menuBar()->actions())
                texts.push_back(action->text());
        }
        for (auto* button : subject->findChildren<QAbstractButton*>())
            texts.push_back(button->isVisible() ? button->text() : QString());
        for (auto* label : subject->findChildren<QLabel*>())
            texts.push_back(label->isVisible() && label->buddy() ? label->text() : QString());
        EXPECT_EQ(repeatedLetters(texts), none);
    }
}

// One sentence a row, as a screen reader says it.
TEST(WholeWindow, rowsAreSentences)
{
    auto library = ::Test::sampleLibrary();
    library.clients[0].name = "Nordwind GmbH";
    library.jobs[0].title = "Annual report, part 2";
    library.jobs[0].status = JobStatus::inProgress;
    library.jobs[0].deliveredAt.reset();
    library.jobs[0].deadline = ::Test::instant("2026-03-06T16:00:00.000Z");
    library.jobs[1].title.clear();
    library.jobs[2].deliveredAt.reset();
    library.jobs[2].status = JobStatus::quote;
    ::Test::issued(library, { 12 }, ::Test::momentOn("2026-02-18"));
    WindowWorld world;
    auto& window = world.open(library);
    world.model->jobs().setFilter(JobFilter::all);
    const struct {
        AppSection section;
        std::vector<std::string> rows;
    } cases[] {
        { AppSection::deadlines,
            { "Annual report, part 2, Nordwind GmbH, German to English, in progress, due Fri 6 Mar, 17:00, "
              "3 days late, 100.00 EUR before tax",
                "Job 21, Harbor Books, German to English, quote, no deadline, 200.00 USD before tax" } },
        { AppSection::jobs,
            { "Annual report, part 2, Nordwind GmbH, German to English, in progress, due Fri 6 Mar, 17:00, "
              "3 days late, 100.00 EUR before tax",
                "Untitled job, Nordwind GmbH, German to English, invoiced, on INV-2026-001, 50.00 EUR before "
                "tax",
                "Job 21, Harbor Books, German to English, quote, 200.00 USD before tax" } },
        { AppSection::clients,
            { "Harbor Books, 1 open job, 0.10 USD per word",
                "Nordwind GmbH, 1 open job, 0.10 EUR per word" } },
        { AppSection::invoices, { "INV-2026-001, Nordwind GmbH, 59.50 EUR, overdue by 5 days" } },
    };
    for (const auto& [section, rows] : cases) {
        world.model->setSection(section);
        WindowWorld::settleEvents();
        auto* const list = qobject_cast<QAbstractItemView*>(window.page()->panes().front());
        ASSERT_TRUE(list);
        std::vector<std::string> spoken;
        for (int row = 0; row < list->model()->rowCount(); ++row)
            spoken.push_back(
                usualSpaces(list->model()->index(row, 0).data(Qt::AccessibleTextRole).toString()));
        EXPECT_EQ(spoken, rows);
    }
}
