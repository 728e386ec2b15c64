#include "Pallisande/Screens/Deadlines/BoardView.h"
#include "Tests/Pallisande/WidgetChecks.h"
#include "Tests/Pallisande/WindowWorld.h"

#include <gtest/gtest.h>

#include <QMimeData>
#include <QPushButton>

using namespace Pallisande;
using ::Test::id;
using ::Test::WindowWorld;

namespace {

// Cards 31 (overdue), 32 and 33 (tomorrow), 34 (no deadline), and three delivered jobs of two clients.
Library boardLibrary()
{
    auto library = ::Test::sampleLibrary();
    const std::pair<std::uint64_t, const char*> jobs[] { { 31, "2026-03-06T16:00:00.000Z" },
        { 32, "2026-03-10T08:00:00.000Z" }, { 33, "2026-03-10T16:00:00.000Z" }, { 34, "" } };
    for (const auto& [number, deadline] : jobs) {
        auto job = ::Test::job(number, number == 33 ? 2 : 1, 100);
        job.status = JobStatus::inProgress;
        job.deliveredAt.reset();
        if (*deadline)
            job.deadline = ::Test::instant(deadline);
        library.jobs.push_back(job);
    }
    return library;
}

} // namespace

TEST(DeadlinesPage, keysWalkTheCardsAcrossLanes)
{
    WindowWorld world;
    auto& window = world.open(boardLibrary());
    auto* board = world.find<BoardView>("board");
    ASSERT_EQ(board->cardCount(), 4);
    board->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(world.model->selection(AppSection::deadlines), id(31));
    const std::pair<Qt::Key, std::uint64_t> steps[] { { Qt::Key_Down, 32 }, { Qt::Key_Right, 33 },
        { Qt::Key_Down, 34 }, { Qt::Key_Up, 32 }, { Qt::Key_Home, 31 }, { Qt::Key_End, 34 } };
    for (const auto& [key, number] : steps) {
        QTest::keyClick(board, key);
        EXPECT_EQ(world.model->selection(AppSection::deadlines), id(number))
            << QKeySequence(key).toString().toStdString();
    }
    auto* inspector = world.find("inspector");
    EXPECT_FALSE(inspector->isVisible());
    QTest::keyClick(board, Qt::Key_Space);
    EXPECT_TRUE(inspector->isVisible());
    world.keys("F8");
    EXPECT_FALSE(inspector->isVisible());

    world.keys("Ctrl+Shift+D", board);
    EXPECT_EQ(world.model->job(id(34))->status, JobStatus::delivered);
    EXPECT_EQ(board->cardCount(), 3);
    world.model->select(AppSection::deadlines, id(32));
    QTest::keyClick(board, Qt::Key_Return);
    EXPECT_EQ(world.model->section(), AppSection::jobs);
    EXPECT_EQ(world.model->selection(AppSection::jobs), id(32));
    EXPECT_EQ(namelessWidgets(window), std::vector<std::string>());
}

TEST(DeadlinesPage, cardsMoveWithTheClock)
{
    WindowWorld world;
    world.open(boardLibrary());
    auto* board = world.find<BoardView>("board");
    const auto spoken = [&](int row) {
        return board->model()->index(row, 0).data(Qt::AccessibleTextRole).toString().toStdString();
    };
    EXPECT_EQ(spoken(0),
        "Job 31, Nordlicht Verlag, German to English, in progress, due Fri 6 Mar, 17:00, 3 days late, "
        "10.00 EUR before tax");
    const auto before = spoken(1);
    world.now = ::Test::instant("2026-03-10T12:00:00.000Z");
    world.timers.advance(std::chrono::minutes(1));
    EXPECT_NE(spoken(1), before);
    EXPECT_NE(spoken(1).find("late"), std::string::npos);
}

TEST(DeadlinesPage, deliveredJobsBecomeAnInvoice)
{
    WindowWorld world;
    world.open(boardLibrary());
    auto* delivered = world.find("delivered");
    const auto buttons = delivered->findChildren<QPushButton*>("makeInvoice");
    ASSERT_EQ(buttons.size(), 2);
    buttons.front()->click();
    ASSERT_EQ(world.model->library().invoices.size(), 1U);
    EXPECT_EQ(world.model->section(), AppSection::invoices);
    world.model->setSection(AppSection::deadlines);
    WindowWorld::settleEvents();
    auto* drafts = world.find<QPushButton>("forgottenDrafts");
    EXPECT_EQ(drafts->text().toStdString(), "1 draft not issued");
    drafts->click();
    EXPECT_EQ(world.model->section(), AppSection::invoices);
    EXPECT_EQ(world.model->invoices().filter(), InvoiceFilter::drafts);
}

TEST(DeadlinesPage, aReportDroppedOnACardIsReviewedForItsJob)
{
    WindowWorld world;
    world.open(boardLibrary());
    auto* board = world.find<BoardView>("board");
    const auto report = world.root / "report.csv";
    std::ofstream(report) << "no report";
    QMimeData data;
    data.setUrls({ QUrl::fromLocalFile(QString::fromStdString(report.string())) });
    const auto place = board->visualRect(board->model()->index(2, 0)).center();
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(board->viewport(), &enter); // Without it, moves go nowhere.
    QDragMoveEvent move(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(board->viewport(), &move);
    EXPECT_TRUE(move.isAccepted());
    QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(board->viewport(), &drop);
    ASSERT_TRUE(world.model->sheet());
    EXPECT_TRUE(std::holds_alternative<ReviewSheet>(*world.model->sheet()));
    EXPECT_EQ(world.model->imports().pending()->jobID, id(33));
    world.model->closeSheet();
}

TEST(DeadlinesPage, emptyPagesSayWhatToDo)
{
    WindowWorld world;
    auto& window = world.open();
    const auto shows = [&](const char* sentence) {
        const auto labels = window.page()->findChildren<QLabel*>();
        return std::any_of(labels.begin(), labels.end(), [&](const QLabel* label) {
            return label->isVisible() && label->text() == QString::fromUtf8(sentence);
        });
    };
    EXPECT_TRUE(shows("Welcome. Add a client first, then a job for it: its deadline appears here."));
    world.model->clients().add();
    world.model->setSection(AppSection::deadlines);
    WindowWorld::settleEvents();
    EXPECT_TRUE(shows("No open jobs. Enjoy the quiet."));
}
