// How long the window takes with 20,000 jobs, without a display:
//
//     window-benchmark
//
// Each line is the time until everything that an act of the user brings about is done and painted.

#include "Benchmarks/MakeLibrary.h"
#include "Pallisande/Model/JobSection.h"
#include "Pallisande/Model/LibraryCopies.h"
#include "Pallisande/Model/QtServices.h"
#include "Pallisande/Platform/FolderBookmarks.h"
#include "Pallisande/Shell/MainWindow.h"
#include "Pallisande/Widgets/ThemeController.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QListView>
#include <QTemporaryDir>

#include <algorithm>

#include <fmt/format.h>

namespace {

using namespace Pallisande;

// All events that wait, painting among them.
void finish()
{
    for (int round = 0; round < 4; ++round) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
}

void measure(const char* what, const std::function<void()>& act)
{
    QElapsedTimer timer;
    timer.start();
    act();
    finish();
    fmt::print("{:44} {:8.1f} ms\n", what, static_cast<double>(timer.nsecsElapsed()) / 1e6);
}

} // namespace

int main(int count, char** arguments)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    std::setvbuf(stdout, nullptr, _IOLBF, 0);
    const QTemporaryDir folder;
    const std::filesystem::path library = folder.path().toStdString();
    LibraryStore(library).save(Benchmarks::makeLibrary());
    const auto moment = Benchmarks::libraryMoment();

    QElapsedTimer sinceStart;
    sinceStart.start();
    QApplication application(count, arguments);
    ThemeController theme(application, [] { return SystemLook {}; });
    ThreadedBackground background;
    MemoryPreferences preferences;
    FolderBookmarks bookmarks;
    AppModel model({ .now = [&] { return moment.now; },
        .calendar = moment.calendar,
        .after = &afterWait,
        .background = &background,
        .preferences = &preferences,
        .choose = [](const auto&, const auto&) {},
        .openFile = [](const auto&) {},
        .showInFolder = [](const auto&) {},
        .bookmarks = &bookmarks,
        .defaultFolder = [&] { return library; } });
    MainWindow window(model, { .theme = theme });
    const auto told = [&](const char* what) {
        fmt::print("{:44} {:8.1f} ms\n", what, static_cast<double>(sinceStart.nsecsElapsed()) / 1e6);
    };
    window.show();
    model.start();
    finish();
    told("start to first paint");
    while (model.isOpening())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    finish();
    told("start to the deadlines");
    while (sinceStart.elapsed() < 8000) // What is prepared at leisure.
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);

    const std::pair<AppSection, const char*> sections[] { { AppSection::jobs, "jobs" },
        { AppSection::clients, "clients" }, { AppSection::invoices, "invoices" },
        { AppSection::deadlines, "deadlines" } };
    for (const char* time : { "first", "again" }) {
        for (const auto& [section, name] : sections)
            measure(fmt::format("to {}, {}", name, time).c_str(),
                [&, section = section] { model.setSection(section); });
    }
    model.setSection(AppSection::jobs);
    model.jobs().setFilter(JobFilter::all);
    finish();
    std::string typed;
    for (const char key : std::string_view("report")) {
        typed += key;
        measure(
            fmt::format("search for “{}”", typed).c_str(), [&] { model.setSearch(AppSection::jobs, typed); });
    }
    measure("search cleared", [&] { model.setSearch(AppSection::jobs, ""); });
    auto* list = window.page()->findChild<QListView*>("records");
    measure("another job selected", [&] { list->setCurrentIndex(list->model()->index(500, 0)); });
    measure("the last job shown", [&] { list->scrollToBottom(); });
    measure("a title changed", [&] {
        const auto id = model.jobs().ids().front();
        model.jobs().edit(id, "Change Title", [](Job& job) { job.title += "!"; });
    });
    measure("undone", [&] { model.undo(); });
    measure("sorted by price", [&] { model.jobs().setSort(JobSort::price); });
    measure("all selected", [&] { list->selectAll(); });
    measure("a minute passes", [&] { emit model.timePassed(); });
    const auto copy = model.library(); // Reading one is the work of another thread.
    measure("a copy compared", [&] { compare(model.library(), copy, 2026); });
    measure("documents without a record looked for", [&] { model.copies().lookForUnrecorded(); });
}
