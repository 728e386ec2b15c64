#pragma once

#include "Pallisande/Model/AppSettings.h"
#include "Pallisande/Model/Formats.h"
#include "Pallisande/Model/LibraryEditor.h"
#include "Pallisande/Model/Messages.h"
#include "Pallisande/Model/PreparedRenderer.h"
#include "Pallisande/Model/RecordIndex.h"
#include "Pallisande/Model/Services.h"
#include "Pallisande/Model/Sheet.h"

#include <QObject>

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Pallisande {

class BusinessProfile;
class ClientSection;
class DeadlineSection;
class DocumentCounts;
class Imports;
class InvoiceSection;
class JobSection;
class LibraryCopies;

enum class SaveState { saved, saving, unsaved, failed };

// The one object behind every screen: the library in memory, the state of the interface, and every operation
// that the screens call, which stand with their sections. It lives on the main thread. An operation that is
// refused gives false, with the reason in `problem`.
class AppModel : public QObject {
    Q_OBJECT

public:
    explicit AppModel(AppServices services, QObject* parent = nullptr);
    ~AppModel() override; // Doesn't save: `prepareToQuit` does, and can fail.

    DeadlineSection& deadlines() { return *m_deadlines; }
    JobSection& jobs() { return *m_jobs; }
    ClientSection& clients() { return *m_clients; }
    InvoiceSection& invoices() { return *m_invoices; }
    Imports& imports() { return *m_imports; }
    DocumentCounts& counts() { return *m_counts; }
    BusinessProfile& profile() { return *m_profile; }
    LibraryCopies& copies() { return *m_copies; }

    // --- The library and its folder
    void start(); // Opens the library, off the main thread.
    bool isOpening() const { return m_isOpening; }
    bool hasLibrary() const { return m_session.has_value(); } // False: its folder couldn't be had.
    const Library& library() const;
    const RecordIndex& index() const { return m_index; }
    const Client* client(const Base::Uuid& id) const { return m_index.client(library(), id); }
    const Job* job(const Base::Uuid& id) const { return m_index.job(library(), id); }
    const Invoice* invoice(const Base::Uuid& id) const { return m_index.invoice(library(), id); }
    std::filesystem::path folder() const; // Empty without a library.
    std::vector<std::filesystem::path> backups() const; // Newest first.

    ReadOnlyReason readOnly() const; // Never cleared but by choosing what to do about a missing library.
    const std::string& readOnlyText() const { return m_readOnlyText; } // Why, for strip and tooltips.
    bool canEdit() const { return m_session && readOnly() == ReadOnlyReason::none; }
    bool folderWasNotFound() const { return m_folderWasNotFound; } // Nothing is issued until it is confirmed.
    void confirmFolder(); // The folder in use is the right one.
    void chooseLibraryFolder(); // Moves the library, or opens another when this one can't be read.
    void moveLibrary(const std::filesystem::path& folder);
    void startNewLibrary(); // Where the library file is missing.
    void restoreBackup(const std::filesystem::path& backup); // Or another copy; read off the main thread.
    void backUpNow();
    void showLibraryFolder();

    const AppSettings& settings() const { return m_settings; }
    void changeSettings(const std::function<void(AppSettings&)>& change);
    void setRemindersOn(bool on); // Asks the system first.
    void chooseSecondBackupFolder();
    void stopSecondBackup();

    // --- What is on show
    AppSection section() const { return m_place.section; }
    void setSection(AppSection section);
    // Of jobs, clients and invoices; the deadlines show the selected job.
    std::optional<Base::Uuid> selection(AppSection section) const;
    void select(AppSection section, std::optional<Base::Uuid> id);
    void show(AppSection section, const Base::Uuid& id); // Both; filters that hide it are cleared.
    bool canGoBack() const { return !m_back.empty(); }
    bool canGoForward() const { return !m_forward.empty(); }
    void goBack();
    void goForward();
    const std::string& search(AppSection section) const;
    void setSearch(AppSection section, const std::string& text);
    const std::optional<Sheet>& sheet() const { return m_sheet; }
    bool openSheet(Sheet sheet); // False while another is open.
    void closeSheet();

    const std::optional<Problem>& problem() const { return m_messages.problem(); }
    const std::optional<Notice>& notice() const { return m_messages.notice(); }
    const std::deque<PastMessage>& pastMessages() const { return m_messages.past(); }
    void tell(Problem problem);
    void tell(Notice notice);
    void dismissProblem();
    void dismissNotice();

    struct Badges {
        std::int64_t overdueJobs = 0, jobsDueToday = 0, openJobs = 0, overdueInvoices = 0;
        bool operator==(const Badges&) const = default;
    };
    const Badges& badges() const;

    // --- Changing and saving
    // Carries out a change. The operation gets the session and throws to refuse.
    bool perform(const Edit& edit, const LibraryEditor::Operation& operation);
    // The same for an operation that changes the library alone.
    bool change(const Edit& edit, const std::function<void(Library&)>& operation);
    // The records that the last `perform` added.
    const LibraryEditor::Outcome& lastOutcome() const { return m_lastOutcome; }

    std::optional<std::string> undoName() const; // "Change Rate"
    std::optional<std::string> redoName() const;
    std::string undoText() const; // As the menu shows it, also when there is nothing.
    std::string redoText() const;
    void undo();
    void redo();
    void endMerging() { m_editor.history().endMerging(); } // The focus left a field.

    SaveState saveState() const { return m_saveState; }
    std::optional<Base::Instant> lastSaved() const { return m_lastSaved; }
    bool saveNow(); // What is pending; false when it couldn't be written.
    // At closing, quitting, SIGTERM and the session's end. False: something is unsaved.
    bool prepareToQuit();

    // --- For the sections
    const AppServices& services() const { return m_services; }
    Base::Moment moment() const { return { m_services.now(), m_services.calendar }; }
    const Formats& formats() const { return m_formats; }
    LibrarySession* session() { return m_session ? &*m_session : nullptr; }
    // Does `work` off the main thread and `done` on it, if the model is still there.
    void inBackground(std::function<void()> work, std::function<void()> done);
    void onMainThread(std::function<void()> task); // From any thread.
    void choose(const ChooserRequest& request, std::function<void(AppServices::Paths)> chosen);
    bool refuse(const std::string& text, Problem::Action action = Problem::Action::none,
        std::optional<Base::Uuid> subject = std::nullopt); // Tells it; gives false.
    bool requireEditing(); // Tells the reason when nothing can be changed.
    void listWasOutdated(AppSection section) { emit listChanged(section); }

signals:
    void stateChanged(); // Opening, read-only, the folder.
    void libraryChanged(const Pallisande::LibraryChanges& changes);
    void listChanged(Pallisande::AppSection section); // Ask for its ids again.
    void sectionChanged();
    void selectionChanged(Pallisande::AppSection section);
    void searchChanged(Pallisande::AppSection section);
    void historyChanged(); // Of back and forward.
    void sheetChanged();
    void problemChanged();
    void noticeChanged();
    void undoChanged();
    void saveStateChanged();
    void settingsChanged();
    void badgesChanged();
    void timePassed(); // A minute: lanes, lateness and overdue invoices may have changed.
    void importChanged();
    void countingChanged();
    void issuingChanged();
    void copiesChanged(); // Of the library, or what is known of them.
    void unrecordedChanged(); // Documents that only the issue log knows.

private:
    struct Place {
        AppSection section = AppSection::deadlines;
        std::optional<Base::Uuid> selected;
        bool operator==(const Place&) const = default;
    };

    // AppModelStart.cpp
    void open(const std::filesystem::path& folder);
    void opened(std::optional<LibrarySession> session, const std::string& failure);
    void takeMessages();
    void anotherLibrary();
    void replaceLibrary(Library library, const std::string& name);
    void refreshReadOnly(const std::string& text);
    SessionServices sessionServices();
    // AppModelSaving.cpp
    void scheduleSave();
    void retryLater();
    bool write();
    void wasSaved();
    void writeSecondBackup();
    void setSaveState(SaveState state);
    void scheduleReminders();
    // AppModelEditing.cpp
    bool conclude(LibraryEditor::Outcome outcome, bool savesAtOnce);
    void takeBack(bool backwards);
    void announce(const LibraryChanges& changes);
    void selectChanged(const LibraryChanges& changes);
    // AppModel.cpp
    void remember(const Place& before);
    void go(std::vector<Place>& from, std::vector<Place>& to);
    void goTo(const Place& place);
    void outdateBadges();
    void minutePassed();
    void adoptZone();
    void prepareSearch(std::size_t from);
    void letGoOfRows(AppSection section);
    static RecordKind kindOf(AppSection section);

    AppServices m_services;
    Formats m_formats;
    AppSettings m_settings;
    std::shared_ptr<int> m_alive = std::make_shared<int>(); // What comes back late asks for it.

    PreparedRenderer m_renderer;
    std::optional<LibrarySession> m_session;
    Library m_noLibrary;
    RecordIndex m_index;
    LibraryEditor m_editor;
    LibraryEditor::Outcome m_lastOutcome;
    bool m_isOpening = false, m_folderWasNotFound = false;
    std::string m_readOnlyText;
    std::string m_finalStep; // The last one, if it can't be taken back.

    Place m_place;
    std::array<std::optional<Base::Uuid>, 4> m_selections;
    std::array<std::string, 4> m_searches;
    std::vector<Place> m_back, m_forward;
    std::optional<Sheet> m_sheet;
    Messages m_messages;
    mutable std::optional<Badges> m_badges;

    SaveState m_saveState = SaveState::saved;
    std::optional<Base::Instant> m_lastSaved;
    std::unique_ptr<PendingTask> m_saveTask, m_retryTask, m_minuteTask, m_searchTask;
    bool m_toldOfSecondBackup = false;

    std::unique_ptr<DeadlineSection> m_deadlines;
    std::unique_ptr<JobSection> m_jobs;
    std::unique_ptr<ClientSection> m_clients;
    std::unique_ptr<InvoiceSection> m_invoices;
    std::unique_ptr<Imports> m_imports;
    std::unique_ptr<DocumentCounts> m_counts;
    std::unique_ptr<BusinessProfile> m_profile;
    std::unique_ptr<LibraryCopies> m_copies;

    friend class InvoiceSection; // Hands the PDF that it had drawn to the session.
};

} // namespace Pallisande
