#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/ClientSection.h"
#include "Pallisande/Model/DeadlineSection.h"
#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Model/JobSection.h"
#include "Pallisande/Model/LibraryCopies.h"

#include <fmt/format.h>

#include <system_error>

// The library's folder: opening it at the start, moving it, and what is done when it can't be read.
namespace Pallisande {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view folderNotFound = "Your library folder couldn’t be found, so Pallisande is using "
                                            "its own folder. Choose the folder again in "
                                            "Settings › Library.";
constexpr std::string_view moveMessage = "Choose a folder for your Pallisande library. Your records, report "
                                         "copies, issued PDFs and backups move "
                                         "there.";

std::string couldNotOpenFolder(std::string_view reason)
{
    return fmt::format("Pallisande couldn’t open its library folder: {}", reason);
}

std::string couldNotMove(std::string_view reason)
{
    return fmt::format("The library couldn’t be moved: {}", reason);
}

// Which button goes with a sentence of the session.
Problem::Action actionFor(const LibrarySession& session, std::string_view text)
{
    if (session.readOnlyReason() == ReadOnlyReason::newerVersion)
        return Problem::Action::checkForUpdates;
    if (session.readOnlyReason() == ReadOnlyReason::missingFile)
        return Problem::Action::showBackups;
    if (session.isReadOnly())
        return Problem::Action::chooseFolder;
    return text.find("Backups folder") == std::string_view::npos ? Problem::Action::none
                                                                 : Problem::Action::showBackups;
}

} // namespace

