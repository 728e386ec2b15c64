#include "Base/Text.h"
#include "Tests/CommandLine/Program.h"

#include <regex>

using namespace Pallisande;
using Test::decimal, Test::expectShows, Test::fileText, Test::Program, Test::runProgram, Test::sampleLibrary;
using Test::squeezed, Test::writeFile;

namespace {

namespace fs = std::filesystem;

const std::string sound = "Numbering checked: no gaps, no repeats.";

constexpr std::string_view report = R"(<task name="analyse"><taskInfo><language name="English"/></taskInfo>
<file name="Band 1.docx"><analyse>
<perfect words="100" segments="9" characters="600"/><inContextExact words="200" segments="20" characters="1200"/>
<exact words="300" segments="30" characters="1800"/><repeated words="120" segments="11" characters="700"/>
<fuzzy min="95" max="99" words="80" segments="8" characters="480"/>
<fuzzy min="85" max="94" words="70" segments="7" characters="420"/>
<fuzzy min="75" max="84" words="60" segments="6" characters="360"/>
<fuzzy min="50" max="74" words="50" segments="5" characters="300"/>
<new words="1000" segments="90" characters="6000"/><total words="1980" segments="186" characters="11860"/>
</analyse></file>
<file name="Band 2.docx"><analyse>
<crossFileRepeated words="47" segments="4" characters="280"/><new words="333" segments="30" characters="2000"/>
<total words="380" segments="34" characters="2280"/>
</analyse></file>
<batchTotal><analyse><total words="2360" segments="220" characters="14140"/></analyse></batchTotal></task>)";

constexpr std::string_view client = R"({"name": "Nordlicht Verlag", "address": "Hafenweg 3\n20457 Hamburg",
    "defaultRate": 0.12, "rates": [{"pair": {"source": "de", "target": "en"}, "rate": 0.135}],
    "weights": {"floor75": false, "percent": {"perfect": 10, "context": 20, "repetitions": 25, "exact": 30,
        "fuzzy95": 60, "fuzzy85": 70, "fuzzy75": 80, "fuzzy50": 100, "noMatch": 100}},
    "minimumFee": 40, "taxPercent": 19, "taxLabel": "VAT"})";

void addBusiness(const Program& program)
{
    program.output({ "library", "new" });
    program.output({ "profile", "edit" }, R"({"sender": {"name": "Mira Lindqvist"}})");
    program.output({ "client", "add" }, client);
}

// A delivered job of 100.00 before tax.
void addJob(const Program& program, const std::string& title, std::string_view customer = "Nordlicht Verlag")
{
    program.output({ "job", "add", "--client", std::string(customer) },
        R"({"status": "inProgress", "title": ")" + title
            + R"(", "extras": [{"title": "Review", "quantity": 2.5, "unit": "hours", "unitPrice": 40}]})");
    program.output({ "job", "status", title, "delivered" });
}

std::string draft(const Program& program, const std::string& job)
{
    return program.record<Invoice>({ "invoice", "draft", job }).id.toString();
}

std::string textOfPDF(const fs::path& file)
{
    return squeezed(runProgram("/usr/bin/pdftotext", { "-layout", file, "-" }, "").output);
}

