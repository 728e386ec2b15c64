#include "PallisandeKit/Ledger/Ledger.h"
#include "Tests/CommandLine/Program.h"

#include <sys/stat.h>

#include <functional>

using namespace Pallisande;
using Test::credit, Test::decimal, Test::draft, Test::fileText, Test::issue, Test::issued, Test::pay,
    Test::Program;
using Test::sampleLibrary, Test::Words, Test::writeFile;

namespace {

namespace fs = std::filesystem;

const std::string number = "INV-2026-001";

void issueFirst(Library& library) { issued(library, { 11 }); }
void draftFirst(Library& library) { draft(library, { 11 }); }

// A draft with this one amount on it; 0 makes a line too.
void draftOf(Library& library, std::string_view amount)
{
    auto& invoice = draft(library, { 11 });
    invoice.lines = { { .id = ::Test::id(700), .title = "Work", .amount = decimal(amount) } };
}

// An invoice of 119.00 and a draft credit note with this net amount.
void draftCredit(Library& library, std::string_view amount)
{
    auto& note
        = Ledger::makeCreditNote(library, issued(library, { 11 }).id, ::Test::moment(), ::Test::labels());
    note.lines = { { .id = ::Test::id(700), .title = "Credit", .amount = decimal(amount) } };
}

TEST(Refusals, ofTheLedgerArePrintedAndChangeNothing)
{
    const std::string locked = number + " is issued and can’t be changed. Make a credit note to correct it.";
    const std::string gone = "That item no longer exists.", stranger = "A0000000-0000-4000-8000-0000000000FF";
    const std::string tooMuch
        = "Numbers were already issued in this series, so it continues from the last one.";
    const struct {
        std::string sentence;
        std::function<void(Library&)> prepare;
        Words arguments; // “DRAFT” stands for the id of the last draft.
        std::string input = "{}";
    } cases[] {
        { locked, issueFirst, { "invoice", "edit", number }, R"({"notes": "later"})" },
        { locked, issueFirst, { "invoice", "delete", number } },
        { "This job is on INV-2026-001.", issueFirst, { "invoice", "draft", "Job 12", "Job 11" } },
        { "This job is on INV-2026-001.", issueFirst, { "job", "delete", "Job 11" } },
        { "This job is on a draft invoice.", draftFirst, { "job", "delete", "Job 11" } },
        { "Harbor Books has jobs or invoices. Archive the client instead.", {},
            { "client", "delete", "Harbor Books" } },
        { "The number INV-2026-001 is already used.",
            [](Library& library) {
                issueFirst(library);
                draft(library, { 12 });
                library.profile.invoiceSeries.prefix = "INV-2026-";
                library.profile.invoiceSeries.includeYear = false;
            },
            { "invoice", "issue", "DRAFT", "--date", "2026-03-09" } },
        { "A job can’t go from Delivered to Quote by hand.", {}, { "job", "status", "Job 11", "quote" } },
        { "A job can’t go from Delivered to Paid by hand.", {}, { "job", "status", "Job 11", "paid" } },
        { "A job can’t go from Invoiced to In progress by hand.", issueFirst,
            { "job", "status", "Job 11", "inProgress" } },
        { "A job can’t go from Paid to Cancelled by hand.",
            [](Library& library) { pay(library, issued(library, { 11 }).id, "119"); },
            { "job", "status", "Job 11", "cancelled" } },
        { "INV-2026-001 is already fully credited.",
            [](Library& library) { credit(library, issued(library, { 11 }).id, 100); },
            { "invoice", "credit", number } },
        { "Only a draft can be changed.", issueFirst, { "invoice", "issue", number } },
        { "Add at least one line before issuing.",
            [](Library& library) { draft(library, { 11 }).lines.clear(); }, { "invoice", "issue", "DRAFT" } },
        { gone, {}, { "client", "show", stranger } },
        { gone, {}, { "job", "price", stranger } },
        { gone, {}, { "invoice", "draft", stranger } },
        { gone, issueFirst, { "payment", "remove", number, stranger } },
        { gone, {}, { "job", "add" }, R"({"clientID": ")" + stranger + R"("})" },
        { "An invoice holds jobs for one client.", {}, { "invoice", "draft", "Job 11", "Job 21" } },
        { "Nothing is left to credit on this invoice.",
            [](Library& library) {
                draftOf(library, "0");
                issue(library, library.invoices.back().id);
            },
            { "invoice", "credit", number } },
        { "An invoice’s total can’t be below zero; make a credit note instead.",
            [](Library& library) { draftOf(library, "-0.01"); }, { "invoice", "issue", "DRAFT" } },
        { "A credit note’s total must be below zero.", [](Library& library) { draftCredit(library, "0"); },
            { "invoice", "issue", "DRAFT" } },
        { "The credit note is for more than is left on INV-2026-001.",
            [](Library& library) { draftCredit(library, "-100.01"); }, { "invoice", "issue", "DRAFT" } },
        { "A draft credit note for INV-2026-001 is already open.",
            [](Library& library) { draftCredit(library, "-1"); }, { "invoice", "credit", number } },
        { "Payments go on issued invoices.", draftFirst, { "payment", "add", "DRAFT", "--amount", "1" } },
        { "A payment must be more than zero.", issueFirst, { "payment", "add", number, "--amount", "0" } },
        { "A payment must be more than zero.", issueFirst, { "payment", "add", number, "--amount", "-5" } },
        { "Numbers start at 1.", {}, { "series", "set-next", "creditNotes", "0" } },
        { tooMuch, issueFirst, { "series", "set-next", "invoices", "7", "--year", "2026" } },
        { "The next number of a series is set with “series set-next”.", issueFirst, { "profile", "edit" },
            R"({"invoiceSeries": {"next": {"2026": 7}}})" },
    };
    const Program program;
    for (const auto& [sentence, prepare, arguments, input] : cases) {
        SCOPED_TRACE(testing::PrintToString(arguments));
        auto library = sampleLibrary();
        if (prepare)
            prepare(library);
        auto words = arguments;
        for (const auto& invoice : library.invoices) {
            if (!invoice.isIssued())
                std::replace(words.begin(), words.end(), std::string("DRAFT"), invoice.id.toString());
        }
        program.store(library);
        EXPECT_EQ(program.refusal(words, input), sentence);
    }
}

TEST(Refusals, ofReportsArePrintedAndAttachNothing)
{
    const Program program;
    program.store(sampleLibrary());
    const std::string spreadsheet
        = "Pallisande reads spreadsheets saved as CSV. Open “{}” in Excel or Numbers, export it as "
          "CSV, and import that file.";
    const std::string page
        = "“{}” is a report for reading, not for importing. In Trados save the analysis as XML; in memoQ "
          "or Phrase export it as CSV.";
    const std::string noReport
        = "“{}” isn’t a Trados Studio analysis report (no “analyse” section). In Trados, open Reports, "
          "choose the Analyze Files report and save it as XML.";
    const std::string absurd = "“{}” states counts that are too large to be right.";
    const auto counts = [](const std::string& words) {
        return "<task><file name='a'><analyse><new words='" + words + "'/><exact words='" + words
            + "'/></analyse></file></task>";
    };
    const struct {
        std::string name, text, sentence;
    } cases[] {
        { "a.xlsx", "", spreadsheet },
        { "A.XLS", "<task/>", spreadsheet },
        { "a.b.xlsm", "", spreadsheet },
        { "a.htm", "<html/>", page },
        { "a.HTML", "", page },
        { "a.mht", "", page },
        { "a.mhtml", "", page },
        { "a.pdf", "<task/>",
            "A PDF report can’t be imported. Export the analysis as XML (Trados), CSV (memoQ, Phrase) or "
            "JSON (Phrase)." },
        { "empty.xml", "", "“{}” isn’t readable XML (no element found)." },
        { "letter.xml", "Dear Sir", "“{}” isn’t readable XML (syntax error)." },
        { "cut.XML", "<task><file>", "“{}” isn’t readable XML (no element found)." },
        { "latin.xml", "<?xml version='1.0' encoding='utf-8'?><task name='\xE9t\xE9'/>",
            "“{}” isn’t readable XML (not well-formed (invalid token))." },
        { "wide.xml", "<?xml version='1.0' encoding='utf-16'?><task/>",
            "“{}” isn’t readable XML (encoding specified in XML declaration is incorrect)." },
        { "odd.xml", "<?xml version='1.0' encoding='x-unheard-of'?><task/>",
            "“{}” isn’t readable XML (unknown encoding)." },
        { "sdl.sdlxml", "<html/>", noReport },
        { "sniffed", " \xEF\xBB\xBF\n<task><file name='analyse'/></task>",
            "“{}” isn’t readable XML (not well-formed (invalid token))." },
        { "page.txt", "<html><body/></html>", noReport },
        { "totals.xml", "<task><batchTotal><analyse><new words='1'/></analyse></batchTotal></task>",
            "“{}” has no files in its analysis." },
        { "large.xml", counts("9007199254740991"), absurd },
        { "larger.xml", counts("99999999999999999999999"), absurd },
        { "below.xml", counts("-9223372036854775808"), absurd },
    };
    const auto expectRefused = [&](const fs::path& file, std::string sentence) {
        SCOPED_TRACE(file);
        if (const auto place = sentence.find("{}"); place != std::string::npos)
            sentence.replace(place, 2, file.filename().string());
        EXPECT_EQ(program.refusal({ "analysis", file.string(), "--attach", "Job 11" }), sentence);
        const auto [code, output, errors] = program.run({ "--json", "analysis", file.string() });
        EXPECT_EQ(code, 1);
        EXPECT_EQ(errors, sentence + "\n");
        EXPECT_EQ(output, Base::toJson(std::map<std::string, std::string> { { "failed", sentence } }));
    };
    for (const auto& [name, text, sentence] : cases) {
        writeFile(program.place(name), text);
        expectRefused(program.place(name), sentence);
    }
    fs::create_directory(program.place("folder.xml"));
    mkfifo(program.place("pipe.xml").c_str(), 0600);
    for (const auto* name : { "folder.xml", "pipe.xml" })
        expectRefused(program.place(name), "“{}” couldn’t be opened: not a regular file");
    expectRefused(program.place("missing.xml"), "“{}” couldn’t be opened: No such file or directory");
    writeFile(program.place("limit.xml"), "<task/>");
    fs::resize_file(program.place("limit.xml"), 52'428'800); // Zeros are added, which no XML ends with.
    expectRefused(program.place("limit.xml"), "“{}” isn’t readable XML (not well-formed (invalid token)).");
    fs::resize_file(program.place("limit.xml"), 52'428'801);
    expectRefused(
        program.place("limit.xml"), "“{}” is larger than 50 MB, which is too big for an analysis report.");
    const fs::path hostile = program.place("evil\x1B[2J\xC2\x9B.xml"); // Would clear the terminal.
    EXPECT_EQ(program.refusal({ "analysis", hostile.string() }),
        "“evil [2J .xml” couldn’t be opened: No such file or directory");
}

TEST(Refusals, aNewerLibraryIsNeitherReadNorWritten)
{
    const Program program;
    fs::create_directory(program.folder);
    for (const auto* document : { R"({"version": 2})", R"({"version": 3, "jobs": "in another form"})" }) {
        writeFile(program.document(), document);
        for (const auto& arguments : { Words { "client", "list" }, { "library", "check" },
                 { "client", "add" }, { "library", "new" }, { "library", "new", "--start-anew" },
                 { "library", "backup" }, { "library", "restore", program.document() },
                 { "library", "move", program.place("elsewhere") } })
            EXPECT_EQ(program.refusal(arguments, "{}"),
                "Your library was saved by a newer version of Pallisande. Update Pallisande to open "
                "it; nothing was changed.");
    }
    EXPECT_FALSE(fs::exists(program.place("elsewhere")));
}

TEST(Refusals, aDamagedLibraryIsLeftAloneByReadersAndKeptAsideByWriters)
{
    const auto whole = LibraryStore::encode(sampleLibrary());
    const std::string start
        = "Your library couldn’t be read, so Pallisande started a new one. The old file was kept as “";
    const std::string rest = "”, and the dated copies are in the Backups folder.";
    Program program;
    int place = 0;
    for (const auto& document :
        { std::string(), std::string("no library"), std::string(4096, '\0'),
            whole.substr(0, whole.size() / 2), whole + "}",
            std::string(R"({"jobs": [{"title": "of nobody"}]})"),
            std::string(R"({"version": 1, "profile": 3})"),
            std::string(
                R"({"jobs": [{"clientID": "A0000000-0000-4000-8000-000000000001", "targetUnits": 9223372036854775807}]})"),
            std::string(100'000, '[') }) {
        SCOPED_TRACE(document.substr(0, 80));
        program.folder = program.place("library " + std::to_string(++place));
        fs::create_directory(program.folder);
        writeFile(program.document(), document);
        const auto old = fs::file_time_type::clock::now() - std::chrono::minutes(1);
        fs::last_write_time(program.document(), old); // A fresh one is read again for a while.
        EXPECT_TRUE(program.refusal({ "job", "list" }).starts_with("Your library couldn’t be opened: "));

        const bool restores = place % 2 == 0;
        writeFile(program.place("copy.json"), whole);
        const auto told = restores
            ? program.remark({ "library", "restore", program.place("copy.json") })
            : program.remark({ "client", "add" }, R"({"name": "First of the new ones"})");
        const bool isTold = told.starts_with(start) && told.ends_with(rest);
        ASSERT_TRUE(isTold) << told;
        const auto name = told.substr(start.size(), told.size() - start.size() - rest.size());
        EXPECT_TRUE(name.starts_with("Pallisande Library (damaged 20") && name.ends_with("Z).json")) << name;
        EXPECT_EQ(fileText(program.folder / name), document);
        EXPECT_EQ(
            program.library().clients.front().name, restores ? "Nordlicht Verlag" : "First of the new ones");
    }
    writeFile(program.document(), "");
    const auto [code, output, errors] = program.run({ "library", "new" });
    EXPECT_EQ(code, 1);
    EXPECT_TRUE(errors.starts_with(start)
        && errors.ends_with("“" + program.folder.string() + "” already holds a library.\n"))
        << errors;
}

TEST(Refusals, anEmptiedFolderOfALibraryWaitsForItsUser)
{
    const std::string missing = "Your library couldn’t be opened: the library file is missing";
    const Program program;
    program.store(sampleLibrary());
    const auto backup = LibraryStore(program.folder).backups().at(0);
    fs::remove(program.document());
    for (const auto& arguments :
        { Words { "client", "list" }, { "client", "add" }, { "library", "new" }, { "library", "recover" } })
        EXPECT_EQ(program.refusal(arguments, "{}"), missing);
    EXPECT_EQ(program.refusal({ "library", "restore", "nowhere.json" }),
        "“nowhere.json” couldn’t be restored: No such file or directory");
    writeFile(program.place("newer.json"), R"({"version": 2})");
    EXPECT_EQ(program.refusal({ "library", "restore", program.place("newer.json") }),
        "“newer.json” couldn’t be restored: This library was saved by a newer version of Pallisande.");
    EXPECT_EQ(program.remark({ "library", "restore", backup.string() }), "");
    EXPECT_EQ(program.library(), sampleLibrary());
    fs::remove(program.document());
    EXPECT_EQ(program.output({ "library", "new", "--start-anew" }),
        "The library is in “" + program.folder.string() + "”.\n");
    EXPECT_TRUE(program.library().clients.empty());
    EXPECT_EQ(program.refusal({ "library", "new", "--start-anew" }),
        "“" + program.folder.string() + "” already holds a library.");
}

TEST(Refusals, whileAnotherPallisandeHasTheFolderItIsOnlyRead)
{
    auto library = sampleLibrary();
    issueFirst(library);
    const Program program;
    program.store(library);
    writeFile(program.place("report.xml"), "<task><file><analyse><new words='5'/></analyse></file></task>");
    writeFile(
        program.place("rates.xml"), R"(<Cube time="2026-03-06"><Cube currency="USD" rate="1.1"/></Cube>)");
    const std::string client = "Nordlicht Verlag", job = "Job 12", card = "Standard rate";
    const Words writing[] { { "profile", "edit" }, { "series", "set-next", "quotes", "3" },
        { "options", "edit" }, { "card", "add" }, { "card", "edit", card }, { "card", "delete", card },
        { "card", "use", card }, { "analysis", program.place("report.xml"), "--attach", job },
        { "client", "add" }, { "client", "edit", client }, { "client", "archive", client },
        { "client", "delete", client }, { "job", "add", "--client", client }, { "job", "edit", job },
        { "job", "delete", job }, { "job", "status", job, "cancelled" }, { "job", "quote", job },
        { "invoice", "draft", job }, { "invoice", "edit", number }, { "invoice", "delete", number },
        { "invoice", "issue", number }, { "invoice", "credit", number }, { "invoice", "rate", number },
        { "payment", "add", number, "--amount", "1" }, { "payment", "edit", number, "A000" },
        { "payment", "remove", number, "A000" }, { "rates", "read", program.place("rates.xml") },
        { "rates", "type", "USD", "EUR", "2" }, { "library", "new" }, { "library", "backup" },
        { "library", "restore", program.document() }, { "library", "recover" },
        { "library", "move", program.place("elsewhere") } };
    const Words reading[] { { "profile", "show" }, { "series", "show" }, { "options", "show" },
        { "card", "list" }, { "card", "show", card }, { "analysis", program.place("report.xml") },
        { "client", "list" }, { "client", "show", client }, { "job", "list" }, { "job", "show", job },
        { "job", "price", job }, { "deadlines" }, { "invoice", "list" }, { "invoice", "show", number },
        { "invoice", "check" }, { "rates", "lookup", "EUR", "EUR" } };
    {
        const auto holder = Base::Folder::open(program.folder);
        ASSERT_TRUE(holder.lock());
        for (const auto& arguments : writing)
            EXPECT_EQ(program.refusal(arguments, "{}"),
                "Your library couldn’t be opened: another Pallisande is using it");
        for (const auto& arguments : reading) {
            EXPECT_NE(program.output(arguments), "");
            Words asJson { "--json" };
            asJson.insert(asJson.end(), arguments.begin(), arguments.end());
            EXPECT_TRUE(program.output(asJson).find_first_of("{[") == 0) << testing::PrintToString(asJson);
        }
    }
    EXPECT_FALSE(fs::exists(program.place("elsewhere")));
    program.output({ "client", "archive", client });
    EXPECT_TRUE(program.library().clients.front().archived);
}

TEST(Refusals, nothingIsIssuedWithoutAProgramThatDraws)
{
    Program program;
    auto library = sampleLibrary();
    const auto id = draft(library, { 11 }).id.toString();
    program.store(library);
    fs::copy_file(program.program, program.place("alone"));
    program.program = program.place("alone");
    EXPECT_EQ(program.refusal({ "invoice", "issue", id }),
        "The invoice wasn’t issued, because its PDF couldn’t be stored: the program "
        "“pallisande-print” couldn’t be started: No such file or directory");
    EXPECT_EQ(program.refusal({ "invoice", "pdf", id, "--out", program.place("draft.pdf") })
                  .find("The PDF couldn’t be saved: "),
        0u);
    EXPECT_EQ(program.library(), library);
    issueFirst(library = sampleLibrary());
    program.store(library);
    EXPECT_EQ(program.refusal({ "invoice", "pdf", number }),
        "The stored PDF for INV-2026-001 is missing from the library folder. Restore it from a backup of the "
        "folder; Pallisande doesn’t make a new "
        "one, so the issued document stays as issued.");
}

} // namespace
