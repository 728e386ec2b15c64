#include "Base/Base64.h"
#include "Base/SafeFileName.h"
#include "Base/Text.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace {

std::string repeated(std::string_view piece, std::size_t count)
{
    std::string text;
    while (count-- > 0)
        text += piece;
    return text;
}

TEST(Text, trimsUnicodeWhiteSpaceAndNothingElse)
{
    const struct {
        std::string text, trimmed, ofMarks;
    } cases[] {
        { "", "", "" },
        { " \t\r\n\v\f ", "", "" },
        { "  a b  ", "a b", "a b" },
        { "\u00A0\u2003\u3000x\u2028\u0085", "x", "x" },
        { "\uFEFF a \uFEFF", "\uFEFF a \uFEFF", "a" },
        { "\u200Bx\u200B", "\u200Bx\u200B", "\u200Bx\u200B" }, // A zero-width space isn't white space.
        { " \xFFx\xC2 ", "\xFFx\xC2", "\xFFx\xC2" },
        { "\xA0", "\xA0", "\xA0" },
    };
    for (const auto& [text, trimmed, ofMarks] : cases) {
        EXPECT_EQ(Base::trimmed(text), trimmed);
        EXPECT_EQ(Base::trimmedOfMarks(text), ofMarks);
    }
}

TEST(Text, foldsCaseTheSameInEveryLocale)
{
    const struct {
        std::string left, right;
        bool equal;
    } cases[] {
        { "DE-at 9", "de-AT 9", true }, { "de", "de-AT", false }, { "", "", true },
        { "I", "ı", false }, // Turkish dotless i isn't an i.
        { "İ", "i\u0307", true }, { "STRASSE", "Straße", true }, { "ß", "s", false }, { "ΣΑΣ", "σας", true },
        { "ÅÖÉ", "åöé", true }, { "Português", "português (Brasil)", false },
        { "\u212Aelvin", "kelvin", true }, // The sign for kelvin folds to an ASCII letter.
    };
    for (const auto& [left, right, equal] : cases) {
        EXPECT_EQ(Base::equalIgnoringCase(left, right), equal) << left << " and " << right;
        EXPECT_EQ(Base::equalIgnoringCase(right, left), equal) << right << " and " << left;
    }
    EXPECT_EQ(Base::asciiLowered("ABCİÄ.XML"), "abcİÄ.xml");
}

TEST(Text, sortsAsAPersonExpects)
{
    std::vector<std::string> names { "Zebra", "file 10", "émile", "File 9", "emil", "", "Ähre", "file 2",
        "ahne" };
    std::sort(names.begin(), names.end(), Base::naturallyBefore);
    EXPECT_EQ(names,
        (std::vector<std::string> {
            "", "ahne", "Ähre", "emil", "émile", "file 2", "File 9", "file 10", "Zebra" }));
    EXPECT_FALSE(Base::naturallyBefore("a", "a"));
    EXPECT_NE(Base::naturallyBefore("01", "1"), Base::naturallyBefore("1", "01"));
}

TEST(Text, cutsBetweenUserPerceivedCharacters)
{
    const std::string family = "👨‍👩‍👧"; // Five code points, eighteen bytes, one character.
    EXPECT_EQ(Base::firstCharacters("e\u0301te\u0301", 2), "e\u0301t");
    EXPECT_EQ(Base::firstCharacters(family + "abc", 2), family + "a");
    EXPECT_EQ(Base::firstCharacters("abc", 5), "abc");
    EXPECT_EQ(Base::firstCharacters("abc", 0), "");
    EXPECT_EQ(Base::firstBytes("aé", 2), "a");
    EXPECT_EQ(Base::firstBytes("a" + family, 18), "a");
    EXPECT_EQ(Base::firstBytes(family, 5), "👨"); // Longer than all that fits: cut between its code points.
    EXPECT_EQ(Base::firstBytes("a\r\nb", 2), "a");
}

