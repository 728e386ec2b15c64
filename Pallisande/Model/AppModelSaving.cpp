#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/LibraryCopies.h"

#include <fmt/format.h>

// Saving after changes, backups, and the preferences.
namespace Pallisande {

namespace {

constexpr std::chrono::milliseconds saveDelay { 600 }, retryDelay { 60'000 };

} // namespace

void AppModel::setSaveState(SaveState state)
{
    if (m_saveState == state)
        return;
    m_saveState = state;
    emit saveStateChanged();
}

// Every change puts the save off, so that a burst of edits is one write.
void AppModel::scheduleSave()
{
    if (!canEdit())
        return;
    setSaveState(SaveState::unsaved);
    m_saveTask = m_services.after(saveDelay, [this] { write(); });
}

bool AppModel::saveNow()
{
    return !canEdit() || !m_session->hasUnsavedChanges() || write(); // What is read-only has nothing to save.
}

bool AppModel::prepareToQuit()
{
    endMerging();
    return saveNow();
}

bool AppModel::write()
{
    m_saveTask.reset();
    m_retryTask.reset();
    if (!canEdit())
        return false;
    setSaveState(SaveState::saving);
    std::string failure;
    try {
        m_session->save();
    } catch (const SessionError& error) {
        failure = error.what();
    } catch (const std::exception& error) {
        failure = fmt::format("Pallisande couldn’t save your library: {}", error.what());
    }
    takeMessages();
    if (!failure.empty()) {
        setSaveState(SaveState::failed);
        const bool isForGood = m_session->isReadOnly();
        refreshReadOnly(failure);
        if (!isForGood)
            retryLater();
        return refuse(failure, isForGood ? Problem::Action::showBackups : Problem::Action::tryAgain);
    }
    wasSaved();
    return true;
}

void AppModel::wasSaved()
{
    m_saveTask.reset();
    m_retryTask.reset();
    m_lastSaved = m_services.now();
    setSaveState(SaveState::saved);
    if (problem() && problem()->action == Problem::Action::tryAgain)
        dismissProblem();
    writeSecondBackup();
    scheduleReminders();
}

void AppModel::retryLater()
{
    m_retryTask = m_services.after(retryDelay, [this] { write(); });
}

// A copy a day. One that can't be made is told once a run and tried again with every save.
void AppModel::writeSecondBackup()
{
    const auto today = m_services.calendar.day(m_services.now()).toString();
    if (!m_settings.secondBookmark || m_settings.lastSecondBackup == today)
        return;
    std::string failure = "The backup couldn’t be written: the second backup folder couldn’t be found";
    if (const auto second = m_services.bookmarks->resolve(*m_settings.secondBookmark)) {
        try {
            const auto day
                = m_session->saveSecondBackup({ *second, m_settings.lastSecondBackup.value_or("") });
            if (day)
                changeSettings([&](AppSettings& settings) { settings.lastSecondBackup = *day; });
            return;
        } catch (const std::exception& error) {
            failure = error.what();
        }
    }
    if (!std::exchange(m_toldOfSecondBackup, true))
        refuse(failure);
}

void AppModel::backUpNow()
{
    if (!m_session) {
        refuse(m_readOnlyText);
        return;
    }
    try {
        std::optional<std::filesystem::path> second;
        if (m_settings.secondBookmark) {
            second = m_services.bookmarks->resolve(*m_settings.secondBookmark);
            if (!second)
                throw SessionError(
                    "The backup couldn’t be written: the second backup folder couldn’t be found");
        }
        const auto file = m_session->backUpNow(second);
        tell(Notice { .text = fmt::format("Backed up as “{}”.", file.filename().string()),
            .action = Notice::Action::show });
        m_copies->refresh();
    } catch (const SessionError& error) {
        refuse(error.what());
    } catch (const std::exception& error) {
        refuse(fmt::format("The backup couldn’t be written: {}", error.what()));
    }
}

void AppModel::showLibraryFolder()
{
    if (m_session)
        m_services.showInFolder(folder());
}

void AppModel::changeSettings(const std::function<void(AppSettings&)>& change)
{
    const auto before = m_settings;
    change(m_settings);
    if (m_settings == before)
        return;
    m_settings.store(*m_services.preferences);
    emit settingsChanged();
}

void AppModel::setRemindersOn(bool on)
{
    const auto set = [this](bool value) {
        changeSettings([&](AppSettings& settings) { settings.remindersOn = value; });
        scheduleReminders();
    };
    if (!on || !m_services.notifications)
        return set(on && m_services.notifications);
    m_services.notifications->askPermission([this, set, alive = std::weak_ptr(m_alive)](bool granted) {
        if (alive.expired())
            return;
        set(granted);
        if (!granted)
            refuse(std::string(Reminders::refusal));
    });
}

void AppModel::scheduleReminders()
{
    if (m_services.notifications && m_session)
        Reminders::schedule(*m_services.notifications, library(), m_settings.remindersOn, moment());
}

void AppModel::chooseSecondBackupFolder()
{
    choose({ .kind = ChooserRequest::Kind::folder,
               .message = "Choose a folder for a daily copy of your library." },
        [this](const AppServices::Paths& paths) {
            m_toldOfSecondBackup = false;
            changeSettings([&](AppSettings& settings) {
                settings.secondBookmark = m_services.bookmarks->make(paths.front());
                settings.lastSecondBackup.reset();
            });
            if (canEdit())
                writeSecondBackup();
        });
}

void AppModel::stopSecondBackup()
{
    changeSettings([](AppSettings& settings) {
        settings.secondBookmark.reset();
        settings.lastSecondBackup.reset();
    });
}

} // namespace Pallisande
