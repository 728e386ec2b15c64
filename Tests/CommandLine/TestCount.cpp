#include "Tests/CommandLine/Program.h"

#include <sys/stat.h>

using namespace Pallisande;
using Test::expectShows, Test::Program, Test::squeezed, Test::Words, Test::writeFile;

namespace {

const std::string head = "File Words Repeated Characters With spaces CJK Segments\n";

// A folder with a document of each of several kinds, and things in it that are none.
std::string documents(const Program& program)
{
    const std::filesystem::path folder = program.place("Documents");
    std::filesystem::create_directories(folder / "Band 2");
    writeFile(folder / "b10.md", "One. **Two** 3.\n");
    writeFile(folder / "b9.txt", "One. Two 3.\nOne. – x\n");
    writeFile(folder / "Band 2/c.html", "<p>Hi <b>you</b>, 日本<p hidden>unseen words");
    writeFile(folder / "notes.log", "not counted");
    std::filesystem::create_directory_symlink(folder, folder / "Band 2/again");
    return folder;
}

TEST(Count, aFolderWithEveryDocumentOnceInNaturalOrder)
{
    const Program program;
    const auto folder = documents(program);
    EXPECT_EQ(squeezed(program.output({ "count", folder })),
        head
            + "b9.txt 6 1 15 19 0 4\n"
              "b10.md 3 3 9 11 0 2\n"
              "c.html 4 0 8 10 2 1\n"
              "Total 13 4 32 40 2 7\n");
    EXPECT_FALSE(std::filesystem::exists(program.folder)); // Counting needs no library.
    EXPECT_EQ(program.output({ "count", folder, "--threads", "1" }),
        program.output({ "count", folder, "--threads", "16" }));
    // A file that is named stands where it is named, as often as it is.
    const auto text = folder + "/b9.txt";
    EXPECT_EQ(squeezed(program.output({ "count", text, text })),
        head + "b9.txt 6 1 15 19 0 4\nb9.txt 6 6 15 19 0 4\nTotal 12 7 30 38 0 8\n");
}

TEST(Count, theSwitchesOfCounting)
{
    const Program program;
    const auto folder = documents(program);
    const struct {
        Words switches;
        std::string sum; // Words and repeated words.
    } cases[] {
        { {}, "13 4" },
        { { "--include", "hidden,comments" }, "15 4" },
        { { "--no-numbers" }, "11 3" },
        { { "--no-marks" }, "12 4" },
        { { "--repetitions", "withinFile" }, "13 1" },
        { { "--repetitions", "acrossFiles" }, "13 4" },
        { { "--repetitions", "off" }, "13 0" },
    };
    for (const auto& [switches, sum] : cases) {
        Words words { "count", folder };
        words.insert(words.end(), switches.begin(), switches.end());
        const auto table = squeezed(program.output(words));
        EXPECT_NE(table.find("\nTotal " + sum + " "), std::string::npos)
            << testing::PrintToString(switches) << table;
    }
}

TEST(Count, figuresForScriptsAndTheTextItself)
{
    const Program program;
    const auto folder = documents(program), file = folder + "/Band 2/c.html";
    EXPECT_EQ(program.output({ "--json", "count", file }), R"({
  "failures": [],
  "files": [
    {
      "approximate": false,
      "byPart": {
        "body": {
          "charactersNoSpaces": 8,
          "charactersWithSpaces": 10,
          "cjkCharacters": 2,
          "segments": 1,
          "words": 4
        },
        "hidden": {
          "charactersNoSpaces": 11,
          "charactersWithSpaces": 12,
          "cjkCharacters": 0,
          "segments": 1,
          "words": 2
        }
      },
      "format": "html",
      "id": 0,
      "name": "c.html",
      "notes": [],
      "repeated": {
        "charactersNoSpaces": 0,
        "charactersWithSpaces": 0,
        "cjkCharacters": 0,
        "segments": 0,
        "words": 0
      },
      "total": {
        "charactersNoSpaces": 8,
        "charactersWithSpaces": 10,
        "cjkCharacters": 2,
        "segments": 1,
        "words": 4
      }
    }
  ],
  "repeated": {
    "charactersNoSpaces": 0,
    "charactersWithSpaces": 0,
    "cjkCharacters": 0,
    "segments": 0,
    "words": 0
  },
  "total": {
    "charactersNoSpaces": 8,
    "charactersWithSpaces": 10,
    "cjkCharacters": 2,
    "segments": 1,
    "words": 4
  }
}
)");
    const auto csv = program.output({ "count", folder, "--csv" });
    EXPECT_TRUE(csv.starts_with("File,Format,Words,Characters without spaces,")) << csv;
    for (const auto* row : { "\nb9.txt,Text,6,15,19,0,4,1,1,6,", "\nTotal,,13,32,40,2,7,4,3,13," })
        EXPECT_NE(csv.find(row), std::string::npos) << row << csv;
    EXPECT_EQ(squeezed(program.output({ "count", file, "--segments" })),
        "c.html (HTML)\n body Hi you, 日本\n hidden unseen words\n");
    // Notes stand below both, and nothing in a document controls the terminal.
    const auto pictures = program.place("pictures.rtf");
    writeFile(pictures, "{\\rtf1 a\\u27 ?[2J{\\pict 00}}");
    const std::string note = "Text in 1 picture isn’t counted.";
    expectShows(program.output({ "count", pictures }), { "pictures.rtf: " + note });
    EXPECT_EQ(squeezed(program.output({ "count", pictures, "--segments" })),
        "pictures.rtf (RTF)\n body a [2J\n Note: " + note + "\n");
}

