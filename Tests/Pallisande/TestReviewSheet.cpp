#include "PallisandeKit/Samples/SampleReport.h"
#include "Tests/Pallisande/SheetWindow.h"

#include <QCheckBox>
#include <QElapsedTimer>
#include <QRadioButton>
#include <QTableView>

using namespace Pallisande;
using ::Test::id;
using ::Test::SheetWindow;
using ::Test::World;

namespace {

std::string cell(const QTableView& table, int row, int column)
{
    return table.model()->index(row, column).data().toString().toStdString();
}

// Two files, of which the report states one word too many for the first.
const std::vector<SampleFile> files { { "a.docx", { 0, 10, 20, 30, 0, 0, 0, 0, 940 }, 1 },
    { "b.docx", { 0, 0, 0, 5, 0, 0, 0, 0, 95 } } };

struct ReviewSheets : testing::Test {
    void open(const std::string& name, const std::string& report)
    {
        ::Test::writeFile(world.root / name, report);
        world.model->imports().read(id(11), { world.root / name });
    }
    std::size_t analyses() const { return world.model->job(id(11))->analyses.size(); }

    World world;
    AppModel& model = world.start(::Test::sampleLibrary());
    SheetWindow window { model };
};

} // namespace

TEST_F(ReviewSheets, aReportIsSeenPricedAttachedAndTakenBack)
{
    open("report.csv", sampleMemoQReport(files));
    ASSERT_TRUE(window.dialog());
    const auto& table = window.part<QTableView>("reviewFiles");
    EXPECT_EQ(table.model()->rowCount(), 2);
    EXPECT_EQ(cell(table, 0, 9), "940");
    EXPECT_EQ(cell(table, 0, 10), "1,000");
    EXPECT_EQ(cell(table, 0, 11), "1,001");
    EXPECT_EQ(cell(table, 0, 12), "−1");
    EXPECT_EQ(cell(window.part<QTableView>("reviewTotal"), 0, 10), "1,100");
    EXPECT_EQ(table.model()->headerData(1, Qt::Horizontal, Qt::AccessibleTextRole).toString().toStdString(),
        "Perfect / X-translated");
    const auto texts = window.texts();
    EXPECT_NE(texts.find("“report.csv” → Job 11 (Nordlicht Verlag)"), std::string::npos) << texts;
    const auto check = texts.find("a.docx: the bands add up to 1000 words, the report says 1001");
    EXPECT_NE(check, std::string::npos) << texts;
    // Failed sums come before the notes.
    EXPECT_LT(check, texts.find("memoQ import: tested on documented layouts"));
    EXPECT_NE(texts.find("2 files · 1,100 words"), std::string::npos) << texts;
    window.expectReadable();

    const auto added = window.text("reviewPrice");
    EXPECT_EQ(added.find("Price: now 100.00 → "), 0u) << added;
    window.part<QRadioButton>("reviewReplace").click();
    EXPECT_NE(window.text("reviewPrice"), added);
    window.part<QRadioButton>("reviewAdd").click();
    EXPECT_EQ(window.text("reviewPrice"), added);
    window.choose("reviewMetric", "Characters");
    EXPECT_EQ(cell(table, 0, 9), "5,640");
    EXPECT_NE(window.texts().find("2 files · 6,600 characters"), std::string::npos) << window.texts();

    QTest::keyClick(window.dialog(), Qt::Key_Return);
    EXPECT_FALSE(model.sheet());
    ASSERT_EQ(analyses(), 2u);
    EXPECT_TRUE(std::filesystem::exists(world.library / *model.job(id(11))->analyses.back().storedCopy));

    open("report.csv", sampleMemoQReport(files)); // Again: it likely replaces the first.
    EXPECT_TRUE(window.part<QRadioButton>("reviewReplace").isChecked());
    QTest::keyClick(window.dialog(), Qt::Key_Escape);
    EXPECT_FALSE(model.sheet());
    EXPECT_FALSE(model.imports().pending());
    EXPECT_EQ(analyses(), 2u);
    model.undo();
    EXPECT_EQ(analyses(), 1u);
}

