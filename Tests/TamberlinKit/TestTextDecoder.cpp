#include "TamberlinKit/Text/TextDecoder.h"

#include <gtest/gtest.h>
#include <unicode/ucnv.h>

#include <string>
#include <string_view>
#include <vector>

using namespace std::string_literals;
using Tamberlin::decodeText;

namespace {

// The bytes of UTF-8 text in another encoding, without a byte order mark.
std::string encoded(std::string_view text, const char* encoding)
{
    UErrorCode status = U_ZERO_ERROR;
    std::vector<char> out(4 * text.size() + 8);
    const auto size = ucnv_convert(encoding, "UTF-8", out.data(), static_cast<std::int32_t>(out.size()),
        text.data(), static_cast<std::int32_t>(text.size()), &status);
    EXPECT_TRUE(U_SUCCESS(status)) << encoding;
    return std::string(out.data(), static_cast<std::size_t>(size));
}

constexpr std::string_view french
    = "Tous les êtres humains naissent libres et égaux en dignité. Ça coûte 5 € à Noël…";
constexpr std::string_view russian = "Все люди рождаются свободными и равными в своем достоинстве и правах. "
                                     "Они наделены разумом и совестью.";
constexpr std::string_view japanese
    = "すべての人間は、生まれながらにして自由であり、かつ、尊厳と権利とについて平等である。\n第1条";
constexpr std::string_view chinese
    = "人人生而自由,在尊严和权利上一律平等。他们赋有理性和良心,并应以兄弟关系的精神相对待。";
constexpr std::string_view taiwanese
    = "人人生而自由，在尊嚴和權利上一律平等。他們賦有理性和良心，並應以兄弟關係的精神相對待。";
constexpr std::string_view korean = "모든 인간은 태어날 때부터 자유로우며 그 존엄과 권리에 있어 동등하다.";

TEST(TextDecoder, unicodeIsKnownByItsMarkOrByItsZeroBytes)
{
    for (const auto text : { french, russian, japanese, std::string_view("漢字\r\nbeta 😀") }) {
        SCOPED_TRACE(text);
        const struct {
            const char* encoding;
            std::string mark;
        } cases[] {
            { "UTF-8", "\xEF\xBB\xBF" },
            { "UTF-16LE", "\xFF\xFE" },
            { "UTF-16BE", "\xFE\xFF" },
            { "UTF-32LE", "\xFF\xFE\0\0"s },
            { "UTF-32BE", "\0\0\xFE\xFF"s },
        };
        for (const auto& [encoding, mark] : cases) {
            const auto plain = encoded(text, encoding), marked = mark + plain;
            for (const auto& decoded : { decodeText(plain), decodeText(marked, "windows-1252") }) {
                EXPECT_EQ(decoded.text(), text) << encoding;
                EXPECT_EQ(decoded.encoding, encoding);
                EXPECT_FALSE(decoded.isGuessed);
                EXPECT_EQ(decoded.note(), std::nullopt);
            }
        }
    }
}

TEST(TextDecoder, legacyEncodingsAreGuessed)
{
    const struct {
        std::string_view text;
        const char *encoding, *name;
    } cases[] {
        { french, "windows-1252", "windows-1252" },
        { "The café opens at nine and closes at five.", "ISO-8859-1", "windows-1252" },
        { "Wszyscy ludzie rodzą się wolni i równi pod względem swej godności i swych praw. Tłumacz pisał "
          "źle.",
            "windows-1250", "windows-1250" },
        { "Všichni lidé se rodí svobodní a sobě rovní co do důstojnosti a práv.", "ISO-8859-2",
            "ISO-8859-2" },
        { russian, "windows-1251", "windows-1251" },
        { russian, "KOI8-R", "KOI8-U" },
        { russian, "ISO-8859-5", "ISO-8859-5" },
        { "Όλοι οι άνθρωποι γεννιούνται ελεύθεροι και ίσοι στην αξιοπρέπεια και τα δικαιώματα.",
            "windows-1253", "windows-1253" },
        { "Bütün insanlar hür, haysiyet ve haklar bakımından eşit doğarlar. Akıl ve vicdana sahiptirler.",
            "windows-1254", "windows-1254" },
        { "כל בני אדם נולדו בני חורין ושווים בערכם ובזכויותיהם.", "windows-1255", "windows-1255" },
        { "يولد جميع الناس أحرارا متساوين في الكرامة والحقوق.", "windows-1256", "windows-1256" },
        { "โดยที่การยอมรับศักดิ์ศรีแต่กำเนิด และสิทธิที่เท่าเทียมกัน", "windows-874", "windows-874" },
        { japanese, "Shift_JIS", "windows-31j" },
        { japanese, "EUC-JP", "EUC-JP" },
        { japanese, "ISO-2022-JP", "ISO-2022-JP" },
        { chinese, "GB18030", "GB18030" },
        { taiwanese, "Big5", "Big5" },
        { korean, "windows-949", "windows-949" },
    };
    for (const auto& [text, encoding, name] : cases) {
        SCOPED_TRACE(encoding);
        const auto bytes = encoded(text, encoding);
        const auto decoded = decodeText(bytes);
        EXPECT_EQ(decoded.text(), text);
        EXPECT_EQ(decoded.encoding, name);
        const bool isCertain = encoding == "ISO-2022-JP"s;
        EXPECT_EQ(decoded.isGuessed, !isCertain);
        if (!isCertain) {
            EXPECT_EQ(decoded.note(), "The file’s character encoding was guessed: "s + name + ".");
        }
        // Behind much that is ASCII it is found as well.
        std::string late(100'000, 'x');
        late += '\n';
        late += bytes;
        EXPECT_EQ(decodeText(late).text().substr(100'001), text);
    }
}

TEST(TextDecoder, whatAFileIsSaidToBeCountsUnlessItCannotBe)
{
    const struct {
        std::string text;
        const char *encoding, *hint, *name;
    } cases[] {
        { "Ä", "windows-1252", "latin1", "windows-1252" },
        { "Ж", "windows-1251", "WINDOWS-1251", "windows-1251" },
        { "„Ł”", "windows-1250", "cp1250", "windows-1250" },
        { "联通", "GB18030", "gb2312", "GB18030" },
        { "表", "Shift_JIS", "shift_jis", "windows-31j" },
        { std::string(russian), "UTF-8", "windows-1252", "UTF-8" }, // Its bytes can be nothing else.
        { std::string(russian), "windows-1251", "utf-8", "windows-1251" },
        { std::string(french), "UTF-8", "no such encoding", "UTF-8" },
        { std::string(french), "UTF-8", "ibm-420", "UTF-8" }, // No text says so of itself in ASCII.
        { std::string(french), "UTF-8", "utf-16", "UTF-8" },
    };
    for (const auto& [text, encoding, hint, name] : cases) {
        SCOPED_TRACE(hint);
        const auto bytes = encoded(text, encoding);
        const auto decoded = decodeText(bytes, hint);
        EXPECT_EQ(decoded.text(), text);
        EXPECT_EQ(decoded.encoding, name);
    }
}

TEST(TextDecoder, damageBecomesReplacementCharacters)
{
    const struct {
        std::string bytes, text, note;
    } cases[] {
        { "déjà vu, déjà lu\xC3", "déjà vu, déjà lu\uFFFD",
            "One place in the file that is no character in UTF-8 is counted as “\uFFFD”." },
        { "\xEF\xBB\xBF"
          "a\xFF\xE2\x82z\xED\xA0\x80",
            "a\uFFFD\uFFFDz\uFFFD\uFFFD\uFFFD",
            "5 places in the file that are no character in UTF-8 are counted as “\uFFFD”." },
        { "\xFF\xFE"
          "a\0x"s,
            "a\uFFFD", "One place in the file that is no character in UTF-16LE is counted as “\uFFFD”." },
    };
    for (const auto& [bytes, text, note] : cases) {
        const auto decoded = decodeText(bytes);
        EXPECT_EQ(decoded.text(), text);
        EXPECT_EQ(decoded.note(), note);
    }
    for (const auto& plain : { ""s, "\xEF\xBB\xBF"s, "\xFF\xFE"s })
        EXPECT_EQ(decodeText(plain).text(), "");
    EXPECT_EQ(decodeText("Alpha\0 beta\0\0gamma"s).text(), "Alpha\0 beta\0\0gamma"s); // Not UTF-16.
}

} // namespace