TEST(Journeys, fromTheFirstStartToAnInvoiceThatIsCreditedAndPaid)
{
    const Program program;
    EXPECT_EQ(program.output({ "library", "new" }), "The library is in “" + program.folder.string() + "”.\n");
    EXPECT_EQ(program.record<Profile>({ "profile", "show" }), Library::makeNew().profile);
    program.output(
        { "profile", "edit" }, R"({"sender": {"name": "Mira Lindqvist", "taxID": "DE299999999"}})");
    const auto added = program.record<Client>({ "client", "add" }, client);
    EXPECT_EQ(program.library().clients, std::vector { added });
    expectShows(program.output({ "client", "list" }),
        { added.id.toString().substr(0, 8) + " Nordlicht Verlag 0.12 EUR word 19%" });

    program.output({ "job", "add", "--client", "Nordlicht Verlag" },
        R"({"title": "Annual report", "pair": {"source": "DE ", "target": "en"}, "surchargePercent": 10, "extras":
            [{"title": "Review", "quantity": 1.5, "unit": "hours", "unitPrice": 45}]})");
    const auto file = program.place("Analyze Files.xml");
    writeFile(file, report);
    expectShows(program.output({ "analysis", file, "--attach", "Annual report" }),
        { "Band 1.docx 100 200 120 300 80 70 60 50 1000 1980 1980",
            "Band 2.docx 0 0 47 0 0 0 0 0 333 380 380",
            "Whole report 100 200 167 300 80 70 60 50 1333 2360 2360",
            "Note: “Cross-file repetitions” (47 words) is counted with Repetitions." });
    const auto job = program.record<Job>({ "job", "show", "Annual report" });
    EXPECT_EQ(program.library().jobs, std::vector { job });
    EXPECT_EQ(fileText(program.folder / job.analyses.at(0).storedCopy.value()), report);

    // 10 + 40 + 41.75 + 90 + 48 + 49 + 48 + 50 + 1333 weighted words at 0.135 are 230.81625.
    expectShows(program.output({ "job", "price", "Annual report" }),
        { "Repetitions 167 25% 41.75", "No match 1333 100% 1333", "Sum 2360 1709.75",
            "1709.75 × 0.135 230.82 EUR", "Surcharge 10% 23.08 EUR", "Review, 1.5 hours × 45.00 67.50 EUR",
            "Subtotal 321.40 EUR", "VAT 19% 61.07 EUR", "Total 382.47 EUR" });
    EXPECT_NE(program.output({ "--json", "job", "price", "Annual report" }).find("\"total\": 382.47,"),
        std::string::npos);
    for (const auto* status : { "inProgress", "delivered" })
        program.output({ "job", "status", "Annual report", status });

    const auto id = draft(program, "Annual report");
    const auto edited = program.record<Invoice>(
        { "invoice", "edit", id }, R"({"notes": "Order 17/B", "dueDate": "2099-12-31T12:00:00Z"})");
    EXPECT_EQ(program.library().invoices, std::vector { edited });
    expectShows(program.output({ "invoice", "issue", id, "--date", "2026-03-09" }),
        { "Invoice: INV-2026-001", "Status: Open", "Issued: 2026-03-09", "Due: 2099-12-31",
            "Subtotal: 321.40 EUR", "VAT 19%: 61.07 EUR", "Total: 382.47 EUR", "Still due: 382.47 EUR",
            "PDF: Invoices/INV-2026-001.pdf" });
    const fs::path stored = program.folder / "Invoices/INV-2026-001.pdf", copy = program.place("copy.pdf");
    EXPECT_EQ(program.output({ "invoice", "pdf", "INV-2026-001" }), stored.string() + "\n");
    program.output({ "invoice", "pdf", "INV-2026-001", "--out", copy.string() });
    EXPECT_EQ(fileText(copy), fileText(stored));

    EXPECT_EQ(program.output({ "payment", "add", "INV-2026-001", "--amount", "200", "--date", "2026-04-01" }),
        "200.00 EUR received on 2026-04-01; INV-2026-001 is Part paid, 182.47 EUR still due.\n");
    const auto note = program.record<Invoice>({ "invoice", "credit", "INV-2026-001" }).id.toString();
    program.output({ "invoice", "edit", note },
        R"({"lines": [{"title": "Review", "quantity": -1.5, "unit": "hours", "unitPrice": 45, "amount": -67.5}]})");
    expectShows(program.output({ "invoice", "issue", note, "--date", "2026-04-02" }),
        { "Credit note: CN-2026-001", "Corrects: INV-2026-001", "VAT 19%: -12.83 EUR", "Total: -80.33 EUR" });
    const auto start
        = id.substr(0, 8) + " INV-2026-001 Invoice Nordlicht Verlag 2026-03-09 2099-12-31 382.47 EUR ";
    expectShows(program.output({ "invoice", "list" }),
        { start + "102.14 EUR Part paid",
            note.substr(0, 8)
                + " CN-2026-001 Credit note Nordlicht Verlag 2026-04-02 – -80.33 EUR Credit note" });
    const auto payment = program.record<Payment>({ "payment", "add", "INV-2026-001", "--amount", "102.15" });
    EXPECT_EQ(program.record<Job>({ "job", "show", "Annual report" }).status, JobStatus::paid);
    const auto lowered = Base::asciiLowered(payment.id.toString().substr(0, 13));
    program.output(
        { "payment", "edit", "INV-2026-001", lowered, "--amount", "102.13", "--note", "fee kept" });
    expectShows(
        program.output({ "invoice", "list", "--status", "partlyPaid" }), { start + "0.01 EUR Part paid" });
    program.output({ "payment", "remove", "INV-2026-001", lowered });
    program.output({ "payment", "add", "INV-2026-001", "--amount", "102.14", "--date", "2026-04-03" });
    expectShows(program.output({ "invoice", "list" }), { start + "0.00 EUR Paid" });

    addJob(program, "Old job");
    program.output({ "invoice", "issue", draft(program, "Old job"), "--date", "2025-03-10" });
    const auto overdue = program.record<std::vector<Invoice>>({ "invoice", "list", "--status", "overdue" });
    ASSERT_EQ(overdue.size(), 1u);
    EXPECT_EQ(overdue[0].number, "INV-2025-001");
    EXPECT_EQ(program.record<std::vector<Invoice>>({ "invoice", "list" }), program.library().invoices);
    EXPECT_EQ(program.output({ "invoice", "check" }), sound + "\n");
    EXPECT_EQ(program.library().profile.invoiceSeries.next,
        (std::map<std::int64_t, std::int64_t> { { 2025, 2 }, { 2026, 2 } }));
    EXPECT_EQ(
        program.output({ "library", "check" }), "Clients: 1, jobs: 2, issued documents: 3.\n" + sound + "\n");

    if (!fs::exists("/usr/bin/pdftotext"))
        GTEST_SKIP() << "no program to read PDFs";
    const auto invoice = textOfPDF(stored), credit = textOfPDF(program.folder / "Invoices/CN-2026-001.pdf");
    for (const auto* text : { "INV-2026-001", "Mira Lindqvist", "Nordlicht Verlag", "20457 Hamburg",
             "Order 17/B", "230.82", "23.08", "67.50", "321.40", "61.07", "382.47" })
        EXPECT_NE(invoice.find(text), std::string::npos) << text << " in\n" << invoice;
    for (const auto* text : { "CN-2026-001", "INV-2026-001", "67.50", "12.83", "80.33" })
        EXPECT_NE(credit.find(text), std::string::npos) << text << " in\n" << credit;
}