TEST_F(ReviewSheets, anUnknownTableIsMappedAndItsMappingRemembered)
{
    const auto table = "Document;Alpha;Beta;Sum\nx.docx;12;30;42\ny.docx;1;2;3\n";
    open("table.csv", table);
    EXPECT_EQ(window.part<QPushButton>("reviewDefault").text().toStdString(), "Continue");
    EXPECT_EQ(window.part<QComboBox>("column0").currentText().toStdString(), "File name");
    EXPECT_NE(window.texts().find("12  ·  1"), std::string::npos) << window.texts();
    EXPECT_EQ(window.text("mappedSum"), "Nothing adds up yet.");
    window.press("reviewDefault");
    EXPECT_EQ(window.dialog()->error().toStdString(), "Choose at least one column of words or characters.");
    window.expectReadable();

    window.choose("column1", "100%: words");
    window.choose("column2", "No match: words");
    EXPECT_EQ(window.dialog()->error().toStdString(), "");
    EXPECT_EQ(window.text("mappedSum"), "45 words in 2 files");
    window.choose("column2", "File name"); // There is one column of names.
    EXPECT_EQ(window.part<QComboBox>("column0").currentText().toStdString(), "Nothing that counts");
    window.choose("column0", "File name");
    window.choose("column2", "No match: words");
    window.press("reviewDefault");
    EXPECT_EQ(cell(window.part<QTableView>("reviewFiles"), 0, 9), "30");
    EXPECT_NE(window.texts().find("Choose"), 0u);
    window.press("mapOtherwise"); // And back again.
    EXPECT_EQ(window.part<QComboBox>("column1").currentText().toStdString(), "100%: words");
    window.press("reviewDefault");
    window.press("reviewDefault");
    ASSERT_EQ(analyses(), 2u) << window.dialog()->error().toStdString();
    EXPECT_EQ(sum(model.job(id(11))->analyses.back().totals().words), 45);

    open("next.csv", "Document;Alpha;Beta;Sum\nz.docx;5;6;11\n"); // The same headings.
    EXPECT_EQ(window.text("mappedSum"), "11 words in 1 file");
    QTest::keyClick(window.dialog(), Qt::Key_Escape);
}

TEST_F(ReviewSheets, aTableIsTakenApartAsTheUserSays)
{
    open("table.csv", "x.docx;1.200;2.400\ny.docx;1.300;2.500\n");
    auto& headings = window.part<QCheckBox>("hasHeadings");
    EXPECT_FALSE(headings.isChecked());
    EXPECT_EQ(window.part<QComboBox>("delimiter").currentText().toStdString(), "Semicolon");
    window.choose("column1", "100%: words");
    EXPECT_EQ(window.text("mappedSum"), "2,500 words in 2 files");
    window.choose("decimalMark", "Point: 1,234.5");
    EXPECT_EQ(window.text("mappedSum"), "2 words in 2 files");
    window.expectReadable();

    window.part<QCheckBox>("hasHeadings").click(); // Other columns: what they hold is to be said again.
    QApplication::processEvents();
    EXPECT_TRUE(window.part<QCheckBox>("hasHeadings").isChecked());
    EXPECT_EQ(window.part<QComboBox>("decimalMark").currentText().toStdString(), "Point: 1,234.5");
    EXPECT_EQ(window.text("mappedSum"), "Nothing adds up yet.");
    window.choose("decimalMark", "As the numbers tell");
    window.choose("column1", "100%: words");
    EXPECT_EQ(window.text("mappedSum"), "1,300 words in 1 file");

    window.choose("delimiter", "Tab"); // There is none: all stays as it was, and the sheet says so.
    EXPECT_EQ(window.dialog()->error().toStdString(),
        "“table.csv” is no analysis report that Pallisande knows, and no table of counts.");
    EXPECT_EQ(window.part<QComboBox>("delimiter").currentText().toStdString(), "Semicolon");
    EXPECT_EQ(window.text("mappedSum"), "1,300 words in 1 file");
    window.press("reviewDefault");
    window.press("reviewDefault");
    ASSERT_EQ(analyses(), 2u) << window.dialog()->error().toStdString();
    EXPECT_EQ(sum(model.job(id(11))->analyses.back().totals().words), 1300);
}

TEST_F(ReviewSheets, bandsBelowEachOtherAreMappedByTheirLabels)
{
    open("rows.csv", "File;Type;Amount\na.docx;Old;5\n;Fresh;7\n;Whole;12\n");
    window.choose("column1", "Band of the row");
    window.choose("column2", "Words of the row’s band");
    EXPECT_NE(window.texts().find("What the rows hold"), std::string::npos);
    window.choose("label0", "Repetitions");
    window.choose("label1", "No match");
    window.choose("label2", "The total");
    window.expectReadable();
    window.press("reviewDefault");
    const auto& table = window.part<QTableView>("reviewFiles");
    EXPECT_EQ(cell(table, 0, 3), "5") << window.texts();
    EXPECT_EQ(cell(table, 0, 9), "7");
    EXPECT_EQ(cell(table, 0, 11), "12");
    window.press("mapOtherwise");
    window.choose("column1", "Nothing that counts"); // Then nothing has a band.
    window.press("reviewDefault");
    EXPECT_EQ(window.dialog()->error().toStdString(), "Choose at least one column of words or characters.");
}

