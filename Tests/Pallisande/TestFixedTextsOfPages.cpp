#include "PallisandeKit/Samples/SampleReport.h"
#include "Tests/Pallisande/FixedTexts.h"
#include "Tests/Support/ZipMaker.h"

// What stands on pages, in sheets and in the settings. What the window tells is in TestFixedTexts.cpp.

using namespace Pallisande;
using ::Test::At;
using ::Test::decimal;
using ::Test::expectFixedTexts;
using ::Test::id;
using ::Test::writeFile;
using W = ::Test::WindowWorld;

namespace {

using Do = std::function<void(W&)>;
using Change = std::function<void(Library&)>;

Do showsSection(AppSection section)
{
    return [section](W& world) { world.model->setSection(section); };
}

const Do showsJob = [](W& world) { world.model->show(AppSection::jobs, id(11)); };
const Do showsClient = [](W& world) { world.model->show(AppSection::clients, id(1)); };
const Do showsInvoice
    = [](W& world) { world.model->show(AppSection::invoices, world.model->library().invoices.front().id); };

Do imports(const char* name, const std::string& report)
{
    return [name, report](W& world) {
        writeFile(world.root / name, report);
        world.model->imports().read(id(11), { world.root / name });
    };
}

Do counts(const char* name, const std::string& content)
{
    return [name, content](W& world) {
        writeFile(world.root / "plain.txt", "One two three.");
        writeFile(world.root / name, content);
        world.model->counts().count(
            { world.root / "plain.txt", world.root / name }, DocumentCounts::Purpose::newJob);
    };
}

Do settings(int page)
{
    return [page](W& world) { world.window->showSettings(page); };
}

// A Trados report of one file with these elements.
std::string trados(const std::string& bands, const std::string& files = "")
{
    return R"(<?xml version="1.0"?><task name="analyse">)"
        + (bands.empty() ? "" : "<file name=\"a.docx\"><analyse>" + bands + "</analyse></file>") + files
        + "</task>";
}

// The report's own total, the words of new segments, and what else it counts.
std::string words(int total, int fresh, const std::string& others = "")
{
    return "<total segments=\"9\" words=\"" + std::to_string(total) + "\" characters=\"900\"/>"
        + "<new segments=\"5\" words=\"" + std::to_string(fresh) + "\" characters=\"500\"/>" + others;
}

Change client(const std::function<void(Client&)>& change)
{
    return [change](Library& library) { change(library.clients.front()); };
}

Change analysis(AnalysisSource source)
{
    return [source](Library& library) { library.jobs.front().analyses.front().source = source; };
}

void manyStates(Library& library)
{
    auto& jobs = library.jobs;
    for (std::uint64_t number = 31; number <= 36; ++number)
        jobs.push_back(::Test::job(number, 1, 100));
    for (const auto& [place, status] : { std::pair(3, JobStatus::quote), std::pair(4, JobStatus::inProgress),
             std::pair(5, JobStatus::cancelled) })
        jobs[static_cast<std::size_t>(place)].status = status;
    const auto paid = ::Test::issued(library, { 34 }).id;
    ::Test::pay(library, paid, "11.90");
    const auto partly = ::Test::issued(library, { 35 }).id;
    ::Test::pay(library, partly, "5");
    ::Test::credit(library, ::Test::issued(library, { 36 }).id, 10);
    ::Test::issued(library, { 11 }, ::Test::momentOn("2026-02-02"));
    ::Test::issued(library, { 12 });
    ::Test::draft(library, { 21 });
}

} // namespace

