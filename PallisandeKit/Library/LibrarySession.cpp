#include "PallisandeKit/Library/LibrarySession.h"

#include "Base/DurableFile.h"
#include "Base/Sha256.h"

#include <fmt/format.h>

#include <future>
#include <new>
#include <system_error>

namespace Pallisande {

namespace {

namespace fs = std::filesystem;

constexpr std::int64_t youngMilliseconds
    = 2000; // A document so fresh may still be being written by a sync program.
constexpr int mostReads = 3;
constexpr std::chrono::milliseconds betweenReads { 333 };
constexpr std::size_t hashedBesideWriting = 1 << 20; // Bytes from which hashing is worth a thread of its own.

std::string couldNotOpen(std::string_view reason)
{
    return fmt::format("Your library couldn’t be opened: {}", reason);
}

std::string couldNotSave(std::string_view reason)
{
    return fmt::format("Pallisande couldn’t save your library: {}", reason);
}

} // namespace

LibrarySession::LibrarySession(LibraryStore store, Base::Folder folder, SessionServices services)
    : m_store(std::move(store))
    , m_folder(std::move(folder))
    , m_services(std::move(services))
    , m_library(Library::makeNew())
{
}

LibrarySession LibrarySession::open(const fs::path& folder, Access access, SessionServices services)
{
    try {
        const auto path = fs::absolute(folder).lexically_normal();
        LibrarySession session(LibraryStore(path), Base::Folder::open(path), std::move(services));
        session.load(access);
        return session;
    } catch (const std::system_error& error) {
        throw SessionError(fmt::format("Pallisande couldn’t open its library folder: {}", error.what()));
    }
}

std::vector<std::string> LibrarySession::takeMessages() { return std::exchange(m_messages, {}); }

void LibrarySession::requireWritable() const
{
    if (isReadOnly())
        throw SessionError(m_readOnlySentence);
}

void LibrarySession::refuseToWrite(ReadOnlyReason reason, const std::string& sentence)
{
    m_readOnly = reason;
    m_readOnlySentence = sentence;
    if (reason != ReadOnlyReason::openedForReading)
        m_messages.push_back(sentence);
}

// --- Opening

void LibrarySession::load(Access access)
{
    bool isLocked = false;
    try {
        isLocked = access == Access::writing && m_folder.lock();
        if (!isLocked)
            loadForReading();
    } catch (const std::system_error& error) {
        return refuseToWrite(ReadOnlyReason::unreadable, couldNotOpen(error.what()));
    } catch (const std::bad_alloc&) {
        return refuseToWrite(ReadOnlyReason::unreadable, couldNotOpen("not enough memory"));
    } catch (const std::exception& error) {
        return refuseToWrite(ReadOnlyReason::unreadable, couldNotOpen(error.what()));
    }
    if (access == Access::reading)
        return isReadOnly()
            ? void()
            : refuseToWrite(ReadOnlyReason::openedForReading, couldNotOpen("it is open for reading only"));
    if (!isLocked)
        return isReadOnly()
            ? void()
            : refuseToWrite(ReadOnlyReason::inUse, couldNotOpen("another Pallisande is using it"));

    bool replacesDamaged = false;
    try {
        auto loaded = m_store.load(moment(), [this](const Base::FileIdentity& identity, int attempt) {
            const auto age = m_services.now().milliseconds - identity.modifiedNanoseconds / 1'000'000;
            if (attempt >= mostReads || age > youngMilliseconds || !m_services.wait)
                return false;
            m_services.wait(betweenReads);
            return true;
        });
        m_library = std::move(loaded.library);
        m_identity = loaded.identity;
        m_documentHash = std::move(loaded.sha256);
    } catch (const LibraryStoreError& error) {
        if (error.kind() == LibraryStoreError::Case::newerVersion)
            return refuseToWrite(ReadOnlyReason::newerVersion,
                "Your library was saved by a newer version of Pallisande. Update Pallisande to open it; "
                "nothing was "
                "changed.");
        replacesDamaged = true;
        m_messages.push_back(
            fmt::format("Your library couldn’t be read, so Pallisande started a new one. The old "
                        "file was kept as “{}”, and the dated copies are in the Backups folder.",
                error.movedTo().filename().string()));
    } catch (const std::system_error& error) {
        return refuseToWrite(ReadOnlyReason::unreadable, couldNotOpen(error.what()));
    } catch (const Base::NotARegularFile& error) {
        return refuseToWrite(ReadOnlyReason::unreadable, couldNotOpen(error.what()));
    } catch (const std::bad_alloc&) { // The file may be perfectly good.
        return refuseToWrite(ReadOnlyReason::unreadable, couldNotOpen("not enough memory"));
    }
    if (!m_identity && !replacesDamaged && heldALibrary())
        return refuseToWrite(ReadOnlyReason::missingFile, couldNotOpen("the library file is missing"));

    try {
        for (const auto name :
            { LibraryStore::backupsFolder, LibraryStore::reportsFolder, LibraryStore::invoicesFolder }) {
            std::error_code none;
            if (fs::is_directory(m_store.folder() / name, none))
                Base::removeLeftovers(Base::Folder::open(m_store.folder() / name));
        }
        Base::removeLeftovers(m_folder);
        mentionConflictCopies();
        finishInterruptedIssuing();
        if (replacesDamaged)
            m_isDirty = true; // Written at once, so that the next start finds it.
        if (m_isDirty)
            save();
        else if (m_identity)
            m_store.dailyBackup(m_library, moment());
    } catch (const std::exception&
            error) { // The library is there all the same; the next save tells what is wrong.
        m_messages.emplace_back(error.what());
    }
}

// Nothing may be changed without the lock: a damaged document isn't moved aside, a missing one is a new
// library.
void LibrarySession::loadForReading()
{
    const auto file = m_store.read();
    if (!file) {
        if (heldALibrary())
            refuseToWrite(ReadOnlyReason::missingFile, couldNotOpen("the library file is missing"));
        return;
    }
    try {
        m_library = LibraryStore::decode(file->bytes, moment());
    } catch (const LibraryStoreError&) {
        refuseToWrite(ReadOnlyReason::newerVersion,
            "Your library was saved by a newer version of Pallisande. Update Pallisande to open it; nothing "
            "was "
            "changed.");
    }
}

// Whether a folder without a document shows that there was one: then it isn't a new library (an unmounted
// drive, a file that a sync program hasn't fetched yet).
bool LibrarySession::heldALibrary() const
{
    for (const auto name : { LibraryStore::invoicesFolder, LibraryStore::reportsFolder }) {
        std::error_code none;
        if (fs::is_directory(m_store.folder() / name, none)
            && !Base::Folder::open(m_store.folder() / name).files().empty())
            return true;
    }
    const auto backups = m_store.backups();
    if (backups.empty())
        return false;
    try {
        const auto newest = Base::readFile(backups.front());
        return LibraryStore::decode(newest.bytes, moment()).holdsRecords();
    } catch (const std::exception&) { // One that can't be read isn't the empty copy of a first start.
        return true;
    }
}

void LibrarySession::mentionConflictCopies()
{
    const auto copies = m_store.conflictCopies();
    if (copies.empty())
        return;
    m_messages.push_back(copies.size() == 1
            ? fmt::format("A sync program left “{}” in the library folder. Compare it with your library; it "
                          "is never read in its place.",
                copies.front().filename().string())
            : fmt::format("A sync program left {} other versions of your library in its folder. Compare them "
                          "with your library; they are never read in its place.",
                copies.size()));
}

// --- Saving

// A folder that was unmounted or replaced must not be made again under the same path.
void LibrarySession::requireFolder() const
{
    if (!m_folder.isStillThere())
        throw SessionError(couldNotSave("the library folder isn’t there any more"));
}

void LibrarySession::requireUnchangedDocument()
{
    const auto found = m_store.identity();
    if (!found || found == m_identity) // A document that is gone can't be overwritten.
        return;
    if (m_identity) {
        const auto file = m_store.read();
        const auto hash = file ? Base::sha256(file->bytes) : m_documentHash;
        if (hash == m_documentHash || hash == m_attemptedHash)
            return;
    }
    const auto copy = m_store.backup(m_library, moment());
    refuseToWrite(ReadOnlyReason::changedElsewhere,
        couldNotSave(
            fmt::format("the file was changed by another program. Your version was kept as “{}” in the "
                        "Backups folder",
                copy.filename().string())));
    m_messages.pop_back(); // It is thrown instead.
    throw SessionError(m_readOnlySentence);
}

void LibrarySession::write()
{
    requireFolder();
    requireUnchangedDocument();
    const auto document = LibraryStore::encode(m_library);
    // Hashing a large document takes as long as writing it, so the two go on together.
    auto hash
        = std::async(document.size() >= hashedBesideWriting ? std::launch::async : std::launch::deferred,
            [&document] { return Base::sha256(document); });
    try {
        m_identity = m_store.save(document);
    } catch (...) {
        m_attemptedHash = hash.get();
        throw;
    }
    m_documentHash = hash.get();
    m_attemptedHash.clear();
    m_isDirty = false;
    try {
        m_store.dailyBackup(document, moment());
    } catch (const std::system_error& error) { // The library itself is saved.
        m_messages.push_back(fmt::format("The backup couldn’t be written: {}", error.what()));
    }
}

// When the last step of a save fails, the sync of the folder, the document is in its place although the save
// failed. One that can't be read now may be either.
bool LibrarySession::mayHaveBeenWritten() const
{
    if (m_attemptedHash.empty())
        return false;
    try {
        const auto file = m_store.read();
        return file && Base::sha256(file->bytes) == m_attemptedHash;
    } catch (const std::exception&) {
        return true;
    }
}

void LibrarySession::save()
{
    if (isReadOnly())
        return;
    try {
        write();
    } catch (const std::system_error& error) {
        throw SessionError(couldNotSave(error.what()));
    } catch (const Base::NotARegularFile& error) { // Something else stands under the document's name.
        throw SessionError(couldNotSave(error.what()));
    }
}

std::optional<std::string> LibrarySession::saveSecondBackup(const SecondBackup& second)
{
    const auto today = m_services.calendar.day(m_services.now()).toString();
    if (isReadOnly() || second.lastDay == today)
        return std::nullopt;
    backUpNow(second.folder);
    return today;
}

} // namespace Pallisande
