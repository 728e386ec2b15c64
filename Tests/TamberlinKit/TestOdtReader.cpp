#include "TamberlinKit/Readers/Readers.h"
#include "Tests/TamberlinKit/OfficeFiles.h"

#include <gtest/gtest.h>

using namespace Tamberlin;
using ::Test::Files, ::Test::lines, ::Test::refusal, ::Test::zipOf;
using ::Test::operator+;
using Lines = std::vector<std::string>;
using Notes = std::vector<std::string>;

namespace {

std::pair<std::string, std::string> content(const std::string& text, const std::string& automaticStyles = "")
{
    return { "content.xml",
        "<office:document-content><office:automatic-styles>" + automaticStyles
            + "</office:automatic-styles><office:body><office:text>" + text
            + "</office:text></office:body></office:document-content>" };
}

std::pair<std::string, std::string> styles(const std::string& common, const std::string& masterPages = "")
{
    return { "styles.xml",
        "<office:document-styles><office:styles>" + common + "</office:styles><office:automatic-styles>"
            + "<style:style style:name='P1' style:family='paragraph'><style:text-properties "
              "text:display='none'/>"
            + "</style:style></office:automatic-styles><office:master-styles>" + masterPages
            + "</office:master-styles></office:document-styles>" };
}

Extracted read(const Files& files) { return readOdt(zipOf(files), "n.odt", {}); }
Lines linesOf(const std::string& text) { return lines(read({ content(text) })); }

TEST(OdtReader, blanksTabsAndBreaksAreAsShown)
{
    const std::pair<std::string, std::string> cases[] {
        { "a<text:s/>b<text:s text:c='3'/>c<text:s text:c='0'/>d<text:s text:c='x'/>e", "a b   c d e" },
        { "a<text:tab/>b<text:line-break/>c<text:soft-page-break/>d", "a\tb\ncd" },
        { "\n  a\n\tb <text:span>  c</text:span> <text:span> d</text:span>", "a b c d" },
        { " <text:s/> a", "  a" }, // A blank behind an element for one counts again.
        { "<![CDATA[x < y]]> &amp; z", "x < y & z" },
    };
    for (const auto& [paragraph, text] : cases)
        EXPECT_EQ(linesOf("<text:p>" + paragraph + "</text:p>"), Lines { "body: " + text });

    std::string hostile;
    for (int count = 0; count < 1000; ++count)
        hostile += "<text:s text:c='4000000000'/>";
    EXPECT_LT(linesOf("<text:p>" + hostile + "x</text:p>")[0].size(), 1'100'000u);
}

TEST(OdtReader, eachParagraphHeadingItemAndCellIsASegment)
{
    EXPECT_EQ(
        linesOf(
            "<text:sequence-decls>no</text:sequence-decls><text:h>Head<text:span>ing</text:span></text:h>"
            "<text:list><text:list-header><text:p>over</text:p></text:list-header><text:list-item>"
            "<text:number>1.</text:number><text:p>item</text:p></text:list-item></text:list><text:p/>"
            "<text:p><text:number>2.</text:number><text:a><text:span>link</text:span></text:a></text:p>"
            "<table:table><table:title>no</table:title><table:table-row><table:table-cell><text:p>one</"
            "text:p>"
            "<text:p>two</text:p></table:table-cell><table:covered-table-cell><text:p>joined</text:p>"
            "</table:covered-table-cell></table:table-row></table:table>"
            "<text:table-of-content><text:table-of-content-source><text:index-title-template>no"
            "</text:index-title-template></text:table-of-content-source><text:index-body><text:index-title>"
            "<text:p>Contents</text:p></text:index-title><text:p>Entry<text:tab/>1</text:p></text:index-body>"
            "</text:table-of-content>"),
        (Lines { "body: Heading", "body: over", "body: item", "body: link", "body: one", "body: two",
            "hidden: joined", "body: Contents", "body: Entry\t1" }));
}

TEST(OdtReader, notesCommentsAndBoxesDontTearTheirParagraph)
{
    const std::string note
        = "<text:note><text:note-citation>1</text:note-citation><text:note-body><text:p>note"
          "</text:p><text:p>more</text:p></text:note-body></text:note>";
    const std::string comment = "<office:annotation><dc:creator>no</dc:creator><dc:date>no</dc:date>"
                                "<meta:creator-initials>no</meta:creator-initials><text:p>comment</text:p>"
                                "</office:annotation>";
    const auto box = [](const std::string& inner) {
        return "<draw:frame><draw:text-box>" + inner + "</draw:text-box><svg:title>no</svg:title>"
            + "<svg:desc>no</svg:desc></draw:frame>";
    };
    EXPECT_EQ(linesOf("<text:p>be" + note + "fo" + comment + "re" + box("<text:p>in " + note + "box</text:p>")
                  + "<office:annotation-end/> after <text:title>title</text:title></text:p>"
                  + "<draw:g><draw:custom-shape><text:p>shape</text:p></draw:custom-shape></draw:g>"),
        (Lines { "body: before after title", "footnotes: note", "footnotes: more", "comments: comment",
            "textBoxes: in box", "footnotes: note", "footnotes: more", "textBoxes: shape" }));
}

TEST(OdtReader, deletedTextAndProgramsAreLeftOut)
{
    EXPECT_EQ(
        linesOf(
            "<text:tracked-changes><text:changed-region><text:deletion><office:change-info><dc:creator>no"
            "</dc:creator></office:change-info><text:p>gone</text:p></text:deletion></text:changed-region>"
            "</text:tracked-changes><office:forms><form:textarea><text:p>no</text:p></form:textarea></"
            "office:forms>"
            "<text:p>a<text:change/>b <text:change-start/>new<text:change-end/> <text:script>no</text:script>"
            "<text:ruby><text:ruby-base>漢</text:ruby-base><text:ruby-text>かん</text:ruby-text></text:ruby>"
            "<text:variable-set text:display='none'>no</text:variable-set><text:variable-set>5"
            "</text:variable-set> of <text:page-count>9</text:page-count></text:p>"),
        Lines { "body: ab new 漢5 of 9" });
}

TEST(OdtReader, hiddenTextIsAPartOfItsOwn)
{
    const std::string hides = "<style:text-properties text:display='none'/>";
    const auto style = [](const std::string& name, const std::string& family, const std::string& rest) {
        return "<style:style style:name='" + name + "' style:family='" + family + "' " + rest
            + "</style:style>";
    };
    const auto common = styles(style("Secret", "text", ">" + hides)
        + style("Base", "paragraph", "style:parent-style-name='Loop'>" + hides)
        + style("Loop", "paragraph", "style:parent-style-name='Round'>")
        + style("Round", "paragraph", "style:parent-style-name='Loop'>"));
    const auto automatic = style("T1", "text", "style:parent-style-name='Secret'>")
        + style("T2", "text", "style:parent-style-name='Secret'><style:text-properties text:display='true'/>")
        + style("P2", "paragraph", "style:parent-style-name='Base'>");
    const std::pair<std::string, Lines> cases[] {
        { "<text:p>a<text:span text:style-name='T1'>b</text:span><text:span "
          "text:style-name='Secret'>c</text:span>d"
          "<text:span text:style-name='T1'>e<text:span "
          "text:style-name='T2'>f</text:span></text:span></text:p>",
            { "body: adf", "hidden: bc", "hidden: e" } },
        { "<text:p text:style-name='P2'>x<text:span text:style-name='T2'>y</text:span></text:p>",
            { "hidden: x", "body: y" } },
        { "<text:p text:style-name='P1'>the header's P1</text:p><text:p text:style-name='Loop'>l</text:p>",
            { "body: the header's P1", "body: l" } },
        { "<text:section "
          "text:display='none'><text:p>x<office:annotation><text:p>c</text:p></office:annotation></text:p>"
          "<text:section><text:h>y</text:h></text:section></text:section><text:p>z</text:p>",
            { "hidden: x", "comments: c", "hidden: y", "body: z" } },
        { "<text:section text:display='condition' text:is-hidden='true'><text:p>x</text:p></text:section>"
          "<text:section text:display='condition'><text:p>y</text:p></text:section>",
            { "hidden: x", "body: y" } },
        { "<text:p>x<text:hidden-paragraph "
          "text:is-hidden='true'/>y<draw:frame><draw:text-box><text:p>z</text:p>"
          "</draw:text-box></draw:frame></text:p><text:p>v<text:hidden-paragraph/></text:p>",
            { "hidden: xy", "hidden: z", "body: v" } },
        { "<text:p>a <text:hidden-text text:is-hidden='true' text:string-value='s'/> b</text:p><text:p>"
          "<text:hidden-text text:is-hidden='true' text:string-value='no'>s</text:hidden-text>"
          "<text:hidden-text text:string-value='t'/></text:p>",
            { "body: a  b", "hidden: s", "hidden: s", "body: t" } },
        { "<text:p>a<text:span "
          "text:style-name='T1'><text:note><text:note-body><text:p>n</text:p></text:note-body>"
          "</text:note></text:span></text:p><draw:rect draw:display='none'><text:p>r</text:p></draw:rect>",
            { "body: a", "hidden: n", "hidden: r" } },
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(lines(read({ common, content(text, automatic) })), expected) << text;
}

TEST(OdtReader, headersComeOnceAndBehindTheText)
{
    const auto master = [](const std::string& name, const std::string& inner) {
        return "<style:master-page style:name='" + name + "'>" + inner + "</style:master-page>";
    };
    const auto file = styles("",
        master("A",
            "<style:header><text:p>head<draw:frame><draw:text-box><text:p>box</text:p></draw:text-box></"
            "draw:frame></text:p>"
            "</style:header><style:header-left><text:p>left</text:p></style:header-left><style:header-first>"
            "<text:tracked-changes><text:deletion><text:p>no</text:p></text:deletion></text:tracked-changes>"
            "<text:p>first</text:p></style:header-first><style:footer "
            "style:display='false'><text:p>off</text:p></style:footer>")
            + master(
                "B", "<style:footer-left><text:p text:style-name='P1'>secret</text:p></style:footer-left>"));
    EXPECT_EQ(lines(read({ file, content("<text:p>text</text:p>") })),
        (Lines { "body: text", "headersFooters: head", "textBoxes: box", "headersFooters: left",
            "headersFooters: first", "hidden: off", "hidden: secret" }));
}

TEST(OdtReader, whatHasNoTextIsNoted)
{
    const auto frame = [](const std::string& inner) { return "<draw:frame>" + inner + "</draw:frame>"; };
    const std::string picture = "<draw:image><office:binary-data>no</office:binary-data></draw:image>";
    const Files manifest { { "META-INF/manifest.xml",
        "<m:manifest><m:file-entry m:full-path='Object 1/' "
        "m:media-type='application/vnd.oasis.opendocument.chart'/>"
        "<m:file-entry m:full-path='Object 2/' m:media-type='application/vnd.oasis.opendocument.formula'/>"
        "<m:file-entry m:full-path='content.xml' m:media-type='text/xml'/></m:manifest>" } };
    const auto chart = frame("<draw:object xlink:href='./Object 1'/>" + picture);
    const auto text = "<text:p>a" + frame(picture + picture) + frame(picture) + chart
        + frame("<draw:object xlink:href='Object 2'/>")
        + frame("<draw:object><math:math><mi>x</mi></math:math></draw:object>")
        + frame("<draw:object xlink:href='./Object 3'/>") + frame("<draw:object-ole/>" + picture)
        + "<draw:control/></text:p>";
    const auto all = read(manifest + Files { content(text) });
    EXPECT_EQ(lines(all), Lines { "body: a" });
    EXPECT_EQ(all.notes,
        Notes {
            "Text in 2 pictures, 1 chart, 2 formulas, 2 embedded objects and 1 form field isn’t counted." });
    EXPECT_EQ(read(manifest + Files { content("<text:p>" + chart + "</text:p>") }).notes,
        Notes { "Text in 1 chart isn’t counted." });
}

TEST(OdtReader, damageLeavesWhatCameBefore)
{
    const auto read2 = read({ { "styles.xml",
                                  "<office:document-styles><office:master-styles><style:header><text:p>head"
                                  "<text:tracked-changes><text:p>" },
        { "content.xml",
            "<office:document-content><office:body><office:text><text:p>one</text:p><text:p>two</x>" } });
    EXPECT_EQ(lines(read2), (Lines { "body: one", "body: two", "headersFooters: head" }));
    EXPECT_EQ(read2.notes,
        (Notes { "Part of n.odt couldn’t be read (mismatched tag).",
            "Part of n.odt couldn’t be read (no element found)." }));
}

TEST(OdtReader, whatIsNoTextIsRefused)
{
    const std::string entry = "<m:manifest><m:file-entry "
                              "m:full-path='content.xml'><m:encryption-data/></m:file-entry></m:manifest>";
    const std::string otherEntry
        = "<m:manifest><m:file-entry m:full-path='content.xml'/><m:file-entry m:full-path='x'>"
          "<m:encryption-data/></m:file-entry></m:manifest>";
    const std::string manifest = "META-INF/manifest.xml",
                      isProtected
        = "“n” is protected with a password: remove the password and count it again.";
    const std::pair<Files, std::string> cases[] {
        { { { "content.xml", "\x7Fnoise" }, { manifest, entry } }, isProtected },
        { { { "encrypted-package", "noise" } }, isProtected },
        { { content("<text:p>x</text:p>"), { manifest, otherEntry } }, "(not refused)" },
        { { { "word/document.xml", "<x/>" } },
            "“n” isn’t an OpenDocument (.odt) file that can be read (it has no content.xml)." },
        { { { "content.xml", "<o:document-content><o:body><o:spreadsheet/></o:body></o:document-content>" } },
            "“n” isn’t an OpenDocument (.odt) file that can be read (it isn’t a text document)." },
    };
    for (const auto& [files, sentence] : cases)
        EXPECT_EQ(refusal(readOdt, zipOf(files)), sentence);
    EXPECT_EQ(refusal(readOdt, "no archive"),
        "“n” isn’t a OpenDocument (.odt) file that can be read (it isn’t a zip package).");
}

} // namespace