TEST(FixedTexts, onThePagesOfJobsAndClients)
{
    const auto all = [](W& world) {
        world.model->setSection(AppSection::jobs);
        world.model->jobs().setFilter(JobFilter::all);
    };
    const auto weights = [](BandWeights::Preset preset) {
        return client([preset](Client& one) { one.weights = BandWeights::of(preset); });
    };
    expectFixedTexts({
        { 17, At::page, { "Quote", "In progress", "Delivered", "Invoiced", "Paid", "Cancelled" }, all,
            manyStates },
        { 17, At::menu, { "Quote", "In progress", "Delivered", "Invoiced", "Paid", "Cancelled" }, {} },
        { 18, At::page,
            { "Add a client first: a job belongs to a client, whose rates and weights price it." },
            showsSection(AppSection::jobs), {}, [](W&) {} },
        { 23, At::page, { "Untitled job" }, all, [](Library& library) { library.jobs[0].title.clear(); } },
        { 24, At::page, { "Delivered, not invoiced" }, {} },
        { 25, At::page,
            { "Nordlicht Verlag · ? → en · delivered 6 Mar", "Harbor Books · de → en · delivered 6 Mar" },
            all, [](Library& library) { library.jobs[0].pair.source.clear(); } },
        { 26, At::page,
            { "There’s no standard table: these are the shares you agreed with this client. The presets are "
              "only examples." },
            showsClient },
        { 27, At::menu,
            { "None: every word at the full rate (example)", "Repetitions and 100% matches only (example)",
                "Graduated by band (example)" },
            showsClient },
        { 28, At::page, { "Same as the example “None: every word at the full rate (example)”" }, showsClient,
            weights(BandWeights::Preset::none) },
        { 28, At::page, { "Same as the example “Repetitions and 100% matches only (example)”" }, showsClient,
            weights(BandWeights::Preset::repetitionsAnd100) },
        { 28, At::page, { "Same as the example “Graduated by band (example)”" }, showsClient },
        { 29, At::page, { "The weight for 100% must be between 0 and 100%." }, showsClient,
            client([](Client& one) { one.weights.percent[MatchBand::exact] = 120; }) },
        { 30, At::page, { "75% floor: bill matches under 75% as new words" }, showsClient },
        { 30, At::page, { "75% floor: 50–74% matches are billed as new words." }, showsJob,
            client([](Client& one) { one.weights.floor75 = true; }) },
        { 58, At::page,
            { "Perfect / X-translated", "Context match (101%)", "Repetitions", "100%", "95–99%", "85–94%",
                "75–84%", "50–74%", "No match" },
            showsJob },
        { 58, At::page,
            { "Perfect / X-translated", "Context match (101%)", "Repetitions", "100%", "95–99%", "85–94%",
                "75–84%", "50–74%", "No match" },
            showsClient },
        { 59, At::page,
            { "The weight for No match is outside 0–100%. Fix it in the client’s weights. Open Client’s "
              "Weights" },
            showsJob, client([](Client& one) { one.weights.percent[MatchBand::noMatch] = 101; }) },
        { 60, At::page,
            { "1 totals don’t match their report. The price uses the bands as imported; check the report. "
              "Show the Report’s Totals" },
            showsJob,
            [](Library& library) { library.jobs.front().analyses.front().rows.front().statedWords = 999; } },
        { 57, At::page, { "manual.docx: the bands add up to 1000 words, the report says 999" }, showsJob,
            [](Library& library) { library.jobs.front().analyses.front().rows.front().statedWords = 999; } },
        { 61, At::page,
            { "This client is billed on target words: enter the delivered translation’s count. Type It In" },
            showsJob, client([](Client& one) { one.basis = WordBasis::target; }) },
        { 62, At::page,
            { "The rate is per character, but the analysis has no character counts. Open Client" }, showsJob,
            client([](Client& one) { one.unit = RateUnit::character; }) },
        { 63, At::page, { "Target basis: bands shown for reference" }, showsJob,
            client([](Client& one) { one.basis = WordBasis::target; }) },
        { 72, At::page,
            { "Pallisande makes PDF invoices, not structured e-invoices (XRechnung, ZUGFeRD, Factur-X), and "
              "applies only the tax percentage you type." },
            showsClient },
    });
    constexpr std::tuple<AnalysisSource, const char*, const char*> sources[] {
        { AnalysisSource::phraseCSV, "Phrase TMS analysis (CSV)", "Built from the published layout" },
        { AnalysisSource::phraseJSON, "Phrase TMS analysis (JSON)", "Built from the published layout" },
        { AnalysisSource::memoQCSV, "memoQ statistics (CSV)", "Tested on documented layouts" },
        { AnalysisSource::tradosXML, "Trados Studio analysis (XML)", "Tested on documented layouts" },
        { AnalysisSource::mappedCSV, "Spreadsheet with mapped columns", "Columns mapped by you" },
        { AnalysisSource::tamberlinCount, "Files counted by Pallisande", "Counted from the files" },
    };
    for (const auto& [source, label, chip] : sources)
        expectFixedTexts({ { 52, At::page, { label + std::string(" · 1 Mar 2026 · 1 file · 1,000 words") },
                               showsJob, analysis(source) },
            { 53, At::page, { chip }, showsJob, analysis(source) } });
    expectFixedTexts({ { 52, At::page, { "Typed in · 1 Mar 2026 · 1 file · 1,000 words" }, showsJob,
        analysis(AnalysisSource::manual) } });
}

