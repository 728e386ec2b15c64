#include "TamberlinKit/Archives/ZipReader.h"

#include "Tests/Support/Folders.h"
#include "Tests/Support/OddZips.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <sys/resource.h>
#include <unistd.h>

using namespace Tamberlin;
using ::Test::Stated, ::Test::Ending, ::Test::zipOf, ::Test::littleEndian, ::Test::deflated, ::Test::checksum;

namespace {

constexpr std::uint64_t in64 = 0xFFFFFFFF;
constexpr int utf8 = 1 << 11;

const std::string noArchive = "It isn’t a zip archive.", damaged64 = "The file’s ZIP64 record is damaged.",
                  cutOff = "The file is damaged (its directory is cut off).",
                  damagedDirectory = "The file’s directory is damaged.", damaged = "x=“x” is damaged.;",
                  unchecked = "x=“x” didn’t check out (the file may be damaged).;",
                  otherMethod = "x=“x” uses a kind of compression that can’t be read.;";

// Every entry's path and content, or the sentence that takes their place.
std::string contents(std::string_view archive)
{
    std::string text;
    try {
        for (const auto& entry : ZipReader::entries(archive)) {
            text += entry.path + "=";
            try {
                text += ZipReader::read(entry, archive).view();
            } catch (const ZipReader::Failure& failure) {
                text += failure.what();
            }
            text += ";";
        }
    } catch (const ZipReader::Failure& failure) {
        text += failure.what();
    }
    return text;
}

Stated packed(std::string bytes, std::uint64_t size, std::uint32_t crc)
{
    return { .name = "x", .packed = std::move(bytes), .size = size, .method = 8, .crc = crc };
}

// The ZIP64 record at `at`, and the locator that points to it.
std::string records64(std::uint64_t at, std::uint64_t count, std::uint64_t size, std::uint64_t offset)
{
    const auto put = &littleEndian;
    return put(0x06064B50, 4) + put(44, 8) + put(0, 20) + put(count, 8) + put(size, 8) + put(offset, 8)
        + put(0x07064B50, 4) + put(0, 4) + put(at, 8) + put(1, 4);
}

std::string extraField(std::uint64_t id, const std::string& data)
{
    return littleEndian(id, 2) + littleEndian(data.size(), 2) + data;
}

std::string field64(const std::vector<std::uint64_t>& values, int size = 8)
{
    std::string data;
    for (const auto value : values)
        data += littleEndian(value, size);
    return extraField(1, data);
}

TEST(ZipReader, entriesComeInOrderAsTheDirectoryStatesThem)
{
    const auto entries = ZipReader::entries(zipOf({ { .name = "b", .packed = "second" },
        { .name = "a", .packed = "pk", .size = 9, .method = 12, .crc = 0x89ABCDEF } }));
    const std::vector<ZipReader::Entry> expected { { "b", 0, 6, 6, checksum("second"), 0 },
        { "a", 12, 2, 9, 0x89ABCDEF, 30 + 1 + 6 } };
    EXPECT_EQ(entries, expected);
}

TEST(ZipReader, namesAreUtf8OrLatin1AndOtherwiseAsStored)
{
    const struct {
        std::string stored;
        std::uint64_t flags;
        std::string path;
    } cases[] {
        { "caf\xE9\x80", 0, "café\xC2\x80" },
        { "café", utf8, "café" },
        { "café", 0, "cafÃ©" },
        { "caf\xE9!", utf8 | 8, "caf\xEF\xBF\xBD!" },
        { " .\\a//../B/ ", 0, " .\\a//../B/ " },
        { "", 0, "" },
    };
    for (const auto& [stored, flags, path] : cases)
        EXPECT_EQ(contents(zipOf({ { .name = stored, .packed = "x", .flags = flags } })), path + "=x;");
}

TEST(ZipReader, contentIsUnpackedAndChecked)
{
    const std::string text(5000, 'a'), small = deflated(text), twice = deflated("text, and what goes on");
    const auto crc = checksum(text), crcOfText = checksum("text");
    const auto block = [](bool isLast) {
        return littleEndian(isLast, 1) + littleEndian(4, 2) + littleEndian(~4ULL, 2) + "text";
    };
    const std::pair<Stated, std::string> cases[] {
        { { "x", "as it is" }, "x=as it is;" },
        { { "x", "" }, "x=;" },
        { { "x", "text", 3 }, unchecked },
        { { "x", "text", 4, 0, crc }, unchecked },
        { packed(small, 5000, crc), "x=" + text + ";" },
        { packed(small + "more", 5000, crc), "x=" + text + ";" },
        { packed(small, 5000, crc + 1), unchecked },
        { packed(small, 5001, crc), unchecked },
        { packed(small, 4999, crc), unchecked },
        { packed(small, ZipReader::largestEntry, crc), unchecked },
        { packed(twice, 4, crcOfText), "x=text;" },
        { packed(block(true), 4, crcOfText), "x=text;" },
        { packed(block(true).substr(0, 8), 4, crcOfText), unchecked },
        { packed(block(false), 4, crcOfText), "x=text;" }, // Only the mark of the end is missing.
        { packed(block(false) + "\x07", 4, crcOfText), "x=text;" },
        { packed("\x07", 4, crcOfText), unchecked },
        { packed("ignored", 0, 0), "x=;" },
        { packed("ignored", 0, 1), unchecked },
        { packed("", 0, 0), "x=;" },
        { packed("", 1, 0), damaged },
        { { .name = "x", .packed = "text", .localName = "longer", .localExtra = "extra" }, "x=text;" },
        { { .name = "x", .packed = "text", .method = 12 }, otherMethod },
        { { .name = "x", .packed = "text", .size = 1, .method = 99, .crc = 0 }, otherMethod },
        { { .name = "x", .packed = "text", .method = 99, .packedSize = 100'000 }, damaged },
        { { .name = "x", .packed = "text", .packedSize = 100'000 }, damaged },
        { { .name = "x", .packed = "text", .size = ZipReader::largestEntry + 1, .method = 99 }, damaged },
        { { .name = "x", .packed = "text", .offset = 0 }, damaged },
        { { .name = "x", .packed = "text", .offset = 0xFFFFFFFE }, damaged },
    };
    for (std::size_t number = 0; number < std::size(cases); ++number)
        EXPECT_EQ(contents(zipOf({ cases[number].first })), cases[number].second) << "case " << number;
}

TEST(ZipReader, theLastEndRecordLeadsToTheDirectory)
{
    const auto with = [&](const Ending& ending) { return zipOf({ { "x", "y" } }, ending); };
    const auto size = with({}).size() - 32 - 22;
    const std::string end = "PK\x05\x06";
    const std::pair<std::string, std::string> cases[] {
        { with({}), "x=y;" },
        { zipOf({}), "" },
        { zipOf({ { "x", "y" } }, {}, std::string(512, '-')), "x=y;" }, // Something before the first entry.
        { with({ .comment = std::string(1000, ' ') }), "x=y;" },
        { with({ .comment = std::string(65'535, ' ') }), "x=y;" },
        { with({ .comment = std::string(65'536, ' ') }), noArchive },
        { with({ .comment = end + std::string(17, '\0') }), noArchive },
        { with({ .comment = end + std::string(18, '\0') }), "" },
        { with({ .count = 0 }), "" },
        { with({ .count = 2 }), damagedDirectory },
        { with({ .count = 65'535 }), damagedDirectory },
        { with({ .size = 0 }), "x=y;" }, // The number of entries counts.
        { with({ .size = size + 22 }), "x=y;" },
        { with({ .size = size + 23 }), cutOff },
        { with({ .offset = 31 }), damagedDirectory },
        { with({ .count = 0, .offset = 31 }), "" },
        { with({ .offset = in64 }), cutOff },
        { with({ .count = 0, .size = in64, .offset = 0xFFFFFFFE }), cutOff },
        { end + std::string(17, '\0'), noArchive },
        { "", noArchive },
        { "text", noArchive },
    };
    for (std::size_t number = 0; number < std::size(cases); ++number)
        EXPECT_EQ(contents(cases[number].first), cases[number].second) << "case " << number;
}

TEST(ZipReader, zip64RecordsAndFieldsReplaceWhatDoesNotFit)
{
    const auto with = [](const std::string& records, Ending ending = { .offset = in64 }) {
        ending.before = records;
        return zipOf({ { "x", "y" } }, ending);
    };
    const auto fields = [](std::uint64_t size, std::uint64_t packedSize, const std::string& extra) {
        return zipOf(
            { { .name = "x", .packed = "y", .size = size, .packedSize = packedSize, .extra = extra } });
    };
    const auto offsetField = [](const std::string& extra) { // The entry that it belongs to is the second.
        return zipOf({ { "", "y" }, { .name = "x", .packed = "y", .extra = extra, .offset = in64 } });
    };
    const std::string text(5000, 'a');
    auto bothIn64 = packed(deflated(text), in64, checksum(text));
    bothIn64.extra = field64({ text.size(), bothIn64.packedSize });
    bothIn64.packedSize = in64;
    const auto size = with("").size() - 32 - 22, at = 32 + size;
    const auto most = ~std::uint64_t { 0 };
    const auto good = records64(at, 1, size, 32);
    auto wrongRecord = good, wrongLocator = good;
    wrongRecord[3] = wrongLocator[59] = '-';
    const std::pair<std::string, std::string> cases[] {
        { with(good), "x=y;" },
        { with(good, { .count = 0xFFFF }), "x=y;" },
        { with(good, { .size = in64 }), "x=y;" },
        { with(records64(at, 0, size, 32), {}), "x=y;" }, // Nothing says that it counts.
        { with(records64(at, 0, 0, 0)), "" },
        { with(wrongLocator, { .count = 0xFFFF }), damagedDirectory },
        { with(wrongRecord), damaged64 },
        { with(records64(at + 43, 1, size, 32)), damaged64 },
        { with(records64(most, 1, size, 32)), damaged64 },
        { with(records64(most - 40, 1, size, 32)), damaged64 },
        { with(records64(at, 1, most, 32)), cutOff },
        { with(records64(at, 1, size, most)), cutOff },
        { with(records64(at, 1, most - 31, 32)), cutOff }, // Their sum is 0 in 64 bits.
        { with(records64(at, most, size, 32)), damagedDirectory },
        { fields(in64, in64, field64({ 1, 1 })), "x=y;" },
        { fields(in64, 1, field64({ 1 })), "x=y;" },
        { zipOf({ bothIn64 }), "x=" + text + ";" },
        { fields(1, in64, extraField(7, "zz") + field64({ 1 })), "x=y;" },
        { fields(1, 1, field64({ 9, 9, 9 })), "x=y;" },
        { fields(1, in64, field64({ 1 }, 7)), damaged },
        { fields(1, in64, extraField(7, "zz").substr(0, 5) + field64({ 1 })), damaged },
        { fields(in64, 1, field64({ most })), damaged },
        { fields(1, in64, field64({ most - 30 })), damaged },
        { offsetField(field64({ 0 })), "=y;x=y;" },
        { offsetField(field64({ 0 }, 7)), "=y;" + damaged },
        { offsetField(field64({ most - 29 })), "=y;" + damaged },
    };
    for (std::size_t number = 0; number < std::size(cases); ++number)
        EXPECT_EQ(contents(cases[number].first), cases[number].second) << "case " << number;
}

// Refuses all but a little more memory than there is.
class MemoryLimit {
public:
    explicit MemoryLimit(std::uint64_t more)
    {
        std::uint64_t pages = 0;
        std::ifstream("/proc/self/statm") >> pages;
        getrlimit(RLIMIT_AS, &m_before);
        auto limit = m_before;
        limit.rlim_cur = pages * static_cast<std::uint64_t>(sysconf(_SC_PAGESIZE)) + more;
        setrlimit(RLIMIT_AS, &limit);
    }
    ~MemoryLimit() { setrlimit(RLIMIT_AS, &m_before); }
    MemoryLimit(const MemoryLimit&) = delete;
    MemoryLimit& operator=(const MemoryLimit&) = delete;

private:
    rlimit m_before {};
};

TEST(ZipReader, nothingIsAllocatedOnlyBecauseItIsStated)
{
    const std::pair<std::string, std::string> cases[] {
        { zipOf({ packed(deflated("a bomb that isn’t one"), ZipReader::largestEntry, 0) }), unchecked },
        { zipOf({}, { .count = 65'535, .comment = std::string(1000, ' ') }), damagedDirectory },
        { zipOf({}, { .count = 65'535, .before = records64(0, 1ULL << 32, 0, 0) }), damagedDirectory },
        { zipOf({ { "x", std::string(60 << 20, ' '), 7 } }), unchecked },
    };
    const MemoryLimit limit(40 << 20);
    for (const auto& [archive, sentence] : cases)
        EXPECT_EQ(contents(archive), sentence);
}

TEST(ZipReader, everyChangedByteAndEveryPrefixGivesAListOrASentence)
{
    const std::string text = "a text that is long enough to be packed, packed, packed, packed";
    auto first = packed(deflated(text), text.size(), checksum(text));
    const std::vector<Stated> entries { first, { "two", "stored" },
        { .name = "three", .packed = "64", .size = in64, .extra = field64({ 2 }) } };
    const auto plain = zipOf(entries);
    const auto directory = plain.find("PK\x01\x02"), end = plain.rfind("PK\x05\x06");
    const auto archive = zipOf(
        entries, { .offset = in64, .comment = "c", .before = records64(end, 3, end - directory, directory) });
    ASSERT_EQ(contents(archive), "x=" + text + ";two=stored;three=64;");
    for (std::size_t length = 0; length + 1 < archive.size(); ++length) // The last byte is the comment.
        EXPECT_EQ(contents(archive.substr(0, length)), noArchive) << length;
    for (std::size_t at = 0; at < archive.size(); ++at) {
        for (int bits = 1; bits < 256; ++bits) {
            auto changed = archive;
            changed[at] = static_cast<char>(changed[at] ^ bits);
            const auto found = ";" + contents(changed);
            // Whatever is unpacked under its own name is as it was.
            for (const auto& [name, content] :
                { std::pair(";x=", text), { ";two=", "stored" }, { ";three=", "64" } }) {
                const auto place = found.find(name);
                const auto value = place == found.npos ? "“" : found.substr(place + std::string(name).size());
                EXPECT_TRUE(value.starts_with(content + ";") || value.starts_with("“")) << found;
            }
        }
    }
}

// Archives made by Python's zipfile, whose 64-bit limits are lowered for some of them.
TEST(ZipReader, archivesOfAnotherMakerAreRead)
{
    if (std::system("python3 -c 'import zipfile, zlib' 2>/dev/null") != 0)
        GTEST_SKIP() << "no python3";
    const ::Test::TemporaryFolder folder;
    ::Test::writeFile(folder / "make.py", R"(
import zipfile
class Pipe: # What can't go back gets its sizes behind the data.
    def __init__(self, file): self.file = file
    def write(self, data): return self.file.write(data)
    def flush(self): self.file.flush()
content = { 'word/é.xml': 'Straße ' * 300, 'empty': '', 'folder/': '', 'one': 'x', 'long': 'ab' * 200000 }
def make(name, method, streamed=False, force=False, count=0):
    with open(name, 'wb') as file, zipfile.ZipFile(Pipe(file) if streamed else file, 'w', method) as archive:
        for path, text in content.items():
            with archive.open(path, 'w', force_zip64=force) as entry: entry.write(text.encode())
        for number in range(count): archive.writestr(f'{number}', '')
        archive.comment = b'a comment'
deflated, stored = zipfile.ZIP_DEFLATED, zipfile.ZIP_STORED
make('deflated', deflated)
make('stored', stored)
make('streamed', deflated, streamed=True)
make('forced', deflated, force=True)
make('forced-streamed', stored, streamed=True, force=True)
make('many', deflated, count=66000)
zipfile.ZIP64_LIMIT = 10
make('all64', deflated, force=True)
make('all64-stored', stored, force=True)
)");
    ASSERT_EQ(std::system(("cd '" + folder.path().string() + "' && python3 make.py").c_str()), 0);
    const auto repeated = [](std::size_t times, std::string_view piece) {
        std::string text;
        while (times-- > 0)
            text += piece;
        return text;
    };
    const auto expected = "word/é.xml=" + repeated(300, "Straße ")
        + ";empty=;folder/=;one=x;long=" + repeated(200'000, "ab") + ";";
    for (const auto* const name :
        { "deflated", "stored", "streamed", "forced", "forced-streamed", "all64", "all64-stored" })
        EXPECT_EQ(contents(::Test::fileText(folder / name)), expected) << name;
    const auto entries = ZipReader::entries(::Test::fileText(folder / "many"));
    ASSERT_EQ(entries.size(), 66'005u);
    EXPECT_EQ(entries.back().path, "65999");
}

} // namespace
