#include "Base/DurableFile.h"
#include "PallisandeKit/Ledger/Find.h"
#include "PallisandeKit/Ledger/Ledger.h"
#include "PallisandeKit/Library/LibrarySession.h"

#include <fmt/format.h>

#include <system_error>

// Reports, backups and the moving of a library between folders.
namespace Pallisande {

namespace {

namespace fs = std::filesystem;

constexpr std::string_view unfinishedSuffix = ".unfinished";

// Copies the files of a folder under another name first, so that a copy that was interrupted isn't taken for
// a whole one.
void copyFolder(const fs::path& from, const fs::path& to)
{
    std::error_code none;
    if (!fs::is_directory(from, none) || fs::exists(to, none))
        return;
    const auto source = Base::Folder::open(from);
    const auto parent = Base::Folder::open(to.parent_path());
    const auto unfinished = fs::path(to.string() + std::string(unfinishedSuffix));
    fs::remove_all(unfinished);
    const auto target = Base::Folder::make(unfinished);
    for (const auto& name : source.files())
        Base::writeIfAbsent(target, name, Base::readFile(source, name).bytes);
    parent.rename(unfinished.filename().string(), to.filename().string());
    parent.sync();
}

} // namespace

void LibrarySession::attachAnalysis(
    const Base::Uuid& jobID, Analysis analysis, std::string_view report, const std::string& fileName)
{
    requireWritable();
    Ledger::required(m_library.job(jobID));
    requireFolder();
    try {
        analysis.storedCopy = m_store.storeReport(report, fileName, analysis.id);
    } catch (const std::system_error& error) {
        throw SessionError(fmt::format("The report’s copy couldn’t be stored: {}", error.what()));
    }
    change(
        [&](Library& library) { Ledger::attachAnalysis(library, jobID, std::move(analysis), moment().now); });
    save();
}

fs::path LibrarySession::backUpNow(const std::optional<fs::path>& into)
{
    // Another program's newer library is not ours to copy about; what memory holds of an unreadable one is
    // nothing.
    if (isReadOnly() && m_readOnly != ReadOnlyReason::openedForReading
        && m_readOnly != ReadOnlyReason::changedElsewhere)
        throw SessionError(m_readOnlySentence);
    try {
        requireFolder();
        return m_store.backup(m_library, moment(), into);
    } catch (const std::system_error& error) {
        throw SessionError(fmt::format("The backup couldn’t be written: {}", error.what()));
    }
}

void LibrarySession::restore(const fs::path& backup)
{
    if (m_readOnly != ReadOnlyReason::missingFile)
        requireWritable();
    replaceBy(readBackup(backup, moment()));
    save();
}

Library LibrarySession::readBackup(const fs::path& backup, const Base::Moment& moment)
{
    try {
        return LibraryStore::decode(Base::readFile(backup).bytes, moment);
    } catch (const std::exception& error) {
        throw SessionError(
            fmt::format("“{}” couldn’t be restored: {}", backup.filename().string(), error.what()));
    }
}

std::optional<fs::path> LibrarySession::replaceBy(Library library)
{
    std::optional<fs::path> copy;
    if (m_readOnly != ReadOnlyReason::missingFile) {
        requireWritable();
        copy = backUpNow();
    }
    m_readOnly = ReadOnlyReason::none;
    m_library = std::move(library);
    m_isDirty = true;
    return copy;
}

void LibrarySession::startAnew()
{
    if (m_readOnly != ReadOnlyReason::missingFile)
        throw SessionError("A new library is only begun in a folder that has none.");
    m_readOnly = ReadOnlyReason::none;
    m_library = Library::makeNew();
    m_isDirty = true;
    save();
}

void LibrarySession::moveTo(const fs::path& folder)
{
    requireWritable();
    const auto couldNotMove = [](std::string_view reason) {
        return SessionError(fmt::format("The library couldn’t be moved: {}", reason));
    };
    if (m_isDirty)
        save();
    try {
        const auto target = Base::Folder::make(folder);
        if (target.isStillThere() && fs::equivalent(target.path(), m_store.folder()))
            throw couldNotMove("it is in that folder already");
        const LibraryStore there(target.path());
        if (there.exists()) { // Its library is used, if it can be; it mustn't be taken for an empty one.
            there.load(moment());
        } else {
            for (const auto name : { LibraryStore::reportsFolder, LibraryStore::invoicesFolder })
                copyFolder(m_store.folder() / name, target.path() / name);
            const std::string log(IssueLog::fileName);
            if (m_folder.exists(log) && !target.exists(log))
                Base::writeDurably(target, log, Base::readFile(m_folder, log).bytes);
            there.save(m_library); // Last: with it the folder is a library.
        }
    } catch (const std::system_error& error) {
        throw couldNotMove(error.what());
    } catch (const LibraryStoreError& error) {
        throw couldNotMove(error.what());
    }
    auto moved = open(folder, Access::writing, m_services);
    if (moved.isReadOnly())
        throw couldNotMove(moved.m_readOnlySentence);
    moved.m_messages.push_back(fmt::format(
        "The library is now in “{}”. The old copy was left where it was.", moved.m_folder.path().string()));
    *this = std::move(moved);
}

} // namespace Pallisande
