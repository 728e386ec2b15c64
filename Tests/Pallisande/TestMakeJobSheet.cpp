#include "Pallisande/Sheets/CountedFiles.h"
#include "Tests/Pallisande/SheetWindow.h"

#include <QLineEdit>

using namespace Pallisande;
using ::Test::id;
using ::Test::SheetWindow;
using ::Test::World;

namespace {

struct MakeJobSheets : testing::Test {
    MakeJobSheets()
    {
        std::filesystem::create_directory(texts);
        ::Test::writeFile(texts / "a.txt", "One two three. Four five.");
        ::Test::writeFile(texts / "b.txt", "One two three. Six.");
        ::Test::writeFile(texts / "c.docx", "not a package");
    }
    void toggle(int row)
    {
        auto& files = window.part<CountedFiles>("countedFiles");
        files.setCurrentIndex(files.model()->index(row, 1));
        QTest::keyClick(&files, Qt::Key_Space);
        QApplication::processEvents();
    }

    World world;
    AppModel& model = world.start(::Test::sampleLibrary());
    SheetWindow window { model };
    std::filesystem::path texts = world.root / "Texts";
};

} // namespace

TEST_F(MakeJobSheets, aCountBecomesAJobWithoutTheFilesLeftOut)
{
    model.counts().count({ texts }, DocumentCounts::Purpose::newJob);
    ASSERT_TRUE(window.dialog());
    EXPECT_EQ(window.text("countBands"), "Repetitions 3 words, No match 6 words");
    EXPECT_NE(window.text("countPrice").find("before tax"), std::string::npos);
    EXPECT_NE(
        window.texts().find("“c.docx” wasn’t counted: “c.docx” isn’t a Word (.docx) file"), std::string::npos)
        << window.texts();
    EXPECT_EQ(window.texts().find("approximate"), std::string::npos);
    EXPECT_NE(window.texts().find("Main text 9"), std::string::npos) << window.texts();
    window.expectReadable();

    toggle(0); // Nothing repeats in the other file alone.
    EXPECT_EQ(window.text("countBands"), "Repetitions 0 words, No match 4 words");
    EXPECT_NE(window.texts().find("c.docx"), std::string::npos);
    toggle(1);
    EXPECT_EQ(window.text("countBands"), "Choose at least one file.");
    EXPECT_FALSE(window.part<QPushButton>("makeJobDefault").isEnabled());
    toggle(1);
    auto& title = window.part<QLineEdit>("jobTitle");
    title.setFocus();
    QTest::keyClicks(&title, "Two texts");

    QTest::keyClick(window.dialog(), Qt::Key_Escape); // What was typed is there the next time.
    EXPECT_FALSE(model.sheet());
    model.counts().count({ texts }, DocumentCounts::Purpose::newJob);
    EXPECT_EQ(window.part<QLineEdit>("jobTitle").text().toStdString(), "Two texts");
    toggle(0);
    window.press("makeJobDefault");
    EXPECT_FALSE(model.sheet()) << window.dialog()->error().toStdString();
    const auto& job = *model.job(*model.selection(AppSection::jobs));
    EXPECT_EQ(job.title, "Two texts");
    EXPECT_EQ(sum(job.analyses.front().totals().words), 4);
    EXPECT_EQ(job.analyses.front().notes.size(), 1u); // Of the file that couldn't be read.
}

// Files that are clicked while the others are still counted are taken in afterwards.
TEST_F(MakeJobSheets, aClickDuringACountIsNotLost)
{
    model.counts().count({ texts }, DocumentCounts::Purpose::newJob);
    world.background.isHeld = true;
    toggle(0);
    EXPECT_EQ(window.text("countBands"), "Counting again…");
    EXPECT_FALSE(window.part<QPushButton>("makeJobDefault").isEnabled());
    toggle(0);
    world.background.letGo();
    QApplication::processEvents();
    EXPECT_EQ(window.text("countBands"), "Repetitions 3 words, No match 6 words");
    EXPECT_TRUE(window.part<QPushButton>("makeJobDefault").isEnabled());

    std::filesystem::remove(texts / "a.txt"); // Gone by the time it is counted again.
    toggle(1);
    EXPECT_EQ(window.dialog()->error().toStdString(),
        "Some of these files couldn’t be counted again. Leave them out.");
    EXPECT_FALSE(window.part<QPushButton>("makeJobDefault").isEnabled());
    toggle(1); // With all of them the first count holds.
    EXPECT_TRUE(window.part<QPushButton>("makeJobDefault").isEnabled());
    toggle(0);
    EXPECT_EQ(window.text("countBands"), "Repetitions 0 words, No match 4 words");
    EXPECT_EQ(window.dialog()->error().toStdString(), "");
}

TEST_F(MakeJobSheets, aCountGoesToAJobThatIsThere)
{
    model.counts().count({ texts / "a.txt" }, DocumentCounts::Purpose::attach, id(11));
    ASSERT_TRUE(window.dialog());
    EXPECT_NE(window.texts().find("“Job 11”"), std::string::npos);
    EXPECT_EQ(window.text("countPrice"), "Price: now 100.00 → 100.50\u00A0EUR before tax");
    window.expectReadable();
    QTest::keyClick(window.dialog(), Qt::Key_Return);
    EXPECT_FALSE(model.sheet());
    EXPECT_EQ(sum(model.job(id(11))->analyses.back().totals().words), 5);
    model.undo();
    EXPECT_EQ(model.job(id(11))->analyses.size(), 1u);
}
