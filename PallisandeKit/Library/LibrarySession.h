#pragma once

#include "Base/Calendar.h"
#include "Base/Folder.h"
#include "PallisandeKit/Library/DocumentRenderer.h"
#include "PallisandeKit/Library/IssueLog.h"
#include "PallisandeKit/Library/LibraryStore.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace Pallisande {

// Something that was asked of a session couldn't be done; `what()` is the sentence for the user.
class SessionError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Why a session never writes.
enum class ReadOnlyReason {
    none,
    openedForReading,
    newerVersion,
    inUse, // Another Pallisande has the folder.
    unreadable,
    missingFile, // The folder held a library, and its document is gone.
    changedElsewhere, // Another program wrote the document while it was open.
};

// What a session is handed by whoever runs it.
struct SessionServices {
    std::function<Base::Instant()> now;
    Base::Calendar calendar; // The user's.
    DocumentRenderer* renderer = nullptr; // Without one nothing can be issued.
    std::string documentLanguage = "en"; // BCP 47.
    std::function<void(std::chrono::milliseconds)>
        wait; // For a document that is still being written by somebody.
};

// Where a second copy goes once a day, and the day of the last one ("yyyy-MM-dd"), which the caller
// remembers.
struct SecondBackup {
    std::filesystem::path folder;
    std::string lastDay;
};

// One library folder while it is open: the library in memory and everything that happens between it and the
// disk. The window and the command line both work through it.
class LibrarySession {
public:
    enum class Access { reading, writing };

    // Opens the library of an existing folder. For writing it locks the folder, removes what a crash left
    // behind and finishes or drops a document that was being issued. A library that can't be taken over
    // safely is opened read-only, with its reason as the first problem. Throws SessionError only when the
    // folder can't be opened.
    static LibrarySession open(const std::filesystem::path& folder, Access access, SessionServices services);

    const Library& library() const { return m_library; }
    const LibraryStore& store() const { return m_store; }
    const SessionServices& services() const { return m_services; }
    Base::Moment moment() const { return { m_services.now(), m_services.calendar }; }
    void setCalendar(const Base::Calendar& calendar) { m_services.calendar = calendar; }

    bool isReadOnly() const { return m_readOnly != ReadOnlyReason::none; }
    ReadOnlyReason readOnlyReason() const { return m_readOnly; }
    // What the user must be told since the last call: problems and notices, in whole sentences.
    std::vector<std::string> takeMessages();
    // Throws SessionError with the reason when the session is read-only.
    void requireWritable() const;

    // Changes the library by a ledger operation; the change is saved by the next `save`.
    template <typename Operation> decltype(auto) change(Operation operation)
    {
        requireWritable();
        m_isDirty = true;
        return operation(m_library);
    }

    bool hasUnsavedChanges() const { return m_isDirty; }
    // Writes the document, and the day's backup if there is none yet. Does nothing when read-only. Throws
    // SessionError when it couldn't be written; the changes stay in memory and the file on disk as it was.
    void save();
    // Copies the library into the second folder if none was made today; gives the day to remember.
    std::optional<std::string> saveSecondBackup(const SecondBackup& second);

    // Stores a copy of the report beside the library, attaches the analysis and saves.
    void attachAnalysis(
        const Base::Uuid& jobID, Analysis analysis, std::string_view report, const std::string& fileName);
    // Issues a draft: its number, its PDF and the record come together or not at all. Gives the number.
    std::string issue(const Base::Uuid& draftID, std::optional<Base::Instant> issueDate = std::nullopt);
    // The PDF of a draft, or one as it would be printed now; nothing is stored.
    std::string renderDraft(const Base::Uuid& invoiceID) const;
    // The stored PDF of an issued document.
    std::filesystem::path storedPDF(const Base::Uuid& invoiceID) const;

    std::filesystem::path backUpNow(const std::optional<std::filesystem::path>& into = std::nullopt);
    // Puts a backup in the place of the library, which is backed up first; also where the document was
    // missing.
    void restore(const std::filesystem::path& backup);
    // The same in its two parts, of which only the second is the session's. The first throws SessionError;
    // the second gives where the copy is, if there was anything to copy, and is written by the next `save`.
    static Library readBackup(const std::filesystem::path& backup, const Base::Moment& moment);
    std::optional<std::filesystem::path> replaceBy(Library library);
    // Begins a new library in a folder whose document is missing.
    void startAnew();
    // Takes over issued documents that the issue log and their PDFs know and the library doesn't (an older
    // backup was restored). Gives their numbers.
    std::vector<std::string> recoverFromIssueLog();
    // What `unrecordedDocuments` found; one that has a record by now is passed over.
    std::vector<std::string> takeOver(const std::vector<Ledger::IssuePlan>& documents);
    // Moves the library to another folder, or takes over the one that is there. The old folder is left as it
    // was.
    void moveTo(const std::filesystem::path& folder);

private:
    LibrarySession(LibraryStore store, Base::Folder folder, SessionServices services);

    void load(Access access);
    void loadForReading();
    void refuseToWrite(ReadOnlyReason reason, const std::string& sentence);
    bool heldALibrary() const;
    void mentionConflictCopies();
    void finishInterruptedIssuing();
    void requireFolder() const;
    void requireUnchangedDocument();
    void write();
    bool mayHaveBeenWritten() const;
    std::string issuedPDF(const Ledger::IssuePlan& plan);

    LibraryStore m_store;
    Base::Folder m_folder; // Held open, and locked for writing.
    SessionServices m_services;
    Library m_library;
    std::optional<Base::FileIdentity> m_identity; // Of the document as it was last read or written.
    std::string m_documentHash;
    std::string m_attemptedHash; // Of a document whose saving failed; empty after one that didn't.
    ReadOnlyReason m_readOnly = ReadOnlyReason::none;
    std::string m_readOnlySentence;
    std::vector<std::string> m_messages;
    bool m_isDirty = false;
};

// The numbers of the documents that were issued.
std::set<std::string> issuedNumbers(const Library& library);
// Documents that the issue log of the folder knows, whose PDF is the one that was issued, and whose number
// isn't among those recorded.
std::vector<Ledger::IssuePlan> unrecordedDocuments(
    const LibraryStore& store, std::set<std::string> recorded, const Base::Moment& moment);

} // namespace Pallisande
