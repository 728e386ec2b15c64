#include "TamberlinKit/Archives/ZipReader.h"

#include "Base/Text.h"

#include <fmt/format.h>
#include <libdeflate.h>
#include <zlib.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <new>
#include <optional>

namespace Tamberlin::ZipReader {

namespace {

constexpr std::uint32_t locator64Signature = 0x07064B50;
constexpr std::uint32_t end64Signature = 0x06064B50;
constexpr std::uint32_t centralSignature = 0x02014B50;
constexpr std::uint32_t localSignature = 0x04034B50;

constexpr std::size_t endSize = 22;
constexpr std::size_t locator64Size = 20;
constexpr std::size_t end64Size = 56;
constexpr std::size_t centralSize = 46;
constexpr std::size_t localSize = 30;
constexpr std::size_t longestTail = endSize + 65'535; // With the longest comment there can be.

constexpr std::uint32_t inZip64 = 0xFFFFFFFF; // The value stands in a ZIP64 record.
constexpr std::uint16_t countInZip64 = 0xFFFF;
constexpr std::uint16_t utf8Flag = 1 << 11;
constexpr std::uint16_t stored = 0, deflated = 8; // Methods.
constexpr std::uint64_t mostFromOneByte = 1032; // DEFLATE can't make more of a byte.
constexpr std::uint64_t smallestDeflated = 64;

// A stretch of the archive. Whoever asks for something past its end gets nothing.
class Cursor {
public:
    explicit Cursor(std::string_view bytes)
        : m_bytes(bytes)
    {
    }

    // `size` bytes from `offset` on.
    std::optional<Cursor> at(std::uint64_t offset, std::uint64_t size) const
    {
        if (offset > m_bytes.size() || size > m_bytes.size() - offset)
            return std::nullopt;
        return Cursor(m_bytes.substr(static_cast<std::size_t>(offset), static_cast<std::size_t>(size)));
    }

    // A little-endian number that the caller knows to lie inside.
    template <typename Number> Number number(std::size_t offset) const
    {
        Number value = 0;
        for (std::size_t byte = sizeof(Number); byte-- > 0;)
            value = static_cast<Number>(
                (std::uint64_t { value } << 8) | static_cast<unsigned char>(m_bytes.at(offset + byte)));
        return value;
    }
    bool begins(std::uint32_t signature) const { return number<std::uint32_t>(0) == signature; }

    std::string_view bytes() const { return m_bytes; }
    std::size_t size() const { return m_bytes.size(); }

private:
    std::string_view m_bytes;
};

struct Directory {
    std::uint64_t count = 0, size = 0, offset = 0;
};

std::size_t endRecord(std::string_view archive)
{
    constexpr std::string_view endSignature = "PK\x05\x06";
    const auto tail = archive.size() - std::min(archive.size(), longestTail);
    const auto found = archive.substr(tail).rfind(endSignature);
    if (found == archive.npos || archive.size() - tail - found < endSize)
        throw Failure("It isn’t a zip archive.");
    return tail + found;
}

// The values of the ZIP64 record, where there is one.
std::optional<Directory> directory64(const Cursor& archive, std::size_t end)
{
    const auto locator = end >= locator64Size ? archive.at(end - locator64Size, locator64Size) : std::nullopt;
    if (!locator || !locator->begins(locator64Signature))
        return std::nullopt;
    const auto record = archive.at(locator->number<std::uint64_t>(8), end64Size);
    if (!record || !record->begins(end64Signature))
        throw Failure("The file’s ZIP64 record is damaged.");
    return Directory { record->number<std::uint64_t>(32), record->number<std::uint64_t>(40),
        record->number<std::uint64_t>(48) };
}

Directory findDirectory(const Cursor& archive)
{
    const auto end = endRecord(archive.bytes());
    const auto record = *archive.at(end, endSize);
    Directory directory { record.number<std::uint16_t>(10), record.number<std::uint32_t>(12),
        record.number<std::uint32_t>(16) };
    if (directory.offset == inZip64 || directory.size == inZip64 || directory.count == countInZip64)
        directory = directory64(archive, end).value_or(directory);
    if (!archive.at(directory.offset, directory.size))
        throw Failure("The file is damaged (its directory is cut off).");
    return directory;
}

std::string latin1(std::string_view bytes)
{
    std::string text;
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        if (code < 0x80) {
            text += byte;
        } else {
            text += static_cast<char>(0xC0 | code >> 6);
            text += static_cast<char>(0x80 | (code & 0x3F));
        }
    }
    return text;
}

// Takes the 64-bit values over for those fields that say so, in their fixed order.
void readZip64Field(Entry& entry, const Cursor& block)
{
    std::size_t at = 0;
    for (auto* const field : { &entry.size, &entry.compressedSize, &entry.headerOffset }) {
        if (*field != inZip64)
            continue;
        if (block.size() - at < sizeof(std::uint64_t))
            return;
        *field = block.number<std::uint64_t>(at);
        at += sizeof(std::uint64_t);
    }
}

void readExtraField(Entry& entry, const Cursor& extra)
{
    constexpr std::uint16_t zip64 = 0x0001;
    constexpr std::size_t head = 4;
    for (std::uint64_t at = 0; const auto header = extra.at(at, head);) {
        const auto length = header->number<std::uint16_t>(2);
        const auto block = extra.at(at + head, length);
        if (!block)
            return;
        if (header->number<std::uint16_t>(0) == zip64)
            readZip64Field(entry, *block);
        at += head + length;
    }
}

[[noreturn]] void failDamaged(const Entry& entry)
{
    throw Failure(fmt::format("“{}” is damaged.", Base::validUtf8(entry.path)));
}

[[noreturn]] void failUnchecked(const Entry& entry)
{
    throw Failure(
        fmt::format("“{}” didn’t check out (the file may be damaged).", Base::validUtf8(entry.path)));
}

std::string_view storedBytes(const Entry& entry, const Cursor& archive)
{
    const auto header = archive.at(entry.headerOffset, localSize);
    if (!header || !header->begins(localSignature))
        failDamaged(entry);
    // The lengths of this header count; those of the directory can be others.
    const auto skipped
        = std::uint64_t { localSize } + header->number<std::uint16_t>(26) + header->number<std::uint16_t>(28);
    const auto rest = archive.at(entry.headerOffset, archive.size() - entry.headerOffset);
    const auto data = rest->at(skipped, entry.compressedSize);
    if (entry.size > largestEntry || !data)
        failDamaged(entry);
    return data->bytes();
}

// What the stream gives before it goes on for too long or is damaged, of which libdeflate gives nothing: the
// checksum decides.
std::size_t inflateBeginning(std::string_view packed, char* into, std::size_t size)
{
    z_stream stream {};
    if (inflateInit2(&stream, -MAX_WBITS) != Z_OK)
        throw std::bad_alloc();
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(packed.data()));
    stream.avail_in = static_cast<uInt>(packed.size());
    stream.next_out = reinterpret_cast<Bytef*>(into);
    stream.avail_out = static_cast<uInt>(size);
    inflate(&stream, Z_SYNC_FLUSH);
    const auto made = size - stream.avail_out;
    inflateEnd(&stream);
    return made;
}

