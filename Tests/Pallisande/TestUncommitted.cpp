#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/LineField.h"
#include "Pallisande/Widgets/SheetDialog.h"
#include "Tests/Pallisande/Keyboard.h"
#include "Tests/Pallisande/WindowWorld.h"

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QMenu>
#include <QPlainTextEdit>

#include <algorithm>

using namespace Pallisande;
using ::Test::id;
using ::Test::Keyboard;
using ::Test::WindowWorld;

namespace {

// A field of a page, and the fact of the record that it shows.
struct Field {
    const char* name;
    AppSection section;
    const char* typed;
    std::function<std::string(const Library&)> held;
};

const Job& job(const Library& library) { return *library.job(id(13)); }
const Client& client(const Library& library) { return *library.client(id(1)); }
const Invoice& draft(const Library& library) { return library.invoices.back(); }

const Field fields[] {
    { "title", AppSection::jobs, "Zebra", [](const Library& all) { return job(all).title; } },
    { "reference", AppSection::jobs, "PO 4711", [](const Library& all) { return job(all).reference; } },
    { "surcharge", AppSection::jobs, "12.5",
        [](const Library& all) { return job(all).surchargePercent.toString(); } },
    { "notes", AppSection::jobs, "Two\nlines", [](const Library& all) { return job(all).notes; } },
    { "deadlineDay", AppSection::jobs, "20 April 2026",
        [](const Library& all) {
            return job(all).deadline == ::Test::instant("2026-04-20T15:00:00.000Z") ? "20 April 2026" : "";
        } },
    { "clientName", AppSection::clients, "Zebra Press", [](const Library& all) { return client(all).name; } },
    { "clientRate", AppSection::clients, "0.155",
        [](const Library& all) { return client(all).defaultRate.toString(); } },
    { "paymentDays", AppSection::clients, "45",
        [](const Library& all) { return std::to_string(client(all).paymentDays); } },
    { "lineTitle", AppSection::invoices, "Zebras",
        [](const Library& all) { return draft(all).lines[0].title; } },
    { "linePrice", AppSection::invoices, "0.25",
        [](const Library& all) { return draft(all).lines[0].unitPrice.toString(); } },
    { "Notes", AppSection::invoices, "Two\nlines", [](const Library& all) { return draft(all).notes; } },
};

// Three jobs to be done, one of which is typed at, two clients, an invoice and a draft.
Library holding()
{
    auto library = ::Test::sampleLibrary();
    for (const int number : { 13, 14, 15 }) {
        auto open = ::Test::job(static_cast<std::uint64_t>(number), 1, 300);
        open.status = JobStatus::inProgress;
        open.deliveredAt.reset();
        open.deadline = ::Test::instant("2026-03-1" + std::to_string(number - 10) + "T16:00:00.000Z");
        library.jobs.push_back(open);
    }
    ::Test::issued(library, { 11 });
    ::Test::draft(library, { 21 });
    return library;
}

Base::Uuid recordOf(const Field& field, const Library& library)
{
    return field.section == AppSection::jobs   ? job(library).id
        : field.section == AppSection::clients ? client(library).id
                                               : draft(library).id;
}

// Shows the record, puts the caret into the field and types, without ending it.
QWidget* typeInto(WindowWorld& world, const Field& field)
{
    world.model->setSection(field.section);
    world.model->select(field.section, recordOf(field, world.model->library()));
    WindowWorld::settleEvents();
    for (auto* widget : world.window->page()->findChildren<QWidget*>(QLatin1String(field.name))) {
        if (!widget->isVisible())
            continue;
        widget->setFocus(Qt::TabFocusReason);
        Keyboard::press("Ctrl+A");
        for (const char* letter = field.typed; *letter; ++letter) {
            if (*letter == '\n')
                Keyboard::press("Return");
            else
                QTest::keyClick(widget, *letter);
        }
        return widget;
    }
    ADD_FAILURE() << "no " << field.name;
    return nullptr;
}

QString textIn(const QWidget* widget)
{
    const auto* const line = qobject_cast<const QLineEdit*>(widget);
    return line ? line->text() : qobject_cast<const QPlainTextEdit*>(widget)->toPlainText();
}

void clickAnotherRow(WindowWorld& world)
{
    auto* const list = world.window->page()->findChild<QAbstractItemView*>("records");
    for (int row = 0; row < list->model()->rowCount(); ++row) {
        const auto index = list->model()->index(row, 0);
        if (!list->selectionModel()->isSelected(index)) {
            QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, list->visualRect(index).center());
            return;
        }
    }
    ADD_FAILURE() << "There is no other row.";
}

// By the second order of the menu, which puts other rows first.
void sortOtherwise(WindowWorld& world)
{
    for (auto* menu : world.window->findChildren<QMenu*>()) {
        if (menu->title() != QLatin1String("S&ort By"))
            continue;
        emit menu->aboutToShow();
        menu->actions().at(1)->trigger();
    }
}

