#pragma once

#include "Base/Calendar.h"
#include "Base/DurableFile.h"
#include "PallisandeKit/Records/Library.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace Pallisande {

// The store refuses or has found something; `what()` is the sentence for the user. Errors of the file system
// come as they are (std::system_error).
class LibraryStoreError : public std::runtime_error {
public:
    enum class Case { damaged, newerVersion, pdfExists };

    static LibraryStoreError damaged(const std::filesystem::path& movedTo);
    static LibraryStoreError newerVersion(std::int64_t version);
    static LibraryStoreError pdfExists(const std::string& name);

    Case kind() const { return m_kind; }
    const std::filesystem::path& movedTo() const { return m_movedTo; } // Of `damaged`.

private:
    LibraryStoreError(Case kind, const std::string& sentence, std::filesystem::path movedTo = {})
        : std::runtime_error(sentence)
        , m_kind(kind)
        , m_movedTo(std::move(movedTo))
    {
    }

    Case m_kind;
    std::filesystem::path m_movedTo;
};

// One library folder and everything in it. It has no state besides the folder and may be made anew at any
// time; folders are made, with their parents, when something is first written to them.
class LibraryStore {
public:
    static constexpr std::string_view documentName = "Pallisande Library.json";
    static constexpr std::string_view backupsFolder = "Backups";
    static constexpr std::string_view reportsFolder = "Reports";
    static constexpr std::string_view invoicesFolder = "Invoices";
    static constexpr std::size_t datedBackups = 60; // How many dated copies are kept.

    explicit LibraryStore(std::filesystem::path folder);

    // "Pallisande" in the user's folder for application data ($XDG_DATA_HOME or ~/.local/share), made when
    // missing.
    static std::filesystem::path defaultFolder();

    const std::filesystem::path& folder() const { return m_folder; }
    bool exists() const; // Whether the document is there.

    struct Loaded {
        Library library;
        std::optional<Base::FileIdentity> identity; // Absent: there was no document.
        std::string sha256; // Of the document's bytes.
    };
    // Asked when a document can't be decoded: whether to read it once more (it may be half written by
    // somebody else).
    using ReadAgain = std::function<bool(const Base::FileIdentity& identity, int attempt)>;

    // The library, or a new one when there is no document. A document that can't be decoded is moved aside;
    // one of a newer version is left untouched.
    Loaded load(const Base::Moment& moment, const ReadAgain& readAgain = {}) const;

    std::optional<Base::FileContents> read() const; // The document's bytes; nothing when there is none.
    std::optional<Base::FileIdentity> identity() const;

    static std::string encode(const Library& library); // The document's bytes.
    // Throws Base::DecodingError, or LibraryStoreError for a newer version.
    static Library decode(std::string_view document, const Base::Moment& moment);

    void save(const Library& library) const;
    Base::FileIdentity save(std::string_view document) const; // Bytes that `encode` made.

    // Writes the day's copy if there is none yet, then prunes; gives where it was written.
    std::optional<std::filesystem::path> dailyBackup(
        const Library& library, const Base::Moment& moment) const;
    std::optional<std::filesystem::path> dailyBackup(
        std::string_view document, const Base::Moment& moment) const;
    bool hasDailyBackup(const Base::Moment& moment) const;

    // Writes an on-demand copy, named with the time, into `into` or into Backups; gives where. A name that is
    // taken (the repeated hour, two in one second) takes the next free second.
    std::filesystem::path backup(const Library& library, const Base::Moment& moment,
        const std::optional<std::filesystem::path>& into = std::nullopt) const;

    std::vector<std::filesystem::path> backups() const; // Newest first.
    // Other versions of the document beside it, which are never read for it, nor removed.
    std::vector<std::filesystem::path> conflictCopies() const;

    // Keeps a copy of an imported report; gives its path relative to the folder.
    std::string storeReport(std::string_view data, const std::string& fileName, const Base::Uuid& id) const;
    // Stores the PDF of an issued document, never over another; gives its path relative to the folder.
    std::string storeIssuedPDF(std::string_view data, const std::string& name) const;

    std::filesystem::path resolve(const std::string& relativePath) const { return m_folder / relativePath; }

private:
    std::filesystem::path moveAside(Base::Instant now) const;
    void prune() const;

    std::filesystem::path m_folder;
};

} // namespace Pallisande
