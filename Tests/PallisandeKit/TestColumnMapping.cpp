#include "PallisandeKit/Analyses/ColumnMapping.h"

#include "Base/Json.h"
#include "PallisandeKit/Analyses/CountColumn.h"
#include "PallisandeKit/Analyses/Importer.h"
#include "Tests/PallisandeKit/ExpectedReports.h"
#include "Tests/Support/Samples.h"

#include <gtest/gtest.h>

#include <string>

using namespace Pallisande;
using Test::fileText, Test::moment, Test::reportSamples, Test::sentences;

namespace {

ColumnMapping guess(std::string_view data) { return guessMapping(DelimitedTable(data), "table.csv").guess; }

std::string meaning(ColumnRole role, std::optional<MatchBand> band, std::optional<CountMetric> metric = {})
{
    auto text = std::string(Base::caseName(role));
    if (band)
        text += " " + std::string(Base::caseName(*band));
    if (metric)
        text += " " + std::string(Base::caseName(*metric));
    return text;
}

// "File=file, 100% Words=band exact words"; the labels behind a slash.
std::string shown(const ColumnMapping& mapping)
{
    std::string text;
    for (const auto& [heading, role, band, metric] : mapping.columns)
        text += (text.empty() ? "" : ", ") + heading + "=" + meaning(role, band, metric);
    for (const auto& [label, role, band] : mapping.labels)
        text += (&label == &mapping.labels.front().label ? " / " : ", ") + label + "=" + meaning(role, band);
    return text;
}

Analysis mapped(std::string_view data, const ColumnMapping& mapping)
{
    return readMapped(DelimitedTable(data), mapping, "table.csv", moment().now);
}
Analysis mapped(std::string_view data) { return mapped(data, guess(data)); }

// The words of each file: "a.doc 100%:5 No match:7 (12)"; behind all the stated total and the notes.
std::string shown(const Analysis& analysis)
{
    std::string text;
    for (const auto& row : analysis.rows) {
        text += row.file;
        row.counts.words.forEach([&](MatchBand band, std::int64_t words) {
            if (words != 0)
                text += " " + std::string(label(band)) + ":" + std::to_string(words);
        });
        text += row.statedWords ? " (" + std::to_string(*row.statedWords) + ")\n" : "\n";
    }
    if (analysis.statedTotalWords)
        text += "total " + std::to_string(*analysis.statedTotalWords) + "\n";
    for (const auto& note : sentences(analysis)) {
        if (note != sentence(NoCharacters {}))
            text += note + "\n";
    }
    return text;
}

template <typename Operation> std::string refusal(Operation operation)
{
    try {
        operation();
        return "(not refused)";
    } catch (const ImportError& error) {
        return error.what();
    }
}

TEST(ColumnMapping, guessesEveryColumn)
{
    const struct {
        std::string table, guess;
    } cases[] {
        { "File name;Perfect Match Words;95%-99% - Characters;Context Segs;Locked;MT words;Total "
          "words;Comments\n"
          "a.doc;1;2;3;4;5;15;x\n",
            "File name=file, Perfect Match Words=band perfect words, 95%-99% - Characters=band fuzzy95 "
            "characters, "
            "Context Segs=band context segments, Locked=band perfect words, MT words=notBilled words, Total "
            "words=total words, Comments=ignore" },
        // Without a heading for files the column whose texts differ most; a bare "Words" is the total.
        { "Client,Object,Words,New,Repetitions,Repetitions %\nX,a,7,5,2,20\nX,b,8,8,0,0\n",
            "Client=ignore, Object=file, Words=total words, New=band noMatch words, Repetitions=band "
            "repetitions words, "
            "Repetitions %=ignore" },
        { ",,100%,,No match,\nFile,Language,Segments,Words,Segments,Words\na,de,1,2,3,4\n",
            "File=file, Language=ignore, 100% Segments=band exact segments, 100% Words=band exact words, No "
            "match "
            "Segments=band noMatch segments, No match Words=band noMatch words" },
        // The bands of bare metrics can’t be known.
        { "File;Segments;Words;Segments;Words\na;1;2;3;4\n",
            "File=file, Segments=ignore, Words=ignore, Segments=ignore, Words=ignore" },
        { "Some title\n\nFile;Type;Words;Chars\na;No match;5;20\n;100%;6;24\n;Comment;1;1\n;All;12;45\n",
            "File=file, Type=label, Words=counts words, Chars=counts characters / No match=band noMatch, "
            "100%=band "
            "exact, Comment=ignore, All=total" },
        { "Neu,5\nWiederholungen,6\nFragmente,1\n",
            "Column 1=label, Column 2=counts words / Neu=band noMatch, Wiederholungen=band repetitions, "
            "Fragmente=notBilled" },
        { "甲,乙,丙\na,1,2\nb,3,4\n", "甲=file, 乙=ignore, 丙=ignore" },
    };
    for (const auto& [table, expected] : cases)
        EXPECT_EQ(shown(guess(table)), expected);
    for (const std::string text : { "", "Dear Sir,\nthe job is done, I think.\n", "7\n8\n", "a,b\nc,d\n" })
        EXPECT_EQ(refusal([&] { guess(text); }),
            "“table.csv” is no analysis report that Pallisande knows, and no table of counts.")
            << text;
}

TEST(ColumnMapping, readsARowForEachFile)
{
    const struct {
        std::string table, analysis;
    } cases[] {
        { "File;100%;No match;Total\na.doc;5;7;12\n;1;2;3\n\nb.doc;;4;5\nc.doc\nTotal;6;13;20\n",
            "a.doc 100%:5 No match:7 (12)\nLine 3 100%:1 No match:2 (3)\nb.doc No match:4 (5)\ntotal 20\n" },
        { "100%;No match\n5;7\n", "table.csv 100%:5 No match:7\n" },
        // Totals of groups and of all. A file that is only called like a total stays a file.
        { "File,New\na,1\nb,2\nde Total,3\nc,4\nfr Total,4\nTotal effort.doc,9\nGrand Total,16\n",
            "a No match:1\nb No match:2\nc No match:4\nTotal effort.doc No match:9\ntotal 16\n" },
        { "Language,File,New\nde,a,1\nde,b,2\nTotal,,3\nfr,c,4\nTotal,,4\n",
            "a No match:1\nb No match:2\nc No match:4\ntotal 7\n" },
        { "File,New\nTotal,5\n", "Total No match:5\n" }, // There is nothing else that it could sum up.
        { "File;Locked;80-89%;Fragments;New;Remark\na;1;2;3;4;5\nb;1;2;3;4;0\n",
            "a Perfect / X-translated:1 75–84%:2 No match:4\nb Perfect / X-translated:1 75–84%:2 No match:4\n"
            "Left out, as the mapping says: “Remark”.\n“80-89%” (4 words) is counted with 75–84%.\n“Locked” "
            "(2 words) is "
            "counted with Perfect / X-translated.\n“Fragments” (6 words) isn’t billed.\n" },
        { "File;New;100%\na;1.234;n/a\nb;1,5;2\nc;x;\n",
            "a No match:1234\nb 100%:2 No match:2\n"
            "c\nCounts that couldn’t be read as numbers and were left out: 2.\n"
                + sentence(fractionalCountsNote()) + "\n" },
        // Headings that come again, as on printed pages.
        { "File;New;100%\na;1;2\nFile;New;100%\nb;3;4\n", "a 100%:2 No match:1\nb 100%:4 No match:3\n" },
    };
    for (const auto& [table, expected] : cases)
        EXPECT_EQ(shown(mapped(table)), expected);
    const auto analysis = mapped("File;New words;New characters;New segments;Total\na;1;6;2;1\n");
    EXPECT_EQ(analysis.source, AnalysisSource::mappedCSV);
    EXPECT_EQ(verification(analysis.source), Verification::mappedByYou);
    EXPECT_EQ(analysis.importedAt, moment().now);
    EXPECT_EQ(analysis.rows[0].counts.characters, (BandMap<std::int64_t> { { MatchBand::noMatch, 6 } }));
    EXPECT_EQ(analysis.rows[0].counts.segments, (BandMap<std::int64_t> { { MatchBand::noMatch, 2 } }));
    EXPECT_TRUE(analysis.notes.empty());
}

TEST(ColumnMapping, readsABlockForEachFile)
{
    const std::string a = "File 1: a.doc\nType;Segments;Words\nNo match;1;5\n100%;1;6\nTotal;2;11\n\n";
    const std::string b = "File 2: b.doc\nType;Segments;Words\nNo match;1;7\n100%;0;0\nTotal;1;7\n\n";
    const std::string all = "Type;Segments;Words\nNo match;2;12\n100%;1;6\nTotal;3;18\n";
    const std::string files = "a.doc 100%:6 No match:5 (11)\nb.doc No match:7 (7)\n";
    const struct {
        std::string table, analysis;
    } cases[] {
        { a, "a.doc 100%:6 No match:5 (11)\n" },
        { a + b, files },
        { a + b + "Total\n" + all, files + "total 18\n" },
        { "Whole project\n" + all + a + b,
            files + "total 18\n“Whole project” has the words of all others together and was left out.\n" },
        { "Type;Words\nNo match;5\nCross-file repetitions;6\nMT;7\nDone;8\nTagged;none\n",
            "table.csv Repetitions:6 No match:5\nLeft out, as the mapping says: “Done”.\n“Cross-file "
            "repetitions” (6 "
            "words) is counted with Repetitions.\n“MT” (7 words) isn’t billed.\n" },
    };
    for (const auto& [table, expected] : cases)
        EXPECT_EQ(shown(mapped(table)), expected);
}

TEST(ColumnMapping, isKeptAndUsedAgainForTheSameHeadings)
{
    const std::string first = "Object,Golden,Fresh\na,1,2\n";
    auto mapping = guess(first);
    mapping.columns[1] = { "Golden", ColumnRole::band, MatchBand::exact, CountMetric::words };
    mapping.columns[2] = { "Fresh", ColumnRole::band, MatchBand::noMatch, std::nullopt };
    const auto stored = Base::toJson(mapping);
    mapping = Base::fromJson<ColumnMapping>(stored, {});
    EXPECT_EQ(Base::toJson(mapping), stored);
    EXPECT_EQ(shown(mapped(first, mapping)),
        "a 100%:1 No match:2\n“Fresh” (2 words) is counted with No match.\n“Golden” (1 words) is counted "
        "with "
        "100%.\n");
    EXPECT_TRUE(
        shown(mapped("object ;\"GOLDEN\" ;fresh\nb;3;4\n", mapping)).starts_with("b 100%:3 No match:4\n"));

    const auto refused = [&](std::string_view table, const ColumnMapping& by) {
        return refusal([&] { mapped(table, by); });
    };
    EXPECT_EQ(refused("Object,Golden\na,1\n", mapping),
        "The mapping was made for other columns than those of “table.csv”.");
    EXPECT_EQ(
        refused("Dear Sir", mapping), "The mapping was made for other columns than those of “table.csv”.");
    EXPECT_EQ(
        refused(first, guess(first)), "The mapping names no column with the words or characters of a band.");
    mapping.columns[1].band.reset();
    EXPECT_EQ(refused(first, mapping), "The mapping doesn’t say which band “Golden” is.");

    const std::string labels = "Type,Words\nNo match,1\n100%,2\n";
    EXPECT_EQ(refused(labels + "Novel,3\n", guess(labels)),
        "The mapping doesn’t say what “Novel” is, in line 4 of “table.csv”.");
    EXPECT_EQ(refused("File,New\na,9007199254740991\nb,1\n", guess("File,New\na,1\n")),
        "“table.csv” states counts that are too large to be right.");
    std::string many = "File,New\n";
    for (std::size_t row = 0; row <= mostReportRows; ++row)
        many += "a,1\n";
    EXPECT_EQ(refused(many, guess(many)),
        "“table.csv” has more than 1000000 rows, which is too many for an analysis report.");
}

TEST(ColumnMapping, isReadAsTheUserSaysWhereTheTableMisleads)
{
    const struct {
        std::string data;
        TableReading reading;
        std::string delimiter, columns, rows;
    } cases[] {
        { "File|100%|New\na.doc|5|7\n", {}, "|", "File=file, 100%=band exact words, New=band noMatch words",
            "a.doc 100%:5 No match:7\n" },
        { "File,100%,New\na.doc,5,7\n", { .delimiter = ";" }, ";", "no table", "" },
        { "File;100%;New\na, b;1,5;2,5\n", { .delimiter = "," }, ",",
            "Column 1=file, Column 2=ignore, Column 3=ignore, Column 4=ignore", "" },
        { "File\t100%\tNew\na.doc\t1.234\t2.345\n", {}, "\t",
            "File=file, 100%=band exact words, New=band noMatch words", "a.doc 100%:1234 No match:2345\n" },
        { "File\t100%\tNew\na.doc\t1.234\t2.645\n", { .decimalMark = "." }, "\t",
            "File=file, 100%=band exact words, New=band noMatch words",
            "a.doc 100%:1 No match:3\nSome counts of this report aren’t whole numbers and were rounded half "
            "up, so sums can be off by a few. They look discounted already: priced with weights again, they "
            "would be discounted twice.\n" },
        { "File;100%;New\na.doc;5;7\n", { .hasHeadings = false }, ";",
            "Column 1=file, Column 2=ignore, Column 3=ignore", "" },
        { "a.doc;7;9\nb.doc;5;7\n", { .hasHeadings = true }, ";", "a.doc=file, 7=ignore, 9=ignore", "" },
    };
    for (const auto& [data, reading, delimiter, columns, rows] : cases) {
        SCOPED_TRACE(data);
        try {
            const auto table = Importer::guess(data, "table.csv", reading);
            EXPECT_EQ(table.delimiter, delimiter);
            EXPECT_EQ(shown(table.guess), columns);
            EXPECT_EQ(table.guess.reading, reading);
            const auto kept = Base::fromJson<ColumnMapping>(Base::toJson(table.guess), {});
            const auto result = Importer::importMapped(data, "table.csv", kept, moment().now);
            const auto* const analysis = std::get_if<Analysis>(&result);
            EXPECT_EQ(analysis ? shown(*analysis) : "", rows);
        } catch (const ImportError&) {
            EXPECT_EQ(columns, "no table");
        }
    }
}

TEST(ColumnMapping, readsTheRealTablesOfOtherTools)
{
    if (!std::filesystem::exists(reportSamples() / "other"))
        GTEST_SKIP() << "no samples of real reports";
    const struct {
        std::string file;
        std::size_t rows;
        std::int64_t words;
        std::optional<std::int64_t> stated;
        std::string firstRow;
    } cases[] {
        { "wordfast.csv", 3, 7438 + 110 + 517, std::nullopt, "" },
        { "xtm-semicolon.csv", 1, 536, 536,
            "SVPD000050376.doc Context match (101%):29 100%:109 95–99%:134 85–94%:32 75–84%:37 No match:195 "
            "(536)" },
        { "dejavu.csv", 1, 682, std::nullopt,
            "dejavu.csv Repetitions:1 100%:580 95–99%:18 No match:83 (682)" },
        { "worldserver-files.csv", 13, 5269, 5269,
            "sample file 01 Context match (101%):33 Repetitions:242 100%:81 95–99%:12 85–94%:4 75–84%:10 "
            "50–74%:51 No "
            "match:4374 (4807)" },
        { "omegat-match-per-file-zh.txt", 0, 190950, 190950,
            "announce_plugin.html Repetitions:4 100%:78 85–94%:5 75–84%:13 50–74%:29 No match:171 (300)" },
    };
    for (const auto& [file, rows, words, stated, firstRow] : cases) {
        SCOPED_TRACE(file);
        const auto data = fileText(reportSamples() / "other" / file);
        const auto result = Importer::import(data, file, moment().now);
        const auto& needed = std::get<NeedsMapping>(result);
        EXPECT_EQ(needed.table.guess, Importer::guess(data, file).guess);
        const auto analysis
            = std::get<Analysis>(Importer::importMapped(data, file, needed.table.guess, moment().now));
        EXPECT_TRUE(analysis.mismatches().empty());
        EXPECT_EQ(sum(analysis.totals().words), words);
        EXPECT_EQ(analysis.statedTotalWords, stated);
        if (rows > 0) {
            EXPECT_EQ(analysis.rows.size(), rows);
        }
        EXPECT_TRUE(shown(analysis).starts_with(firstRow)) << shown(analysis).substr(0, 400);
    }
}

} // namespace
