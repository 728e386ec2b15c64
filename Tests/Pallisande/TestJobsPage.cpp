#include "Pallisande/Screens/Jobs/ExtraLineRow.h"
#include "Pallisande/Screens/Jobs/FiguresTable.h"
#include "Pallisande/Screens/ListDetailPage.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Widgets/DateEdit.h"
#include "Pallisande/Widgets/NoteLine.h"
#include "Pallisande/Widgets/NumberEdit.h"
#include "Pallisande/Widgets/TextArea.h"
#include "PallisandeKit/Samples/SampleReport.h"
#include "Tests/Pallisande/ModelWorld.h"
#include "Tests/Pallisande/WidgetApplication.h"
#include "Tests/Pallisande/WidgetChecks.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QCompleter>
#include <QMenu>
#include <QMimeData>
#include <QPushButton>
#include <QTest>
#include <QUrl>
#include <QVBoxLayout>

using namespace Pallisande;
using ::Test::decimal;
using ::Test::id;
using ::Test::instant;
using ::Test::World;

namespace {

using Strings = std::vector<std::string>;
using IDs = std::vector<Base::Uuid>;

// The page of jobs in a window, over a library.
struct Page {
    explicit Page(const Library& library, QSize size = { 1000, 780 })
    {
        world.start(library);
        open(size);
    }

    void open(QSize size = { 1000, 780 })
    {
        window = std::make_unique<QWidget>();
        view = std::make_unique<ViewState>(world.preferences);
        commands = new Commands(model(), window.get());
        page = static_cast<ListDetailPage*>(makeJobsPage({ model(), *commands, *view }, window.get()));
        auto* box = new QVBoxLayout(window.get());
        box->setContentsMargins(0, 0, 0, 0);
        box->addWidget(page);
        model().setSection(AppSection::jobs);
        window->resize(size);
        window->show();
    }
    AppModel& model() { return *world.model; }
    void select(std::uint64_t job)
    {
        model().select(AppSection::jobs, id(job));
        QApplication::processEvents();
    }
    const Job& job(std::uint64_t number) { return *model().job(id(number)); }

