#include "TamberlinKit/Counting/Counter.h"

#include "Tests/TamberlinKit/CounterReference.h"

#include <gtest/gtest.h>

#include <array>
#include <random>

namespace Tamberlin {

namespace {

// Texts that are unlikely to be written and likely to be counted wrong: characters of all kinds in short
// runs.
class RandomTexts {
public:
    explicit RandomTexts(unsigned seed)
        : m_random(seed)
    {
    }

    std::string next(std::size_t longest)
    {
        std::u32string text;
        for (auto runs = 1 + below(6); runs > 0; --runs) {
            const auto kind = below(14);
            for (auto length = 1 + below(longest); length > 0; --length)
                text += codePoint(kind);
        }
        return utf8(text);
    }

    static std::string utf8(const std::u32string& text)
    {
        std::string result;
        icu::UnicodeString::fromUTF32(
            reinterpret_cast<const UChar32*>(text.data()), static_cast<std::int32_t>(text.size()))
            .toUTF8String(result);
        return result;
    }

private:
    std::size_t below(std::size_t limit) { return m_random() % limit; }
    char32_t oneOf(std::u32string_view set) { return set[below(set.size())]; }

    char32_t codePoint(std::size_t kind)
    {
        switch (kind) {
        case 0:
            return static_cast<char32_t>(below(0x80));
        case 1:
            return oneOf(U" \t\n\r\u00A0\u3000\u2028\u0085\v");
        case 2:
            return oneOf(U".!?…。！？)]\"'”’»」』）】 ");
        case 3:
            return oneOf(U"\u00AD\u200B\u200C\u200D\u2060\uFEFF\u0301\u0308\u0600\u093F");
        case 4:
            return oneOf(U"漢字、ー々〇・ｱ가각각\u3099");
        case 5:
            return static_cast<char32_t>(0x0E00 + below(0x100));
        case 6:
            return oneOf(U"\U0001F469\U0001F3FD\u200D\U0001F4BB\U0001F1E9\U0001F1EA❤\uFE0F");
        case 7:
            return oneOf(U"–—&•*€½²Ⅳ٣५-/");
        case 8:
            return static_cast<char32_t>(below(0x3000));
        case 9: {
            const auto c = static_cast<char32_t>(below(0x110000));
            return c >= 0xD800 && c <= 0xDFFF ? U'x' : c;
        }
        case 11:
            return oneOf(U"कषिर\u094D\u093C\u200D\u0301কয\u09CDక\u0C4Dம\u0BCDක\u0DCA\u0900");
        case 10:
            return oneOf(U"àéîõüßÅçñ abc");
        default:
            return oneOf(U"the quick brown fox, 42. ");
        }
    }