TEST(Journeys, theBoardShowsJobsByTheirDeadlineAndWhatWaitsForAnInvoice)
{
    const Program program;
    addBusiness(program);
    EXPECT_EQ(program.output({ "deadlines" }), "Nothing is due.\n");
    const auto add = [&](const std::string& title, const std::string& more) {
        program.output(
            { "job", "add", "--client", "Nordlicht Verlag" }, R"({"title": ")" + title + "\"" + more + "}");
    };
    add("Late", R"(, "deadline": "2020-07-15T22:30:00Z")");
    add("Far", R"(, "deadline": "2099-01-01T11:00:00Z")");
    add("Open", "");
    add("Dropped", R"(, "status": "cancelled")");
    add("Done", R"(, "status": "delivered")");
    // The board without the ids and the heads of its tables.
    const auto board
        = std::regex_replace(program.output({ "deadlines" }), std::regex("Id .*\n|[0-9A-F]{8} "), "");
    EXPECT_EQ(squeezed(std::regex_replace(board, std::regex(" Verlag +"), ": ")),
        "Overdue\n Late Nordlicht: 2020-07-16 00:30 Europe/Berlin\n\nLater\n Far Nordlicht: 2099-01-01 12:00 "
        "Europe/Berlin\n\n"
        "No deadline\n Open Nordlicht: –\n\nDelivered, not invoiced\n Done Nordlicht: –\n");
}

