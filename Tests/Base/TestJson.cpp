#include "Base/Json.h"
#include "Tests/Support/Effort.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>

using Base::Decimal;

namespace {

enum class Colour { red, green };
constexpr std::array<std::string_view, 2> caseNames(Colour) { return { "red", "green" }; }

struct Plain {
    static constexpr std::string_view caseName = "plain";
    bool operator==(const Plain&) const = default;
    static constexpr auto fields() { return std::tuple {}; }
};

struct Worded {
    static constexpr std::string_view caseName = "worded";
    std::string text;
    bool operator==(const Worded&) const = default;
    static constexpr auto fields()
    {
        return std::tuple { Base::field("_0", &Worded::text, Base::Missing::fails) };
    }
};

struct Part {
    std::string name;
    std::int64_t count = 7;
    std::optional<std::string> note;

    bool operator==(const Part&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("name", &Part::name, Base::Missing::fails),
            Base::field("count", &Part::count),
            Base::field("note", &Part::note),
        };
    }
};

struct Whole {
    bool truth = false;
    Decimal exact;
    Colour colour = Colour::red;
    Colour mood = Colour::green;
    Part part { .name = "default" };
    std::optional<Part> spare;
    std::vector<Part> parts;
    std::map<std::int64_t, std::string> years;
    Base::EnumMap<Colour, Decimal> shades;
    std::variant<Plain, Worded> kind;
    Base::Instant when;
    Base::Uuid id;
    std::string zone;

    bool operator==(const Whole&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("truth", &Whole::truth),
            Base::field("exact", &Whole::exact),
            Base::field("colour", &Whole::colour),
            Base::lenientField("mood", &Whole::mood),
            Base::field("part", &Whole::part),
            Base::field("spare", &Whole::spare),
            Base::field("parts", &Whole::parts),
            Base::field("years", &Whole::years),
            Base::field("shades", &Whole::shades),
            Base::field("kind", &Whole::kind),
            Base::field("when", &Whole::when, Base::Missing::takesNow),
            Base::field("id", &Whole::id, Base::Missing::makesId),
            Base::field("zone", &Whole::zone, Base::Missing::takesZone),
        };
    }
};
static_assert(Base::listsEveryMember<Whole>);

const Base::ReadingContext context { .now = { 1'000 }, .timeZone = "Europe/Berlin" };

template <typename T> T read(std::string_view text) { return Base::fromJson<T>(text, context); }

template <typename T> std::string refusal(std::string_view text)
{
    try {
        Base::fromJson<T>(text, context);
        return "(not refused)";
    } catch (const Base::DecodingError& error) {
        return error.what();
    }
}

// The text that a JSON literal stands for.
std::string textOf(std::string_view literal) { return read<std::string>(literal); }

std::string repeated(std::string_view piece, std::size_t count)
{
    std::string text;
    while (count-- > 0)
        text += piece;
    return text;
}

TEST(Json, writesOneFormWithSortedKeysAndLeavesAbsentOnesOut)
{
    const Whole whole {
        .exact = Decimal::ofParts(1250, -2),
        .parts = { { .name = "a" }, { .name = "b", .count = -1, .note = "n" } },
        .years = { { 9, "nine" }, { 10, "ten" } },
        .shades = { { Colour::red, 1 }, { Colour::green, Decimal::ofParts(5, -1) } },
        .kind = Worded { "w" },
        .when = { -1 },
        .id = { 0xABC, 0xDEF },
    };
    EXPECT_EQ(Base::toJson(whole), R"({
  "colour": "red",
  "exact": 12.5,
  "id": "00000000-0000-0ABC-0000-000000000DEF",
  "kind": {
    "worded": {
      "_0": "w"
    }
  },
  "mood": "green",
  "part": {
    "count": 7,
    "name": "default"
  },
  "parts": [
    {
      "count": 7,
      "name": "a"
    },
    {
      "count": -1,
      "name": "b",
      "note": "n"
    }
  ],
  "shades": {
    "green": 0.5,
    "red": 1
  },
  "truth": false,
  "when": "1969-12-31T23:59:59.999Z",
  "years": {
    "10": "ten",
    "9": "nine"
  },
  "zone": ""
}
)");
    EXPECT_EQ(read<Whole>(Base::toJson(whole)), whole);
    EXPECT_EQ(Base::toJson(whole.parts, Base::JsonStyle::compact),
        R"([{"count":7,"name":"a"},{"count":-1,"name":"b","note":"n"}])");
    EXPECT_EQ(Base::toJson(std::vector<Part> {}), "[]\n");
}

TEST(Json, missingKeysTakeWhatTheirFieldsSay)
{
    const auto whole = read<Whole>(" {} \r\n\t");
    EXPECT_EQ(whole.part.name, "default");
    EXPECT_EQ(whole.mood, Colour::green);
    EXPECT_EQ(whole.when, context.now);
    EXPECT_EQ(whole.zone, "Europe/Berlin");
    EXPECT_FALSE(whole.id.isNil());
    EXPECT_NE(whole.id, read<Whole>("{}").id);
    EXPECT_FALSE(whole.spare);
}

TEST(Json, nullStandsForAMissingKey)
{
    const auto whole = read<Whole>(R"({"truth": null, "exact": null, "part": {"name": "x", "count": null},
        "spare": null, "parts": null, "mood": null, "when": null, "zone": null})");
    EXPECT_EQ(whole.part, (Part { .name = "x" }));
    EXPECT_EQ(whole.when, context.now);
    EXPECT_EQ(whole.zone, "Europe/Berlin");
    EXPECT_EQ(refusal<Whole>(R"({"part": {"name": null}})"), "part: The key “name” is missing.");
    EXPECT_EQ(refusal<std::vector<Part>>("[null]"), "[0]: Unexpected null.");
}

