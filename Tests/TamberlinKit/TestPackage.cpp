#include "TamberlinKit/Markup/Package.h"

#include "Tests/Support/OddZips.h"

#include <gtest/gtest.h>

using namespace Tamberlin;
using ::Test::Stated, ::Test::zipOf;

namespace {

using Files = std::vector<Stated>;
using Paths = std::vector<std::string>;

// The sentence with which something is refused.
template <typename Action> std::string refusal(Action action)
{
    try {
        action();
        return "(not refused)";
    } catch (const ReadError& error) {
        return error.what();
    }
}

struct Events {
    std::string log; // "<a x=1 >a text"
    XMLScan scan {
        .onStart =
            [this](auto element, const auto& attributes) {
                log.append(" <").append(element);
                if (const auto value = attributes.find("val"))
                    log.append(" val=").append(*value);
            },
        .onEnd = [this](auto element) { log.append(" >").append(element); },
        .onText = [this](auto text) { log.append(" ").append(text); },
    };
};

TEST(Package, whatIsNoArchiveIsRefusedByItsNameAndKind)
{
    const auto archive = zipOf({ { "a", "b" } });
    auto damaged = archive;
    damaged[damaged.find("PK\x01\x02")] = '-';
    for (const auto& file : { std::string(), std::string("text"), archive.substr(0, 60), damaged }) {
        EXPECT_EQ(refusal([&] { Package(file, "Kapitel “1”.pptx", "PowerPoint (.pptx)"); }),
            "“Kapitel “1”.pptx” isn’t a PowerPoint (.pptx) file that can be read (it isn’t a zip package).");
    }
}

TEST(Package, partsAreFoundByTheirExactPathAndTheFirstOfTwoCounts)
{
    auto archive = zipOf(
        { { "a/b.xml", "first" }, { "A/b.xml", "" }, { "a/b.xml", "second" }, { "a/c.xml", "damaged" } });
    archive.replace(archive.find("damaged"), 7, "changed");
    const Package package(archive, "n", "k");
    EXPECT_EQ(package.entries().size(), 4u);
    EXPECT_EQ(package.data("a/b.xml").value().view(), "first");
    EXPECT_EQ(package.data("A/b.xml").value().view(), "");
    for (const auto* const path : { "/a/b.xml", "a/B.xml", "a", "" }) {
        EXPECT_FALSE(package.has(path));
        EXPECT_FALSE(package.data(path));
    }
    EXPECT_EQ(
        refusal([&] { package.data("a/c.xml"); }), "“a/c.xml” didn’t check out (the file may be damaged).");
    EXPECT_EQ(refusal([&] { package.scan("a/c.xml", {}); }),
        "“a/c.xml” didn’t check out (the file may be damaged).");
}

TEST(Package, partsOfAFolderComeInNaturalOrder)
{
    Files files;
    for (const auto* const path : { "ppt/slides/slide10.xml", "ppt/slides/_rels/slide2.xml.rels",
             "ppt/slides/slide2.xml", "ppt/slides/deep/slide3.xml", "ppt/slides/slide1.xml.bak",
             "PPT/slides/slide4.xml", "ppt/slides/Slide9.xml", "ppt/slides/slide100000000000000000000.xml",
             "ppt/slides/slide99999999999999999999.xml" })
        files.push_back({ path, "" });
    const auto archive = zipOf(files);
    const Package package(archive, "n", "k");
    const Paths expected { "ppt/slides/slide2.xml", "ppt/slides/Slide9.xml", "ppt/slides/slide10.xml",
        "ppt/slides/slide99999999999999999999.xml", "ppt/slides/slide100000000000000000000.xml" };
    EXPECT_EQ(package.paths("ppt/slides/", ".xml"), expected);
    EXPECT_EQ(package.paths("ppt/slides/slide", "2.xml"), Paths { "ppt/slides/slide2.xml" });
}

TEST(Package, relationshipsAreResolvedFromTheFolderOfTheirPart)
{
    const struct {
        std::string target, path;
    } cases[] {
        { "../media/image1.png", "ppt/media/image1.png" },
        { "slide2.xml", "ppt/slides/slide2.xml" },
        { "./deep/./a.xml", "ppt/slides/deep/a.xml" },
        { "/word/footer1.xml", "word/footer1.xml" },
        { "../../../../top.xml", "top.xml" },
        { "a/../../b&amp;c.xml", "ppt/b&c.xml" },
    };
    for (const auto& [target, path] : cases) {
        const auto rels = "<Relationships><Relationship Id='r' Target='" + target + "'/></Relationships>";
        const auto archive = zipOf({ { "ppt/slides/_rels/slide1.xml.rels", rels } });
        const auto found = Package(archive, "n", "k").relationships("ppt/slides/slide1.xml");
        EXPECT_EQ(found, (std::map<std::string, std::string> { { "r", path } }));
    }
}

TEST(Package, relationshipsOutsideOrIncompleteAreLeftOut)
{
    const auto archive
        = zipOf({ { "_rels/.rels", "<r><Relationship Id='1' Type='x/officeDocument' Target='a/b.xml'/></r>" },
            { "a/_rels/b.xml.rels",
                "<x:Relationships xmlns:x='y'><x:Relationship Id='2' Target='old.xml' Type='t/header'/>"
                "<Relationship Id='3'/><Relationship Target='x'/><Other Id='4' Target='x'/>"
                "<Relationship Id='5' Target='http://x' TargetMode='External' Type='t/header'/>"
                "<Relationship Id='6' Target='h1.xml' TargetMode='Internal' Type='t/header'/>"
                "<Relationship Id='2' Target='new.xml' Type='t/subheader'/><Relationship Id='0' "
                "Target='h0.xml' Type='u/header'/>"
                "<Relationship Id='7' Target='late.xml'></Wrong>" } });
    const Package package(archive, "n", "k");
    using Map = std::map<std::string, std::string>;
    EXPECT_EQ(package.relationships(""), (Map { { "1", "a/b.xml" } }));
    EXPECT_EQ(package.relationships("a/b.xml"),
        (Map { { "0", "a/h0.xml" }, { "2", "a/new.xml" }, { "6", "a/h1.xml" }, { "7", "a/late.xml" } }));
    EXPECT_EQ(package.related("a/b.xml", "header"), (Paths { "a/old.xml", "a/h1.xml", "a/h0.xml" }));
    EXPECT_EQ(package.relationships("a/missing.xml"), Map {});
}

TEST(Package, scansTellOfElementsAttributesAndTextWithoutPrefixes)
{
    const struct {
        std::string part, log, note;
    } cases[] {
        { "<w:p><a:b:c w:val='1'/>t&lt;</w:p>", " <p <b:c val=1 >b:c t < >p", "" },
        { "<p w:val='2' val='1' x:val='3'/>", " <p val=1 >p", "" },
        { "<p a:b:val='1' x:val='2' eval='3'/>", " <p val=1 >p", "" },
        { "<p xval='1' val:x='2'/>", " <p >p", "" },
        { "<p><![CDATA[<é> & ]]></p>", " <p <é> &  >p", "" },
        { "<!DOCTYPE p SYSTEM 'file:///etc/passwd'><p>&x;a</p>", " <p a >p", "" },
        { "<p>a<q>b</p>", " <p a <q b", "Part of n couldn’t be read (mismatched tag)." },
        { "<p>a\xFF</p>", " <p a", "Part of n couldn’t be read (not well-formed (invalid token))." },
        { "", "", "Part of n couldn’t be read (no element found)." },
    };
    for (const auto& [part, log, note] : cases) {
        const auto archive = zipOf({ { "part.xml", part } });
        const Package package(archive, "n", "k");
        Events events;
        EXPECT_EQ(package.scan("part.xml", events.scan).value_or(""), note) << part;
        EXPECT_EQ(events.log, log) << part;
        EXPECT_EQ(package.scan("other.xml", events.scan), std::nullopt);
        EXPECT_EQ(events.log, log) << part;
    }
}

TEST(Package, aStopEndsReadingAndScanning)
{
    std::string part = "<r>";
    for (int number = 0; number < 100'000; ++number)
        part += "<e/>";
    const auto archive = zipOf({ { "part.xml", part + "</r>" } });
    std::stop_source stop;
    const Package package(archive, "n", "k", stop.get_token());
    int elements = 0;
    EXPECT_THROW(package.scan("part.xml",
                     { .onStart =
                             [&](auto, const auto&) {
                                 if (++elements == 2)
                                     stop.request_stop();
                             } }),
        Cancelled);
    EXPECT_LT(elements, 20'000); // It goes on to the end of a piece at most.
    EXPECT_THROW(package.data("part.xml"), Cancelled);
    EXPECT_THROW(package.data("none"), Cancelled);
}

// How many of so many parts that have the data of one can be read.
std::size_t readableParts(std::size_t count, const Stated& entry)
{
    std::vector<Stated> entries { entry };
    while (entries.size() < count)
        entries.push_back({ .name = std::to_string(entries.size()),
            .packed = "",
            .size = entry.size,
            .method = 8,
            .crc = entry.crc,
            .packedSize = entry.packedSize,
            .offset = 0 });
    const auto archive = zipOf(entries);
    const Package package(archive, "n.docx", "k");
    for (std::size_t number = 0; number < count; ++number) {
        const auto sentence = refusal([&] { package.data(std::to_string(number)); });
        if (sentence == "“n.docx” unpacks to more than 2 GB, which no document needs.")
            return number;
        EXPECT_EQ(sentence, "(not refused)");
    }
    return count;
}

TEST(Package, aDocumentUnpacksToALimitHoweverItsPartsOverlap)
{
    constexpr std::size_t large = ZipReader::largestEntry, unit = 1 << 20;
    const std::string zeros(unit, '\0'), packed = ::Test::deflated(zeros, Z_FULL_FLUSH);
    Stated bomb { .name = "0", .packed = "", .size = large, .method = 8 };
    uLong crc = 0;
    for (std::size_t at = 0; at < large; at += unit) {
        bomb.packed += packed;
        crc = crc32(crc, reinterpret_cast<const Bytef*>(zeros.data()), unit);
    }
    bomb.packed += std::string("\x03\0", 2); // An empty last block.
    bomb.packedSize = bomb.packed.size();
    bomb.crc = crc;
    EXPECT_EQ(readableParts(9, bomb), 8u);

    // As much work lies in a large stream of which little comes.
    const auto small = ::Test::deflated("a"), behind = small + std::string(4 << 20, '\0');
    const auto crcOfA = ::Test::checksum("a");
    EXPECT_EQ(readableParts(600, { "0", behind, 1, 8, crcOfA }), 511u);
    EXPECT_EQ(readableParts(600, { "0", small, 1, 8, crcOfA }), 600u);
}

} // namespace
