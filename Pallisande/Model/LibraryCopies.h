#pragma once

#include "Base/DurableFile.h"
#include "PallisandeKit/Library/LibraryComparison.h"
#include "PallisandeKit/Library/LibraryFileName.h"

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Pallisande {

class AppModel;

// What lies beside the library and could stand in its place: backups, other versions that a sync program set
// aside, and issued documents that only the issue log still knows. All of it is read off the main thread.
class LibraryCopies {
public:
    explicit LibraryCopies(AppModel& model);

    struct Copy {
        std::filesystem::path file;
        LibraryFileName::Kind kind = LibraryFileName::Kind::other;
        std::string when; // "9 Mar 2026, 15:05"
        std::string what; // "Daily copy"; else its own name.
        std::optional<LibraryContents> contents; // Absent until it was read, and when it can't be.
        std::string failure; // Why it can't be.
        std::optional<Base::FileIdentity> identity;

        bool isBeingRead() const { return !contents && failure.empty(); }
    };
    const std::vector<Copy>& all() const { return m_all; } // Those of sync programs first; newest first.
    const Copy* find(const std::filesystem::path& file) const;
    void list(); // Looks for them, and reads those that it doesn't know, one after the other.
    void refresh(); // The same, if they are listed.
    void letGo();

    // What restoring a copy would change, in words.
    struct Difference {
        std::string about; // "Clients"
        std::vector<std::string> lines;
    };
    struct Comparison {
        std::string failure; // Why there is none.
        bool isSame = false;
        std::vector<Difference> differences;
    };
    // Asked for another copy meanwhile, it never answers for the first.
    void compare(const std::filesystem::path& file, std::function<void(const Comparison&)> done);

    // --- Documents whose PDFs are stored and whose records the library lacks
    void lookForUnrecorded();
    std::vector<std::string> unrecorded() const; // Their numbers.
    bool takeOver(); // Their records, from the issue log.
    static std::string enumerated(const std::vector<std::string>& names); // "A, B and 9 more"

private:
    struct Wanted {
        std::filesystem::path file;
        std::function<void(const Comparison&)> done;
    };
    struct Reading;

    static std::function<void()> read(const std::shared_ptr<Reading>& reading, const Base::Moment& moment);
    Copy describe(const std::filesystem::path& file) const;
    void readNext();
    void compareNext();
    void wasRead(const Reading& reading);
    Comparison comparison(const Reading& reading) const;
    bool isLibraryKnown() const;

    AppModel& m_model;
    std::vector<Copy> m_all;
    std::shared_ptr<int> m_run, m_look; // Another one: what was under way is forgotten.
    std::optional<Wanted> m_wanted;
    bool m_isComparing = false;
    std::vector<Ledger::IssuePlan> m_unrecorded;
};

} // namespace Pallisande