struct WayOut {
    const char* name;
    std::function<void(WindowWorld&)> go;
};
const WayOut waysOut[] {
    { "another section", [](WindowWorld&) { Keyboard::press("Ctrl+1"); } },
    { "back", [](WindowWorld&) { Keyboard::press("Alt+Left"); } },
    { "another row", clickAnotherRow },
    { "a sheet", [](WindowWorld&) { Keyboard::press("Ctrl+N"); } },
    { "another order", sortOtherwise },
    { "the search", [](WindowWorld&) { Keyboard::press("Ctrl+F"); } },
    { "the settings", [](WindowWorld&) { Keyboard::press("Ctrl+,"); } },
    { "another pane", [](WindowWorld&) { Keyboard::press("F6"); } },
    { "larger text",
        [](WindowWorld&) {
            Keyboard::press("Ctrl++");
            Keyboard::press("Ctrl+0");
        } },
    { "files from outside", [](WindowWorld& world) { world.window->takeOver({ "/x/y.docx" }, {}); } },
    { "the end of the session", [](WindowWorld& world) { world.window->prepareToClose(); } },
    { "quitting", [](WindowWorld&) { Keyboard::press("Ctrl+Q"); } },
};

// But for the record that was typed at.
Library without(Library library, const Field& field)
{
    const auto mine = recordOf(field, library);
    const auto isMine = [&](const auto& record) { return record.id == mine; };
    std::erase_if(library.jobs, isMine);
    std::erase_if(library.clients, isMine);
    std::erase_if(library.invoices, isMine);
    return library;
}

} // namespace

// It goes to the record that it was typed for, and to no other, and into the file.
TEST(Uncommitted, textSurvivesEveryWayOut)
{
    for (const auto& field : fields) {
        for (const auto& [name, go] : waysOut) {
            SCOPED_TRACE(std::string(field.name) + ", " + name);
            WindowWorld world;
            world.open(holding());
            const auto before = world.model->library();
            ASSERT_TRUE(typeInto(world, field));
            EXPECT_NE(field.held(world.model->library()), field.typed) << "not committed yet";
            go(world);
            WindowWorld::settleEvents();
            EXPECT_EQ(field.held(world.model->library()), field.typed);
            EXPECT_EQ(without(world.model->library(), field), without(before, field));
            world.settle();
            const auto stored = LibraryStore(world.library).load(::Test::moment()).library;
            EXPECT_EQ(field.held(stored), field.typed);
            if (auto* const sheet = world.window->sheet())
                QTest::keyClick(sheet, Qt::Key_Escape);
        }
    }
}

// What makes no sense is kept as typed, and isn't taken.
TEST(Uncommitted, nonsenseStaysInItsField)
{
    const Field nonsense[] {
        { "surcharge", AppSection::jobs, "12,3x", {} },
        { "deadlineDay", AppSection::jobs, "someday", {} },
        { "clientRate", AppSection::clients, "12,3x", {} },
        { "linePrice", AppSection::invoices, "12,3x", {} },
    };
    for (const auto& field : nonsense) {
        SCOPED_TRACE(field.name);
        WindowWorld world;
        world.open(holding());
        const auto before = world.model->library();
        auto* const widget = typeInto(world, field);
        ASSERT_TRUE(widget);
        Keyboard::press("Ctrl+1");
        EXPECT_EQ(world.model->section(), AppSection::deadlines) << "It doesn't lock anybody in.";
        world.model->setSection(field.section);
        WindowWorld::settleEvents();
        EXPECT_EQ(textIn(widget).toStdString(), field.typed);
        EXPECT_NE(qobject_cast<LineField*>(widget)->problem(), "");
        EXPECT_EQ(world.model->library(), before);
        widget->setFocus();
        Keyboard::press("Escape");
        EXPECT_NE(textIn(widget).toStdString(), field.typed);
    }
}

// The desktop turns dark, the text grows: nothing is thrown away under the user's hands.
TEST(Uncommitted, anotherLookKeepsSelectionTextAndCaret)
{
    for (const auto& field : fields) {
        SCOPED_TRACE(field.name);
        WindowWorld world;
        auto& window = world.open(holding());
        auto* const widget = typeInto(world, field);
        ASSERT_TRUE(widget);
        Keyboard::press("Home");
        Keyboard::press("Shift+Right");
        auto* const line = qobject_cast<QLineEdit*>(widget);
        auto* const area = qobject_cast<QPlainTextEdit*>(widget);
        auto* const list = window.page()->findChild<QAbstractItemView*>("records");
        const auto state = [&] {
            return std::tuple(textIn(widget).toStdString(),
                line ? line->cursorPosition() : area->textCursor().position(),
                plain(line ? line->selectedText() : area->textCursor().selectedText()),
                world.model->selection(field.section), list->currentIndex().row(),
                list->selectionModel()->selectedIndexes().size(), widget->hasFocus(), widget->isVisible());
        };
        const auto before = state();
        EXPECT_EQ(std::get<2>(before).size(), 1U);
        for (const auto& [isDark, size] :
            { std::pair(true, 100), std::pair(false, 150), std::pair(true, 200), std::pair(false, 100) }) {
            systemLook().isDark = isDark;
            themeController().refresh();
            themeController().setTextSize(size);
            WindowWorld::settleEvents();
            EXPECT_EQ(state(), before) << "dark " << isDark << ", text " << size;
        }
        Keyboard::press("End"); // And it goes on as if nothing had happened.
        Keyboard::press("Ctrl+1");
        EXPECT_EQ(field.held(world.model->library()), field.typed);
    }
}