TEST(Json, ofAKeyGivenTwiceTheLastCounts)
{
    const auto whole = read<Whole>(R"({
        "exact": 1, "exact": 2,
        "part": {"name": "a", "count": 1, "note": "old"}, "part": {"name": "b"},
        "spare": {"name": "a", "count": 1, "note": "old"}, "spare": {"name": "b"},
        "parts": [{"name": "a"}, {"name": "b"}], "parts": [{"name": "c"}],
        "years": {"1": "a", "2": "b"}, "years": {"3": "c", "3": "d"},
        "zone": "a", "zone": null})");
    EXPECT_EQ(whole.exact, Decimal(2));
    EXPECT_EQ(whole.part, (Part { .name = "b" }));
    EXPECT_EQ(whole.spare, (Part { .name = "b" }));
    EXPECT_EQ(whole.parts, (std::vector<Part> { { .name = "c" } }));
    EXPECT_EQ(whole.years, (std::map<std::int64_t, std::string> { { 3, "d" } }));
    EXPECT_EQ(whole.zone, "Europe/Berlin");
    EXPECT_EQ(refusal<Whole>(R"({"part": {"name": "a"}, "part": {}})"), "part: The key “name” is missing.");
}

TEST(Json, unknownKeysAndUnreadableLenientValuesArePassedOver)
{
    const auto whole = read<Whole>(R"({"truth": true, "new": [1, {"truth": [[]]}, "x", null, 1e999, true],
        "mood": {"a": ["red"]}, "newer": {"truth": false, "truth": 1}})");
    EXPECT_TRUE(whole.truth);
    EXPECT_EQ(whole.mood, Colour::green);
    for (const auto* value : { R"("blue")", "1", "true", "[]", "null" })
        EXPECT_EQ(read<Whole>(std::string(R"({"mood": )") + value + "}").mood, Colour::green) << value;
    EXPECT_EQ(read<Whole>(R"({"mood": "red"})").mood, Colour::red);
}

