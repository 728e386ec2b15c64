#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>
#include <zlib.h>

namespace Test {

// A ZIP archive of files given as path and content, stored without compression.
inline std::string zipOf(const std::vector<std::pair<std::string, std::string>>& files)
{
    std::string archive, directory;
    const auto put = [](std::string& bytes, std::uint64_t value, int size) {
        for (; size > 0; --size, value >>= 8)
            bytes += static_cast<char>(value & 0xFF);
    };
    // Both headers end their common part with CRC, sizes and the lengths of the name and of no extra field.
    const auto putCommon = [&](std::string& bytes, const std::string& path, const std::string& content) {
        constexpr int utf8Flag = 1 << 11;
        put(bytes, 20, 2);
        put(bytes, utf8Flag, 2);
        put(bytes, 0, 2 + 4); // Stored, at no time.
        put(bytes,
            crc32(0, reinterpret_cast<const Bytef*>(content.data()), static_cast<uInt>(content.size())), 4);
        put(bytes, content.size(), 4);
        put(bytes, content.size(), 4);
        put(bytes, path.size(), 2);
        put(bytes, 0, 2);
    };
    for (const auto& [path, content] : files) {
        put(directory, 0x02014B50, 4);
        put(directory, 20, 2);
        putCommon(directory, path, content);
        put(directory, 0, 2 + 2 + 2 + 4);
        put(directory, archive.size(), 4);
        directory += path;
        put(archive, 0x04034B50, 4);
        putCommon(archive, path, content);
        archive += path + content;
    }
    const auto offset = archive.size();
    archive += directory;
    put(archive, 0x06054B50, 4);
    put(archive, 0, 4);
    put(archive, files.size(), 2);
    put(archive, files.size(), 2);
    put(archive, directory.size(), 4);
    put(archive, offset, 4);
    put(archive, 0, 2);
    return archive;
}

} // namespace Test