    std::mt19937 m_random;
};

TextStats stats(std::string_view text, bool countNumbers = true, bool countMarks = true)
{
    return Counter::stats(text, countNumbers, countMarks);
}

TEST(Counter, countsAsAWordProcessorDoes)
{
    const struct {
        std::string text;
        std::array<std::int64_t, 4> words; // Without numbers and marks, with marks, with numbers, with both.
        std::int64_t noSpaces, withSpaces, cjk;
    } cases[] {
        { "", {}, 0, 0, 0 },
        { "well-known e-mail", { 2, 2, 2, 2 }, 16, 17, 0 },
        { "a – b", { 2, 3, 2, 3 }, 3, 5, 0 },
        { "a–b don't a/b word—word", { 4, 4, 4, 4 }, 20, 23, 0 },
        { "In 2026 it cost $40.", { 3, 3, 5, 5 }, 16, 20, 0 },
        { "& • *** 10% ½", { 0, 3, 2, 5 }, 9, 13, 0 },
        { "日本語のテキスト", { 8, 8, 8, 8 }, 8, 8, 8 },
        { "日本語、テキスト", { 7, 7, 7, 7 }, 8, 8, 7 },
        { "한국어 텍스트", { 6, 6, 6, 6 }, 6, 7, 6 },
        { "漢– –漢 – 漢a", { 4, 5, 4, 5 }, 7, 10, 3 },
        { "漢\u200B–", { 1, 1, 1, 1 }, 2, 2, 1 },
        { "sch\u00ADön a\u200Bb \uFEFFc", { 4, 4, 4, 4 }, 8, 10, 0 },
        { "a\nb\r\nc\u2028d", { 4, 4, 4, 4 }, 4, 4, 0 },
        { "a b\tc\u00A0d", { 4, 4, 4, 4 }, 4, 7, 0 },
        { "e\u0301te\u0301 \U0001F469\U0001F3FD\u200D\U0001F4BB \U0001F1E9\U0001F1EA", { 1, 3, 1, 3 }, 5, 7,
            0 },
        { "สวัสดีครับ 25 ผม", { 3, 3, 4, 4 }, 11, 13, 0 },
    };
    for (const auto& [text, words, noSpaces, withSpaces, cjk] : cases) {
        SCOPED_TRACE(text);
        for (const int options : { 0, 1, 2, 3 }) {
            const auto counted = stats(text, options & 2, options & 1);
            EXPECT_EQ(counted.words, words[static_cast<std::size_t>(options)]) << "options " << options;
            EXPECT_EQ(counted.charactersNoSpaces, noSpaces);
            EXPECT_EQ(counted.charactersWithSpaces, withSpaces);
            EXPECT_EQ(counted.cjkCharacters, cjk);
            EXPECT_EQ(counted.segments, 0);
        }
    }
}

TEST(Counter, cutsSentencesAtTheirEnds)
{
    const std::pair<std::string, std::vector<std::string>> cases[] {
        { "", {} },
        { " \n ", {} },
        { "Version 3.5 is out.Really", { "Version 3.5 is out.Really" } },
        { "Done! Next", { "Done!", "Next" } },
        { "終わり。次", { "終わり。", "次" } },
        { "「終わり。」次", { "「終わり。」", "次" } },
        { "He said “Stop.” Then (really?) he left.", { "He said “Stop.”", "Then (really?)", "he left." } },
        { "Wait... what?!  Yes\n\nno: so; on", { "Wait...", "what?!", "Yes no: so; on" } },
        { "a\u00A0 b…\u2028c", { "a b…", "c" } },
        { "cafe\u0301.", { "café." } },
        { "One.\u0308 Two", { "One.\u0308 Two" } },
    };
    for (const auto& [text, sentences] : cases)
        EXPECT_EQ(Counter::sentences(text), sentences) << text;
}

TEST(Counter, agreesWithPlainRulesOnEveryCharacter)
{
    CounterReference reference(false, true);
    for (char32_t c = 1; c < 0x110000; ++c) {
        if (c >= 0xD800 && c <= 0xDFFF)
            continue;
        const auto mixed = RandomTexts::utf8({ U'1', c, U' ', c, c, U'漢', c });
        ASSERT_EQ(stats(mixed, false, true), reference.stats(mixed))
            << "U+" << std::hex << static_cast<unsigned>(c);
        if (c > 0xFFFF)
            continue;
        // Among those that are counted a block at once, at the blocks' edges, too.
        const auto latin = RandomTexts::utf8({ U'a', c, U' ', c, U'b', U'.', U' ' }),
                   wide = RandomTexts::utf8({ U'漢', c, U'、', U'か', c, U'。', U'각' });
        for (const auto& text : { std::string(61, 'x') + latin, wide + wide + wide + wide + latin }) {
            ASSERT_EQ(stats(text, false, true), reference.stats(text))
                << "U+" << std::hex << static_cast<unsigned>(c);
            ASSERT_EQ(Counter::sentences(text), reference.sentences(text))
                << "U+" << std::hex << static_cast<unsigned>(c);
        }
    }
}

TEST(Counter, agreesWithPlainRulesOnRandomTexts)
{
    RandomTexts texts(20260309);
    std::array<CounterReference, 4> references { CounterReference(false, false), { false, true },
        { true, false }, { true, true } };
    for (int round = 0; round < 500'000; ++round) {
        const auto text = texts.next(round % 100 == 0 ? 90 : round % 5 == 0 ? 12 : 3);
        const auto options = static_cast<std::size_t>(round % 4);
        auto& reference = references[options];
        ASSERT_EQ(stats(text, options & 2, options & 1), reference.stats(text)) << round << ": " << text;
        ASSERT_EQ(Counter::sentences(text), reference.sentences(text)) << round << ": " << text;
        const auto second = texts.next(3);
        ASSERT_EQ(stats(text + "\n" + second), stats(text) + stats(second)) << round << ": " << text;
    }
}

Extracted file(std::vector<Segment> segments) { return { .name = "a.txt", .segments = std::move(segments) }; }

CountOptions options(RepetitionScope scope, std::set<Part> included = { Part::body })
{
    return { .included = std::move(included), .repetitions = scope };
}

TEST(Counter, findsSentencesThatStoodBefore)
{
    const std::vector<Extracted> files { file({ { "Hello. Hello." }, { " \n" }, { "Hello.  \u00A0 42 !" } }),
        file({ { "hello. Hello.", Part::footnotes }, { "Hello." }, { "cafe\u0301 42" }, { "café 42" } }) };
    const auto within = Counter::count(files, options(RepetitionScope::withinFile));
    EXPECT_EQ(within[0].total.segments, 4);
    EXPECT_EQ(within[0].repeated, (TextStats { 2, 12, 12, 0, 2 }));
    EXPECT_EQ(within[1].repeated, (TextStats { 2, 6, 7, 0, 1 }));
    const auto across = Counter::count(files, options(RepetitionScope::acrossFiles));
    EXPECT_EQ(across[1].repeated, (TextStats { 3, 12, 13, 0, 2 }))
        << "The footnote is neither found nor kept.";
    EXPECT_EQ(across[1].byPart.find(Part::footnotes)->segments, 2);
    EXPECT_EQ(Counter::count(files, options(RepetitionScope::off))[0].repeated, TextStats());
    EXPECT_EQ(Counter::count(files, options(RepetitionScope::acrossFiles)), across);
    EXPECT_EQ(Counter::repeated(across), across[0].repeated + across[1].repeated);
    EXPECT_EQ(Counter::total(across), across[0].total + across[1].total);
}

TEST(Counter, countsTheMainTextAlwaysAndOtherPartsAsAsked)
{
    const std::vector<Extracted> files { file({ { "One two" }, { "three", Part::comments },
        { "  ", Part::hidden }, { "four five", Part::textBoxes } }) };
    const auto none = Counter::count(files, options(RepetitionScope::off, {}))[0];
    EXPECT_EQ(none.total, (TextStats { 2, 6, 7, 0, 1 }));
    EXPECT_EQ(*none.byPart.find(Part::hidden), TextStats());
    EXPECT_EQ(none.byPart.find(Part::footnotes), nullptr);
    const auto more = Counter::count(files, options(RepetitionScope::off, { Part::textBoxes }))[0];
    EXPECT_EQ(more.total.words, 4);
    EXPECT_EQ(more.byPart, none.byPart);
    const auto withoutNumbers = CountOptions { .countNumbers = false, .countMarks = false };
    EXPECT_EQ(Counter::count(std::vector { file({ { "2026" }, { "– 7. Word." } }) }, withoutNumbers)[0]
                  .total.segments,
        1);
}

} // namespace

} // namespace Tamberlin
