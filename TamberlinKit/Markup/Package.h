#pragma once

#include "TamberlinKit/Archives/ZipReader.h"
#include "TamberlinKit/Markup/XMLScan.h"

#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace Tamberlin {

// A document that is a ZIP archive of parts: Office Open XML (ISO/IEC 29500) or OpenDocument (ISO/IEC 26300).
// It doesn't own the archive's bytes. May be used from several threads.
class Package {
public:
    // All that the parts of one document may unpack to together.
    static constexpr std::uint64_t largestDocument = 2'147'483'648;

    // `kind` names the format in the message of the ReadError that is thrown for what is no archive: "Word
    // (.docx)".
    Package(std::string_view archive, std::string name, std::string_view kind, std::stop_token cancel = {});

    const std::string& name() const { return m_name; }
    const std::vector<ZipReader::Entry>& entries() const { return m_entries; }

    bool has(std::string_view path) const { return m_places.contains(path); }
    // The bytes of the part with exactly this path; nothing when there is none. Throws ReadError for a
    // damaged one, and Cancelled.
    std::optional<Bytes> data(std::string_view path) const;
    // The parts in a folder whose path begins and ends so, in natural order; not those of its subfolders.
    std::vector<std::string> paths(std::string_view prefix, std::string_view suffix) const;
    // Scans one part; a missing one gives no events. Gives the note for the user when the part is malformed.
    std::optional<std::string> scan(std::string_view path, const XMLScan& scan) const;

    // The parts that a part refers to (OPC relationships), by their Id. Files outside the package are left
    // out.
    std::map<std::string, std::string> relationships(std::string_view path) const;
    // Those whose type ends with "/" and this word ("header"), in the order in which they are written.
    std::vector<std::string> related(std::string_view path, std::string_view type) const;

private:
    std::optional<ZipReader::Packed> packed(std::string_view path) const;

    struct Relationship {
        std::string id, type, target;
    };
    using Relationships = std::shared_ptr<const std::vector<Relationship>>;
    Relationships allRelationships(std::string_view path) const;

    std::string_view m_archive;
    std::string m_name;
    std::stop_token m_cancel;
    std::vector<ZipReader::Entry> m_entries;
    std::unordered_map<std::string_view, std::size_t> m_places; // Of the first entry with each path.
    mutable std::atomic<std::uint64_t> m_unpacked = 0;
    mutable std::mutex m_relationshipsMutex;
    mutable std::string
        m_relationshipsOf; // The part that was asked about last, which tends to be the next too.
    mutable Relationships m_relationships;
};

} // namespace Tamberlin