TEST(FixedTexts, onThePageOfInvoices)
{
    const auto numbering = [](const std::function<void(Library&)>& change) {
        return [change](Library& library) {
            ::Test::issued(library, { 11 });
            ::Test::issued(library, { 12 });
            const auto third = ::Test::issued(library, { 21 }).id;
            ::Test::credit(library, third, 10);
            change(library);
        };
    };
    const auto section = showsSection(AppSection::invoices);
    expectFixedTexts({
        { 34, At::page, { "No exchange rate for this day yet. You can add one later from the invoice." },
            showsInvoice, [](Library& library) { ::Test::issued(library, { 21 }); } },
        { 36, At::page,
            { "Draft", "Open", "Overdue 21 days", "Part paid", "Paid", "Credited", "Credit note" }, section,
            manyStates },
        { 36, At::window, { "Overdue", "Paid", "Credited", "Credit notes" }, section },
        { 37, At::page, { "Numbering checked: no gaps, no repeats." }, section, numbering([](Library&) {}) },
        { 37, At::popup,
            { "Invoices 2026: a number is used twice.",
                "Invoices 2026: the next number (4) doesn’t follow INV-2026-003" },
            [=](W& world) {
                section(world);
                W::settleEvents();
                world.action(Command::checkNumbering)->trigger();
            },
            numbering([](Library& library) {
                for (auto* invoice : { &library.invoices[1], &library.invoices[2] })
                    invoice->sequence = 1;
            }) },
        { 37, At::page, { "Invoices 2026: missing INV-2026-002" }, section,
            numbering([](Library& library) { library.invoices.erase(library.invoices.begin() + 1); }) },
        { 37, At::page, { "Credit notes 2026: the next number (7) doesn’t follow CN-2026-001" }, section,
            numbering([](Library& library) { library.profile.creditSeries.next[2026] = 7; }) },
        { 38, At::page, { "Payment within 30 days of the invoice date, by bank transfer." }, showsClient },
    });
}

