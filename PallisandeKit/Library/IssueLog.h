#pragma once

#include "Base/Folder.h"
#include "PallisandeKit/Ledger/Ledger.h"

#include <optional>
#include <string>
#include <vector>

namespace Pallisande {

// One line of the issue log: what is about to be issued, or what became of it. Each names the hash of the
// line before, so that a line changed later shows.
struct IssueLogLine {
    std::string previous; // SHA-256 of the line before; empty on the first.
    std::optional<Ledger::IssuePlan> issuing; // Written before anything else happens.
    std::optional<std::string> pdfSHA256; // Of the PDF that goes with it.
    std::optional<Base::Uuid> done; // The document of that id was issued.
    std::optional<Base::Uuid> dropped; // It was not, and its number is free again.

    bool operator==(const IssueLogLine&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("previous", &IssueLogLine::previous, Base::Missing::fails),
            Base::field("issuing", &IssueLogLine::issuing),
            Base::field("pdfSHA256", &IssueLogLine::pdfSHA256),
            Base::field("done", &IssueLogLine::done),
            Base::field("dropped", &IssueLogLine::dropped),
        };
    }
};
static_assert(Base::listsEveryMember<IssueLogLine>);

// The journal of issuing in a library folder, "Issue Log.jsonl". A document is written to it before its PDF
// is stored, so that whatever moment the program is killed at, the next start can finish or drop it; it also
// tells later whether a stored PDF is still the one that was issued.
class IssueLog {
public:
    static constexpr std::string_view fileName = "Issue Log.jsonl";

    enum class Outcome { pending, done, dropped };
    struct Entry {
        Ledger::IssuePlan plan;
        std::string pdfSHA256;
        Outcome outcome = Outcome::pending;
    };

    // Reads the log of the folder; a last line that was cut short by a crash is passed over.
    explicit IssueLog(const Base::Folder& folder, const Base::Moment& moment);

    const std::vector<Entry>& entries() const { return m_entries; } // In the order of issuing.
    bool isIntact() const { return m_isIntact; } // Whether every line names the one before and can be read.

    // Each is on disk when the call returns.
    void begin(const Base::Folder& folder, const Ledger::IssuePlan& plan, const std::string& pdfSHA256);
    void finish(const Base::Folder& folder, const Base::Uuid& document, Outcome outcome);

private:
    void append(const Base::Folder& folder, IssueLogLine line);
    void take(const IssueLogLine& line);

    std::vector<Entry> m_entries;
    std::string m_lastHash;
    std::int64_t m_wholeBytes = 0; // Up to the end of the last whole line.
    bool m_hasTornEnd = false;
    bool m_isIntact = true;
};

} // namespace Pallisande
