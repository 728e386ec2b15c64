#include "Pallisande/Screens/ClientBox.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Sheets/SheetMemory.h"
#include "Pallisande/Sheets/Sheets.h"
#include "Pallisande/Widgets/LineField.h"
#include "Tests/Pallisande/ModelWorld.h"
#include "Tests/Pallisande/WidgetApplication.h"
#include "Tests/Pallisande/WidgetChecks.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QClipboard>
#include <QPushButton>
#include <QTest>

using namespace Pallisande;
using ::Test::id;
using ::Test::instant;
using ::Test::World;

namespace {

using Strings = std::vector<std::string>;

// The dialog of the sheet that the model has open, in a window.
struct OpenSheet {
    explicit OpenSheet(World& world)
        : model(*world.model)
    {
        window.resize(1200, 780);
        window.show();
        EXPECT_TRUE(model.sheet());
        if (const auto* const job = std::get_if<NewJobSheet>(&*model.sheet()))
            dialog.reset(makeSheet(model, *job, &window));
        else
            dialog.reset(makeSheet(model, std::get<ManualSheet>(*model.sheet()), &window));
        dialog->openSheet();
        QApplication::processEvents();
    }
    LineField* field(const char* name)
    {
        auto* field = dialog->findChild<LineField*>(QString::fromUtf8(name));
        EXPECT_TRUE(field) << name;
        return field;
    }
    void type(const char* name, const QString& text)
    {
        field(name)->setFocus();
        field(name)->selectAll();
        QTest::keyClicks(field(name), text);
        field(name)->commit();
    }
    void press(const QString& text)
    {
        for (auto* button : dialog->findChildren<QPushButton*>()) {
            if (button->text() == text)
                return button->click();
        }
        ADD_FAILURE() << "No button " << plain(text);
    }

    AppModel& model;
    QWidget window;
    std::unique_ptr<SheetDialog> dialog;
};

} // namespace

TEST(JobSheets, aJobIsAddedWithItsDeadlineInTheClientsZone)
{
    World world;
    auto library = ::Test::sampleLibrary();
    library.clients[1].timeZone = "Asia/Tokyo";
    auto& model = world.start(library);
    model.jobs().openNewJob();
    {
        OpenSheet sheet(world);
        EXPECT_EQ(sheet.field("jobSource")->text(), "de"); // The last job's.
        sheet.type("jobTitle", "Leaflet");
        sheet.type("deadlineDay", "10 Mar 2026");
        sheet.press("Cancel");
        EXPECT_FALSE(model.sheet());
        EXPECT_EQ(model.library().jobs.size(), 3u);
    }
    model.jobs().openNewJob();
    OpenSheet again(world);
    EXPECT_EQ(again.field("jobTitle")->text(), "Leaflet"); // What was typed is kept.
    again.type("jobReference", "PO 7");
    again.press("Add Job");
    ASSERT_EQ(model.library().jobs.size(), 4u);
    const auto& job = model.library().jobs.back();
    EXPECT_EQ(job.title, "Leaflet");
    EXPECT_EQ(job.clientID, id(2));
    EXPECT_EQ(job.reference, "PO 7");
    EXPECT_EQ(job.deadline, instant("2026-03-10T08:00:00.000Z")); // 17:00 in Tokyo.
    EXPECT_EQ(model.selection(AppSection::jobs), job.id);

    model.jobs().openNewJob();
    OpenSheet third(world);
    EXPECT_EQ(third.field("jobTitle")->text(), ""); // It was used up.
}