TEST(FixedTexts, inSheets)
{
    const auto opens = [](auto sheet) {
        return [sheet](W& world) {
            const auto id = world.model->library().invoices.back().id;
            if constexpr (std::is_same_v<decltype(sheet), IssueSheet>)
                world.model->invoices().openIssueSheet(id);
            else if constexpr (std::is_same_v<decltype(sheet), PaymentSheet>)
                world.model->openSheet(PaymentSheet { id, {} });
            else
                world.model->invoices().addExchangeRate(id);
        };
    };
    const Change foreignDraft = [](Library& library) { ::Test::draft(library, { 21 }); };
    const Change foreignInvoice = [](Library& library) { ::Test::issued(library, { 21 }); };
    const std::string noRate = "No exchange rate for this day yet. You can add one later from the invoice.";
    const auto internal = [](int words) {
        return "<internalFuzzy min=\"75\" max=\"84\" segments=\"1\" words=\"" + std::to_string(words)
            + "\" characters=\"60\"/>";
    };
    const auto docx = [](const std::string& document) {
        return ::Test::zipOf({ { "[Content_Types].xml", "<Types/>" }, { "word/document.xml", document } });
    };
    const std::vector<SampleFile> memoQ { { "Terms.docx", { 0, 0, 0, 100, 0, 0, 0, 0, 900 } } };
    expectFixedTexts({
        { 34, At::sheet, { noRate }, opens(IssueSheet {}), foreignDraft },
        { 34, At::sheet, { noRate }, opens(PaymentSheet {}), foreignInvoice },
        { 35, At::sheet,
            { "A draft has no number and can be changed or deleted. Issuing gives it the next number in the "
              "series, stores its PDF in the library folder exactly as issued, and locks it for good." },
            opens(IssueSheet {}), foreignDraft },
        { 41, At::sheet,
            { "Your bank’s rate, or the one your tax authority asks for. A typed rate is used over the ECB’s "
              "for the same day." },
            opens(TypedRateSheet {}), foreignInvoice },
        { 48, At::sheet,
            { "Pallisande reads spreadsheets saved as CSV. Open “r.xlsx” in Excel or Numbers, export it as "
              "CSV, and import that file." },
            imports("r.xlsx", "PK") },
        { 49, At::sheet,
            { "“r.html” is a report for reading, not for importing. In Trados save the analysis as XML; in "
              "memoQ or Phrase export it as CSV." },
            imports("r.html", "<html></html>") },
        { 50, At::sheet,
            { "A PDF report can’t be imported. Export the analysis as XML (Trados), CSV (memoQ, Phrase) or "
              "JSON (Phrase)." },
            imports("r.pdf", "%PDF-1.4") },
        { 51, At::sheet, { "“r.xml” isn’t readable XML (mismatched tag)." },
            imports("r.xml", "<task><file></task>") },
        { 51, At::sheet,
            { "“r.xml” isn’t a Trados Studio analysis report (no “analyse” section). In Trados, open "
              "Reports, choose the Analyze Files report and save it as XML." },
            imports("r.xml", "<html/>") },
        { 51, At::sheet, { "“r.xml” has no files in its analysis." },
            imports("r.xml", "<task name=\"analyse\"><batchTotal><analyse/></batchTotal></task>") },
        { 52, At::sheet, { "Trados Studio analysis (XML)" }, imports("r.xml", trados(words(9, 9))) },
        { 53, At::sheet, { "Tested on documented layouts" }, imports("r.csv", sampleMemoQReport(memoQ)) },
        { 54, At::sheet, { "Internal fuzzy matches (6 words) are billed as No match." },
            imports("r.xml", trados(words(15, 9, internal(6)))) },
        { 54, At::sheet,
            { "Internal fuzzy matches (6 words) are reported outside the file’s total and were left out." },
            imports("r.xml", trados(words(9, 9, internal(6)))) },
        { 54, At::sheet,
            { "Internal fuzzy matches (6 words) were left out: the bands don’t add up to the file’s total "
              "with or without them." },
            imports("r.xml", trados(words(40, 9, internal(6)))) },
        { 55, At::sheet,
            { "“Cross-file repetitions” (4 words) is counted with Repetitions.",
                "“Locked” (3 words) is counted with Perfect / X-translated.",
                "“Fuzzy 60–80%” (2 words) is counted with 50–74%." },
            imports("r.xml",
                trados(words(18, 9,
                    "<crossFileRepeated segments=\"1\" words=\"4\" characters=\"9\"/>"
                    "<locked segments=\"1\" words=\"3\" characters=\"9\"/>"
                    "<fuzzy min=\"60\" max=\"80\" segments=\"1\" words=\"2\" characters=\"9\"/>"))) },
        { 55, At::sheet, { "This report has no character counts." },
            imports(
                "r.xml", trados("<total segments=\"1\" words=\"9\"/><new segments=\"1\" words=\"9\"/>")) },
        { 56, At::sheet,
            { "Trados Studio import: tested on documented layouts, not yet on a real export. Check the "
              "totals against the report." },
            imports("r.xml", trados(words(9, 9))) },
        { 56, At::sheet, { "File 1" },
            imports("r.xml",
                "<task name=\"analyse\"><file><analyse>" + words(9, 9) + "</analyse></file></task>") },
        { 57, At::sheet, { "a.docx: the bands add up to 9 words, the report says 10" },
            imports("r.xml", trados(words(10, 9))) },
        { 63, At::sheet, { "Target basis: bands shown for reference" }, imports("r.xml", trados(words(9, 9))),
            client([](Client& one) { one.basis = WordBasis::target; }) },
        { 81, At::sheet, { "Text", "Word" }, counts("a.docx", docx("<w:document/>")) },
        { 81, At::sheet, { "HTML" }, counts("a.html", "<p>One two</p>") },
        { 81, At::sheet, { "RTF" }, counts("a.rtf", "{\\rtf1 One two}") },
        { 81, At::sheet, { "Subtitles" }, counts("a.srt", "1\n00:00:01,000 --> 00:00:02,000\nOne two\n") },
        { 84, At::sheet,
            { "“a.docx” wasn’t counted: “a.docx” isn’t a Word (.docx) file that can be read (it isn’t a zip "
              "package)." },
            counts("a.docx", "no package") },
        { 84, At::sheet,
            { "“a.pptx” wasn’t counted: “a.pptx” isn’t a PowerPoint (.pptx) file that can be read (it isn’t "
              "a zip package)." },
            counts("a.pptx", "no package") },
        { 84, At::sheet,
            { "“a.xlsx” wasn’t counted: “a.xlsx” isn’t a Excel (.xlsx) file that can be read (it isn’t a zip "
              "package)." },
            counts("a.xlsx", "no package") },
        { 84, At::sheet,
            { "“a.odt” wasn’t counted: “a.odt” isn’t a OpenDocument (.odt) file that can be read (it isn’t a "
              "zip package)." },
            counts("a.odt", "no package") },
    });
}