TEST(Journeys, ratesAreReadTypedAndLookedUp)
{
    const Program program;
    addBusiness(program);
    const auto file = program.place("eurofxref.xml");
    writeFile(file, R"(<gesmes:Envelope xmlns:gesmes="x"><Cube>
        <Cube time="2026-03-06"><Cube currency="USD" rate="1.1"/><Cube currency="GBP" rate="0.85"/></Cube>
        <Cube time="2026-03-05"><Cube currency="USD" rate="1.2"/></Cube></Cube></gesmes:Envelope>)");
    EXPECT_EQ(program.output({ "rates", "read", file }),
        "2 days were read; the rates now reach from 2026-03-05 to 2026-03-06.\n");
    EXPECT_EQ(
        program.output({ "rates", "type", "GBP", "EUR", "1.2", "--date", "2026-03-07", "--note", "bank" }),
        "1 GBP = 1.2 EUR, typed: bank, 2026-03-07\n");
    const struct {
        std::string from, to, day, rate;
    } cases[] {
        { "USD", "GBP", "2026-03-08", "1 USD = 0.772727 GBP, ECB, 2026-03-06" }, // A Sunday takes Friday's.
        { "EUR", "USD", "2026-03-05", "1 EUR = 1.2 USD, ECB, 2026-03-05" },
        { "GBP", "EUR", "2026-03-06", "1 GBP = 1.176471 EUR, ECB, 2026-03-06" },
        { "EUR", "GBP", "2026-03-07", "1 EUR = 0.833333 GBP, typed: bank, 2026-03-07" },
        { "CHF", "CHF", "2026-01-02", "1 CHF = 1 CHF, typed: same currency, 2026-01-02" },
    };
    for (const auto& [from, to, day, rate] : cases)
        EXPECT_EQ(program.output({ "rates", "lookup", from, to, "--date", day }), rate + "\n");
    EXPECT_EQ(program.refusal({ "rates", "lookup", "EUR", "USD", "--date", "2026-03-04" }),
        "No rate for this day.");
    EXPECT_EQ(program.record<ExchangeRate>({ "rates", "lookup", "GBP", "EUR" }),
        program.library().rates.typed.at(0));

    const std::string none = "No exchange rate for this day yet. You can add one later from the invoice.";
    program.output({ "client", "add" }, R"({"name": "Harbor", "currency": "GBP"})");
    addJob(program, "Log", "Harbor");
    expectShows(program.output({ "invoice", "issue", draft(program, "Log"), "--date", "2026-03-04" }),
        { "Exchange rate: " + none });
    EXPECT_EQ(program.refusal({ "invoice", "rate", "INV-2026-001" }), none);
    expectShows(program.output({ "invoice", "rate", "INV-2026-001", "1.15", "--note", "tax office" }),
        { "Exchange rate: 1 GBP = 1.15 EUR (tax office, 2026-03-04)" });
    program.output({ "payment", "add", "INV-2026-001", "--amount", "100", "--date", "2026-03-07",
        "--received-home", "118.5" });
    const auto payment = program.library().invoices.at(0).payments.at(0);
    EXPECT_EQ(payment.rate->rate, decimal("1.2"));
    EXPECT_EQ(payment.receivedHome, decimal("118.5"));
    program.output({ "library", "check" });
}

