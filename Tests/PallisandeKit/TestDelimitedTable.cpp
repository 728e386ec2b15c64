#include "PallisandeKit/Analyses/DelimitedTable.h"

#include "PallisandeKit/Analyses/CountColumn.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

using namespace Pallisande;
using namespace std::string_literals;

namespace {

// The delimiter, then every line's cells between bars.
std::string shown(std::string_view data)
{
    const DelimitedTable table(data);
    std::string text(1, table.delimiter());
    for (std::size_t row = 0; row < table.size(); ++row) {
        text += '\n';
        for (std::size_t column = 0; column < table[row].size(); ++column)
            text += (column > 0 ? "|" : "") + std::string(table[row][column]);
    }
    return text;
}

std::string utf16(std::string_view ascii, bool hasMark)
{
    std::string bytes(hasMark ? "\xFF\xFE" : "");
    for (const char c : ascii)
        bytes += { c, '\0' };
    return bytes;
}

TEST(DelimitedTable, findsItsCells)
{
    const struct {
        std::string text, shown;
    } cases[] {
        { "", "," },
        { "a", ",\na" },
        { "a,b\nc,d\n", ",\na|b\nc|d" },
        { "a;b\r\nc;d", ";\na|b\nc|d" },
        { "a\tb\rc\td\r", "\t\na|b\nc|d" },
        { "a|b\n\nc|d", "|\na|b\n\nc|d" },
        { "a,b,\n,c\nd\n,,\n", ",\na|b|\n|c\nd\n||" }, // Ragged lines; those that end with a delimiter.
        { " a , b\u00A0,\tc\n", ",\na|b|c" },
        { "\"a,b\",\"c\"\"d\",\"\"\n", ",\na,b|c\"d|" },
        { "\"a\nb\", \"c\" ,d\n", ",\na\nb|c|d" },
        { "\"a\"b,c\n", ",\n\"a\"b|c" }, // No quoted cell: it goes on behind the closing mark.
        { "Scope;\"x\" (\"C:\\x;y\")\n", ";\nScope|\"x\" (\"C:\\x|y\")" },
        { "\"a,b\nc,d\n", ",\n\"a|b\nc|d" }, // Never closed.
        { "a\"b\",c\n", ",\na\"b\"|c" },
        { "x,\"\"\"\"\n\"\"\"a\"\"\",y", ",\nx|\"\n\"a\"|y" },
        { "sep=;\na,b;c\n", ";\n\na,b|c" },
        { "sep=:\na:b;c\n", ":\n\na|b;c" },
        // Commas inside numbers don't outweigh the real delimiter, and a title above the table is no matter.
        { "A title, with commas\nf;1,5;2,5\ng;3,5;4,5\n", ";\nA title, with commas\nf|1,5|2,5\ng|3,5|4,5" },
        { "f;1,234,567;1,234,567\n", ";\nf|1,234,567|1,234,567" },
        { "f\t1,5\t2;5\n", "\t\nf|1,5|2;5" },
        { "a | b,1,2,3\nc | d,4,5,6\n", ",\na | b|1|2|3\nc | d|4|5|6" },
        { "\"a;b;c;d\",1\n\"e;f;g;h\",2\n", ",\na;b;c;d|1\ne;f;g;h|2" },
        { "\xEF\xBB\xBF\"a\";b\n", ";\na|b" },
        { "f\xFC;1\ng;2\n", ";\nfü|1\ng|2" },
        { utf16("a;b\r\n\"c\";d\r\n", true), ";\na|b\nc|d" },
        { utf16("File;Words\r\nname;12\r\n", false), ";\nFile|Words\nname|12" },
        { "a,\0b\n"s, ",\na|\0b"s },
    };
    for (const auto& [text, expected] : cases)
        EXPECT_EQ(shown(text), expected) << text;
    EXPECT_TRUE(DelimitedTable("f\xFC;1\ng\xDF;2\n").encodingNote().has_value());
    EXPECT_FALSE(DelimitedTable("fü;1\n").encodingNote().has_value());
}

TEST(DelimitedTable, rowsAnswerBeyondTheirEnd)
{
    const std::string text = " \"a\", ,b \n , \n\nlast";
    const DelimitedTable table(text);
    ASSERT_EQ(table.size(), 4u);
    EXPECT_EQ(table[0][3], "");
    EXPECT_EQ(table[0].text(), "\"a\", ,b ");
    EXPECT_FALSE(table[0].isBlank());
    EXPECT_TRUE(table[1].isBlank());
    EXPECT_TRUE(table[2].isBlank());
    EXPECT_EQ(table[2].size(), 0u);
    EXPECT_EQ(table[2].text(), "");
    EXPECT_EQ(table[3].text(), "last");
}

TEST(DelimitedTable, readsWhatSpreadsheetsWrite)
{
    std::mt19937 random(20260309);
    const std::vector<std::string> pieces { "a", "é", "12", "\"", ";", ",", "\t", "|", "\n", "\r\n", "“",
        "x y" };
    const auto below = [&](std::size_t limit) { return random() % limit; };
    for (int round = 0; round < 500; ++round) {
        const char delimiter = ";,\t|"[below(4)];
        std::vector<std::vector<std::string>> rows(1 + below(20), std::vector<std::string>(3 + below(5)));
        std::string text;
        for (auto& row : rows) {
            row.resize(rows[0].size());
            for (auto& cell : row) {
                for (auto count = below(5); count > 0; --count)
                    cell += pieces[below(pieces.size())];
                cell = "<" + cell + ">";
                text += (&cell == &row.front() ? "" : std::string(1, delimiter)) + "\"";
                for (const char c : cell)
                    text += c == '"' ? "\"\"" : std::string(1, c);
                text += '"';
            }
            text += below(2) == 0 ? "\n" : "\r\n";
        }
        const DelimitedTable table(text);
        ASSERT_EQ(table.delimiter(), delimiter) << text;
        ASSERT_EQ(table.size(), rows.size()) << text;
        for (std::size_t row = 0; row < rows.size(); ++row) {
            ASSERT_EQ(table[row].size(), rows[row].size());
            for (std::size_t column = 0; column < rows[row].size(); ++column)
                ASSERT_EQ(table[row][column], rows[row][column]) << text;
        }
    }
}

// The counts that a column reads; one rounded has a "~", "–" is no number.
std::string counts(const std::vector<std::string>& cells)
{
    CountColumn column;
    for (const auto& cell : cells)
        column.learn(cell);
    std::string text;
    for (const auto& cell : cells) {
        const auto count = column.read(cell);
        text += (text.empty() ? "" : " ") + (count ? std::to_string(count->value) : "–")
            + (count && count->wasFractional ? "~" : "");
    }
    return text;
}

TEST(CountColumn, decidesMarksByTheWholeColumn)
{
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases {
        { { "0", "12", " 345 ", "+6", "-7", "−8", "" }, "0 12 345 6 -7 -8 –" },
        { { "1.234", "5" }, "1234 5" }, // Alone it groups.
        { { "1,234", "5" }, "1234 5" },
        { { "1.234", "0.5" }, "1~ 1~" },
        { { "1,234", "12,34" }, "1~ 12~" },
        { { "1.234", "1.234.567" }, "1234 1234567" },
        { { "1.234", "1,5" }, "1234 2~" },
        { { "1,234", "1.234,5" }, "1~ 1235~" },
        { { "1,234.5", "1,234" }, "1235~ 1234" },
        { { "1.234", "1.234.567", "2,345" },
            "1234 1234567 2~" }, // What groups leaves the other for decimals.
        { { "1.234", "1.234.567", "0.5" }, "– 1234567 1~" }, // A column that contradicts itself.
        { { "1 234,5", "1\u00A0234\u202F567", "1'234", "1’234.50" }, "1235~ 1234567 1234 1235~" },
        { { "12,34,567", "1,23,456.5" }, "1234567 123457~" },
        { { "0.500", "10.0", "10.", ".5", "1234.567" }, "1~ 10 10 1~ 1235~" },
        { { "2.4", "2.5", "2.49999999999999999999999" }, "2~ 3~ 2~" },
        { { "12%", "1e3", "0x10", "1 2", "1,,2", ",", "1.2.3", "1-2", "twelve", "٣", "1 234 56" },
            "– – – – – – – – – – –" },
        { { "9007199254740991", "9007199254740992", "99999999999999999999999999" },
            "9007199254740991 9007199254740992 9007199254740992" },
        { { "1,000,000,000,000,000,000,000,000,000", "1,1,1,1,1,1,1,1,1,1,1,1,1,1" }, "9007199254740992 –" },
    };
    for (const auto& [cells, expected] : cases)
        EXPECT_EQ(counts(cells), expected) << testing::PrintToString(cells);
}

TEST(CountColumn, takesWhatItLeavesOpenFromAnother)
{
    CountColumn decimals, open, settled;
    decimals.learn("5.51");
    settled.learn("1.234.567");
    open.settleLike(decimals);
    settled.settleLike(decimals);
    EXPECT_EQ(open.read("1.234"), (Count { 1, true }));
    EXPECT_EQ(settled.read("1.234"), (Count { 1234, false }));
}

TEST(Count, sumsAndRoundsWithoutOverflow)
{
    std::int64_t total = 0;
    for (int times = 0; times < 5000; ++times)
        addCount(total, Base::Checked::largestCount);
    EXPECT_EQ(total, Count::absurd);
    addCount(total, std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(total, 0);
    const auto rounded = [](std::string_view text) { return Count::of(*Base::Decimal::parse(text)); };
    EXPECT_EQ(rounded("10.0"), (Count { 10, false }));
    EXPECT_EQ(rounded("655.5"), (Count { 656, true }));
    EXPECT_EQ(rounded("0.49"), (Count { 0, true }));
    EXPECT_EQ(rounded("1e30").value, Count::absurd);
    EXPECT_EQ(rounded("-1e30").value, -Count::absurd);
}

} // namespace
