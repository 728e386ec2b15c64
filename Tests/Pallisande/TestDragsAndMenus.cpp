#include "Pallisande/Screens/Deadlines/BoardView.h"
#include "Pallisande/Screens/RecordListView.h"
#include "Tests/Pallisande/WindowWorld.h"

#include <gtest/gtest.h>

#include <QAbstractItemView>
#include <QChildEvent>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QDrag>
#include <QDropEvent>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QPushButton>
#include <QTimer>

#include <set>

using namespace Pallisande;
using ::Test::id;
using ::Test::WindowWorld;

namespace {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;

// A job to be done (13), a delivered one (12), one on INV-2026-001 (11) and one on a draft (21).
struct ListsWorld : WindowWorld {
    ListsWorld()
    {
        auto holding = ::Test::sampleLibrary();
        auto open = ::Test::job(13, 1, 300);
        open.status = JobStatus::inProgress;
        open.deliveredAt.reset();
        open.deadline = ::Test::instant("2026-03-09T17:00:00.000Z");
        holding.jobs.push_back(open);
        ::Test::draft(holding, { 21 });
        LibraryStore(library).save(holding);
        {
            ::Test::Surroundings surroundings;
            auto session = surroundings.open(library);
            const std::vector<Base::Uuid> jobs { id(11) };
            issued = session.change([&](Library& changed) {
                return Ledger::draftInvoice(changed, jobs, ::Test::moment(), ::Test::labels()).id;
            });
            session.issue(issued);
        }
        WindowWorld::open();
        draft = model->library().invoices.front().id;
    }

    QAbstractItemView* list(AppSection section)
    {
        model->setSection(section);
        settleEvents();
        if (section == AppSection::deadlines)
            return window->page()->findChild<BoardView*>("board");
        return window->page()->findChild<RecordListView*>("records");
    }
    static QPoint placeOf(
        QAbstractItemView* list, const Base::Uuid& record, const std::vector<Base::Uuid>& ids)
    {
        const auto row = std::find(ids.begin(), ids.end(), record) - ids.begin();
        return list->visualRect(list->model()->index(static_cast<int>(row), 0)).center();
    }

    Base::Uuid issued, draft;
};

// What a list gives away when its current row is pulled out of it.
class DragWatcher : public QObject {
public:
    explicit DragWatcher(QAbstractItemView* list)
        : m_list(list)
    {
        list->installEventFilter(this);
    }
    void pull(const QPoint& from)
    {
        QTimer::singleShot(20, this, [] { QDrag::cancel(); }); // Where dragging waits for the mouse.
        const auto send = [&](QEvent::Type type, const QPoint& place, Qt::MouseButtons buttons) {
            QMouseEvent event(type, QPointF(place), QPointF(m_list->viewport()->mapToGlobal(place)),
                type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, buttons, Qt::NoModifier);
            QApplication::sendEvent(m_list->viewport(), &event);
        };
        const auto to = from + QPoint(QApplication::startDragDistance() + 20, 0);
        send(QEvent::MouseButtonPress, from, Qt::LeftButton);
        for (const auto& place : { from + QPoint(2, 0), to, to + QPoint(2, 0) })
            send(QEvent::MouseMove, place, Qt::LeftButton);
        send(QEvent::MouseButtonRelease, to, Qt::NoButton);
    }

    void finish() { look(); }

