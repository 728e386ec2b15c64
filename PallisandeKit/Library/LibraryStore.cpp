#include "PallisandeKit/Library/LibraryStore.h"

#include "Base/Json.h"
#include "Base/SafeFileName.h"
#include "Base/Sha256.h"
#include "Base/Text.h"
#include "PallisandeKit/Ledger/Ledger.h"
#include "PallisandeKit/Library/LibraryFileName.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <system_error>

namespace Pallisande {

namespace {

namespace fs = std::filesystem;

constexpr auto namePrefix = LibraryFileName::stem;
constexpr int mostTries = 3600; // Of names for a file moved aside or an on-demand copy.

// The document read for its version alone.
struct Header {
    std::optional<std::int64_t> version;

    static constexpr auto fields() { return std::tuple { Base::field("version", &Header::version) }; }
};

bool isDated(const std::string& name)
{
    return LibraryFileName::of(name).kind == LibraryFileName::Kind::dated;
}

std::string datedName(Base::Day day) { return fmt::format("{} {}.json", namePrefix, day.toString()); }

std::string dailyPath(const Base::Moment& moment)
{
    return fmt::format("{}/{}", LibraryStore::backupsFolder, datedName(moment.calendar.day(moment.now)));
}

Base::ReadingContext readingContext(const Base::Moment& moment)
{
    return { moment.now, moment.calendar.zone() };
}

// Whether the document says that a newer program wrote it; one that can't be read at all says nothing.
std::optional<std::int64_t> newerVersion(std::string_view document, const Base::Moment& moment)
{
    try {
        const auto header = Base::fromJson<Header>(document, readingContext(moment));
        if (header.version && *header.version > Library::currentVersion)
            return header.version;
    } catch (const Base::DecodingError&) {
        return std::nullopt;
    }
    return std::nullopt;
}

// Sums of what comes from a document must not be able to overflow.
void checkCounts(const Library& library)
{
    CountBound bound;
    std::int64_t targetUnits = 0;
    for (const auto& job : library.jobs) {
        targetUnits += std::abs(job.targetUnits.value_or(0));
        bool fits = targetUnits <= Base::Checked::largestCount;
        for (const auto& analysis : job.analyses)
            fits = fits && bound.admits(analysis);
        if (!fits)
            throw Base::DecodingError("The counts are too large to be right.");
    }
}

} // namespace

LibraryStoreError LibraryStoreError::damaged(const fs::path& movedTo)
{
    return { Case::damaged,
        fmt::format("The library file couldn’t be read; it was kept as “{}”.", movedTo.filename().string()),
        movedTo };
}

LibraryStoreError LibraryStoreError::newerVersion(std::int64_t)
{
    return { Case::newerVersion, "This library was saved by a newer version of Pallisande." };
}

LibraryStoreError LibraryStoreError::pdfExists(const std::string& name)
{
    return { Case::pdfExists,
        fmt::format("A PDF for {} is already stored; an issued PDF is never replaced.", name) };
}

LibraryStore::LibraryStore(fs::path folder)
    : m_folder(std::move(folder))
{
}

fs::path LibraryStore::defaultFolder()
{
    const char* const data = std::getenv("XDG_DATA_HOME");
    const char* const home = std::getenv("HOME");
    fs::path base;
    if (data && fs::path(data).is_absolute())
        base = data;
    else if (home && fs::path(home).is_absolute())
        base = fs::path(home) / ".local" / "share";
    else
        throw std::system_error(ENOENT, std::generic_category());
    return Base::Folder::make(base / "Pallisande").path();
}

bool LibraryStore::exists() const
{
    std::error_code error;
    return fs::exists(m_folder / documentName, error);
}

LibraryStore::Loaded LibraryStore::load(const Base::Moment& moment, const ReadAgain& readAgain) const
{
    for (int attempt = 1;; ++attempt) {
        const auto file = read();
        if (!file)
            return { Library::makeNew(), std::nullopt, {} };
        try {
            return { decode(file->bytes, moment), file->identity, Base::sha256(file->bytes) };
        } catch (const Base::DecodingError&) {
            if (readAgain && readAgain(file->identity, attempt))
                continue;
            throw LibraryStoreError::damaged(moveAside(moment.now));
        }
    }
}

std::optional<Base::FileContents> LibraryStore::read() const
{
    try {
        return Base::readFile(Base::Folder::open(m_folder), std::string(documentName));
    } catch (const std::system_error& error) {
        if (error.code().value() == ENOENT) // Neither a folder nor a document: a new library.
            return std::nullopt;
        throw;
    }
}

std::string LibraryStore::encode(const Library& library) { return Base::toJson(library); }

Library LibraryStore::decode(std::string_view document, const Base::Moment& moment)
{
    try {
        auto library = Base::fromJson<Library>(document, readingContext(moment));
        if (library.version > Library::currentVersion)
            throw LibraryStoreError::newerVersion(library.version);
        checkCounts(library);
        return library;
    } catch (const Base::DecodingError&) {
        // A newer version may well have another form; only its number must be readable.
        if (const auto version = newerVersion(document, moment))
            throw LibraryStoreError::newerVersion(*version);
        throw;
    }
}

fs::path LibraryStore::moveAside(Base::Instant now) const
{
    auto stamp = now.toSecondsString();
    std::replace(stamp.begin(), stamp.end(), ':', '-');
    const auto folder = Base::Folder::open(m_folder);
    for (int attempt = 1; attempt <= mostTries; ++attempt) {
        const auto name = attempt == 1 ? fmt::format("{} (damaged {}).json", namePrefix, stamp)
                                       : fmt::format("{} (damaged {} {}).json", namePrefix, stamp, attempt);
        try {
            folder.rename(std::string(documentName), name);
        } catch (const std::system_error& error) {
            if (error.code().value() == EEXIST)
                continue;
            throw;
        }
        folder.sync();
        return m_folder / name;
    }
    throw std::system_error(EEXIST, std::generic_category());
}

void LibraryStore::save(const Library& library) const { save(encode(library)); }

Base::FileIdentity LibraryStore::save(std::string_view document) const
{
    // Somebody who links the document to another place wants that place to be written.
    auto path = m_folder / documentName;
    std::error_code none;
    if (fs::is_symlink(path, none))
        path = fs::weakly_canonical(path);
    return Base::writeDurably(Base::Folder::make(path.parent_path()), path.filename().string(), document);
}

std::optional<Base::FileIdentity> LibraryStore::identity() const
{
    try {
        return Base::fileIdentity(Base::Folder::open(m_folder), std::string(documentName));
    } catch (const std::system_error& error) {
        if (error.code().value() == ENOENT)
            return std::nullopt;
        throw;
    }
}

bool LibraryStore::hasDailyBackup(const Base::Moment& moment) const
{
    std::error_code error;
    return fs::exists(m_folder / dailyPath(moment), error);
}

std::optional<fs::path> LibraryStore::dailyBackup(const Library& library, const Base::Moment& moment) const
{
    if (hasDailyBackup(moment))
        return std::nullopt;
    return dailyBackup(encode(library), moment);
}

std::optional<fs::path> LibraryStore::dailyBackup(std::string_view document, const Base::Moment& moment) const
{
    if (hasDailyBackup(moment))
        return std::nullopt;
    const auto folder = Base::Folder::make(m_folder / backupsFolder);
    const auto name = datedName(moment.calendar.day(moment.now));
    Base::writeDurably(folder, name, document);
    prune();
    return folder.path() / name;
}

void LibraryStore::prune() const
{
    std::size_t kept = 0;
    const auto folder = Base::Folder::open(m_folder / backupsFolder);
    for (const auto& path : backups()) {
        const auto name = path.filename().string();
        if (isDated(name) && ++kept > datedBackups)
            folder.remove(name);
    }
}

fs::path LibraryStore::backup(
    const Library& library, const Base::Moment& moment, const std::optional<fs::path>& into) const
{
    const auto document = encode(library);
    const auto folder = Base::Folder::make(into ? *into : m_folder / backupsFolder);
    for (int second = 0; second < mostTries; ++second) {
        const auto at
            = moment.calendar.components(moment.now.plusMilliseconds(second * std::int64_t { 1000 }));
        const auto name = fmt::format(
            "{} {} {:02}-{:02}-{:02}.json", namePrefix, at.day.toString(), at.hour, at.minute, at.second);
        if (folder.exists(name))
            continue;
        Base::writeDurably(folder, name, document);
        return folder.path() / name;
    }
    throw std::system_error(EEXIST, std::generic_category());
}

std::vector<fs::path> LibraryStore::backups() const
{
    std::error_code error;
    if (!fs::is_directory(m_folder / backupsFolder, error))
        return {};
    const auto folder = Base::Folder::open(m_folder / backupsFolder);
    auto names = folder.files();
    std::erase_if(names,
        [](const std::string& name) { return !name.starts_with(namePrefix) || !name.ends_with(".json"); });
    std::vector<fs::path> paths;
    for (auto name = names.rbegin(); name != names.rend(); ++name)
        paths.push_back(folder.path() / *name);
    return paths;
}

std::vector<fs::path> LibraryStore::conflictCopies() const
{
    const auto folder = Base::Folder::open(m_folder);
    std::vector<fs::path> paths;
    for (const auto& name : folder.files()) {
        if (LibraryFileName::of(name).kind == LibraryFileName::Kind::conflict)
            paths.push_back(folder.path() / name);
    }
    return paths;
}

std::string LibraryStore::storeReport(
    std::string_view data, const std::string& fileName, const Base::Uuid& id) const
{
    const auto folder = Base::Folder::make(m_folder / reportsFolder);
    const auto before = id.toString() + " ";
    const auto name = before + Base::safeFileName(fileName, before);
    Base::writeDurably(folder, name, data);
    return fmt::format("{}/{}", reportsFolder, name);
}

std::string LibraryStore::storeIssuedPDF(std::string_view data, const std::string& name) const
{
    const auto path = Ledger::pdfPath(name);
    const auto folder = Base::Folder::make(m_folder / invoicesFolder);
    if (!Base::writeIfAbsent(folder, fs::path(path).filename().string(), data))
        throw LibraryStoreError::pdfExists(name);
    return path;
}

} // namespace Pallisande