TEST(Count, goesOnBehindFilesThatCannotBeCounted)
{
    const Program program;
    const auto folder = documents(program);
    writeFile(folder + "/a.docx", "no archive");
    const std::string damaged
        = "“a.docx” isn’t a Word (.docx) file that can be read (it isn’t a zip package).\n";
    for (const auto* form : { "--csv", "--segments" }) {
        const auto [code, output, errors] = program.run({ "count", folder, form });
        EXPECT_EQ(code, 1);
        EXPECT_EQ(errors, damaged + "One file wasn’t counted.\n");
        EXPECT_NE(output.find("c.html"), std::string::npos) << output;
        EXPECT_EQ(output.find("a.docx"), std::string::npos) << output;
    }
    ASSERT_EQ(mkfifo((folder + "/pipe.txt").c_str(), 0600), 0); // Opening it would wait for ever.
    const auto [code, output, errors] = program.run({ "--json", "count", folder + "/notes.log",
        folder + "/missing.txt", folder + "/pipe.txt", folder + "/b9.txt" });
    EXPECT_EQ(code, 1);
    EXPECT_EQ(errors,
        "“notes.log” isn’t a kind of document that can be counted.\n"
        "“missing.txt” couldn’t be opened: No such file or directory\n"
        "“pipe.txt” couldn’t be opened: not a regular file\n"
        "3 files weren’t counted.\n");
    EXPECT_NE(output.find("“missing.txt” couldn’t be opened"), std::string::npos) << output;
    EXPECT_NE(output.find("\"name\": \"b9.txt\""), std::string::npos) << output;
}

TEST(Count, refusesWhatItCannotUnderstand)
{
    const Program program;
    const auto folder = documents(program), file = folder + "/b9.txt", empty = program.place("Empty");
    std::filesystem::create_directory(empty);
    EXPECT_EQ(program.refusal({ "count", empty }), "There are no documents to count.");
    EXPECT_EQ(program.refusal({ "count", file, "--include", "body,footers" }),
        "“footers” isn’t a part of a document; there are body, headersFooters, footnotes, textBoxes, "
        "slideNotes, hidden, comments.");
    EXPECT_EQ(program.refusal({ "count", file, "--repetitions", "all" }),
        "“all” isn’t a scope of repetitions; there are withinFile, acrossFiles, off.");
}

TEST(Count, attachesToAJobWithTheSwitchesOfTheLibrary)
{
    const Program program;
    const auto folder = documents(program);
    program.output({ "library", "new" });
    program.output({ "client", "add" }, R"({"name": "Nordlicht Verlag", "defaultRate": 0.1,
        "weights": {"floor75": false, "percent": {"repetitions": 50}}})");
    program.output({ "job", "add", "--client", "Nordlicht Verlag" }, R"({"title": "Site"})");
    program.output({ "options", "edit" }, R"({"countNumbers": false})");

    writeFile(folder + "/a.docx", "no archive");
    const auto [code, output, errors] = program.run({ "job", "count", "Site", folder });
    EXPECT_EQ(code, 0); // What could be counted is attached; a note tells of the rest.
    EXPECT_EQ(errors, "“a.docx” isn’t a Word (.docx) file that can be read (it isn’t a zip package).\n");
    expectShows(output, { "b9.txt 5 1 15 19 0 4", "Total 11 3 32 40 2 7" });
    const auto analyses = program.library().jobs.at(0).analyses;
    ASSERT_EQ(analyses.size(), 1u);
    EXPECT_EQ(analyses[0].source, AnalysisSource::tamberlinCount);
    EXPECT_EQ(analyses[0].rows.size(), 3u);
    EXPECT_EQ(analyses[0].notes.size(), 1u);
    expectShows(program.output({ "job", "price", "Site" }), { "Repetitions 3 50% 1.5", "No match 8 100% 8" });

    const auto before = program.contents();
    EXPECT_EQ(program.run({ "job", "count", "Site", folder + "/a.docx" }).code, 1);
    EXPECT_EQ(program.contents(), before);
}

} // namespace