    int drags = 0;
    Strings lines;
    std::vector<fs::path> files;

protected:
    bool eventFilter(QObject*, QEvent* event) override
    {
        if (event->type() == QEvent::ChildAdded)
            m_child = static_cast<QChildEvent*>(event)->child();
        look();
        return false;
    }

private:
    void look()
    {
        const auto* const drag = qobject_cast<QDrag*>(m_child);
        if (!drag || !drag->mimeData())
            return;
        ++drags;
        for (const auto& line : drag->mimeData()->text().split('\n'))
            lines.push_back(line.toStdString());
        files = filesOf(drag->mimeData());
        m_child = nullptr;
    }
    QAbstractItemView* m_list;
    QPointer<QObject> m_child;
};

struct Answer {
    bool isTaken = false;
    Qt::DropAction action = Qt::IgnoreAction;
};

// How a widget answers to files that hover over it, and then are dropped.
Answer drop(QWidget* widget, const QPoint& place, const std::vector<fs::path>& files, bool letsGo = true)
{
    QMimeData data;
    QList<QUrl> urls;
    for (const auto& file : files)
        urls += QUrl::fromLocalFile(QString::fromStdString(file.string()));
    data.setUrls(urls);
    QDragEnterEvent enter(place, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(widget, &enter);
    QDragMoveEvent move(place, Qt::CopyAction | Qt::MoveAction, &data, Qt::LeftButton, Qt::NoModifier);
    move.setAccepted(enter.isAccepted()); // As it goes on unless the widget says otherwise.
    QApplication::sendEvent(widget, &move);
    const Answer answer { move.isAccepted() && move.dropAction() != Qt::IgnoreAction, move.dropAction() };
    if (letsGo && answer.isTaken) {
        QDropEvent event(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(widget, &event);
    } else {
        QDragLeaveEvent leave;
        QApplication::sendEvent(widget, &leave);
    }
    return answer;
}

// The actions of a menu and of those inside it.
std::vector<QAction*> actionsOf(const QMenu& menu)
{
    std::vector<QAction*> found;
    for (auto* action : menu.actions()) {
        if (action->menu()) {
            const auto inner = actionsOf(*action->menu());
            found.insert(found.end(), inner.begin(), inner.end());
        } else if (!action->isSeparator()) {
            found.push_back(action);
        }
    }
    return found;
}

QMenu* openedMenu(const QAbstractItemView* list)
{
    auto menus = list->findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly);
    return menus.isEmpty() ? nullptr : menus.back();
}

} // namespace

TEST(Drags, anIssuedInvoiceLeavesAsAFileAndRowsAsText)
{
    ListsWorld world;
    auto* list = world.list(AppSection::invoices);
    const auto& ids = world.model->invoices().ids();
    const auto stored = world.library / "Invoices/INV-2026-001.pdf";
    const std::string row = "INV-2026-001\tNordlicht Verlag\t9 Mar 2026\t119.00\tEUR\tOpen";
    {
        world.model->select(AppSection::invoices, world.issued);
        DragWatcher watcher(list);
        watcher.pull(ListsWorld::placeOf(list, world.issued, ids));
        watcher.finish();
        EXPECT_EQ(watcher.drags, 1);
        EXPECT_EQ(watcher.lines, Strings { row });
        ASSERT_EQ(watcher.files.size(), 1u);
        EXPECT_NE(watcher.files[0], stored) << "a copy: who gets it may move it away";
        EXPECT_EQ(watcher.files[0].filename(), "INV-2026-001.pdf");
        EXPECT_EQ(::Test::fileText(watcher.files[0]), ::Test::fileText(stored));
    }
    list->selectAll();
    {
        DragWatcher watcher(list);
        watcher.pull(ListsWorld::placeOf(list, world.issued, ids));
        watcher.finish();
        EXPECT_EQ(watcher.lines.size(), 2u);
        EXPECT_EQ(watcher.files.size(), 1u) << "a draft has no PDF";
    }
    EXPECT_TRUE(fs::exists(stored));

    auto* jobs = world.list(AppSection::jobs);
    world.model->jobs().setFilter(JobFilter::all);
    jobs->selectAll();
    world.action(Command::copyRows)->trigger();
    const auto copied = qApp->clipboard()->text().split('\n');
    ASSERT_EQ(copied.size(), 4);
    for (const auto& line : copied)
        EXPECT_EQ(line.count('\t'), copied.front().count('\t')) << line.toStdString();
    DragWatcher watcher(jobs);
    watcher.pull(ListsWorld::placeOf(jobs, id(13), world.model->jobs().ids()));
    watcher.finish();
    Strings asCopied;
    for (const auto& line : copied)
        asCopied.push_back(line.toStdString());
    EXPECT_EQ(watcher.lines, asCopied);
    EXPECT_TRUE(watcher.files.empty());
}

TEST(Drops, areTakenWhereTheyMeanSomething)
{
    ListsWorld world;
    const auto report = world.root / "analysis.xml", second = world.root / "analysis.csv",
               document = world.root / "manual.docx";
    for (const auto& file : { report, second, document })
        ::Test::writeFile(file, "some text");
    auto* board = world.list(AppSection::deadlines);
    const auto card = board->visualRect(board->model()->index(0, 0)).center();
    EXPECT_TRUE(drop(board->viewport(), card, { report }, false).isTaken);
    EXPECT_FALSE(drop(board->viewport(), { 2, 2 }, { report }).isTaken) << "beside every card";

    auto* jobs = world.list(AppSection::jobs);
    world.model->jobs().setFilter(JobFilter::all);
    WindowWorld::settleEvents();
    const auto& ids = world.model->jobs().ids();
    const QPoint beside(20, jobs->viewport()->height() - 5);
    const struct {
        std::string name;
        std::optional<std::uint64_t> job;
        std::vector<fs::path> files;
        bool isTaken;
    } cases[] {
        { "report", 13, { report }, true },
        { "several reports", 13, { report, second }, true },
        { "document", 13, { document }, true },
        { "a report and a document", 13, { report, document }, false },
        { "invoiced", 11, { report }, false },
        { "on a draft", 21, { report }, false },
        { "new job of a report", {}, { report }, true },
        { "new job of two reports", {}, { report, second }, false },
        { "new job of documents", {}, { document, document }, true },
    };
    for (const auto& [name, job, files, isTaken] : cases) {
        SCOPED_TRACE(name);
        const auto place = job ? ListsWorld::placeOf(jobs, id(*job), ids) : beside;
        const auto answer = drop(jobs->viewport(), place, files, false);
        EXPECT_EQ(answer.isTaken, isTaken);
        EXPECT_EQ(answer.action, isTaken ? Qt::CopyAction : Qt::IgnoreAction) << "never moved";
    }
    const auto before = world.document();
    drop(jobs->viewport(), ListsWorld::placeOf(jobs, id(13), ids), { report, second });
    ASSERT_TRUE(world.model->imports().pending());
    EXPECT_EQ(world.model->imports().pending()->jobID, id(13));
    EXPECT_FALSE(drop(jobs->viewport(), beside, { document }).isTaken) << "one sheet is open already";
    world.model->imports().discard();
    world.model->closeSheet();
    WindowWorld::settleEvents();
    EXPECT_EQ(world.document(), before);

    // Elsewhere the window takes them, and asks what for.
    for (const auto section : { AppSection::clients, AppSection::invoices }) {
        auto* list = world.list(section);
        EXPECT_TRUE(drop(list->viewport(), { 20, 20 }, { report }).isTaken);
        auto* question = world.window->findChild<QDialog*>("choice");
        ASSERT_TRUE(question);
        delete question;
    }

    // Where nothing can be changed, nothing is taken.
    ::Test::writeFile(world.library / "Pallisande Library.json", world.document() + "\n");
    world.model->jobs().edit(id(13), "Change Title", [](Job& job) { job.title = "Changed"; });
    world.settle();
    ASSERT_FALSE(world.model->canEdit());
    jobs = world.list(AppSection::jobs);
    EXPECT_FALSE(drop(jobs->viewport(), ListsWorld::placeOf(jobs, id(13), ids), { report }).isTaken);
    EXPECT_FALSE(drop(world.window.get(), { 5, 5 }, { report }).isTaken);
}

TEST(ContextMenus, holdTheActionsOfTheMenuBarInItsOrder)
{
    ListsWorld world;
    auto& commands = world.window->commands();
    std::set<const QAction*> ours;
    for (const auto& [command, action] : commands.actions())
        ours.insert(action);
    std::map<const QAction*, std::pair<const QMenu*, std::size_t>> inBar;
    for (const auto* top : world.window->menuBar()->actions()) {
        for (std::size_t place = 0; auto* action : actionsOf(*top->menu()))
            inBar[action]
                = { top->menu(), ++place }; // Of two menus, that of its own kind, which comes later.
    }
    world.model->jobs().setFilter(JobFilter::all);
    const struct {
        AppSection section;
        std::optional<Base::Uuid> selected;
        std::vector<Command> can, cannot; // Some of them.
    } cases[] {
        { AppSection::deadlines, id(13), { Command::statusDelivered, Command::importAnalysis }, {} },
        { AppSection::jobs, id(13), { Command::statusDelivered, Command::deleteJob },
            { Command::statusInvoiced, Command::statusPaid } },
        { AppSection::jobs, id(12), { Command::makeInvoice }, {} },
        { AppSection::jobs, id(11), { Command::duplicateJob, Command::openClient },
            { Command::importAnalysis, Command::deleteJob, Command::makeInvoice } },
        { AppSection::jobs, std::nullopt, {}, { Command::makeInvoice, Command::deleteJob } },
        { AppSection::clients, id(1), { Command::newJob, Command::archiveClient }, {} },
        { AppSection::invoices, world.issued, { Command::recordPayment, Command::makeCreditNote },
            { Command::issue, Command::deleteDraft } },
        { AppSection::invoices, world.draft, { Command::issue, Command::deleteDraft },
            { Command::openStoredPDF, Command::recordPayment } },
    };
    for (const auto& [section, selected, can, cannot] : cases) {
        SCOPED_TRACE("section " + std::to_string(static_cast<int>(section)));
        auto* list = world.list(section);
        world.model->select(section, selected);
        WindowWorld::settleEvents();
        list->setFocus();
        for (const bool isByKey : { false, true }) {
            if (isByKey) {
                QTest::keyClick(list, Qt::Key_F10, Qt::ShiftModifier);
            } else {
                const auto row = list->visualRect(list->currentIndex());
                const auto place = selected ? row.center() : QPoint(20, list->viewport()->height() - 5);
                QContextMenuEvent event(
                    QContextMenuEvent::Mouse, place, list->viewport()->mapToGlobal(place));
                QApplication::sendEvent(list->viewport(), &event);
            }
            auto* menu = openedMenu(list);
            ASSERT_TRUE(menu && menu->isVisible());
            const auto entries = menu->actions();
            EXPECT_LE(std::count_if(
                          entries.begin(), entries.end(), [](auto* entry) { return !entry->isSeparator(); }),
                9);
            std::map<const QMenu*, std::size_t> last;
            const auto actions = actionsOf(*menu);
            for (const auto* action : actions) {
                const auto name = action->text().toStdString();
                EXPECT_TRUE(ours.contains(action)) << name << " is another one than in the menu bar";
                ASSERT_TRUE(inBar.contains(action)) << name;
                const auto [top, place] = inBar[action];
                EXPECT_GT(place, last[top]) << name << " stands otherwise in the menu bar";
                last[top] = place;
            }
            const auto has = [&](Command command) {
                return std::find(actions.begin(), actions.end(), commands.action(command)) != actions.end();
            };
            for (const auto command : can)
                EXPECT_TRUE(has(command) && commands.action(command)->isEnabled())
                    << commands.action(command)->text().toStdString();
            for (const auto command : cannot)
                EXPECT_TRUE(has(command) && !commands.action(command)->isEnabled())
                    << commands.action(command)->text().toStdString();
            menu->close();
            delete menu;
        }
    }
}