    template <typename Widget> Widget* find(const char* name)
    {
        auto* widget = window->findChild<Widget*>(QString::fromUtf8(name));
        EXPECT_TRUE(widget) << name;
        return widget;
    }
    std::string text(const char* name) { return plain(find<QLabel>(name)->text()); }
    // As somebody does it who then goes on with Return.
    void type(const char* name, const QString& text)
    {
        auto* field = find<LineField>(name);
        field->setFocus();
        field->selectAll();
        QTest::keyClicks(field, text);
        QTest::keyClick(field, Qt::Key_Return);
    }
    Strings rows(const char* name)
    {
        const auto* table = find<FiguresTable>(name);
        Strings rows;
        for (int row = 0; row < table->rowCount(); ++row) {
            QStringList cells;
            for (int column = 0; column < table->columnCount(); ++column)
                cells += table->item(row, column)->text();
            rows.push_back(plain(cells.join(QLatin1Char('|'))));
        }
        return rows;
    }
    Strings notes(const char* name)
    {
        Strings notes;
        const auto* list = find<NoteList>(name);
        for (const auto* line : list->findChildren<NoteLine*>()) {
            if (line->isVisibleTo(window.get()))
                notes.push_back(plain(line->sentence()));
        }
        return notes;
    }
    void drop(QWidget* widget, const QPoint& place, const Strings& files)
    {
        QMimeData data;
        QList<QUrl> urls;
        for (const auto& file : files)
            urls += QUrl::fromLocalFile(qt(file));
        data.setUrls(urls);
        QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(widget, &enter);
        QDragMoveEvent move(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(widget, &move);
        QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(widget, &drop);
    }

    World world;
    std::unique_ptr<ViewState> view;
    std::unique_ptr<QWidget> window;
    Commands* commands = nullptr; // The window's.
    ListDetailPage* page = nullptr;
};

// Job 11: 100 repetitions, 200 words under 75% and 1,000 new ones, a report that says one word more, and an
// hour of review.
Library library()
{
    auto library = ::Test::sampleLibrary();
    library.clients[0].weights.floor75 = true;
    library.clients[0].timeZone = "Asia/Tokyo";
    auto& job = library.jobs[0];
    job.title = "Annual report";
    job.status = JobStatus::inProgress;
    job.deliveredAt.reset();
    job.deadline = instant("2026-03-10T08:00:00.000Z");
    job.analyses = { ::Test::analysis(
        { { MatchBand::repetitions, 100 }, { MatchBand::fuzzy50, 200 }, { MatchBand::noMatch, 1000 } }) };
    job.analyses[0].statedTotalWords = 1301;
    job.extras = { { .id = id(70), .title = "Review", .quantity = 1, .unit = "hours", .unitPrice = 40 } };
    library.jobs[1].status = JobStatus::quote;
    library.jobs[1].deliveredAt.reset();
    return library;
}

} // namespace

TEST(JobsPage, showsHowThePriceIsMade)
{
    Page page(library());
    page.select(11);
    EXPECT_EQ(page.text("price"), "162.50\u00A0EUR");
    auto shown = page.rows("bands");
    ASSERT_EQ(shown.size(), 10u);
    EXPECT_EQ(shown[2], "Repetitions|100|25%|25");
    EXPECT_EQ(shown[7], "50–74%|200|100%|200");
    EXPECT_EQ(shown[9], "Total|1,300||1,225");
    EXPECT_TRUE(page.find<QLabel>("floorSentence")->isVisible());
    EXPECT_EQ(page.rows("sums"),
        (Strings { "1,225 words × 0.10|122.50", "Review · 1 hours × 40.00|40.00", "Subtotal|162.50",
            "VAT 19%|30.88", "Total EUR|193.38" }));
    EXPECT_EQ(page.notes("priceProblems"),
        (Strings {
            "1 totals don’t match their report. The price uses the bands as imported; check the report." }));

    page.find<QCheckBox>("hidesEmptyBands")->click();
    EXPECT_EQ(page.rows("bands").size(), 4u);
    page.type("surcharge", "10");
    page.type("rate", "0.2");
    EXPECT_EQ(page.job(11).rateOverride, decimal("0.2"));
    EXPECT_EQ(page.rows("sums")[1], "Surcharge 10%|24.50");
    page.type("rate", "-1");
    EXPECT_EQ(page.find<LineField>("rate")->problem(), "A rate can’t be below zero.");
    EXPECT_EQ(page.job(11).rateOverride, decimal("0.2"));
    page.open(); // The next start of the window.
    page.select(11);
    EXPECT_EQ(page.rows("bands").size(), 4u);
}

TEST(JobsPage, aTargetCountIsMissedUntilItIsTypedEvenAsZero)
{
    auto library = ::library();
    library.clients[0].basis = WordBasis::target;
    Page page(library);
    page.select(11);
    const std::string missing
        = "This client is billed on target words: enter the delivered translation’s count.";
    ASSERT_EQ(page.notes("priceProblems").size(), 2u);
    EXPECT_EQ(page.notes("priceProblems")[1], missing);
    EXPECT_TRUE(page.find<QLabel>("targetBasis")->isVisible());
    EXPECT_EQ(page.rows("bands").back(), "Total|1,300");
    page.type("targetUnits", "0");
    EXPECT_EQ(page.job(11).targetUnits, 0);
    ASSERT_EQ(page.notes("priceProblems").size(), 1u);
    EXPECT_NE(page.notes("priceProblems")[0], missing);
    page.type("targetUnits", "1,250");
    EXPECT_EQ(page.rows("sums")[0], "1,250 words × 0.10|125.00");
}

TEST(JobsPage, statusGoesOnlyWhereItMay)
{
    Page page(library());
    page.select(12);
    auto* menu = page.find<QPushButton>("status")->menu();
    const auto offered = [&] {
        Strings names;
        emit menu->aboutToShow();
        for (const auto* action : menu->actions()) {
            if (action->isEnabled())
                names.push_back(plain(action->text()));
        }
        return names;
    };
    EXPECT_EQ(offered(), (Strings { "In progress", "Cancelled" }));
    menu->findChild<QAction*>("In progress")->trigger();
    EXPECT_EQ(offered(), (Strings { "Quote", "Delivered", "Cancelled" }));
    menu->findChild<QAction*>("Delivered")->trigger();
    EXPECT_EQ(page.job(12).status, JobStatus::delivered);
    const auto delivered = page.job(12).deliveredAt;
    EXPECT_EQ(delivered, page.world.now);
    EXPECT_TRUE(page.find<DateEdit>("delivered")->isVisible());
    page.type("delivered", "5 Mar 2026");
    EXPECT_EQ(page.job(12).deliveredAt, ::Test::noon("2026-03-05"));

    page.find<QPushButton>("makeInvoice")->click();
    EXPECT_EQ(page.model().section(), AppSection::invoices);
    page.model().goBack();
    page.model().show(AppSection::jobs, id(12));
    QApplication::processEvents();
    EXPECT_EQ(page.find<NoteLine>("lock")->sentence(), "This job is on a draft invoice.");
    for (const auto* name : { "source", "target", "delivered", "rate", "surcharge" }) {
        EXPECT_TRUE(page.find<QLineEdit>(name)->isReadOnly()) << name;
        EXPECT_EQ(page.find<QLineEdit>(name)->toolTip(), "This job is on a draft invoice.") << name;
    }
    EXPECT_FALSE(page.find<QWidget>("client")->isEnabled());
    EXPECT_FALSE(page.find<QWidget>("addExtra")->isEnabled());
    page.type("reference", "PO 4712"); // Bills nothing.
    EXPECT_EQ(page.job(12).reference, "PO 4712");
    emit page.find<NoteLine>("lock")->followed();
    EXPECT_EQ(page.model().section(), AppSection::invoices);
}

TEST(JobsPage, reportsComeByButtonAndByDrop)
{
    Page page(library());
    const auto report = page.world.root / "analysis.xml";
    ::Test::writeFile(report, sampleTradosReport);
    page.select(11);
    const auto review = [&](std::uint64_t job) {
        ASSERT_TRUE(page.model().imports().pending());
        EXPECT_EQ(page.model().imports().pending()->jobID, id(job));
        page.model().imports().discard();
    };
    page.world.answer = { report };
    page.find<QPushButton>("importAnalysis")->click();
    review(11);
    page.drop(page.find<QScrollArea>("jobDetail")->viewport(), { 10, 10 }, { report.string() });
    review(11);
    auto* list = page.page->list();
    const auto& ids = page.model().jobs().ids();
    const auto row = static_cast<int>(std::find(ids.begin(), ids.end(), id(12)) - ids.begin());
    page.drop(list->viewport(), list->visualRect(list->model()->index(row, 0)).center(), { report.string() });
    review(12);
    page.drop(list->viewport(), { 20, list->viewport()->height() - 5 }, { report.string() });
    ASSERT_TRUE(page.model().sheet());
    EXPECT_EQ(std::get<NewJobSheet>(*page.model().sheet()), (NewJobSheet { "analysis", report }));
}

TEST(JobsPage, whatIsTypedSurvivesGoingElsewhere)
{
    Page page(library());
    page.select(11);
    auto* title = page.find<LineField>("title");
    title->setFocus();
    title->selectAll();
    QTest::keyClicks(title, "Yearbook");
    page.select(12);
    EXPECT_EQ(page.job(11).title, "Yearbook");
    EXPECT_EQ(page.job(12).title, "Job 12");
    EXPECT_EQ(title->text(), "Job 12");

    auto* notes = page.find<TextArea>("notes");
    notes->setFocus();
    QTest::keyClicks(notes, "Ask again");
    page.model().setSection(AppSection::clients);
    page.page->hide();
    EXPECT_EQ(page.job(12).notes, "Ask again");

    page.page->show();
    page.model().setSection(AppSection::jobs);
    page.type("surcharge", "1.2.3");
    page.select(11);
    EXPECT_EQ(page.find<LineField>("surcharge")->text(), "0"); // Never the other job's.
    EXPECT_TRUE(page.job(12).surchargePercent.isZero());
}

TEST(JobsPage, extraLinesAreTypedMovedAndRemoved)
{
    Page page(library());
    page.select(11);
    const auto row
        = [&](std::size_t at) { return page.window->findChildren<ExtraLineRow*>().at(qsizetype(at)); };
    const auto tab = [&](ExtraLineRow::Column column, std::size_t at, const QString& text) {
        auto* field = row(at)->field(column);
        field->setFocus();
        field->selectAll();
        QTest::keyClicks(field, text);
        QTest::keyClick(field, Qt::Key_Tab);
    };
    tab(ExtraLineRow::unitPrice, 0, "45"); // Adds the next line.
    EXPECT_EQ(page.job(11).extras[0].unitPrice, 45);
    ASSERT_EQ(page.job(11).extras.size(), 2u);
    tab(ExtraLineRow::title, 1, "Layout");
    tab(ExtraLineRow::quantity, 1, "2");
    QTest::keyClick(row(1)->field(ExtraLineRow::quantity), Qt::Key_Up, Qt::AltModifier);
    EXPECT_EQ(page.job(11).extras[0].title, "Layout");
    EXPECT_EQ(row(0)->field(ExtraLineRow::title)->text(), "Layout");
    row(0)->findChild<QAbstractButton*>("removeExtra")->click();
    ASSERT_EQ(page.job(11).extras.size(), 1u);
    EXPECT_EQ(page.job(11).extras[0].title, "Review");
    EXPECT_FALSE(row(1)->isVisible());
    tab(ExtraLineRow::quantity, 0, "x");
    EXPECT_EQ(page.job(11).extras[0].quantity, 1);
    EXPECT_FALSE(row(0)->field(ExtraLineRow::quantity)->problem().isEmpty());
}

TEST(JobsPage, languagesOfOtherJobsAreOffered)
{
    Page page(library());
    page.select(12);
    page.type("source", "Japanese");
    page.select(11);
    page.find<QWidget>("title")->setFocus();
    auto* source = page.find<QLineEdit>("source");
    source->setFocus();
    source->selectAll();
    QTest::keyClicks(source, "jap");
    EXPECT_EQ(source->completer()->currentCompletion(), "Japanese");
}

TEST(JobsPage, deadlinesAreTheClients)
{
    Page page(library());
    page.select(11); // 8:00 UTC.
    EXPECT_EQ(page.find<QLineEdit>("deadlineTime")->text(), "17:00");
    page.type("deadlineTime", "9:00");
    EXPECT_EQ(page.job(11).deadline, instant("2026-03-10T00:00:00.000Z"));
    page.find<QPushButton>("noDeadline")->click();
    EXPECT_FALSE(page.job(11).deadline);
    page.type("deadlineDay", "12 Mar 2026");
    EXPECT_EQ(page.job(11).deadline, instant("2026-03-12T08:00:00.000Z"));
}

TEST(JobsPage, documentsAreCountedWithProgressAndCanBeGivenUp)
{
    Page page(library());
    const auto document = page.world.root / "leaflet.txt";
    ::Test::writeFile(document, "Five words stand in here.");
    page.select(11);
    for (const bool isGivenUp : { true, false }) {
        page.world.background.isHeld = true;
        page.drop(page.find<QScrollArea>("jobDetail")->viewport(), { 10, 10 }, { document.string() });
        auto* menu = page.find<QMenu>("dropMenu");
        menu->actions().front()->trigger();
        menu->close();
        EXPECT_TRUE(page.find<QWidget>("countingBar")->isVisible());
        if (isGivenUp)
            page.find<QPushButton>("cancelCounting")->click();
        page.world.background.letGo();
        EXPECT_FALSE(page.find<QWidget>("countingBar")->isVisible());
        EXPECT_EQ(page.model().sheet().has_value(), !isGivenUp);
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
    ASSERT_TRUE(page.model().counts().attach(id(11)));
    EXPECT_EQ(page.job(11).analyses.back().totals().words.valueOr(MatchBand::noMatch, 0), 5);
    EXPECT_EQ(page.text("price"), "163.00\u00A0EUR");
}

TEST(JobsPage, tabWalksDownThePage)
{
    Page page(library());
    page.select(11);
    QApplication::processEvents();
    auto* inside = page.find<QScrollArea>("jobDetail")->widget();
    auto* title = page.find<QWidget>("title");
    int top = 0, count = 0;
    QWidget* last = nullptr;
    for (auto* widget = title->nextInFocusChain(); widget != title; widget = widget->nextInFocusChain()) {
        if (!inside->isAncestorOf(widget) || !widget->isVisible() || !(widget->focusPolicy() & Qt::TabFocus))
            continue;
        const int middle = widget->mapTo(inside, widget->rect().center()).y();
        EXPECT_GE(widget->mapTo(inside, QPoint(0, widget->height())).y(), top)
            << plain(widget->objectName()) << " comes after " << plain(last ? last->objectName() : QString());
        top = middle;
        last = widget;
        ++count;
    }
    EXPECT_GT(count, 25);
    EXPECT_EQ(last, page.find<QWidget>("notes"));
    page.page->focusDetail();
    EXPECT_EQ(page.window->focusWidget(), title);
}

TEST(JobsPage, aNewJobIsReadyForItsAnalysis)
{
    Page page(library());
    page.select(11);
    page.commands->action(Command::newJob)->trigger();
    ASSERT_TRUE(page.model().jobs().add({ .title = "Leaflet", .clientID = id(2) }));
    QApplication::processEvents();
    EXPECT_EQ(page.find<QLineEdit>("title")->text(), "Leaflet");
    EXPECT_EQ(page.window->focusWidget(), page.find<QWidget>("importAnalysis"));
}

TEST(JobsPage, saysWhatIsMissingFirst)
{
    Page page(Library::makeNew());
    EXPECT_TRUE(page.find<QPushButton>("newClient")->isVisible());
    EXPECT_FALSE(page.find<QPushButton>("newJob")->isVisible());
    page.find<QPushButton>("newClient")->click();
    EXPECT_EQ(page.model().library().clients.size(), 1u);
    EXPECT_TRUE(page.find<QPushButton>("newJob")->isVisible());
}

TEST(JobsPage, filtersAreKeptAndClearedForWhatTheyHide)
{
    Page page(library());
    auto* filter = page.find<QComboBox>("jobFilter");
    for (int place = 0; place < filter->count(); ++place) {
        if (filter->itemText(place) != "Quote")
            continue;
        filter->setCurrentIndex(place);
        emit filter->activated(place);
    }
    EXPECT_EQ(page.model().jobs().ids(), (IDs { id(12) }));
    page.open();
    EXPECT_EQ(page.find<QComboBox>("jobFilter")->currentText(), "Quote");
    page.model().show(AppSection::jobs, id(11));
    EXPECT_EQ(page.find<QComboBox>("jobFilter")->currentText(), "All jobs");
}

TEST(JobsPage, fitsInEverySizeAndLook)
{
    struct Restore {
        ~Restore()
        {
            themeController().setTextSize(100);
            themeController().setAppearance(Appearance::light);
        }
    } const restore;
    for (const int size : { 100, 150, 200 }) {
        for (const auto appearance : { Appearance::light, Appearance::dark }) {
            themeController().setTextSize(size);
            themeController().setAppearance(appearance);
            auto library = ::library();
            library.clients[1].basis = WordBasis::target;
            library.jobs[2].status = JobStatus::inProgress;
            Page page(library);
            for (const std::uint64_t job : { 11, 12, 21 }) {
                page.select(job);
                SCOPED_TRACE(testing::Message() << size << "%, job " << job);
                EXPECT_EQ(lastClippedTexts(*page.window), Strings());
                EXPECT_EQ(namelessWidgets(*page.window), Strings());
            }
        }
    }
}
