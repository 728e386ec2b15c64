#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>
#include <zlib.h>

namespace Test {

// ZIP archives that say what they like.

// A number as archives write it.
inline std::string littleEndian(std::uint64_t value, int size)
{
    std::string bytes;
    for (; size > 0; --size, value >>= 8)
        bytes += static_cast<char>(value & 0xFF);
    return bytes;
}

inline std::uint32_t checksum(std::string_view data)
{
    return static_cast<std::uint32_t>(
        crc32(0, reinterpret_cast<const Bytef*>(data.data()), static_cast<uInt>(data.size())));
}

inline std::string deflated(const std::string& data, int flush = Z_FINISH)
{
    std::string packed(compressBound(data.size()) + 16, '\0');
    z_stream stream {};
    deflateInit2(&stream, 9, Z_DEFLATED, -MAX_WBITS, 9, Z_DEFAULT_STRATEGY);
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(data.data()));
    stream.avail_in = static_cast<uInt>(data.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, flush);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

// An entry as an archive states it: by default as it is, stored.
struct Stated {
    std::string name, packed;
    std::uint64_t size = packed.size(), method = 0, crc = checksum(packed), flags = 1 << 11;
    std::uint64_t packedSize = packed.size();
    std::string extra = {};
    std::optional<std::uint64_t> offset = {};
    std::string localName = name, localExtra = {};
};

struct Ending {
    std::optional<std::uint64_t> count = {}, size = {}, offset = {};
    std::string comment = {}, before = {}; // `before` stands between the directory and the end record.
};

inline std::string zipOf(
    const std::vector<Stated>& entries, const Ending& ending = {}, std::string archive = {})
{
    const auto put = &littleEndian;
    std::string directory;
    for (const auto& entry : entries) {
        directory += put(0x02014B50, 4) + put(0, 4) + put(entry.flags, 2) + put(entry.method, 2) + put(0, 4)
            + put(entry.crc, 4) + put(entry.packedSize, 4) + put(entry.size, 4) + put(entry.name.size(), 2)
            + put(entry.extra.size(), 2) + put(3, 2) + put(0, 8)
            + put(entry.offset.value_or(archive.size()), 4) + entry.name + entry.extra + "why";
        if (!entry.offset) // Else its bytes are another's.
            archive += put(0x04034B50, 4) + put(0, 22) + put(entry.localName.size(), 2)
                + put(entry.localExtra.size(), 2) + entry.localName + entry.localExtra + entry.packed;
    }
    const auto offset = archive.size();
    return archive + directory + ending.before + put(0x06054B50, 4) + put(0, 6)
        + put(ending.count.value_or(entries.size()), 2) + put(ending.size.value_or(directory.size()), 4)
        + put(ending.offset.value_or(offset), 4) + put(ending.comment.size(), 2) + ending.comment;
}

} // namespace Test
