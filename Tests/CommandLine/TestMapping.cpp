#include "Tests/CommandLine/Program.h"

#include "PallisandeKit/Analyses/ImportResult.h"

using namespace Pallisande;
using Test::expectShows, Test::fileText, Test::Program, Test::sampleLibrary, Test::writeFile;

namespace {

// As scripts get it when a table's columns must be mapped.
struct MappingNeeded {
    NeedsMapping needsMapping;

    static constexpr auto fields()
    {
        return std::tuple { Base::field("needsMapping", &MappingNeeded::needsMapping) };
    }
};

struct Report {
    Analysis analysis;

    static constexpr auto fields() { return std::tuple { Base::field("analysis", &Report::analysis) }; }
};

TEST(Mapping, ofAColumnIsGuessedCorrectedAndAttached)
{
    const Program program;
    program.store(sampleLibrary());
    const auto file = program.place("table.csv"), mapping = program.place("mapping.json");
    writeFile(file, "Object;Golden;New;Total\na.doc;100;1.200;1.300\nTotal;100;1.200;1.300\n");
    const std::string reason = "The columns of “table.csv” aren’t those of a report that Pallisande knows. "
                               "Say what each of them holds.";
    expectShows(program.output({ "analysis", file }),
        { reason, "Object file", "Golden ignore", "New band: No match words",
            "Save the guess with --guess, correct it, and read the file with --map." });
    const auto needed = program.record<MappingNeeded>({ "analysis", file }).needsMapping;
    EXPECT_EQ(needed.reason, reason);
    EXPECT_EQ(needed.table.sample.at(0), (std::vector<std::string> { "a.doc", "100", "1.200", "1.300" }));
    const auto guessed = program.output({ "analysis", file, "--guess" });
    EXPECT_EQ(guessed, Base::toJson(needed.table.guess));
    EXPECT_EQ(program.refusal({ "analysis", file, "--attach", "Job 11" }), reason);

    auto corrected = needed.table.guess;
    corrected.columns.at(1) = { "Golden", ColumnRole::band, MatchBand::exact, CountMetric::words };
    writeFile(mapping, Base::toJson(corrected));
    expectShows(program.output({ "analysis", file, "--map", mapping, "--attach", "Job 11" }),
        { "Source: Spreadsheet with mapped columns – Columns mapped by you",
            "a.doc 0 0 0 100 0 0 0 0 1200 1300 1300", "Whole report 0 0 0 100 0 0 0 0 1200 1300 1300",
            "Note: “Golden” (100 words) is counted with 100%." });
    const auto kept = program.library().job(::Test::id(11))->analyses.back();
    EXPECT_EQ(fileText(program.folder / kept.storedCopy.value()), fileText(file));

    EXPECT_EQ(program.refusal({ "analysis", program.place("none.csv"), "--guess" }),
        "“none.csv” couldn’t be opened: No such file or directory");
    EXPECT_EQ(program.refusal({ "analysis", file, "--map", program.place("none.json") }),
        "“none.json” couldn’t be opened: No such file or directory");
    EXPECT_EQ(program.refusal({ "analysis", file, "--map", file }),
        "“table.csv” isn’t a mapping of columns: Not readable as JSON (syntax error at byte 0).");
    writeFile(mapping, R"({"fingerprint": "", "columns": [{"heading": "Object", "role": "gold"}]})");
    EXPECT_EQ(program.refusal({ "analysis", file, "--map", mapping }),
        "“mapping.json” isn’t a mapping of columns: columns[0].role: “gold” is not one of its values.");
    EXPECT_EQ(program.run({ "analysis", file, "--guess", "--attach", "Job 11" }).code, 2);

    // Taken apart otherwise: the guess is made anew.
    corrected.reading.hasHeadings = false;
    writeFile(mapping, Base::toJson(corrected));
    EXPECT_EQ(program.refusal({ "analysis", file, "--map", mapping }),
        "The mapping was made for other columns than those of “table.csv”.");
    const auto anew = Base::fromJson<ColumnMapping>(
        program.output({ "analysis", file, "--map", mapping, "--guess" }), {});
    EXPECT_EQ(anew.reading, corrected.reading);
    EXPECT_EQ(anew.columns.at(1).heading, "Column 2");
}

TEST(Mapping, isNotNeededForKnownReports)
{
    const Program program;
    const auto memoQ = program.place("memoQ.csv"), json = program.place("phrase.json");
    writeFile(memoQ,
        ";;101%;;;No "
        "match;;;Total;;\nFile;Char/Word;Segments;Words;Characters;Segments;Words;Characters;Segments;"
        "Words;Characters\n\"[ger] C:\\a.docx\";5,1;1;4;20;2;6;31;3;11;51\n");
    expectShows(program.output({ "analysis", memoQ }),
        { "Target language: ger", "[ger] C:\\a.docx 0 4 0 0 0 0 0 0 6 10 11",
            "Warning: [ger] C:\\a.docx: the bands add up to 10 words, the report says 11" });
    writeFile(json,
        R"({"analyseLanguageParts": [{"sourceLang": "de", "targetLang": "en", "jobs": [{"fileName": "a.docx",
        "data": {"repetitions": {"segments": 1.0, "words": 4.0, "characters": 20.0},
            "match0": {"segments": {"sum": 2.0}, "words": {"sum": 6.0}, "characters": {"sum": 31.0}},
            "total": {"segments": 3.0, "words": 10.0, "characters": 51.0}}}]}]})");
    const auto [analysis] = Base::fromJson<Report>(program.output({ "--json", "analysis", json }), {});
    EXPECT_EQ(analysis.source, AnalysisSource::phraseJSON);
    EXPECT_EQ(sum(analysis.totals().words), 10);
}

} // namespace