void AppModel::start()
{
    auto [settings, damage] = AppSettings::load(*m_services.preferences);
    m_settings = std::move(settings);
    if (damage)
        m_messages.tellLater({ .text = *damage, .action = Problem::Action::chooseFolder }, m_services.now());
    m_minuteTask = m_services.after(std::chrono::milliseconds(60'000), [this] { minutePassed(); });

    std::optional<fs::path> folder;
    if (m_settings.libraryBookmark) {
        folder = m_services.bookmarks->resolve(*m_settings.libraryBookmark);
        m_folderWasNotFound = !folder;
    }
    if (m_folderWasNotFound)
        m_messages.tellLater({ .text = std::string(folderNotFound), .action = Problem::Action::chooseFolder },
            m_services.now());
    try {
        open(folder ? *folder : m_services.defaultFolder());
    } catch (const std::system_error& error) {
        opened(std::nullopt, couldNotOpenFolder(error.what()));
    }
}

SessionServices AppModel::sessionServices()
{
    return { .now = m_services.now,
        .calendar = m_services.calendar,
        .renderer = &m_renderer,
        .documentLanguage = m_settings.documentLanguage,
        .wait = m_services.wait };
}

void AppModel::open(const fs::path& folder)
{
    struct Opening {
        std::optional<LibrarySession> session;
        std::string failure;
    };
    const auto opening = std::make_shared<Opening>();
    m_isOpening = true;
    m_session.reset(); // Its lock is freed before another is taken.
    emit stateChanged();
    inBackground(
        [opening, folder, services = sessionServices()] {
            try {
                opening->session.emplace(
                    LibrarySession::open(folder, LibrarySession::Access::writing, services));
            } catch (const SessionError& error) {
                opening->failure = error.what();
            } catch (const std::exception& error) {
                opening->failure = couldNotOpenFolder(error.what());
            }
        },
        [this, opening] { opened(std::move(opening->session), opening->failure); });
}

void AppModel::opened(std::optional<LibrarySession> session, const std::string& failure)
{
    m_isOpening = false;
    if (session)
        m_session.emplace(std::move(*session));
    else
        m_messages.tellLater({ .text = failure, .action = Problem::Action::chooseFolder }, m_services.now());
    m_readOnlyText = failure;
    anotherLibrary();
}

// What the session has to say: why it can't be written to, then everything else.
void AppModel::takeMessages()
{
    const auto texts = m_session ? m_session->takeMessages() : std::vector<std::string>();
    if (texts.empty())
        return;
    bool isReason = m_session->isReadOnly();
    for (const auto& text : texts) {
        if (std::exchange(isReason, false))
            m_readOnlyText = text;
        const bool isNotice = text.starts_with("A sync program left");
        if (isNotice)
            m_messages.tell(Notice { .text = text, .action = Notice::Action::showBackups }, m_services.now());
        else
            m_messages.tellLater({ .text = text, .action = actionFor(*m_session, text) }, m_services.now());
    }
    emit problemChanged();
    emit noticeChanged();
}

void AppModel::anotherLibrary()
{
    takeMessages();
    m_editor.history().clear();
    m_finalStep.clear();
    m_selections = {};
    m_back.clear();
    m_forward.clear();
    m_place.selected.reset();
    m_sheet.reset();
    setSaveState(m_session && m_session->hasUnsavedChanges() ? SaveState::failed : SaveState::saved);
    announce({ .everything = true });
    prepareSearch(0);
    scheduleReminders();
    emit stateChanged();
    emit settingsChanged();
    emit sheetChanged();
    emit historyChanged();
    emit undoChanged();
    emit problemChanged();
    for (const auto section : { AppSection::jobs, AppSection::clients, AppSection::invoices })
        emit selectionChanged(section);
    m_copies->refresh();
    m_copies->lookForUnrecorded();
}

ReadOnlyReason AppModel::readOnly() const
{
    return m_session ? m_session->readOnlyReason() : ReadOnlyReason::unreadable;
}

void AppModel::refreshReadOnly(const std::string& text)
{
    if (m_session && m_session->isReadOnly() && m_readOnlyText != text) {
        m_readOnlyText = text;
        emit stateChanged();
    }
}

fs::path AppModel::folder() const { return m_session ? m_session->store().folder() : fs::path(); }

std::vector<fs::path> AppModel::backups() const
{
    return m_session ? m_session->store().backups() : std::vector<fs::path>();
}

void AppModel::confirmFolder()
{
    if (!m_session)
        return;
    m_folderWasNotFound = false;
    changeSettings(
        [&](AppSettings& settings) { settings.libraryBookmark = m_services.bookmarks->make(folder()); });
    if (problem() && problem()->text == folderNotFound)
        dismissProblem();
    emit stateChanged();
}

void AppModel::chooseLibraryFolder()
{
    choose({ .kind = ChooserRequest::Kind::folder,
               .message = std::string(moveMessage),
               .prompt = "Use This Folder" },
        [this](const AppServices::Paths& paths) { moveLibrary(paths.front()); });
}

void AppModel::moveLibrary(const fs::path& target)
{
    if (!canEdit()) { // There is nothing to take along: whatever is there is opened.
        m_folderWasNotFound = false;
        changeSettings(
            [&](AppSettings& settings) { settings.libraryBookmark = m_services.bookmarks->make(target); });
        dismissProblem();
        return open(target);
    }
    try {
        m_session->moveTo(target);
    } catch (const SessionError& error) {
        refuse(error.what());
        return;
    } catch (const std::exception& error) {
        refuse(couldNotMove(error.what()));
        return;
    }
    m_saveTask.reset();
    m_lastSaved = m_services.now();
    m_folderWasNotFound = false;
    changeSettings([&](AppSettings& settings) {
        settings.libraryBookmark = m_services.bookmarks->make(m_session->store().folder());
    });
    auto texts = m_session->takeMessages();
    anotherLibrary();
    if (!texts.empty()) { // The last says where the library is now.
        tell(Notice { .text = texts.back(), .action = Notice::Action::show });
        texts.pop_back();
    }
    for (const auto& text : texts)
        refuse(text);
}

void AppModel::startNewLibrary()
{
    if (!m_session)
        return;
    try {
        m_session->startAnew();
        m_readOnlyText.clear();
        m_messages.dismissProblem();
    } catch (const SessionError& error) {
        refuse(error.what());
    }
    anotherLibrary();
}

void AppModel::restoreBackup(const fs::path& backup)
{
    if (!canEdit() && readOnly() != ReadOnlyReason::missingFile) {
        refuse(m_readOnlyText);
        return;
    }
    struct Reading {
        std::optional<Library> library;
        std::string failure;
    };
    const auto reading = std::make_shared<Reading>();
    inBackground(
        [reading, backup, moment = moment()] {
            try {
                reading->library = LibrarySession::readBackup(backup, moment);
            } catch (const std::exception& error) {
                reading->failure = error.what();
            }
        },
        [this, reading, name = backup.filename().string(), before = folder()] {
            if (!reading->library)
                refuse(reading->failure);
            else if (m_session
                && before == folder()) // Which was moved meanwhile: it isn't the same any more.
                replaceLibrary(std::move(*reading->library), name);
        });
}

void AppModel::replaceLibrary(Library library, const std::string& name)
{
    std::optional<fs::path> copy;
    try {
        copy = m_session->replaceBy(std::move(library));
    } catch (const std::exception& error) {
        refuse(error.what());
        return;
    }
    m_readOnlyText.clear();
    m_messages.dismissProblem();
    const bool isSaved = write();
    anotherLibrary();
    if (isSaved && copy)
        tell(Notice { .text = fmt::format("“{}” is your library now. What was there before was kept as “{}”.",
                          name, copy->filename().string()) });
    else if (isSaved)
        tell(Notice { .text = fmt::format("“{}” is your library now.", name) });
}

} // namespace Pallisande