TEST(Text, displayWidthCountsTerminalColumns)
{
    const struct {
        std::string text;
        std::size_t width;
    } cases[] { { "", 0 }, { "Größe", 5 }, { "日本", 4 }, { "e\u0301", 1 }, { "ﾊﾝ", 2 }, { "Ａ", 2 },
        { "a\u200Db\u00AD", 2 } };
    for (const auto& [text, width] : cases)
        EXPECT_EQ(Base::displayWidth(text), width) << text;
}

TEST(Base64, takesOnlyWhatItWouldWrite)
{
    const std::string bytes { "\0\xFFpicture", 9 };
    for (std::size_t size = 0; size <= bytes.size(); ++size)
        EXPECT_EQ(Base::fromBase64(Base::toBase64(bytes.substr(0, size))), bytes.substr(0, size));
    for (const auto* const text : { "AA==    ", "    AA==", "====", "A===", "AB==", "AA=", "A A=", "AA\n=" })
        EXPECT_EQ(Base::fromBase64(text), std::nullopt) << text;
}

TEST(SafeFileName, dropsWhatSomeSystemForbids)
{
    const struct {
        std::string text, name;
    } cases[] {
        { "report.xml", "report.xml" },
        { "../../etc/passwd", "etcpasswd" },
        { "C:\\a?b%c*d|e\"f<g>h.csv", "Cabcdefgh.csv" },
        { "a\nb\tc\x7F\x01 d", "abc d" },
        { "a\u0085b\u009F", "ab" },
        { " . hidden . ", "hidden" },
        { "...", "file" },
        { "", "file" },
        { "/", "file" },
        { ".. ", "file" },
        { "Größe – 報告.xml", "Größe – 報告.xml" },
        { "bad\xFF.xml", "bad\uFFFD.xml" },
    };
    for (const auto& [text, name] : cases)
        EXPECT_EQ(Base::safeFileName(text), name);
}

TEST(SafeFileName, isCutTo120CharactersAnd255BytesWithItsExtension)
{
    EXPECT_EQ(Base::safeFileName(repeated("a", 300)), repeated("a", 120));
    EXPECT_EQ(Base::safeFileName(repeated("a", 119) + ". b"), repeated("a", 119));

    const std::string uuid(37, 'u');
    const auto cut = Base::safeFileName(repeated("報", 110) + ".xml", uuid);
    EXPECT_EQ(cut, repeated("報", (255 - 37 - 4) / 3) + ".xml");
    EXPECT_LE(uuid.size() + cut.size(), 255u);
    EXPECT_EQ(Base::safeFileName(repeated("報", 110), {}, ".pdf"), repeated("報", 251 / 3));
    EXPECT_EQ(Base::safeFileName(repeated("e\u0301\u0302", 120)), repeated("e\u0301\u0302", 51));
    // Where the cut falls on a blank or a full stop, that goes too.
    EXPECT_EQ(Base::safeFileName(repeated("報", 84) + "ab 報報"), repeated("報", 84) + "ab");
    EXPECT_EQ(Base::safeFileName(repeated("報", 84) + ". 報報報報報報"), repeated("報", 84));
}

TEST(SafeFileName, isOneFileNameWhateverComesIn)
{
    std::mt19937 random(7);
    const std::vector<std::string> pieces { "/", "\\", ".", "..", " ", "\n", "a", "É", "報",
        "👨‍👩‍👧", "\xFF", "\xC2", "\x85", "\u0301", ".xml", std::string(1, '\0'), "\u202E",
        "longer piece of text", repeated("報", 30) };
    for (int round = 0; round < 5'000; ++round) {
        std::string text;
        for (auto count = random() % 40; count > 0; --count)
            text += pieces[random() % pieces.size()];
        const auto name = Base::safeFileName(text, {}, ".pdf");
        ASSERT_FALSE(name.empty());
        ASSERT_LE(name.size(), 251u);
        ASSERT_EQ(name, Base::validUtf8(name));
        ASSERT_EQ(name.find_first_of(std::string_view("/\\\n\0", 4)), std::string::npos);
        ASSERT_FALSE(name.starts_with('.') || name.ends_with('.')) << name;
        ASSERT_EQ(Base::safeFileName(name, {}, ".pdf"), name);
    }
}

} // namespace
