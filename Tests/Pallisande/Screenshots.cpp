#include "Pallisande/Preview/PdfRenderer.h"
#include "Pallisande/Settings/SettingsWindow.h"
#include "Pallisande/Shell/MainWindow.h"
#include "Pallisande/Widgets/SheetDialog.h"
#include "Pallisande/Widgets/ThemeController.h"
#include "PallisandeKit/Samples/SampleLibrary.h"
#include "PallisandeKit/Samples/SampleReport.h"
#include "Tests/Pallisande/ModelWorld.h"
#include "Tests/Pallisande/WidgetChecks.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QEventLoop>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <QTreeWidget>

#include <fmt/format.h>

#include <cstdio>

// Saves a picture of every page and sheet, with the sample library, and says which texts don't fit:
//     pallisande-screenshots FOLDER [--only NAME] [--large PERCENT]
// QT_QPA_PLATFORM=offscreen needs no display; QT_SCALE_FACTOR=2 draws at twice the density.
namespace {

using namespace Pallisande;
namespace fs = std::filesystem;

void settle(int milliseconds)
{
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

// A window on a library of its own.
struct Studio {
    Test::World world;
    ThemeController& theme;
    std::unique_ptr<MainWindow> window;
    bool isSample = true;

    explicit Studio(ThemeController& controller)
        : theme(controller)
    {
    }
    ~Studio() { window.reset(); }

    AppModel& model() { return *world.model; }

    void open(QSize size)
    {
        auto& started = world.start();
        window = std::make_unique<MainWindow>(started, WindowServices { theme, nullptr, {}, isSample, {} });
        window->resize(size);
        window->show();
        settle(20);
    }

    void showJob(std::string_view title)
    {
        for (const auto& job : model().library().jobs) {
            if (job.title == title)
                model().show(AppSection::jobs, job.id);
        }
    }
    const Job& job(std::string_view title)
    {
        for (const auto& one : model().library().jobs) {
            if (one.title == title)
                return one;
        }
        throw std::runtime_error("no such job");
    }
    const Invoice& invoice(InvoiceStatus status)
    {
        for (const auto& one : model().library().invoices) {
            if (Ledger::status(model().library(), one, model().moment()) == status)
                return one;
        }
        throw std::runtime_error("no such invoice");
    }
    void showInvoice(InvoiceStatus status) { model().show(AppSection::invoices, invoice(status).id); }
    const Client& client(std::size_t place) { return model().library().clients.at(place); }
    // Brings a card of the page into view, by its class.
    void scrollTo(const char* card)
    {
        for (auto* widget : window->findChildren<QWidget*>()) {
            auto* const page = widget->inherits(card) && widget->isVisible() ? pageAround(widget) : nullptr;
            if (page) {
                settle(20);
                page->verticalScrollBar()->setValue(widget->mapTo(page->widget(), QPoint()).y());
            }
        }
    }
    static QScrollArea* pageAround(QWidget* widget)
    {
        auto* parent = widget->parentWidget();
        while (parent && !qobject_cast<QScrollArea*>(parent))
            parent = parent->parentWidget();
        return qobject_cast<QScrollArea*>(parent);
    }
    QWidget* sheet() { return window->sheet(); }
    fs::path file(const char* name, const std::string& text)
    {
        Test::writeFile(world.root / name, text);
        return world.root / name;
    }
};

struct Scene {
    const char* name;
    bool isStarred; // Also in the smallest window and with large text.
    std::function<void(Studio&)> arrange; // What it shows; before it, the window shows the deadlines.
    std::function<QWidget*(Studio&)> subject = [](Studio& studio) -> QWidget* { return studio.window.get(); };
    std::function<void(Studio&)> prepare = {}; // The library, before the window opens.
};

QWidget* sheetOf(Studio& studio) { return studio.sheet(); }
void nothing(Studio&) { }

void emptyLibrary(Studio& studio)
{
    fs::remove_all(studio.world.library);
    fs::create_directory(studio.world.library);
    studio.isSample = false;
}

void changeLibrary(Studio& studio, const std::function<void(Library&)>& change)
{
    const LibraryStore store(studio.world.library);
    auto library = store.load(Test::moment()).library;
    change(library);
    store.save(library);
}

std::function<QWidget*(Studio&)> settings(int page)
{
    return [page](Studio& studio) -> QWidget* {
        studio.window->showSettings(page);
        return studio.window->findChild<SettingsWindow*>();
    };
}

// A week of copies, of which each older one knows less, and one made on demand.
void makeCopies(Studio& studio)
{
    const LibraryStore store(studio.world.library);
    auto library = store.load(Test::moment()).library;
    store.backup(library, Test::momentOn("2026-03-05"));
    for (int back = 1; back <= 7; ++back) {
        if (back % 2 == 0 && !library.invoices.empty())
            library.invoices.pop_back();
        library.jobs.pop_back();
        library.clients.back().name += " (old)";
        store.dailyBackup(library, Test::momentOn(Test::day("2026-03-09").plusDays(-back).toString()));
    }
}

void makeOtherVersions(Studio& studio)
{
    makeCopies(studio);
    const auto& folder = studio.world.library;
    fs::copy(folder / "Backups/Pallisande Library 2026-03-07.json",
        folder / "Pallisande Library (Ada’s conflicted copy 2026-03-08).json");
    Test::writeFile(folder / "Backups/Pallisande Library 2026-03-06.json", "{\"version\": 1, \"jobs");
}

std::function<void(Studio&)> backups(int row, bool asks = false)
{
    return [=](Studio& studio) {
        studio.window->showBackups();
        auto* list = studio.window->findChild<QTreeWidget*>("backupList");
        if (row >= 0)
            list->setCurrentItem(list->topLevelItem(row));
        if (asks)
            studio.window->findChild<QPushButton*>("restore")->click();
    };
}

QWidget* backupsWindow(Studio& studio) { return studio.window->findChild<QDialog*>("backups"); }

std::vector<Scene> scenes()
{
    const std::vector<SampleFile> files { { "Terms.docx", { 0, 60, 42, 118, 35, 22, 0, 41, 702 }, 1 },
        { "Annex.docx", { 0, 0, 18, 0, 0, 12, 9, 0, 240 } } };
    const auto invoiceScene
        = [](InvoiceStatus status) { return [status](Studio& studio) { studio.showInvoice(status); }; };
    const auto import = [](Studio& studio, const fs::path& file) {
        studio.showJob("Annual report, part 2");
        studio.model().imports().read(studio.job("Annual report, part 2").id, { file });
    };
    std::vector<Scene> all {
        { "deadlines", true, nothing },
        { "deadlines-empty", false, nothing, {}, emptyLibrary },
        { "jobs-price", true, [](Studio& studio) { studio.showJob("Annual report, part 2"); } },
        { "jobs-problems", true, [](Studio& studio) { studio.showJob("Warranty terms"); } },
        { "jobs-analyses", false,
            [](Studio& studio) {
                studio.showJob("Warranty terms");
                studio.scrollTo("Pallisande::AnalysesCard");
            } },
        { "jobs-target", false, [](Studio& studio) { studio.showJob("Safety data sheet"); } },
        { "jobs-locked", false, [](Studio& studio) { studio.showJob("Spring catalogue"); } },
        { "jobs-billed", false, [](Studio& studio) { studio.showJob("Spring catalogue"); }, {},
            [](Studio& studio) {
                changeLibrary(studio, [](Library& library) {
                    for (auto& client : library.clients)
                        client.minimumFee = 500;
                });
            } },
        { "jobs-empty", false, [](Studio& studio) { studio.model().setSection(AppSection::jobs); }, {},
            emptyLibrary },
        { "jobs-no-hits", false,
            [](Studio& studio) {
                studio.model().setSection(AppSection::jobs);
                studio.model().setSearch(AppSection::jobs, "zzz");
            } },
        { "clients", true,
            [](Studio& studio) { studio.model().show(AppSection::clients, studio.client(0).id); } },
        { "clients-weights-invalid", true,
            [](Studio& studio) {
                const auto id = studio.client(0).id;
                studio.model().show(AppSection::clients, id);
                studio.model().clients().edit(id, "Change Weights",
                    [](Client& client) { client.weights.percent[MatchBand::exact] = 120; });
                studio.scrollTo("Pallisande::WeightsCard");
            } },
        { "clients-empty", false, [](Studio& studio) { studio.model().setSection(AppSection::clients); }, {},
            emptyLibrary },
        { "invoices-draft", true, invoiceScene(InvoiceStatus::draft) },
        { "invoices-open-without-rate", false, invoiceScene(InvoiceStatus::open) },
        { "invoices-part-paid", true, invoiceScene(InvoiceStatus::partlyPaid) },
        { "invoices-overdue", false, invoiceScene(InvoiceStatus::overdue) },
        { "invoices-credited", false, invoiceScene(InvoiceStatus::credited) },
        { "invoices-credit-note", false, invoiceScene(InvoiceStatus::creditNote) },
        { "invoices-numbering", false, invoiceScene(InvoiceStatus::open), {},
            [](Studio& studio) {
                changeLibrary(studio, [](Library& library) {
                    std::erase_if(library.invoices, [](const Invoice& one) { return one.sequence == 2; });
                });
            } },
        { "invoices-empty", false, [](Studio& studio) { studio.model().setSection(AppSection::invoices); },
            {}, emptyLibrary },
        { "banner", false,
            [](Studio& studio) {
                studio.model().tell(
                    Problem { .text = "Pallisande couldn’t save your library: the disk is full.",
                        .action = Problem::Action::tryAgain });
            } },
        { "toast", false,
            [](Studio& studio) {
                studio.model().tell(
                    Notice { .text = "“Leaflet” was deleted.", .action = Notice::Action::undo });
            } },
        { "read-only", false, nothing, {},
            [](Studio& studio) {
                const auto file = studio.world.library / "Pallisande Library.json";
                auto text = Test::fileText(file);
                const auto at = text.find("\"version\": 1");
                if (at != std::string::npos)
                    text.replace(at, 12, "\"version\": 9");
                Test::writeFile(file, text);
                studio.isSample = false;
            } },
        { "sheet-new-job", true, [](Studio& studio) { studio.model().jobs().openNewJob("Leaflet"); },
            sheetOf },
        { "sheet-typed-counts", false,
            [](Studio& studio) {
                studio.showJob("Exhibition labels");
                studio.model().openSheet(ManualSheet { studio.job("Exhibition labels").id, {} });
            },
            sheetOf },
        { "sheet-review", true,
            [=](Studio& studio) { import(studio, studio.file("Terms.csv", sampleMemoQReport(files))); },
            sheetOf },
        { "sheet-review-many", false,
            [=](Studio& studio) {
                std::vector<SampleFile> many;
                for (int number = 1; number <= 300; ++number)
                    many.push_back({ fmt::format("chapter-{:03}.docx", number),
                        { 0, number, 12, 40, 3, 5, 0, 7, 18000 + number } });
                import(studio, studio.file("Many.csv", sampleMemoQReport(many)));
            },
            sheetOf },
        { "sheet-review-mapping", true,
            [=](Studio& studio) { import(studio, studio.file("table.csv", sampleTable(files))); }, sheetOf },
        { "sheet-review-mapping-rows", false,
            [=](Studio& studio) {
                import(studio,
                    studio.file("rows.csv",
                        "File;Type;Segments;Words\na.docx;Repetitions;2;20\n;100%;5;61\n;New;40;512\n;"
                        "Comment;1;4\n;All;48;597\n"));
            },
            sheetOf },
        { "sheet-review-failed", false,
            [=](Studio& studio) { import(studio, studio.file("report.html", "<html></html>")); }, sheetOf },
        { "sheet-make-job", true,
            [](Studio& studio) {
                fs::create_directory(studio.world.root / "Documents");
                studio.file("Documents/a.txt", "One two three. Four five. One two three.");
                studio.file("Documents/b.txt", "One two three. Six seven eight nine.");
                studio.file("Documents/c.docx", "not a package");
                studio.model().counts().count(
                    { studio.world.root / "Documents" }, DocumentCounts::Purpose::newJob);
            },
            sheetOf },
        { "sheet-attach-count", false,
            [](Studio& studio) {
                const auto file = studio.file("a.txt", "One two three. Four five. One two three.");
                studio.model().counts().count(
                    { file }, DocumentCounts::Purpose::attach, studio.job("Annual report, part 2").id);
            },
            sheetOf },
        { "sheet-issue", true,
            [](Studio& studio) {
                studio.showInvoice(InvoiceStatus::draft);
                studio.model().invoices().openIssueSheet(studio.invoice(InvoiceStatus::draft).id);
            },
            sheetOf },
        { "sheet-payment", false,
            [](Studio& studio) {
                studio.showInvoice(InvoiceStatus::partlyPaid);
                studio.model().openSheet(PaymentSheet { studio.invoice(InvoiceStatus::partlyPaid).id, {} });
            },
            sheetOf },
        { "sheet-typed-rate", false,
            [](Studio& studio) {
                studio.showInvoice(InvoiceStatus::open);
                studio.model().invoices().addExchangeRate(studio.invoice(InvoiceStatus::open).id);
            },
            sheetOf },
        { "settings-business", true, nothing, settings(0) },
        { "settings-invoices", false, nothing, settings(1) },
        { "settings-library", false, nothing, settings(2) },
        { "backups", false, backups(-1), backupsWindow, makeCopies },
        { "backups-compared", true, backups(5), backupsWindow, makeCopies },
        { "backups-asked", false, backups(3, true), backupsWindow, makeCopies },
        { "backups-other-version", false, backups(0), backupsWindow, makeOtherVersions },
        { "backups-damaged", false, backups(4), backupsWindow, makeOtherVersions },
        { "backups-take-over", true, backups(0), backupsWindow,
            [](Studio& studio) {
                makeCopies(studio);
                changeLibrary(studio, [](Library& library) { library.invoices.clear(); });
            } },
        { "backups-empty", false, backups(-1), backupsWindow,
            [](Studio& studio) { fs::remove_all(studio.world.library / "Backups"); } },
    };
    for (auto& scene : all) {
        if (!scene.subject)
            scene.subject = [](Studio& studio) -> QWidget* { return studio.window.get(); };
    }
    return all;
}

class Photographer {
public:
    Photographer(QString folder, ThemeController& theme, int largeText)
        : m_folder(std::move(folder))
        , m_theme(theme)
        , m_largeText(largeText)
    {
        PdfRenderer renderer;
        const SessionServices services {
            .now = [] { return Test::moment().now; }, .calendar = Test::calendar(), .renderer = &renderer
        };
        makeSampleFolder(m_sample / "Library", services);
    }

    void take(const Scene& scene)
    {
        for (const auto appearance : { Appearance::light, Appearance::dark }) {
            take(scene, appearance, { MainWindow::usualWidth, MainWindow::usualHeight }, 100);
            if (!scene.isStarred)
                continue;
            take(scene, appearance, { MainWindow::leastWidth, MainWindow::leastHeight }, 100);
            take(scene, appearance, { MainWindow::usualWidth, MainWindow::usualHeight }, m_largeText);
        }
    }

private:
    void take(const Scene& scene, Appearance appearance, QSize size, int textSize)
    {
        m_theme.setAppearance(appearance);
        m_theme.setTextSize(textSize);
        Studio studio(m_theme);
        fs::remove_all(studio.world.library);
        fs::copy(m_sample / "Library", studio.world.library, fs::copy_options::recursive);
        if (scene.prepare)
            scene.prepare(studio);
        studio.open(size);
        scene.arrange(studio);
        settle(20);
        auto* const subject = scene.subject(studio);
        if (!subject) {
            std::printf("%s: nothing is shown. %s\n", scene.name, studio.world.problem().c_str());
            return;
        }
        settle(450); // Previews are drawn a moment later.
        const auto name
            = QStringLiteral("%1-%2%3%4-%5x.png")
                  .arg(QString::fromUtf8(scene.name),
                      appearance == Appearance::dark ? QStringLiteral("dark") : QStringLiteral("light"),
                      size.width() == MainWindow::leastWidth ? QStringLiteral("-small") : QString(),
                      textSize == 100 ? QString() : QStringLiteral("-large"),
                      qEnvironmentVariable("QT_SCALE_FACTOR", QStringLiteral("1")));
        subject->grab().save(m_folder + QLatin1Char('/') + name);
        for (const auto& text : clippedTexts(*subject))
            std::printf("%s: “%s” doesn’t fit.\n", name.toStdString().c_str(), text.c_str());
        std::fflush(stdout);
    }

    QString m_folder;
    ThemeController& m_theme;
    int m_largeText;
    Test::TemporaryFolder m_sample;
};

} // namespace

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QFont font(QStringLiteral("Noto Sans"));
    font.setPixelSize(13);
    QApplication::setFont(font);
    QApplication::setApplicationVersion(QStringLiteral("1.0"));
    QCommandLineParser options;
    options.addOption({ "only", "Scenes whose name begins so.", "name" });
    options.addOption({ "large", "The size of large text in percent.", "percent", "150" });
    options.addPositionalArgument("folder", "Where the pictures go.");
    options.addHelpOption();
    options.process(application);
    if (options.positionalArguments().size() != 1)
        options.showHelp(2);
    const auto folder = options.positionalArguments().front();
    QDir().mkpath(folder);
    ThemeController theme(application, [] { return SystemLook { .avoidsMotion = true }; });
    Photographer photographer(folder, theme, options.value("large").toInt());
    for (const auto& scene : scenes()) {
        if (QString::fromUtf8(scene.name).startsWith(options.value("only")))
            photographer.take(scene);
    }
    return 0;
}
