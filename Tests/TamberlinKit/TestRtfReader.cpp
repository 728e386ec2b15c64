#include "TamberlinKit/Readers/Readers.h"
#include "Tests/TamberlinKit/OfficeFiles.h"

#include <gtest/gtest.h>

using namespace Tamberlin;
using ::Test::lines, ::Test::refusal;
using Lines = std::vector<std::string>;
using Notes = std::vector<std::string>;

namespace {

Extracted read(const std::string& file) { return readRtf(file, "n.rtf", {}); }
Lines linesOf(const std::string& text) { return lines(read("{\\rtf1\\ansi " + text + "}")); }
std::string repeated(const std::string& piece, std::size_t count)
{
    std::string text;
    while (count-- > 0)
        text += piece;
    return text;
}

TEST(RtfReader, decodesCharacters)
{
    const std::string fonts
        = "{\\fonttbl{\\f0\\fcharset0 Arial;}{\\f1\\fnil\\fcharset204{\\*\\panose 0}Arial Cyr{\\*\\falt no};}"
          "\\f2\\fcharset128 Mincho;\\f3\\fcharset2 Symbol;\\f4\\fcharset1 Own;\\f5\\cpg1255 Hebrew;}";
    const std::pair<std::string, std::string> cases[] {
        { "\\'e9\\'E9\xE9 \\{\\}\\\\ a\r\nb\\'41", "ééé {}\\ abA" },
        { "\\ansicpg1251 \\'e9", "й" },
        { "\\mac \\'8e", "é" },
        { "\\pc \\'82", "é" },
        { "\\ansicpg99999 \\'e9", "é" },
        { fonts + "\\f1 \\'e9{\\f0\\'e9}\\'e9\\plain\\'e9", "йéйé" },
        { "\\ansicpg1250" + fonts + "\\f4 \\'e8\\f77 \\'e8\\f0 \\'e8", "ččè" },
        { fonts + "\\f2 \\'83\\'41\\'83A\\'b1{\\f0 x}\\'93\\'fa\\'83", "アアｱx日\uFFFD" },
        { fonts + "\\f3 \\'b7a", "\uF0B7a" },
        { fonts + "\\rtlch\\af5\\ltrch\\f0 \\'e0\\rtlch \\'e0\\ltrch \\af1\\'e0", "àאà" },
        { "\\ansicpg65001" + fonts + "\\f0 caf\\'c3\\'a9 \xE6\x97\xA5", "café 日" },
        { "\\u8217\\'92s\\u233?\\uc2\\u12354\\'82\\'a0x{\\uc0\\u233}\\u233ab\\u-3913\\line\\~c",
            "’séあxéé\uF0B7c" },
        { "\\uc1\\u233{x}\\u233\\bin2 ab?\\uc0\\u-10179 \\u-8704 \\u128512 ", "éxé?😀😀" },
        { "\\uc0 a\\u-10179 b\\u-8704 c\\u-10179 {d}\\u-70000 \\u2147483647 ",
            "a\uFFFDb\uFFFDc\uFFFDd\uFFFD\uFFFD" },
        { "{\\upr{no \\'e9}{\\*\\ud{yes \\u233?}}}", "yes é" },
        { "a\\tab b\tc\\line "
          "d\\~e\\_f\\-g\\emdash\\endash\\lquote\\rquote\\ldblquote\\rdblquote\\bullet\\enspace h\\zwj",
            "a\tb\tc\nd\u00A0e\u2011f\u00ADg—–‘’“”•\u2002h\u200D" },
        { "a\\b0b\\b-1c\\unknownword3 d\\'e\\'zz\\:e", "abcdzze" },
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(linesOf(text), Lines { "body: " + expected }) << text;
}

TEST(RtfReader, paragraphsAndCellsAreSegments)
{
    EXPECT_EQ(
        linesOf("one\\par\\par two\\\nthree\\sect\\trowd\\cellx1 \\intbl a{\\b b}\\cell c\\page d\\cell\\row "
                "e\\nestcell{\\*\\nesttableprops\\nestrow}{\\nonesttables no\\par}f\\cell\\row g"),
        (Lines { "body: one", "body: two", "body: three", "body: ab", "body: c\nd", "body: e", "body: f",
            "body: g" }));
}

TEST(RtfReader, partsDontTearTheirParagraph)
{
    EXPECT_EQ(
        linesOf(
            "{\\headerl h\\par{\\shp{\\*\\shpinst{\\shptxt hb}}}}{\\footerf f}be{\\footnote\\chftn n\\par "
            "m}fo{\\footnote"
            "\\ftnalt e}re{\\*\\atnid no}{\\*\\atnauthor no}\\chatn{\\*\\annotation{\\*\\atndate "
            "1}c}{\\shp{\\*\\shpinst"
            "{\\sp{\\sn no}{\\sv no}}{\\shptxt \\pard box\\par two}}{\\shprslt{\\*\\do{\\dptxbxtext no}}}}"
            "{\\*\\do\\dobxpage{\\dptxbxtext old}} after"
            "{\\shp{\\*\\shpinst{\\sp{\\sn gtextUNICODE}{\\sv Word\\u322 ?}}{\\sp{\\sn gtextFont}{\\sv "
            "no}}}}\\par"),
        (Lines { "headersFooters: h", "textBoxes: hb", "headersFooters: f", "body: before after",
            "footnotes: n", "footnotes: m", "footnotes: e", "comments: c", "textBoxes: box", "textBoxes: two",
            "textBoxes: old", "textBoxes: Wordł" }));
}

TEST(RtfReader, onlyTextIsText)
{
    const std::pair<std::string, Lines> cases[] {
        { "{\\stylesheet{\\s1 no;}}{\\colortbl;\\red0;}{\\info{\\title no}}{\\*\\generator no}{\\generator "
          "no}{\\*\\new{no}}"
          "{\\listtext 1.\\tab}{\\pntext 1}{\\xe no}x",
            { "body: x" } },
        { "{\\field{\\*\\fldinst HYPERLINK \"no\" {\\field{\\fldinst no}{\\fldrslt no}}}{\\fldrslt{a "
          "{\\field{\\*\\fldinst no}"
          "{\\fldrslt 42}}}}}",
            { "body: a 42" } },
        { "{\\mmath{\\*\\moMath{\\mf{\\mfPr{\\mctrlPr no}}{\\mnum{\\mr x}}}}}", { "body: x" } },
        { "a{\\v b}\\v c{\\*\\annotation\\plain k}{\\footnote\\plain n}\\v0 d\\v e\\plain f",
            { "body: adf", "hidden: bc", "comments: k", "hidden: n", "hidden: e" } },
        { "a\\deleted b\\par c\\deleted0 d{\\mvf e}\\deleted f\\plain g", { "body: a", "body: dg" } },
        { "a}b", { "body: a" } },
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(linesOf(text), expected) << text;
}

TEST(RtfReader, picturesAndObjectsAreSkippedAndNoted)
{
    const auto file = read(
        "{\\rtf1 a{\\pict\\bin4 }{\\\\}{\\*\\shppict{\\pict 00}}{\\nonshppict{\\pict 00}}{\\shp{\\*\\shpinst"
        "{\\sp{\\sn pib}{\\sv{\\pict 00}}}}}{\\object{\\*\\objdata 00}{\\result{\\pict 00}shown}}b}");
    EXPECT_EQ(lines(file), Lines { "body: ashownb" });
    EXPECT_EQ(file.notes, Notes { "Text in 3 pictures and 1 embedded object isn’t counted." });
}

TEST(RtfReader, whatIsCutOffIsNoted)
{
    const Notes note { "Part of n.rtf couldn’t be read (it ends before its last group is closed)." };
    for (const std::string file : { "{\\rtf1 a", "{\\rtf1 a\\", "{\\rtf1 a\\'", "{\\rtf1 a\\uc1\\u",
             "{\\rtf1 a{\\footnote", "{\\rtf1 a\\bin9999999999 }}}" }) {
        EXPECT_EQ(lines(read(file)), Lines { "body: a" }) << file;
        EXPECT_EQ(read(file).notes, note) << file;
    }
    EXPECT_EQ(read("\xEF\xBB\xBF\r\n{\\rtf1 a}}}{\\pict}").notes, Notes {});
    const auto closedEarly = read("{\\rtf1 a}} b\\par c}");
    EXPECT_EQ(lines(closedEarly), Lines { "body: a" });
    EXPECT_EQ(closedEarly.notes, Notes { "Text behind the end of the document isn’t counted." });
}

TEST(RtfReader, depthIsNoMatter)
{
    constexpr std::size_t depth = 1'000'000;
    EXPECT_EQ(linesOf("a{\\b0" + repeated("{", depth) + " b " + repeated("}", depth) + "}c\\par d"),
        (Lines { "body: a b c", "body: d" }));
    const auto notes = linesOf(repeated("{\\footnote x", depth) + repeated("}", depth) + "y");
    EXPECT_GT(notes.size(), 100'000u);
    EXPECT_EQ(notes.back(), "body: y");
}

TEST(RtfReader, otherFilesAreRefused)
{
    for (const std::string file : { "", "   ", "text", "{\\urtf1 x}", "PK\x03\x04" })
        EXPECT_EQ(refusal(readRtf, file),
            "“n” isn’t an RTF file that can be read (it doesn’t begin with “{\\rtf”).");
}

TEST(RtfReader, stopsWhenAsked)
{
    std::stop_source source;
    source.request_stop();
    EXPECT_THROW(readRtf("{\\rtf1 a}", "n.rtf", source.get_token()), Cancelled);
}

} // namespace
