#include "Pallisande/Model/QtServices.h"
#include "Pallisande/Platform/DesktopLook.h"
#include "Pallisande/Platform/FolderBookmarks.h"
#include "Pallisande/Platform/FreedesktopNotifications.h"
#include "Pallisande/Platform/SingleInstance.h"
#include "Pallisande/Platform/SystemPreferences.h"
#include "Pallisande/Platform/SystemSignals.h"
#include "Pallisande/Platform/ThreadedNetwork.h"
#include "Pallisande/Platform/VisitingPreferences.h"
#include "Pallisande/Preview/PdfRenderer.h"
#include "Pallisande/Screens/Text.h"
#include "Pallisande/Shell/FileChooser.h"
#include "Pallisande/Shell/MainWindow.h"
#include "Pallisande/Widgets/Icons.h"
#include "Pallisande/Widgets/ThemeController.h"
#include "PallisandeKit/Samples/SampleLibrary.h"

#include <QApplication>
#include <QCommandLineParser>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QMessageBox>
#include <QProcess>
#include <QSessionManager>
#include <QStandardPaths>
#include <QStyle>
#include <QTimer>
#include <QUrl>

#include <chrono>
#include <thread>

namespace {

using namespace Pallisande;
namespace fs = std::filesystem;

struct Wishes {
    fs::path library; // Empty: the user's own.
    bool isSample = false;
    std::vector<fs::path> files;
};

Wishes readArguments(const QApplication& application)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Clients, jobs, counts and invoices of a freelance translator."));
    parser.addHelpOption();
    parser.addVersionOption();
    const QCommandLineOption library(
        QStringLiteral("library"), QStringLiteral("Opens the library in FOLDER."), QStringLiteral("FOLDER"));
    const QCommandLineOption sample(
        QStringLiteral("sample"), QStringLiteral("Opens a library of sample data."));
    parser.addOptions({ library, sample });
    parser.addPositionalArgument(QStringLiteral("FILES"),
        QStringLiteral("Reports, documents or a library to open."), QStringLiteral("[FILES…]"));
    parser.process(application);
    Wishes wishes { .isSample = parser.isSet(sample) };
    if (parser.isSet(library))
        wishes.library = fs::absolute(plain(parser.value(library))).lexically_normal();
    else if (wishes.isSample)
        wishes.library = plain(QStandardPaths::writableLocation(QStandardPaths::GenericDataLocation))
            + "/Pallisande Sample Library";
    for (const auto& file : parser.positionalArguments())
        wishes.files.push_back(fs::absolute(plain(file)).lexically_normal());
    return wishes;
}

void openAddress(const std::string& address) { QDesktopServices::openUrl(QUrl(qt(address))); }

void openFile(const fs::path& file) { QDesktopServices::openUrl(QUrl::fromLocalFile(qt(file.string()))); }

// With the file selected, where the desktop has a file manager that can.
void showInFolder(const fs::path& file)
{
    if (fs::is_directory(file))
        return openFile(file);
    auto call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"), QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("ShowItems"));
    call << QStringList { QUrl::fromLocalFile(qt(file.string())).toString() } << QString();
    auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call), qApp);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, watcher, [watcher, file] {
        if (watcher->isError())
            openFile(file.parent_path());
        watcher->deleteLater();
    });
}

// Where the library will be opened.
fs::path folderFor(const Wishes& wishes, Preferences& preferences, Bookmarks& bookmarks)
{
    if (!wishes.library.empty())
        return wishes.library;
    if (const auto settings = AppSettings::load(preferences).settings; settings.libraryBookmark) {
        if (const auto folder = bookmarks.resolve(*settings.libraryBookmark))
            return *folder;
    }
    return LibraryStore::defaultFolder();
}

int fail(const std::string& sentence)
{
    QMessageBox(QMessageBox::Critical, QStringLiteral("Pallisande"), qt(sentence), QMessageBox::Close).exec();
    return 1;
}

} // namespace