TEST(Journeys, whatWasIssuedAfterABackupIsTakenOverWhenItIsRestored)
{
    const Program program;
    addBusiness(program);
    addJob(program, "First");
    addJob(program, "Second");
    const auto into = program.place("copies");
    const auto told = program.output({ "library", "backup", "--into", into });
    const auto backup = fs::directory_iterator(into)->path();
    EXPECT_EQ(told, "Backed up as “" + backup.filename().string() + "”.\n");
    EXPECT_EQ(fileText(backup), fileText(program.document()));
    const auto early = draft(program, "First");
    program.output({ "invoice", "issue", early, "--date", "2026-03-09" });
    const auto issued = program.library();

    EXPECT_EQ(program.output({ "library", "restore", backup.string() }),
        "“" + backup.filename().string() + "” is the library now.\n");
    EXPECT_EQ(fileText(program.document()), fileText(backup));
    EXPECT_EQ(LibraryStore(program.folder).backups().size(), 2u); // The day's, and what was replaced.
    const auto [code, output, errors] = program.run({ "library", "check" });
    EXPECT_EQ(code, 1);
    EXPECT_EQ(errors, "The library needs a look.\n");
    expectShows(output,
        { "The PDF of INV-2026-001 has no record in the library, but the issue log knows it; it can be taken "
          "over." });
    const auto second = draft(program, "Second");
    EXPECT_EQ(program.refusal({ "invoice", "issue", second, "--date", "2026-03-10" }),
        "The invoice wasn’t issued, because its PDF couldn’t be stored: A PDF for INV-2026-001 is already "
        "stored; an issued PDF is never replaced.");
    EXPECT_EQ(program.output({ "library", "recover" }), "INV-2026-001\n");
    EXPECT_EQ(
        program.output({ "library", "recover" }), "The library holds every document that was issued.\n");
    EXPECT_EQ(*program.library().invoice(issued.invoices[0].id), issued.invoices[0]);
    expectShows(
        program.output({ "invoice", "issue", second, "--date", "2026-03-10" }), { "Invoice: INV-2026-002" });
    program.output({ "library", "check" });
}

TEST(Journeys, aLibraryMovesWithItsFilesOrAdoptsTheOneThatIsThere)
{
    Program program;
    addBusiness(program);
    addJob(program, "First");
    const auto file = program.place("report.xml");
    writeFile(file, report);
    program.output({ "analysis", file, "--attach", "First" });
    program.output({ "invoice", "issue", draft(program, "First"), "--date", "2026-03-09" });
    const auto before = program.contents();
    const fs::path moved = program.place("new/place");
    const auto told = "The library is now in “" + moved.string() + "”. The old copy was left where it was.";
    EXPECT_EQ(program.remark({ "library", "move", moved.string() }), told);
    EXPECT_EQ(program.contents(), before);
    const auto old = std::exchange(program.folder, moved);
    for (const auto& [path, text] : before) {
        const auto relative = fs::path(path).lexically_relative(old);
        EXPECT_TRUE(relative.begin()->string() == "Backups" || fileText(moved / relative) == text) << path;
    }
    program.output({ "library", "check" });
    program.output({ "client", "add" }, R"({"name": "Only there"})");
    const auto there = program.contents();
    EXPECT_EQ(program.remark({ "--library", old.string(), "library", "move", moved.string() }), told);
    EXPECT_EQ(program.contents(), there);
    EXPECT_EQ(program.refusal({ "library", "move", moved.string() }),
        "The library couldn’t be moved: it is in that folder already");
    writeFile(program.place("file"), "");
    EXPECT_EQ(program.refusal({ "library", "move", program.place("file") }),
        "The library couldn’t be moved: Not a directory");
}

TEST(Journeys, theDemonstrationIsASoundLibrary)
{
    Program program;
    const auto told = program.output({ "demo", program.folder.string() });
    expectShows(told, { "The library is in “" + program.folder.string() + "”.", sound });
    expectShows(
        program.output({ "library", "check" }), { "Clients: 4, jobs: 14, issued documents: 6.", sound });
    EXPECT_EQ(program.refusal({ "demo", program.folder.string() }),
        "“" + program.folder.string() + "” already holds something; choose a new folder.");
}

TEST(Journeys, theProgramNeedsNothingOfQt)
{
    if (!fs::exists("/usr/bin/ldd"))
        GTEST_SKIP() << "no program to list libraries";
    const auto libraries = runProgram("/usr/bin/ldd", { Program().program.string() }, "").output;
    EXPECT_NE(libraries.find("libc.so"), std::string::npos) << libraries;
    EXPECT_EQ(libraries.find("libQt"), std::string::npos) << libraries;
}

} // namespace
