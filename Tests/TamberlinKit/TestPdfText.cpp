#include "TamberlinKit/Readers/PdfText.h"

#include <gtest/gtest.h>

using namespace Tamberlin;

namespace {

using Strings = std::vector<std::string>;

// The texts of pages, headers and footers in brackets. Pages are lists of paragraphs, each with its top.
Strings texts(const std::vector<std::vector<std::pair<std::string, std::uint16_t>>>& pages)
{
    std::vector<PdfPage> made;
    for (const auto& paragraphs : pages) {
        made.push_back({ .number = static_cast<std::uint32_t>(made.size() + 1) });
        for (const auto& [text, top] : paragraphs)
            made.back().paragraphs.push_back({ text, top, static_cast<std::uint16_t>(top + 10) });
    }
    Strings texts;
    for (const auto& segment : pdfSegments(made)) {
        const auto text = std::string(std::string_view(segment.text));
        texts.push_back(segment.part == Part::headersFooters ? "[" + text + "]" : text);
    }
    return texts;
}

TEST(PdfText, joinsLines)
{
    const std::pair<std::string, std::string> cases[] {
        { "one \ntwo\nthree\n", "one two three" },
        { "transla-\ntion\n", "translation" },
        { "transla\u00AD\ntion, trans\u00ADlation\n", "translation, trans\u00ADlation" },
        { "Über\u2010\nsetzung\n", "Übersetzung" },
        { "a well-\nknown and well-known fact\n", "a well-known and well-known fact" },
        { "Well-known is well-\nknown\n", "Well-known is well-known" },
        { "Vor-\nund Nachteile\n", "Vor- und Nachteile" },
        { "Vor- \nnachteile\n", "Vor- nachteile" },
        { "Anglo-\nAmerican 2010-\n2012\n", "Anglo-American 2010-2012" },
        { "yes -\nno –\nperhaps\n", "yes - no – perhaps" },
        { "word—\nword and/\nor\n", "word—word and/or" },
        { "日本語の\n文書\n", "日本語の文書" },
        { "한국\n어 \n책\n", "한국어 책" },
        { "ภาษา\nไทย\n", "ภาษาไทย" },
        { "日本\nabc\n", "日本 abc" },
        { "Contents ........... 7\nMore....8\nEnd...\n", "Contents 7 More 8 End..." },
        { "-\nx\n", "- x" },
        { "\xFF-\nz\n", "\xFF-z" },
    };
    for (const auto& [lines, text] : cases)
        EXPECT_EQ(texts({ { { lines, 500 } } }), Strings { text }) << lines;
}

TEST(PdfText, keepsASentenceWholeAcrossColumnsAndPages)
{
    const std::string cut = "A sentence that is long enough and then goes over to the trans-\n";
    const Strings whole { "A sentence that is long enough and then goes over to the translation here." };
    EXPECT_EQ(texts({ { { cut, 900 }, { "lation here.\n", 100 } } }), whole);
    EXPECT_EQ(texts({ { { cut, 900 } }, { { "lation here.\n", 100 } } }), whole);
    const Strings apart { "A sentence that is long enough and then goes over to the trans-", "lation here." };
    EXPECT_EQ(texts({ { { cut, 500 }, { "lation here.\n", 600 } } }), apart) << "below each other";
    EXPECT_EQ(texts({ { { "Short\n", 900 }, { "heading\n", 100 } } }), (Strings { "Short", "heading" }));
    EXPECT_EQ(texts({ { { "This sentence is long enough, and it has an end.\n", 900 }, { "e.g.\n", 100 } } })
                  .size(),
        2u);
}

TEST(PdfText, findsHeadersAndFooters)
{
    const auto page = [](const std::string& number, const std::string& body) {
        return std::vector<std::pair<std::string, std::uint16_t>> { { "The Book\n", 40 },
            { "Chapter " + number + "\n", 40 }, { body + "\n", 60 }, { "Text.\n", 500 }, { "12\n", 880 },
            { number + "\n", 930 } };
    };
    EXPECT_EQ(texts({ page("1", "a"), page("2", "b"), page("iii", "c"), page("14", "a") }),
        (Strings { "[The Book]", "[Chapter 1]", "a", "Text.", "12", "[1]", "[The Book]", "[Chapter 2]", "b",
            "Text.", "12", "[2]", "[The Book]", "Chapter iii", "c", "Text.", "12", "[iii]", "[The Book]",
            "[Chapter 14]", "a", "Text.", "12", "[14]" }))
        << "12 stands further in, as in a table";
    for (const auto& text : texts({ page("1", "a"), page("2", "b") }))
        EXPECT_FALSE(text.starts_with('[')) << text << " on two pages only";
    EXPECT_EQ(
        texts({ { { "A\n", 40 } }, { { "A\n", 80 } }, { { "A\n", 120 } } }), (Strings { "A", "A", "A" }))
        << "at different heights";
    EXPECT_EQ(texts({ { { "A sentence is cut at the end of the page, and\n", 500 }, { "i\n", 930 } },
                  { { "goes on\n", 500 }, { "v\n", 930 } }, { { "x\n", 930 } } }),
        (Strings { "A sentence is cut at the end of the page, and goes on", "[i]", "[v]", "[x]" }));
}

} // namespace
