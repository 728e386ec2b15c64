#include "Tests/CommandLine/Program.h"

using namespace Pallisande;
using Test::draft, Test::issued, Test::Program, Test::runProgram, Test::sampleLibrary, Test::Words,
    Test::writeFile;

namespace {

namespace fs = std::filesystem;

TEST(Usage, isExplainedOnRequest)
{
    const Program program;
    EXPECT_TRUE(program.output({ "--version" }).starts_with("pallisande-cli "));
    const auto all = program.output({ "--help" });
    for (const auto* verb : { "profile", "series", "options", "card", "analysis", "client", "job",
             "deadlines", "invoice", "payment", "rates", "library", "demo" }) {
        EXPECT_NE(all.find(std::string("\n  ") + verb + " "), std::string::npos) << verb;
        EXPECT_NE(program.output({ verb, "--help" }).find("Usage: pallisande-cli "), std::string::npos)
            << verb;
    }
    EXPECT_FALSE(fs::exists(program.folder));
}

TEST(Usage, thatIsWrongIsToldFromWhatCannotBeDone)
{
    const struct {
        Words arguments;
        std::string start; // Of the sentence.
    } cases[] {
        { {}, "A subcommand is required" },
        { { "clients", "list" }, "“clients” isn’t a verb here" },
        { { "client", "shows", "A" }, "“shows” isn’t a verb here" },
        { { "client" }, "A subcommand is required" },
        { { "client", "show" }, "CLIENT is required" },
        { { "client", "show", "A", "B" }, "The following argument was not expected: B" },
        { { "client", "list", "--verbose" }, "The following argument was not expected: --verbose" },
        { { "job", "status", "Job 11", "finished" }, "STATUS: " },
        { { "job", "list", "--status", "Paid" }, "--status: " },
        { { "invoice", "list", "--status", "partly" }, "--status: " },
        { { "payment", "add", "INV-2026-001" }, "--amount is required" },
        { { "payment", "add", "INV-2026-001", "100" }, "--amount is required" },
        { { "series", "set-next", "orders", "1" }, "SERIES: " },
        { { "series", "set-next", "invoices", "one" }, "Could not convert: N" },
        { { "series", "set-next", "invoices", "1", "--year", "0" }, "--year: " },
        { { "library", "--library" }, "--library: " },
    };
    const Program program;
    program.store(sampleLibrary());
    const auto before = program.contents();
    for (const auto& [arguments, start] : cases) {
        const auto [code, output, errors] = program.run(arguments, "{}");
        EXPECT_EQ(code, 2) << testing::PrintToString(arguments);
        EXPECT_EQ(output, "");
        EXPECT_TRUE(errors.starts_with(start)) << errors;
    }
    EXPECT_EQ(program.contents(), before);
}

TEST(Usage, argumentsAndRecordsThatMakeNoSenseGetASentence)
{
    const std::string read = "The record couldn’t be read: ",
                      currency = "isn’t a currency code; use three capital letters such as EUR.";
    const struct {
        std::string sentence;
        Words arguments;
        std::string input = "{}";
    } cases[] {
        { "“ten” isn’t a number.", { "payment", "add", "INV-2026-001", "--amount", "ten" } },
        { "“1,5” isn’t a number.", { "rates", "type", "USD", "EUR", "1,5" } },
        { "“1e999” isn’t a number.", { "rates", "type", "USD", "EUR", "1e999" } },
        { "“2026-02-30” isn’t a day; write it as 2026-03-09.",
            { "rates", "lookup", "USD", "EUR", "--date", "2026-02-30" } },
        { "“9.3.2026” isn’t a day; write it as 2026-03-09.",
            { "invoice", "issue", "INV-2026-001", "--date", "9.3.2026" } },
        { "Choose two different currencies.", { "rates", "type", "EUR", "EUR", "1" } },
        { "Choose two different currencies.", { "rates", "type", "Euro", "USD", "1" } },
        { "A rate must be more than zero.", { "rates", "type", "USD", "EUR", "-1" } },
        { "There is no client “Nordlicht”.", { "client", "show", "Nordlicht" } },
        { "There is no client “A00”.", { "client", "show", "A00" } }, // Four characters at least.
        { "“a0000000” fits more than one client; use its id.", { "client", "show", "a0000000" } },
        { "There is no job “B000”.", { "job", "show", "B000" } },
        { "There is no job “-1”.", { "job", "show", "--", "-1" } },
        { "There is no document “INV-2026-002”.", { "invoice", "show", "INV-2026-002" } },
        { "There is no payment “0000”.", { "payment", "remove", "INV-2026-001", "0000" } },
        { "There is no rate card “None”.", { "card", "use", "None" } },
        { "Keep at least one rate card.", { "card", "delete", "Standard rate" } },
        { read + "Not readable as JSON (syntax error at byte 0).", { "client", "add" }, "name" },
        { read + "clientID: Not a UUID: x", { "job", "add" }, R"({"clientID": "x"})" },
        { read + "The key “clientID” is missing.", { "job", "add" } },
        { read + "deadline: Not an ISO 8601 date: soon", { "job", "edit", "Job 11" },
            R"({"deadline": "soon"})" },
        { "“EURO” " + currency, { "client", "add" }, R"({"currency": "EURO"})" },
        { "“eur” " + currency, { "profile", "edit" }, R"({"homeCurrency": "eur"})" },
        { "Choose a PNG or JPEG under 2 MB for the logo.",
            { "profile", "edit", "--logo", "/proc/self/exe" } },
        { "The ECB’s file had no rates in it.", { "rates", "read", "empty.xml" } },
        { "The ECB’s rates couldn’t be read (no element found).", { "rates", "read", "cut.xml" } },
        { "“none.xml” couldn’t be opened: No such file or directory", { "rates", "read", "none.xml" } },
        { "Say with --out where the draft’s PDF goes.", { "invoice", "pdf", "DRAFT" } },
    };
    const Program program;
    auto library = sampleLibrary();
    issued(library, { 11 });
    const auto id = draft(library, { 12 }).id.toString();
    program.store(library);
    writeFile(program.place("empty.xml"), "<Cube/>");
    writeFile(program.place("cut.xml"), "<Cube>");
    for (auto [sentence, arguments, input] : cases) {
        for (auto& word : arguments)
            word = word == "DRAFT" ? id : word.ends_with(".xml") ? program.place(word) : word;
        EXPECT_EQ(program.refusal(arguments, input), sentence);
    }
}

TEST(Usage, theFolderIsTheOneNamedElseTheOneOfTheEnvironment)
{
    Program program;
    const fs::path named = program.place("named"), data = program.place("data");
    program.output({ "library", "new", "--library", named.string() });
    EXPECT_TRUE(fs::exists(named / LibraryStore::documentName));
    EXPECT_FALSE(fs::exists(program.folder));
    program.folder.clear();
    program.variables.push_back("XDG_DATA_HOME=" + data.string());
    const auto told = program.output({ "library", "new" });
    EXPECT_EQ(told, "The library is in “" + (data / "Pallisande").string() + "”.\n");
    program.variables.pop_back();
    program.folder = program.place("gone");
    EXPECT_EQ(program.refusal({ "client", "list" }),
        "Pallisande couldn’t open its library folder: No such file or directory");
    program.folder = "/dev/null/library";
    EXPECT_EQ(program.refusal({ "library", "new" }),
        "Pallisande couldn’t open its library folder: Not a directory");
}

TEST(Usage, anOutputThatIsLostIsNoSuccess)
{
    const Program program;
    const auto [code, output, errors]
        = runProgram("/bin/sh", { "-c", "exec \"$0\" --help >/dev/full", program.program.string() }, "");
    EXPECT_EQ(code, 1);
    EXPECT_EQ(errors, "The output couldn’t be written.\n");
}

} // namespace
