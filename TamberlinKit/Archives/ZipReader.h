#pragma once

#include "Base/LargePages.h"
#include "TamberlinKit/Text/ReadError.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Tamberlin {

// Bytes that were unpacked. They aren't cleared first, which for large parts costs as much as unpacking.
struct Bytes {
    Base::LargeVector<char> data;

    std::string_view view() const { return { data.data(), data.size() }; }
};

// Reads ZIP archives held in memory (PKWARE's application note 6.3.9, with ZIP64 records; methods stored and
// deflate). Nothing that an archive states about sizes or counts is believed before it is compared with what
// is there.
namespace ZipReader {

struct Entry {
    std::string path; // As stored; only compared, never used as a path.
    std::uint16_t method = 0;
    std::uint64_t compressedSize = 0;
    std::uint64_t size = 0;
    std::uint32_t crc32 = 0;
    std::uint64_t headerOffset = 0; // Of the local header, from the start of the archive.

    bool operator==(const Entry&) const = default;
};

class Failure : public ReadError {
public:
    using ReadError::ReadError;
};

inline constexpr std::uint64_t largestEntry = 268'435'456; // 256 MiB unpacked.

// The directory of an archive in its order; throws Failure.
std::vector<Entry> entries(std::string_view archive);

// An entry that may be unpacked, as far as can be told before; throws Failure otherwise. The archive must
// stay.
class Packed {
public:
    Packed(const Entry& entry, std::string_view archive);

    std::size_t size() const { return static_cast<std::size_t>(m_entry.size); }
    // Unpacks so many bytes and checks them against the CRC-32; throws Failure.
    void unpack(char* into) const;
    Bytes unpacked() const;

private:
    const Entry& m_entry;
    std::string_view m_bytes;
};

// The unpacked bytes of one entry, checked; throws Failure.
Bytes read(const Entry& entry, std::string_view archive);

} // namespace ZipReader

} // namespace Tamberlin