TEST(Json, refusalsNameTheWay)
{
    const struct {
        std::string text, sentence;
    } cases[] {
        { R"({"truth": 1})", "truth: Unexpected number." },
        { R"({"truth": "true"})", "truth: Unexpected text." },
        { R"({"exact": "1.5"})", "exact: Unexpected text." },
        { R"({"part": []})", "part: Unexpected list." },
        { R"({"parts": {}})", "parts: Unexpected object." },
        { R"({"part": {}})", "part: The key “name” is missing." },
        { R"({"parts": [{"name": "a"}, {"name": "b", "count": true}]})",
            "parts[1].count: Unexpected truth value." },
        { R"({"years": {"2026": 5}})", "years[“2026”]: Unexpected number." },
        { R"({"years": {"1": "x", "MMXXVI": "x"}})",
            "years: The number MMXXVI is not a whole number that fits." },
        { R"({"shades": {"red": 1, "green": false}})", "shades.green: Unexpected truth value." },
        { R"({"shades": {"blue": 1}})", "shades: The key “blue” is not one of its values." },
        { R"({"colour": "blue"})", "colour: “blue” is not one of its values." },
        { R"({"when": "soon"})", "when: Not an ISO 8601 date: soon" },
        { R"({"id": "1"})", "id: Not a UUID: 1" },
        { R"({"kind": {}})", "kind: Invalid number of keys found, expected one." },
        { R"({"kind": {"plain": {}, "worded": {"_0": "x"}}})",
            "kind: Invalid number of keys found, expected one." },
        { R"({"kind": {"plain": {}, "other": {}}})", "kind: Invalid number of keys found, expected one." },
        { R"({"kind": {"other": {}}})", "kind: The key “other” is not one of its values." },
        { R"({"kind": {"worded": {}}})", "kind: The key “_0” is missing." },
        { R"({"kind": "plain"})", "kind: Unexpected text." },
        { "[]", "Unexpected list." },
        { "null", "Unexpected null." },
    };
    for (const auto& [text, sentence] : cases)
        EXPECT_EQ(refusal<Whole>(text), sentence) << text;
}

TEST(Json, malformedTextIsRefused)
{
    for (const std::string_view text : { "", " ", "{", "{}}", "{} x", "{\"a\": [1,]}", "{\"a\" 1}",
             "{'a': 1}", "{\"a\": 01}", "{\"a\": +1}", "{\"a\": .5}", "{\"a\": NaN}", "{\"a\": 1} // no",
             "\"a\nb\"", "\"\\x41\"", "\xEF\xBB\xBF{}", "{\"truth\": tru}" })
        EXPECT_TRUE(refusal<Whole>(text).starts_with("Not readable as JSON ("))
            << text << ": " << refusal<Whole>(text);
    EXPECT_NE(refusal<Whole>(std::string_view("{}\0", 3)), "(not refused)");
}