std::size_t inflated(std::string_view packed, char* into, std::size_t size)
{
    struct Free {
        void operator()(libdeflate_decompressor* decompressor) const
        {
            libdeflate_free_decompressor(decompressor);
        }
    };
    thread_local const std::unique_ptr<libdeflate_decompressor, Free> decompressor(
        libdeflate_alloc_decompressor());
    if (!decompressor)
        throw std::bad_alloc();
    std::size_t made = 0;
    const auto result
        = libdeflate_deflate_decompress(decompressor.get(), packed.data(), packed.size(), into, size, &made);
    if (result == LIBDEFLATE_SUCCESS)
        return made;
    return packed.size() <= std::numeric_limits<uInt>::max() ? inflateBeginning(packed, into, size) : 0;
}

} // namespace

std::vector<Entry> entries(std::string_view archive)
{
    const Cursor bytes(archive);
    const auto directory = findDirectory(bytes);
    std::vector<Entry> entries;
    // What is stated may be absurd; what is left bounds it.
    entries.reserve(static_cast<std::size_t>(
        std::min<std::uint64_t>(directory.count, (archive.size() - directory.offset) / centralSize)));
    auto at = directory.offset;
    for (std::uint64_t number = 0; number < directory.count; ++number) {
        const auto header = bytes.at(at, centralSize);
        if (!header || !header->begins(centralSignature))
            throw Failure("The file’s directory is damaged.");
        const std::uint64_t nameLength = header->number<std::uint16_t>(28),
                            extraLength = header->number<std::uint16_t>(30),
                            commentLength = header->number<std::uint16_t>(32);
        const auto rest = bytes.at(at + centralSize, nameLength + extraLength + commentLength);
        if (!rest)
            throw Failure("The file’s directory is damaged.");
        const auto name = rest->at(0, nameLength)->bytes();
        const bool isUtf8 = header->number<std::uint16_t>(8) & utf8Flag;
        Entry entry {
            .path = isUtf8 ? Base::validUtf8(name) : latin1(name),
            .method = header->number<std::uint16_t>(10),
            .compressedSize = header->number<std::uint32_t>(20),
            .size = header->number<std::uint32_t>(24),
            .crc32 = header->number<std::uint32_t>(16),
            .headerOffset = header->number<std::uint32_t>(42),
        };
        readExtraField(entry, *rest->at(nameLength, extraLength));
        entries.push_back(std::move(entry));
        at += centralSize + rest->size();
    }
    return entries;
}

Packed::Packed(const Entry& entry, std::string_view archive)
    : m_entry(entry)
    , m_bytes(storedBytes(entry, Cursor(archive)))
{
    if (entry.method != stored && entry.method != deflated)
        throw Failure(
            fmt::format("“{}” uses a kind of compression that can’t be read.", Base::validUtf8(entry.path)));
    if (entry.method == deflated && entry.size > 0 && m_bytes.empty())
        failDamaged(entry);
    const bool isPossible = entry.method == stored
        ? entry.size == m_bytes.size()
        : entry.size <= mostFromOneByte * m_bytes.size() + smallestDeflated;
    if (!isPossible)
        failUnchecked(entry);
}

void Packed::unpack(char* into) const
{
    auto made = size();
    if (m_entry.method == stored)
        m_bytes.copy(into, made);
    else if (made > 0)
        made = inflated(m_bytes, into, made);
    if (made != size() || libdeflate_crc32(0, into, made) != m_entry.crc32)
        failUnchecked(m_entry);
}

Bytes Packed::unpacked() const
{
    Bytes bytes { Base::LargeVector<char>(size()) };
    unpack(bytes.data.data());
    return bytes;
}

Bytes read(const Entry& entry, std::string_view archive) { return Packed(entry, archive).unpacked(); }

} // namespace Tamberlin::ZipReader
