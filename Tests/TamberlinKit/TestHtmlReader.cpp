#include "TamberlinKit/Readers/Readers.h"
#include "Tests/Support/Effort.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <string_view>

using namespace std::string_literals;
using namespace Tamberlin;

namespace {

// The segments, one after the other: "[One] [Two] hidden[Three]"; line breaks as "/".
std::string html(std::string_view page, const std::string& name = "a.html")
{
    std::string all;
    for (const auto& [text, part] : readHtml(page, name, {}).segments) {
        all += all.empty() ? "" : " ";
        all += std::string(part == Part::hidden ? "hidden[" : "[").append(text.view()) + "]";
    }
    std::replace(all.begin(), all.end(), '\n', '/');
    return all;
}

struct Case {
    std::string_view page, segments;
};

TEST(Html, tagsAndCommentsAreReadAsBrowsersDo)
{
    constexpr Case cases[] {
        { "a<!-- b --><!--><!---> c <!-- - -- --!>d<!----->e<!doctype html><?php x ?><!x></ >f",
            "[a c def]" },
        { "1 < 2 <3 a<b x='>' y=\">\" z=>c</b d='>'>e</>f", "[1 < 2 <3 acef]" },
        { "<p a=1/b='x'c>one<P/>two</p/>", "[one] [two]" },
        { "a<script>'<p>' < '</scr'</script >b<style><p></style>c<script/>d</script>e", "[abce]" },
        { "<script><!-- <script> </script> x --></script>a<script><!-- </script>b", "[ab]" },
        { "<textarea><b>x</b>&amp;</textarea><iframe><p>x</iframe><xmp>&amp;<b></xmp><noframes><p></"
          "noframes>z",
            "[<b>x</b>&] [&amp;<b>] [z]" },
        { "a<template>b<template>c</template><p>d</template>e<noembed>f</noembed>", "[ae]" },
        { "a<svg><![CDATA[b]]><text>c <![CDATA[<d>&amp;]]></text></svg><![CDATA[e]]>f",
            "[a f] [c <d>&amp;]" },
        { "a<p title='open", "[a]" },
        { "a<!-- open", "[a]" },
        { "a</p", "[a]" },
        { "<plaintext>a<b>", "[a<b>]" },
    };
    for (const auto& [page, segments] : cases)
        EXPECT_EQ(html(page), segments) << page;
    EXPECT_EQ(readHtml("a<p title='open", "a.html", {}).notes,
        std::vector<std::string> { "The page ends inside a tag or comment, which wasn’t counted." });
}

TEST(Html, referencesAreReplacedByTheLongestMatch)
{
    constexpr Case cases[] {
        { "&amp;&lt;&gt;&quot;&AMP;&euro;&Auml;&notin;&notit;&ampx&CounterClockwiseContourIntegral;",
            "[&<>\"&€Ä∉¬it;&x∳]" },
        { "&#65;&#x42;&#X43&#128;&#x99;&#0;&#xD800;&#1114112;&#99999999999;&#x;&#;&;&nosuch;",
            "[ABC€™\uFFFD\uFFFD\uFFFD\uFFFD&#x;&#;&;&nosuch;]" },
        { "<p title='&copy=1&copy2 &copy &copy;&amp'>a&NotEqualTilde;b &fjlig;",
            "hidden[&copy=1&copy2 © ©&] [a≂̸b fj]" },
        { "x&#32;&#10;&nbsp; &ensp;y&shy;z&Tab;", "[x \u00A0 \u2002y\u00ADz]" },
    };
    for (const auto& [page, segments] : cases)
        EXPECT_EQ(html(page), segments) << page;
}

TEST(Html, blocksAreSegmentsAndInlineElementsDoNotSplitWords)
{
    constexpr Case cases[] {
        { "<b>wo</b>rd <i>a</i>&shy;<wbr>b <x-y>c</x-y>d", "[word a\u00ADb cd]" },
        { " \n one\n two <b> three</b> <br> four\t<br/><br>five", "[one two three/four] [five]" },
        { "<h1>A</h1>b<div>c<p>d<p>e<ul><li>f<li>g</ul>h</div>i<hr>j",
            "[A] [b] [c] [d] [e] [f] [g] [h] [i] [j]" },
        { "<table><caption>a<tr><td>b<td>c<tr><th>d</table><dl><dt>e<dd>f</dl>", "[a] [b] [c] [d] [e] [f]" },
        { "<pre>\n a\r\n  b <br><br>c</pre><p style='white-space: pre'>d  e", "[a/  b //c] [d  e]" },
        { "x<td>y</td>z", "[x] [yz]" },
        { "a<img>b <img>. c<button>d</button>e", "[a b . c d e]" },
        { "Take <select><option>one<option>two</select> or <input placeholder='name'> <input type=submit "
          "value=Go> now",
            "[Take or now] [one] [two] [name] [Go]" },
        { "<ruby>base<rp>(</rp><rt>gloss</rt><rp>)</rp></ruby>s", "[bases]" },
        { "<p>a<svg><title>t</title><desc>d</desc>x<g><text>b</text><text>c</text></g></svg>e",
            "[a e] hidden[t] [b] [c]" },
        { "<svg><g><p>a</p>b", "[a] [b]" },
        { "<template><svg><text>a</text></svg></template><svg><desc><text>b</text></desc></svg>c", "[c]" },
        { "<math><mi>x</mi><mo>=</mo><mn>2</mn><annotation>tex</annotation></math> a", "[x=2 a]" },
    };
    for (const auto& [page, segments] : cases)
        EXPECT_EQ(html(page), segments) << page;
}

TEST(Html, whatIsInThePageButNotOnItIsHidden)
{
    constexpr Case cases[] {
        { "<title>A &amp; B</title><body>c", "hidden[A & B] [c]" },
        { "<p>a <img alt='b' title='c'> d<a title=e>f</a>", "[a df] hidden[b] hidden[c] hidden[e]" },
        { "a<p hidden>b<p>c<div style='color:red; DISPLAY : none !important'>d<p>e</div>f",
            "[a] hidden[b] [c] hidden[d] hidden[e] [f]" },
        { "<p>a<span style='visibility:hidden'>b</span>c<i hidden>d</i> e", "[ac e] hidden[b] hidden[d]" },
        { "<p aria-hidden=true>a<p style='display:block'>b", "[a] [b]" },
        { "<ul><li hidden>a<li>b</ul><table><tr hidden><td>c<td>d<tr><td>e</table>",
            "hidden[a] [b] hidden[c] hidden[d] [e]" },
        { "<dialog>a</dialog><dialog "
          "open>b</dialog><noscript>c</noscript><video>d</video><datalist><option>e</datalist>f",
            "hidden[a] [b] hidden[c] hidden[d] [f] hidden[e]" },
        { "<div hidden>a<div>b</div>c</div>d</div>e", "hidden[a] hidden[b] hidden[c] [de]" },
        { "<div hidden>a<span>b</div>c</span>d", "hidden[ab] [cd]" },
        { "<input type=hidden value=a title=b><input value=c><body style='display:none'>d</body>e", "[de]" },
    };
    for (const auto& [page, segments] : cases)
        EXPECT_EQ(html(page), segments) << page;
    EXPECT_EQ(readHtml("a<img><img hidden><iframe></iframe><div hidden><img></div>", "a.html", {}).notes,
        std::vector<std::string> { "Text in 2 pictures and 1 embedded object isn’t counted." });
}

TEST(Html, encodingsAreTakenFromThePage)
{
    const struct {
        std::string page, segments;
    } cases[] {
        { "\xEF\xBB\xBF<meta charset=windows-1251>é", "[é]" },
        { "<meta charset=windows-1251>\xC6", "[Ж]" },
        { "<META HTTP-EQUIV='Content-Type' CONTENT='text/html; Charset = \"koi8-r\"'>\xF6", "[Ж]" },
        { "<!-- " + std::string(5000, 'x') + " <meta charset=utf-8> --><meta charset=iso-8859-1>\x93",
            "[“]" },
        { "<?xml version='1.0' encoding='windows-1251'?><p>\xC6</p>", "[Ж]" },
        { "<meta name=x content='charset=windows-1251'>caf\xE9", "[café]" },
        { "\xFF\xFE<\0p\0>\0\x16\x04"s, "[Ж]" },
    };
    for (const auto& [page, segments] : cases)
        EXPECT_EQ(html(page), segments) << page;
}

TEST(Html, xhtmlEndsEmptyElementsAtOnce)
{
    constexpr std::string_view page = "<title/><script src='x'/><p>a<![CDATA[<b>]]></p><div hidden=''/>c";
    EXPECT_EQ(html(page, "a.xhtml"), "[a<b>] [c]");
    EXPECT_EQ(
        html("<?xml version='1.0'?><!DOCTYPE html [ <!ENTITY a '>'> ]>" + std::string(page)), "[a<b>] [c]");
    EXPECT_EQ(html(page), "hidden[<script src='x'/><p>a<![CDATA[<b>]]></p><div hidden=''/>c]");
}

TEST(Html, takesLinearTimeAndCanBeCancelled)
{
    const auto repeated = [](std::string_view piece, std::size_t count) {
        std::string text;
        while (count-- > 0)
            text += piece;
        return text;
    };
    const ::Test::Effort effort;
    for (const auto piece : { "<div>", "<div hidden>", "<b>", "<x>", "<table><td>", "<svg><p>", "<a href=\"",
             "<a b='", "<!--", "<!doctype ", "<![CDATA[", "<svg><![CDATA[", "<script><!--<script>", "</titl",
             "&", "&CounterClockwise", "<", "<a b ", "<li>", "<template>" }) {
        EXPECT_EQ(html("x " + repeated(piece, 1'000'000)).substr(0, 2), "[x") << piece;
        EXPECT_EQ(html("x " + repeated(piece, 200'000), "a.xhtml").substr(0, 2), "[x") << piece;
    }
    EXPECT_EQ(html(repeated("<div>", 100'000) + "x" + repeated("</div>", 100'000) + "y"), "[x] [y]");
    EXPECT_EQ(
        html("<table><td>" + repeated("<b>", 100'000) + repeated("</div></i></li>", 300'000) + "x"), "[x]");
    EXPECT_EQ(html("<ul>" + repeated("<span>", 100'000) + repeated("<li>", 300'000) + "x"), "[x]");
    EXPECT_EQ(html("<p title='" + std::string(5'000'000, 'x') + "'>a").size(),
        5'000'000U + sizeof "[a] hidden[]" - 1);
    EXPECT_LT(effort.seconds(), 120);

    std::stop_source source;
    source.request_stop();
    EXPECT_THROW(readHtml("a", "a.html", source.get_token()), Cancelled);
}

} // namespace
