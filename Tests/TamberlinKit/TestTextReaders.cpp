#include "TamberlinKit/Readers/Readers.h"
#include "Tests/Support/Effort.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

using namespace Tamberlin;

namespace {

// The segments, one after the other: "[One] [Two] hidden[Three]"; line breaks as "/".
std::string shown(const Extracted& extracted)
{
    std::string all;
    for (const auto& [text, part] : extracted.segments) {
        all += all.empty() ? "" : " ";
        if (part != Part::body)
            all += caseNames(part)[static_cast<std::size_t>(part)];
        all.append("[").append(text.view()).append("]");
    }
    std::replace(all.begin(), all.end(), '\n', '/');
    return all;
}

std::string repeated(std::string_view piece, std::size_t count)
{
    std::string text;
    while (count-- > 0)
        text += piece;
    return text;
}

std::string text(std::string_view file) { return shown(readText(file, "a.txt", {})); }
std::string markdown(std::string_view file) { return shown(readText(file, "a.MD", {})); }
std::string subtitles(std::string_view file) { return shown(readSubtitles(file, "a.srt", {})); }

TEST(PlainText, aLineIsASegmentUnlessTheTextIsWrapped)
{
    EXPECT_EQ(text(""), "");
    EXPECT_EQ(text(" \r\n\t\n"), "");
    EXPECT_EQ(text("One\nTwo\r\nThree\rFour\n\n\nFive"), "[One] [Two] [Three] [Four] [Five]");
    EXPECT_EQ(text("The translator has sent back the first part of the work\nand will send the rest on "
                   "Monday, when it has been\nchecked.\nNot before."),
        "[The translator has sent back the first part of the work/and will send the rest on Monday, when it "
        "has "
        "been/checked.] [Not before.]");
    const auto extracted = readText("caf\xE9 cr\xE8me br\xFBl\xE9"
                                    "e, s'il vous pla\xEEt",
        "a.txt", {});
    EXPECT_EQ(shown(extracted), "[café crème brûlée, s'il vous plaît]");
    EXPECT_EQ(extracted.notes,
        std::vector<std::string> { "The file’s character encoding was guessed: windows-1252." });
}

TEST(Markdown, blocksAreSegmentsWithoutTheirMarks)
{
    const struct {
        std::string_view source, segments;
    } cases[] {
        { "# Title #\nText goes\non.\n\nMore\n====\n***\nLast\n---",
            "[Title] [Text goes/on.] [More] [Last]" },
        { "- One\n  goes on\n* [ ] Two\n  1. Three\n\n     Still three\n+ - Four",
            "[One/goes on] [Two] [Three] [Still three] [Four]" },
        { "In\n1984. It was.", "[In/1984. It was.]" },
        { "> Quoted\n> text\n>> # Deeper", "[Quoted/text] [Deeper]" },
        { "```cpp\n# int *a*;\n\n  return;\n```\nEnd", "[# int *a*;//  return;] [End]" },
        { "~~~\nopen\n```", "[open/```]" },
        { "Text\n\n    code *a*\n\nText", "[Text] [    code *a*] [Text]" },
        { "Above\n| A *b* | C\\|d |\n|---|:-:|\n| 1 | |\nx|y\n\nBelow",
            "[Above] [A b] [C|d] [1] [x] [y] [Below]" },
        { "A[^1] and [b].\n\n[^1]: The *note*.\n\n    Goes on.\n\n[b]: https://x.org \"Tip\"\nEnd.",
            "[A and b.] footnotes[The note.] footnotes[Goes on.] [End.]" },
        { "<!-- not\n\ntext --> \n<div class=\"x\">\nText<br>with <b>tags</b>\n</div>",
            "[/Text/with tags/]" },
        { "---\ntitle: \"A page\"\ntags:\n  - one\n---\nText", "hidden[A page] hidden[one] [Text]" },
        { "---\nText\n\n---", "[Text]" },
    };
    for (const auto& [source, segments] : cases)
        EXPECT_EQ(markdown(source), segments) << source;
}

TEST(Markdown, paragraphsLoseTheirMarkupOnly)
{
    const struct {
        std::string_view source, segments;
    } cases[] {
        { "*a* **b** ***c*** _d_ __e__ ~~f~~ *g **h***", "[a b c d e f g h]" },
        { "2 * 3 * 4, snake_case_name, a*b, **open, ~5", "[2 * 3 * 4, snake_case_name, a*b, **open, ~5]" },
        { "`a*b*` ``c`d`` `open \\*e\\* AT&T &amp; &copy; &copy", "[a*b* c`d `open *e* AT&T & © &copy]" },
        { "[text](url) [*b* c](<u v> \"Tip\") ![alt](p_(1).png) [![x](y)](z) [not] (link) a[1]",
            "[text b c   [not] (link) a[1]] hidden[Tip] hidden[alt] hidden[x]" },
        { "[full][Ref] [ref][] [Ref] [other][none]\n\n[ref]: /u", "[full ref Ref [other][none]]" },
        { "<https://x.org/a> <me@x.org> a < b > c <3 <i>d</i> a<b",
            "[https://x.org/a me@x.org a < b > c <3 d a<b]" },
        { "One  \ntwo\\\nthree", "[One/two/three]" },
    };
    for (const auto& [source, segments] : cases)
        EXPECT_EQ(markdown(source), segments) << source;
}

TEST(Subtitles, subRipCuesAreReadWithTheirDamage)
{
    const struct {
        std::string_view source, segments;
    } cases[] {
        { "1\r\n00:00:01,000 --> 00:00:02,000 X1:0\r\n<i>One</i>\r\n{\\an8}two\r\n\r\n2\r\n00:00:03,000 --> "
          "00:00:04,000\r\n<font color=\"red\">Three</font>\r\n",
            "[One/two] [Three]" },
        { "1\n00:00:01,000 --> 00:00:02,000\nBlank\n\nline\n\n1984\n\n2\n00:00:03,000 --> 00:00:04,000\n\n3\n"
          "00:00:05,000 --> 00:00:06,000\n4\n00:00:07,000 --> 00:00:08,000\nLast",
            "[Blank/line/1984] [Last]" },
        { "8\n0:01 -> x\n9\n0:0:1 --> 0:0:2\n9 to\n10\n0:0:3 --> 0:0:4\n7\n12\n0:0:5 --> 0:0:6",
            "[9 to] [7/12]" },
        { "0:0:1 --> 0:0:2\n2 < 3 <3 a<b> &amp; AT&T {x} \\h\\N<open",
            "[2 < 3 <3 a & AT&T {x} \u00A0/<open]" },
    };
    for (const auto& [source, segments] : cases)
        EXPECT_EQ(subtitles(source), segments) << source;
    const auto none = readSubtitles("Just text.", "a.srt", {});
    EXPECT_TRUE(none.segments.empty());
    EXPECT_EQ(none.notes, std::vector<std::string> { "No subtitles were found in the file." });
    EXPECT_TRUE(readSubtitles("", "a.srt", {}).notes.empty());
}

TEST(Subtitles, webVttShowsOnlyCues)
{
    EXPECT_EQ(
        subtitles("\xEF\xBB\xBFWEBVTT - Title\nKind: captions\n\nNOTE a\nnote\n\nSTYLE\n::cue { color: red "
                  "}\n\nREGION\nid:x\n\n"
                  "intro\n00:01.000 --> 00:02.000 line:0\n<v Roger Bingham>Hello &lt;you&gt;&nbsp;&amp\n"
                  "<c.loud>there</c> <00:01.500>now\n\nnot a cue\n\n00:03.000 --> 00:04.000\n"
                  "<ruby>base<rt>gloss</rt></ruby>s <lang en>x</lang>\n\n00:05.000 --> "
                  "bad\nDamaged\n\n00:06.000 --> 00:07.000\n"),
        "[Hello <you>\u00A0&/there now] [bases x] [Damaged]");
}

TEST(TextReaders, takeLinearTimeAndCanBeCancelled)
{
    const auto cue = "1\n00:00:01,000 --> 00:00:02,000\n";
    const ::Test::Effort effort;
    for (const auto piece : { "[", "[a](", "![", "*a _b ", "`a", "<a", "<!-- > ", ">", "- ", "\\|", "a|", "&",
             "a\r", "[a]: b\n" })
        EXPECT_LE(readText("a|b\n-|-\n" + repeated(piece, 400'000), "a.md", {}).segments.size(), 400'002U)
            << piece;
    for (const auto piece : { "<i", "{\\", "&", "\\N", "<rt>", "9\n", "0:0 --> 0\n" })
        EXPECT_LE(readSubtitles(cue + repeated(piece, 400'000), "a.srt", {}).segments.size(), 1U) << piece;
    EXPECT_EQ(readText(repeated("a\r", 400'000), "a.txt", {}).segments.size(), 400'000U);
    EXPECT_LT(effort.seconds(), 20);

    std::stop_source source;
    source.request_stop();
    EXPECT_THROW(readText("a", "a.txt", source.get_token()), Cancelled);
    EXPECT_THROW(readText("a", "a.md", source.get_token()), Cancelled);
    EXPECT_THROW(readSubtitles("a", "a.srt", source.get_token()), Cancelled);
}

} // namespace
