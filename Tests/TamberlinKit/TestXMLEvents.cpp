#include "TamberlinKit/Markup/XMLEvents.h"

#include "Tests/Support/Effort.h"
#include "Tests/Support/Folders.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <string_view>

using Test::TemporaryFolder, Test::writeFile;

namespace {

struct Events {
    std::string log; // "<a x=1 <b >b >a"
    std::optional<std::string> failure;
};

Events events(std::string_view document, const Tamberlin::XMLLimits& limits = {})
{
    Events events;
    const auto add = [&](std::string_view mark, std::string_view name) {
        (events.log += events.log.empty() ? "" : " ").append(mark).append(name);
    };
    events.failure = Tamberlin::parseXML(
        document, limits,
        [&](std::string_view element, Tamberlin::XMLAttributes attributes) {
            add("<", element);
            for (const auto* const name : { "b", "c", "x" }) {
                if (const auto value = attributes.find(name))
                    add(name, "=" + std::string(*value));
            }
        },
        [&](std::string_view element) { add(">", element); });
    return events;
}

std::string repeated(std::string_view piece, std::size_t count)
{
    std::string text;
    while (count-- > 0)
        text += piece;
    return text;
}

TEST(XMLEvents, tellStartAndEndTagsAsWritten)
{
    const auto [log, failure]
        = events("\xEF\xBB\xBF<?xml version=\"1.0\"?>\n<!-- a --><x:a b='1' c=\"&lt;&#8364;\">t<d/>"
                 "<![CDATA[<no>]]></x:a><!-- after -->");
    EXPECT_EQ(log, "<x:a b=1 c=<€ <d >d >x:a");
    EXPECT_EQ(failure, std::nullopt);
}

TEST(XMLEvents, attributesAreFoundByName)
{
    const auto failure = Tamberlin::parseXML(
        "<a one='1' two=''/>", {},
        [](std::string_view, Tamberlin::XMLAttributes attributes) {
            EXPECT_EQ(attributes.find("one"), "1");
            EXPECT_EQ(attributes.find("two"), "");
            EXPECT_EQ(attributes.find("One"), std::nullopt);
        },
        [](std::string_view) {});
    EXPECT_FALSE(failure);
}

TEST(XMLEvents, otherEncodingsComeAsUtf8)
{
    std::string utf16 = "\xFF\xFE";
    for (const char c : std::string_view("<a b='x'/>"))
        utf16 += { c, '\0' };
    EXPECT_EQ(events(utf16).log, "<a b=x >a");
    EXPECT_EQ(events("<?xml version='1.0' encoding='ISO-8859-1'?><a b='\xE9'/>").log, "<a b=é >a");
    EXPECT_TRUE(events("<a b='\xE9'/>").failure);
}

TEST(XMLEvents, malformedDocumentsGiveAReasonAfterWhatCameBefore)
{
    const struct {
        std::string document, log, reason;
    } cases[] {
        { "<a><b x='1'/></c></a>", "<a <b x=1 >b", "mismatched tag" },
        { "<a><b>", "<a <b", "no element found" },
        { "", "", "no element found" },
        { "text", "", "syntax error" },
        { "<a/><b/>", "<a >a", "junk after document element" },
        { "<a x='1' x='2'/>", "", "duplicate attribute" },
        { "<a>&nothing;</a>", "<a", "undefined entity" },
    };
    for (const auto& [document, log, reason] : cases) {
        const auto found = events(document);
        EXPECT_EQ(found.log, log) << document;
        EXPECT_EQ(found.failure, reason) << document;
    }
}

TEST(XMLEvents, stopAtTheDepthAndElementLimits)
{
    const auto nested = [](std::size_t depth) { return repeated("<a>", depth) + repeated("</a>", depth); };
    EXPECT_FALSE(events(nested(64), { .deepest = 64 }).failure);
    EXPECT_EQ(events(nested(65), { .deepest = 64 }).failure, "elements are nested too deeply");
    EXPECT_EQ(events(nested(1'000'000)).failure, "elements are nested too deeply");
    EXPECT_EQ(events("<a><b><c/></b></a>", { .deepest = 2 }).log, "<a <b"); // Nothing of what is beyond.

    const auto many = [](std::size_t count) { return "<r>" + repeated("<a/>", count - 1) + "</r>"; };
    EXPECT_FALSE(events(many(100), { .elements = 100 }).failure);
    EXPECT_EQ(events(many(101), { .elements = 100 }).failure, "too many elements");
    EXPECT_EQ(events(many(4), { .elements = 3 }).log, "<r <a >a <a >a");
}

TEST(XMLEvents, entitiesThatGrowWithoutBoundAreRefusedQuickly)
{
    std::string laughs = "<!DOCTYPE r [<!ENTITY e0 \"ha\">";
    for (int level = 1; level < 30; ++level) {
        const auto name = std::to_string(level), below = "&e" + std::to_string(level - 1) + ";";
        laughs += "<!ENTITY e" + name + " \"" + repeated(below, 10) + "\">";
    }
    const auto quadratic = "<!DOCTYPE r [<!ENTITY e \"" + repeated("x", 20'000) + "\">]><r>"
        + repeated("&e;", 20'000) + "</r>";
    const ::Test::Effort effort;
    EXPECT_TRUE(events(laughs + "]><r>&e29;</r>").failure);
    EXPECT_TRUE(events(laughs + "]><r a='&e29;'/>").failure);
    EXPECT_TRUE(events(quadratic).failure);
    EXPECT_TRUE(events("<!DOCTYPE r [<!ENTITY a \"&b;\"><!ENTITY b \"&a;\">]><r>&a;</r>").failure);
    EXPECT_LT(effort.seconds(), 5);
}

TEST(XMLEvents, lengthsThatTheParserCanNotBearAreRefusedQuickly)
{
    std::string chain = "<!DOCTYPE r [<!ENTITY e0 'x'>";
    for (int level = 1; level < 50'000; ++level)
        chain += "<!ENTITY e" + std::to_string(level) + " '&e" + std::to_string(level - 1) + ";'>";
    std::string declarations = "<!DOCTYPE r [<!ATTLIST r ";
    for (int attribute = 0; attribute < 400'000; ++attribute)
        declarations += "a" + std::to_string(attribute) + " CDATA ''\n";
    const auto entity = "<!DOCTYPE r [<!ENTITY e '" + repeated("x", 200) + "'>]><r>";
    const auto attribute = [](std::size_t size) { return "<r a='" + std::string(size, 'x') + "'/>"; };
    const std::pair<std::string, std::string> cases[] {
        { chain + "]><r>&e49999;</r>", "the document type is too long" },
        { declarations + ">]><r/>", "the document type is too long" },
        { "<!DOCTYPE r [" + std::string(60'000, ' ') + "]><r/>", "" },
        { attribute(15'000'000), "" },
        { attribute(60'000'000), "a tag or comment is too long" },
        { "<r><!--" + std::string(60'000'000, ' ') + "--></r>", "a tag or comment is too long" },
        { "<r>" + std::string(60'000'000, ' ') + "</r>", "" },
        { "<r>" + repeated("<!--" + std::string(1000, ' ') + "--><a/>", 60'000) + "</r>", "" },
    };
    const ::Test::Effort effort;
    for (std::size_t number = 0; number < std::size(cases); ++number)
        EXPECT_EQ(events(cases[number].first).failure.value_or(""), cases[number].second)
            << "case " << number;
    EXPECT_TRUE(
        events(entity + repeated("&e;", 1'000'000)).failure->starts_with("limit on input amplification"));
    EXPECT_FALSE(events(entity + repeated("&e;", 10'000) + "</r>").failure);
    EXPECT_LT(effort.seconds(), 10);
}

TEST(XMLEvents, externalEntitiesAreNeverRead)
{
    const TemporaryFolder folder;
    writeFile(folder / "secret.xml", "<secret/>");
    const auto address = "SYSTEM \"file://" + (folder / "secret.xml").string() + "\"";
    for (const auto& document : { "<!DOCTYPE r [<!ENTITY e " + address + ">]><r>&e;<b/></r>",
             "<!DOCTYPE r " + address + "><r><b/></r>",
             "<!DOCTYPE r [<!ENTITY % p " + address + "> %p;]><r><b/></r>" }) {
        const auto log = events(document).log;
        EXPECT_EQ(log, "<r <b >b >r") << document;
    }
    EXPECT_TRUE(events("<!DOCTYPE r [<!ENTITY e " + address + ">]><r a='&e;'/>").failure);
}

TEST(XMLEvents, anExceptionOfACallbackComesOutAndNothingIsCalledAfterIt)
{
    const std::string rest
        = "<c/>" + repeated("<d/>", 50'000) + "</a>"; // More than one piece for the parser.
    int calls = 0;
    const auto parse = [&](std::string_view document, int throwing) {
        calls = 0;
        const auto count = [&] {
            if (++calls >= throwing)
                throw std::out_of_range("call " + std::to_string(calls));
        };
        Tamberlin::parseXML(
            document, {}, [&](std::string_view, Tamberlin::XMLAttributes) { count(); },
            [&](std::string_view) { count(); });
    };
    for (int throwing = 1; throwing <= 4; ++throwing) {
        try {
            parse("<a><b/>" + rest, throwing);
            FAIL() << "nothing was thrown";
        } catch (const std::out_of_range& error) {
            EXPECT_EQ(error.what(), "call " + std::to_string(throwing));
        }
        EXPECT_EQ(calls, throwing);
    }
}

} // namespace