TEST_F(ReviewSheets, whatCantBeReadSaysWhyAndReportsComeOneAfterTheOther)
{
    ::Test::writeFile(world.root / "a.html", "<html></html>");
    ::Test::writeFile(world.root / "b.csv", sampleMemoQReport(files));
    ::Test::writeFile(world.root / "c.csv", sampleMemoQReport(files));
    model.imports().read(id(11), { world.root / "a.html", world.root / "b.csv", world.root / "c.csv" });
    EXPECT_NE(window.texts().find("“a.html” is a report for reading, not for importing."), std::string::npos)
        << window.texts();
    EXPECT_NE(window.texts().find("Report 1 of 3"), std::string::npos);
    window.expectReadable();
    world.answer = { world.root / "c.csv" };
    window.press("reviewDefault"); // Another in its place.
    EXPECT_NE(window.texts().find("Report 1 of 3. “c.csv”"), std::string::npos) << window.texts();
    EXPECT_EQ(window.dialog()->cancelButton()->text().toStdString(), "Skip This Report");
    window.dialog()->cancelButton()->click();
    EXPECT_NE(window.texts().find("Report 2 of 3. “b.csv”"), std::string::npos) << window.texts();
    window.press("reviewDefault");
    EXPECT_NE(window.texts().find("Report 3 of 3. “c.csv”"), std::string::npos) << window.texts();
    window.dialog()->cancelButton()->click();
    EXPECT_FALSE(model.sheet());
    EXPECT_EQ(analyses(), 2u);
}

// What the ledger or the disk refuses stands in the sheet, which stays.
TEST_F(ReviewSheets, aCopyThatCantBeStoredIsToldInTheSheet)
{
    ::Test::writeFile(world.library / "Reports", "a file where the folder should be");
    open("report.csv", sampleMemoQReport(files));
    window.press("reviewDefault");
    ASSERT_TRUE(window.dialog());
    EXPECT_EQ(window.dialog()->error().toStdString(), world.problem());
    EXPECT_NE(world.problem(), "");
    EXPECT_EQ(analyses(), 1u);
}

TEST_F(ReviewSheets, clientsPerCharacterSeeCharactersFirst)
{
    auto library = ::Test::sampleLibrary();
    library.clients[0].unit = RateUnit::character;
    World other;
    auto& itsModel = other.start(library);
    SheetWindow itsWindow(itsModel);
    ::Test::writeFile(other.root / "r.csv", sampleMemoQReport(files));
    itsModel.imports().read(id(11), { other.root / "r.csv" });
    EXPECT_EQ(cell(itsWindow.part<QTableView>("reviewFiles"), 0, 9), "5,640");
}

TEST_F(ReviewSheets, aReportOfThousandsOfFilesOpensAtOnce)
{
    std::vector<SampleFile> many;
    for (int number = 0; number < 5000; ++number)
        many.push_back({ "file" + std::to_string(number) + ".docx", { 0, 1, 2, 3, 4, 5, 6, 7, 800 }, 1 });
    const auto report = sampleMemoQReport(many);
    ::Test::writeFile(world.root / "many.csv", report);
    world.background.isHeld = true; // Reading is another thread's.
    model.imports().read(id(11), { world.root / "many.csv" });
    QElapsedTimer clock;
    clock.start();
    world.background.letGo();
    QApplication::processEvents();
    EXPECT_LT(clock.elapsed(), 1500); // A tenth of it on a quiet machine.
    EXPECT_NE(window.texts().find("4995 more totals don’t match"), std::string::npos) << window.texts();
    EXPECT_EQ(window.part<QTableView>("reviewFiles").model()->rowCount(), 5000);
}

// Real reports of every tool, from the file to the job.
TEST_F(ReviewSheets, realReportsAreReviewed)
{
    const auto folder = std::filesystem::path(PALLISANDE_SAMPLES) / "reports";
    if (!std::filesystem::exists(folder))
        GTEST_SKIP() << "no samples";
    const std::pair<const char*, const char*> reports[] {
        { "trados/studio2014-locked-internal-fuzzy.xml", "Trados Studio analysis (XML)" },
        { "memoq/displayed-german-semicolon.csv", "memoQ statistics (CSV)" },
        { "phrase/csv-monolingual.csv", "Phrase TMS analysis (CSV)" },
        { "phrase/json-export-2023.json", "Phrase TMS analysis (JSON)" },
    };
    for (const auto& [file, source] : reports) {
        SCOPED_TRACE(file);
        const auto before = analyses();
        model.imports().read(id(11), { folder / file });
        ASSERT_TRUE(window.dialog());
        EXPECT_EQ(label(std::get<Analysis>(model.imports().pending()->result).source), source);
        window.press("reviewDefault");
        EXPECT_FALSE(model.sheet());
        EXPECT_EQ(analyses(), before + 1);
    }
    model.imports().read(id(11), { folder / "other" / "worldserver-files.csv" });
    window.expectReadable();
    const auto guessed = window.text("mappedSum");
    EXPECT_NE(guessed.find(" files"), std::string::npos) << guessed;
    window.press("reviewDefault");
    window.press("reviewDefault");
    EXPECT_EQ(model.job(id(11))->analyses.back().source, AnalysisSource::mappedCSV);
}