TEST(FixedTexts, inTheSettings)
{
    const std::string eInvoices = "Pallisande makes PDF invoices, not structured e-invoices (XRechnung, "
                                  "ZUGFeRD, Factur-X), and applies only the tax percentage you type.";
    const auto typesNext = [](const char* number) {
        return [number](W& world) {
            world.window->showSettings(1);
            W::settleEvents();
            auto* const next = world.find<LineField>("next.invoices");
            ASSERT_TRUE(next);
            next->setText(QLatin1String(number));
            next->commit();
        };
    };
    expectFixedTexts({
        { 71, At::window,
            { "Printed at the top of quotes and invoices", "Currency and paper",
                "Your currency (for yearly totals)" },
            settings(0) },
        { 71, At::window, { "Choose a PNG or JPEG under 2 MB for the logo." },
            [](W& world) {
                world.window->showSettings(0);
                world.model->profile().setLogo(world.root / "none.png");
            } },
        { 75, At::window, { "Remind me 24 hours and 2 hours before a deadline" }, settings(0) },
        { 39, At::window, { "INV-", "CN-", "Q-" }, settings(1) },
        { 72, At::window,
            { "Defaults printed on invoices", "Quotes valid for", "Year in the number",
                "Start again at 1 each year", "Credit note prefix",
                "Moving from another tool? Set the first number before you issue in Pallisande. After that "
                "the series only counts up, so there are no gaps.",
                eInvoices },
            settings(1) },
        { 38, At::window, { "Payment within 30 days of the invoice date, by bank transfer." }, settings(1) },
        { 70, At::window, { "Numbers start at 1." }, typesNext("0") },
        { 70, At::window,
            { "Numbers were already issued in this series, so it continues from the last one." },
            typesNext("1"), [](Library& library) { ::Test::issued(library, { 11 }); } },
        { 73, At::window,
            { "The folder holds your records, a copy of every imported report, every issued PDF as issued, "
              "and dated backups. Keep it in a folder you already back up or sync; Pallisande itself never "
              "uploads anything." },
            settings(2) },
        { 74, At::window, { "Move to Another Folder…", "Second Backup Folder…", "Check for Updates…" },
            settings(2) },
    });
}