TEST(JobSheets, anotherClientKeepsTheTimeOfTheDay)
{
    World world;
    auto library = ::Test::sampleLibrary();
    library.clients[1].timeZone = "Asia/Tokyo";
    auto& model = world.start(library);
    model.jobs().openNewJob();
    OpenSheet sheet(world);
    sheet.type("deadlineDay", "10 Mar 2026");
    auto* clients = sheet.dialog->findChild<ClientBox*>("jobClient");
    const int place = clients->findText("Nordlicht Verlag");
    clients->setCurrentIndex(place);
    emit clients->activated(place);
    EXPECT_EQ(sheet.field("deadlineTime")->text(), "17:00");
    sheet.press("Add Job");
    EXPECT_EQ(model.library().jobs.back().deadline, instant("2026-03-10T16:00:00.000Z")); // Berlin.
}

TEST(JobSheets, countsAreTypedPastedAndChanged)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    ASSERT_TRUE(model.openSheet(ManualSheet { id(11), std::nullopt }));
    {
        OpenSheet sheet(world);
        QGuiApplication::clipboard()->setText("Words\n100\n0\n1,200\n");
        QTest::keyClick(sheet.field("countWords1"), Qt::Key_V, Qt::ControlModifier);
        EXPECT_EQ(sheet.field("countWords1")->text(), "100");
        EXPECT_EQ(sheet.field("countWords3")->text(), "1200");
        sheet.type("countWords8", "12.5");
        EXPECT_EQ(sheet.dialog->error(), "Counts are whole numbers.");
        sheet.press("Attach");
        EXPECT_EQ(model.job(id(11))->analyses.size(), 1u);
        sheet.type("countWords8", "50");
        const auto price = plain(sheet.dialog->findChild<QLabel*>("countsPrice")->text());
        EXPECT_EQ(price, "Price: now 100.00 → 143.00\u00A0EUR before tax");
        sheet.press("Cancel");
    }
    ASSERT_TRUE(model.openSheet(ManualSheet { id(11), std::nullopt }));
    {
        OpenSheet sheet(world);
        EXPECT_EQ(sheet.field("countWords3")->text(), "1200");
        QTest::keyClick(sheet.field("countWords8"), Qt::Key_Return, Qt::ControlModifier);
        EXPECT_FALSE(model.sheet());
    }
    ASSERT_EQ(model.job(id(11))->analyses.size(), 2u);
    const auto typed = model.job(id(11))->analyses[1];
    EXPECT_EQ(typed.rows[0].counts.words,
        (BandMap<std::int64_t> { { MatchBand::context, 100 }, { MatchBand::repetitions, 0 },
            { MatchBand::exact, 1200 }, { MatchBand::noMatch, 50 } }));
    ASSERT_TRUE(model.openSheet(ManualSheet { id(11), typed.id }));
    OpenSheet sheet(world);
    QGuiApplication::clipboard()->setText("7\t1\t40\n8\t2\t50");
    QTest::keyClick(sheet.field("countSegments0"), Qt::Key_V, Qt::ControlModifier); // Three columns are all.
    sheet.press("Change Counts");
    const auto& changed = model.job(id(11))->analyses[1].rows[0].counts;
    EXPECT_EQ(changed.words.valueOr(MatchBand::perfect, 0), 7);
    EXPECT_EQ(changed.segments.valueOr(MatchBand::context, 0), 2);
    EXPECT_EQ(changed.characters.valueOr(MatchBand::context, 0), 50);
}

TEST(JobSheets, fitInEverySize)
{
    for (const int size : { 100, 150, 200 }) {
        SCOPED_TRACE(size);
        themeController().setTextSize(size);
        World world;
        auto library = ::Test::sampleLibrary();
        library.clients[1].timeZone = "Asia/Tokyo";
        auto& model = world.start(library);
        for (const bool isManual : { false, true }) {
            if (isManual)
                ASSERT_TRUE(model.openSheet(ManualSheet { id(11), std::nullopt }));
            else
                model.jobs().openNewJob();
            OpenSheet sheet(world);
            EXPECT_EQ(lastClippedTexts(*sheet.dialog), Strings());
            EXPECT_EQ(namelessWidgets(*sheet.dialog), Strings());
            sheet.press("Cancel");
        }
    }
    themeController().setTextSize(100);
}