TEST(Json, textsKeepEveryCharacter)
{
    const struct {
        std::string text;
        std::string literal; // As we write it.
    } cases[] {
        { "", R"("")" },
        { "\"\\/", R"("\"\\/")" },
        { "\n\r\t\b\f\x01\x1F\x7F", "\"\\n\\r\\t\\u0008\\u000c\\u0001\\u001f\x7F\"" },
        { std::string("a\0b", 3), R"("a\u0000b")" },
        { "Größe €  😀", "\"Größe €  😀\"" },
        { repeated("x\n€", 50'000), '"' + repeated("x\\n€", 50'000) + '"' },
    };
    for (const auto& [text, literal] : cases) {
        EXPECT_EQ(Base::toJson(text, Base::JsonStyle::compact), literal);
        EXPECT_EQ(textOf(literal), text);
    }
    EXPECT_EQ(textOf(R"("\u0041\u00e9\u20AC\ud83d\uDE00\/\b\f")"), "Aé€😀/\b\f");
    EXPECT_EQ(read<Part>(R"({"n\u0061me": "\u00df"})").name, "ß");
}

TEST(Json, invalidUtf8IsRefusedInReadingAndRepairedInWriting)
{
    const struct {
        std::string text, repaired;
    } cases[] {
        { "a\xFFz", "a\uFFFDz" },
        { "caf\xE9", "caf\uFFFD" },
        { "\xC0\xAF", "\uFFFD\uFFFD" }, // An overlong slash.
        { "\xED\xA0\x80", "\uFFFD\uFFFD\uFFFD" }, // Half a surrogate pair.
        { "\xF4\x90\x80\x80", "\uFFFD\uFFFD\uFFFD\uFFFD" }, // Beyond U+10FFFF.
        { "€\xE2\x82\"", "€\uFFFD\"" },
    };
    for (const auto& [text, repaired] : cases) {
        EXPECT_NE(refusal<std::string>('"' + text + '"'), "(not refused)") << repaired;
        EXPECT_EQ(textOf(Base::toJson(text)), repaired);
    }
    for (const auto* literal : { R"("\ud83d")", R"("\ud83d\u0041")", R"("\ude00")", R"("\ud83d)" })
        EXPECT_NE(refusal<std::string>(literal), "(not refused)") << literal;
}

TEST(Json, decimalsAreReadExactly)
{
    const struct {
        std::string literal, text;
    } cases[] {
        { "0.1", "0.1" },
        { "-0", "0" },
        { "1.50", "1.5" },
        { "9007199254740993", "9007199254740993" },
        { "0.30000000000000004", "0.30000000000000004" },
        { "12345678901234567890123456789.123456789", "12345678901234567890123456789.123456789" },
        { "-99999999999999999999999999999999999999", "-99999999999999999999999999999999999999" },
        { "1E+3", "1000" },
        { "2.5e-3", "0.0025" },
    };
    for (const auto& [literal, text] : cases)
        EXPECT_EQ(read<Decimal>(literal).toString(), text);
    for (const auto* literal : { "1e400", "1e-400", "1e99999999999", "0.1e-2147483649",
             "123456789012345678901234567890123456789", "1.00000000000000000000000000000000000001" })
        EXPECT_NE(refusal<Decimal>(literal), "(not refused)") << literal;
}

TEST(Json, wholeNumbersEndWhereSumsCouldOverflow)
{
    const struct {
        std::string literal;
        std::int64_t value;
    } accepted[] { { "9007199254740991", 9'007'199'254'740'991 },
        { "-9007199254740991", -9'007'199'254'740'991 }, { "3.0", 3 }, { "12e2", 1200 }, { "-0", 0 } };
    for (const auto& [literal, value] : accepted)
        EXPECT_EQ(read<std::int64_t>(literal), value);
    for (const auto* literal : { "9007199254740992", "-9007199254740992", "9223372036854775807",
             "18446744073709551615", "123456789012345678901234567890", "1e16", "2.5", "1e400" })
        EXPECT_NE(refusal<std::int64_t>(literal), "(not refused)") << literal;
    EXPECT_NE(refusal<Whole>(R"({"years": {"9007199254740992": "x"}})"), "(not refused)");
}

TEST(Json, depthIsLimitedAndReadWithoutRecursion)
{
    const auto nested = [](std::size_t depth) {
        return R"({"unknown": )" + repeated("[", depth) + repeated("]", depth) + "}";
    };
    EXPECT_EQ(refusal<Whole>(nested(500)), "(not refused)");
    EXPECT_NE(refusal<Whole>(nested(600)), "(not refused)");
    const ::Test::Effort effort;
    EXPECT_NE(refusal<Whole>(repeated("[", 1'000'000)), "(not refused)");
    EXPECT_NE(refusal<Whole>(R"({"x":)" + repeated("[", 1'000'000)), "(not refused)");
    EXPECT_NE(refusal<Whole>(repeated(R"({"part":)", 1'000'000)), "(not refused)");
    EXPECT_LT(effort.seconds(), 2);
}

TEST(Json, everyShorterTextIsRefused)
{
    const auto text
        = Base::toJson(Whole { .parts = { { .name = "€", .note = "a\\b" } }, .years = { { 1, "x" } } });
    const auto end = text.rfind('}');
    for (std::size_t length = 0; length <= end; ++length)
        EXPECT_NE(refusal<Whole>(std::string_view(text).substr(0, length)), "(not refused)") << length;
}

TEST(Json, patchingLeavesWhatTheTextDoesNotName)
{
    const Whole before { .truth = true,
        .part = { .name = "a", .count = 1, .note = "n" },
        .parts = { { .name = "b" } },
        .years = { { 1, "x" } },
        .id = { 1, 2 },
        .zone = "UTC" };
    const auto after = Base::patchedFromJson(
        before, R"({"part": {"count": 5}, "parts": [{"name": "c"}], "spare": {"name": "d"}})", context);
    auto expected = before;
    expected.part.count = 5;
    expected.parts = { { .name = "c" } };
    expected.spare = Part { .name = "d" };
    EXPECT_EQ(after, expected);
    EXPECT_EQ(Base::patchedFromJson(after, R"({"spare": null})", context).spare, std::nullopt);
    // What a patch makes anew must be whole.
    EXPECT_THROW(Base::patchedFromJson(before, R"({"spare": {}})", context), Base::DecodingError);
    EXPECT_THROW(Base::patchedFromJson(before, R"({"parts": [{}]})", context), Base::DecodingError);
}

} // namespace