int main(int count, char** arguments)
{
    QApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
    QApplication application(count, arguments);
    QApplication::setApplicationName(QStringLiteral("Pallisande"));
    QApplication::setApplicationVersion(QStringLiteral(PALLISANDE_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("pallisande"));
    QApplication::setWindowIcon(applicationIcon());
    const auto wishes = readArguments(application);

    SystemPreferences ownPreferences;
    VisitingPreferences visiting(ownPreferences, wishes.isSample);
    Preferences& preferences = wishes.library.empty() ? static_cast<Preferences&>(ownPreferences) : visiting;
    FolderBookmarks bookmarks;
    const Handover handover { wishes.files, qEnvironmentVariable("XDG_ACTIVATION_TOKEN").toStdString() };
    fs::path folder;
    try {
        folder = folderFor(wishes, preferences, bookmarks);
        if (SingleInstance::handOver(folder, handover))
            return 0;
    } catch (const std::exception&) { // The model tells it in its words.
    }

    const bool seemsDark = application.palette().window().color().lightness() < 128;
    DesktopLook desktop(seemsDark);
    ThemeController theme(application, [&] {
        const bool isStill = application.style()->styleHint(QStyle::SH_Widget_Animation_Duration) == 0;
        return SystemLook { desktop.isDark(), desktop.hasHighContrast(), isStill };
    });
    QObject::connect(&desktop, &DesktopLook::changed, &theme, &ThemeController::refresh);
    restoreLook(theme, ViewState(preferences));

    PdfRenderer renderer;
    SampleRenderer sampleRenderer(renderer);
    ThreadedBackground background;
    FreedesktopNotifications notifications(&Base::Instant::now);
    QPointer<MainWindow> shown;
    const auto wait = [](std::chrono::milliseconds time) { std::this_thread::sleep_for(time); };
    const AppServices services {
        .now = &Base::Instant::now,
        .calendar = Base::Calendar::system(),
        .systemCalendar = &Base::Calendar::system,
        .after = &afterWait,
        .background = &background,
        .preferences = &preferences,
        .renderer = wishes.isSample ? static_cast<DocumentRenderer*>(&sampleRenderer) : &renderer,
        .choose = [&shown](const ChooserRequest& request,
                      const auto& chosen) { chooseFiles(request, chosen, shown); },
        .openFile = &openFile,
        .showInFolder = &showInFolder,
        .openAddress = &openAddress,
        .bookmarks = &bookmarks,
        .notifications = &notifications,
        .defaultFolder = [folder] { return folder.empty() ? LibraryStore::defaultFolder() : folder; },
        .wait = wait,
    };
    if (!wishes.library.empty()) {
        try {
            fs::create_directories(folder);
            if (wishes.isSample && fs::is_empty(folder))
                makeSampleFolder(folder,
                    { .now = services.now,
                        .calendar = services.calendar,
                        .renderer = &renderer,
                        .wait = wait });
        } catch (const std::exception& error) {
            return fail(error.what());
        }
    }

    AppModel model(services);
    ThreadedNetwork network;
    UpdateCheck updates({ .network = network,
        .preferences = preferences,
        .now = services.now,
        .version = PALLISANDE_VERSION });
    MainWindow window(model,
        { .theme = theme,
            .updates = &updates,
            .openAddress = [](const QString& address) { openAddress(plain(address)); },
            .isSample = wishes.isSample,
            .openOwnLibrary =
                [&shown] {
                    if (shown && shown->close())
                        QProcess::startDetached(QApplication::applicationFilePath(), {});
                } });
    shown = &window;

    SingleInstance instance;
    QObject::connect(&instance, &SingleInstance::raised, &window,
        [&](const Handover& more) { window.takeOver(more.files, more.activationToken); });
    bool isFirst = true;
    QObject::connect(&model, &AppModel::stateChanged, &window, [&] {
        if (model.isOpening() || !model.hasLibrary())
            return;
        const bool isInUse = model.readOnly() == ReadOnlyReason::inUse;
        if (isInUse && isFirst && SingleInstance::handOver(model.folder(), handover))
            return QApplication::exit(0); // The other was just starting.
        if (!isInUse)
            instance.listen(model.folder());
        if (std::exchange(isFirst, false) && !wishes.files.empty())
            window.takeOver(wishes.files, {});
    });
    QObject::connect(
        &notifications, &FreedesktopNotifications::opened, &window, [&](const QString& identifier) {
            constexpr std::size_t uuidLength = 36;
            const auto id = Base::Uuid::parse(plain(identifier).substr(0, uuidLength));
            window.takeOver({}, {});
            if (id && model.job(*id))
                model.show(AppSection::jobs, *id);
        });
    SystemSignals endings;
    QObject::connect(&endings, &SystemSignals::closeRequested, &window, [&] {
        if (window.prepareToClose())
            QApplication::exit(0);
    });
    QObject::connect(
        &application, &QGuiApplication::commitDataRequest, &window, [&](QSessionManager& session) {
            if (!window.prepareToClose() && session.allowsInteraction())
                session.cancel();
        });

    QTimer updateTimer;
    QObject::connect(&updateTimer, &QTimer::timeout, &window, [&] { window.checkForUpdatesIfDue(); });
    updateTimer.start(std::chrono::hours(1));
    QTimer::singleShot(std::chrono::seconds(10), &window, [&] { window.checkForUpdatesIfDue(); });

    window.show();
    model.start();
    return QApplication::exec();
}
