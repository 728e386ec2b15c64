#include "Pallisande/Screens/Invoices/LockedText.h"
#include "Tests/Pallisande/FixedTexts.h"

// What the window tells: messages, refusals, questions, boxes. What stands on its pages and in its sheets is
// in TestFixedTextsOfPages.cpp.

namespace fs = std::filesystem;
using namespace Pallisande;
using ::Test::At;
using ::Test::expectFixedTexts;
using ::Test::id;
using ::Test::writeFile;
using W = ::Test::WindowWorld;
using IDs = std::vector<Base::Uuid>;

namespace {

const char* const libraryName = "Pallisande Library.json";

std::function<void(W&)> startsWith(const char* document)
{
    return [document](W& world) { writeFile(world.library / libraryName, document); };
}

std::function<void(W&)> movesTo(const char* document)
{
    return [document](W& world) {
        fs::create_directory(world.root / "Other");
        writeFile(world.root / "Other" / libraryName, document);
        world.model->moveLibrary(world.root / "Other");
    };
}

Base::Uuid last(W& world) { return world.model->library().invoices.back().id; }

void withDraft(Library& library) { ::Test::draft(library, { 11 }); }
void withInvoice(Library& library) { ::Test::issued(library, { 11 }); }

// Through the sheet's own button, as soon as its page was drawn.
void pressIssue(W& world)
{
    world.model->invoices().openIssueSheet(last(world));
    auto* const issue = world.find<QAbstractButton>("issue");
    ::Test::waitUntil([&] { return issue->isEnabled(); }, std::chrono::seconds(5));
    issue->click();
}

// Nothing can be reached.
struct NoNetwork final : Network {
    void fetch(const Base::DownloadRequest&, std::function<void(Base::DownloadResult)> done) override
    {
        done({});
    }
};

} // namespace

TEST(FixedTexts, ofTheLibrary)
{
    expectFixedTexts({
        { 1, At::banner,
            { "The library couldn’t be moved: The library file couldn’t be read; it was kept as “Pallisande "
              "Library (damaged 2026-03-09T14-05-31Z).json”." },
            movesTo("{") },
        { 2, At::banner,
            { "The library couldn’t be moved: This library was saved by a newer version of Pallisande." },
            movesTo(R"({"version": 2})") },
        { 3, At::banner,
            { "Your library couldn’t be read, so Pallisande started a new one. The old file was kept as "
              "“Pallisande Library (damaged 2026-03-09T14-05-31Z).json”, and the dated copies are in the "
              "Backups folder.",
                "Show Backups" },
            {}, {}, startsWith("{") },
        { 4, At::banner,
            { "Your library was saved by a newer version of Pallisande. Update Pallisande to open it; "
              "nothing was changed.",
                "Check for Updates…" },
            {}, {}, startsWith(R"({"version": 2})") },
        { 5, At::banner,
            { "Your library folder couldn’t be found, so Pallisande is using its own folder. Choose the "
              "folder again in Settings › Library.",
                "Choose Folder…" },
            {}, {}, [](W& world) { world.prefer({ .libraryBookmark = Bookmark { "/nowhere" } }); } },
        { 6, At::banner,
            { "Pallisande couldn’t open its library folder: No such file or directory", "Choose Folder…" },
            {}, {}, [](W& world) { fs::remove(world.library); } },
        { 7, At::banner, { "Your library couldn’t be opened: not a regular file", "Choose Folder…" }, {}, {},
            [](W& world) { fs::create_directory(world.library / libraryName); } },
        { 8, At::banner, { "Pallisande couldn’t save your library: not a regular file", "Try Again" },
            [](W& world) {
                fs::remove(world.library / libraryName);
                fs::create_directory(world.library / libraryName);
                world.model->clients().add();
                world.settle();
            } },
        { 8, At::window, { "Not saved" },
            [](W& world) {
                fs::remove(world.library / libraryName);
                fs::create_directory(world.library / libraryName);
                world.model->clients().add();
                world.settle();
            } },
        { 11, At::chooser,
            { "Choose a folder for your Pallisande library. Your records, report copies, issued PDFs and "
              "backups move there.",
                "Use This Folder" },
            [](W& world) { world.model->chooseLibraryFolder(); } },
        { 12, At::toast, { "The library is now in “{}/Moved”. The old copy was left where it was." },
            [](W& world) { world.model->moveLibrary(world.root / "Moved"); } },
        { 13, At::banner, { "The library couldn’t be moved: Not a directory" },
            [](W& world) { world.model->moveLibrary("/dev/null/Moved"); } },
        { 14, At::toast, { "Backed up as “Pallisande Library 2026-03-09 15-05-31.json”." },
            [](W& world) { world.action(Command::backUpNow)->trigger(); } },
        { 14, At::banner, { "The backup couldn’t be written: Not a directory" },
            [](W& world) {
                fs::remove_all(world.library / "Backups");
                writeFile(world.library / "Backups", "");
                world.action(Command::backUpNow)->trigger();
            } },
    });
}

TEST(FixedTexts, ofJobsAndClients)
{
    expectFixedTexts({
        { 18, At::banner,
            { "Add a client first: a job belongs to a client, whose rates and weights price it.",
                "New Client" },
            [](W& world) { world.action(Command::newJob)->trigger(); }, {}, [](W&) {} },
        { 19, At::menu, { "A job can’t go from Delivered to Quote by hand." },
            [](W& world) { world.model->show(AppSection::jobs, id(11)); } },
        { 19, At::banner, { "A job can’t go from Delivered to Paid by hand." },
            [](W& world) { world.model->jobs().setStatus(IDs { id(11) }, JobStatus::paid); } },
        { 20, At::banner, { "That item no longer exists." },
            [](W& world) {
                world.model->jobs().edit(id(77), "Change Title", [](Job& job) { job.title = "X"; });
            } },
        { 21, At::page, { "This job is on INV-2026-001. Open Invoice" },
            [](W& world) { world.model->show(AppSection::jobs, id(11)); }, withInvoice },
        { 21, At::banner, { "This job is on INV-2026-001." },
            [](W& world) { world.model->jobs().makeInvoice(IDs { id(11) }); }, withInvoice },
        { 22, At::banner, { "Nordlicht Verlag has jobs or invoices. Archive the client instead.", "Archive" },
            [](W& world) { world.model->clients().remove(id(1)); } },
        { 46, At::chooser, { "Choose a CAT analysis: Trados Studio XML, memoQ CSV, or Phrase CSV or JSON." },
            [](W& world) {
                world.model->show(AppSection::jobs, id(11));
                W::settleEvents();
                world.action(Command::importAnalysis)->trigger();
            } },
        { 47, At::banner, { "“big.csv” is larger than 50 MB, which is too big for an analysis report." },
            [](W& world) {
                writeFile(world.root / "big.csv", "");
                fs::resize_file(world.root / "big.csv", 52'428'801);
                world.model->imports().read(id(11), { world.root / "big.csv" });
            } },
        { 47, At::banner, { "“report.xml” couldn’t be opened: No such file or directory" },
            [](W& world) { world.model->imports().read(id(11), { world.root / "report.xml" }); } },
        { 79, At::chooser,
            { "Choose the documents to count (Word, PowerPoint, Excel, OpenDocument, PDF, HTML, RTF, text, "
              "subtitles), or folders of them." },
            [](W& world) { world.action(Command::countDocuments)->trigger(); } },
        { 79, At::banner, { "None of the chosen files could be counted." },
            [](W& world) {
                writeFile(world.root / "a.docx", "no package");
                world.model->counts().count({ world.root / "a.docx" }, DocumentCounts::Purpose::newJob);
            } },
    });
}

TEST(FixedTexts, ofInvoices)
{
    const auto broken = [](auto total) {
        return [total](Library& library) {
            auto& draft = ::Test::draft(library, { 11 });
            draft.lines.front().amount = total;
        };
    };
    const auto creditDraft = [](auto net) {
        return [net](Library& library) {
            const auto invoice = ::Test::issued(library, { 11 }).id;
            auto note = Ledger::makeCreditNote(library, invoice, ::Test::moment(), ::Test::labels());
            note.lines = { { .id = id(800), .title = "Credit", .unitPrice = net, .amount = net } };
            Ledger::editDraft(library, note, ::Test::moment().now);
        };
    };
    const auto opensIssue = [](W& world) { world.model->invoices().openIssueSheet(last(world)); };
    const auto credits = [](W& world) {
        world.model->invoices().makeCreditNote(world.model->library().invoices.front().id);
    };
    expectFixedTexts({
        { 10, At::sheet,
            { "The invoice wasn’t issued, because its PDF couldn’t be stored: A PDF for INV-2026-001 is "
              "already stored; an issued PDF is never replaced." },
            [](W& world) {
                fs::create_directories(world.library / "Invoices");
                writeFile(world.library / "Invoices" / "INV-2026-001.pdf", "%PDF of somebody");
                pressIssue(world);
            },
            withDraft },
        { 31, At::sheet, { "The invoice wasn’t issued, because its PDF couldn’t be stored: no paper" },
            [](W& world) {
                world.renderer.refusal = "no paper";
                pressIssue(world);
            },
            withDraft },
        { 32, At::banner,
            { "The stored PDF for INV-2026-001 is missing from the library folder. Restore it from a backup "
              "of the folder; Pallisande doesn’t make a new one, so the issued document stays as issued.",
                "Show Library Folder" },
            [](W& world) { world.model->invoices().showStoredPDF(last(world)); }, withInvoice },
        { 32, At::page,
            { "The stored PDF for INV-2026-001 is missing from the library folder. Restore it from a backup "
              "of the folder; Pallisande doesn’t make a new one, so the issued document stays as issued." },
            [](W& world) { world.model->show(AppSection::invoices, last(world)); }, withInvoice },
        { 33, At::banner, { "The PDF couldn’t be saved: no paper" },
            [](W& world) {
                world.renderer.refusal = "no paper";
                world.answer = { world.root / "Draft.pdf" };
                world.model->invoices().saveDraftPDF(last(world));
            },
            withDraft },
        { 65, At::popup,
            { "INV-2026-001 is issued and can’t be changed. Make a credit note to correct it.",
                "Make Credit Note" },
            [](W& world) {
                world.model->show(AppSection::invoices, last(world));
                W::settleEvents();
                auto* const locked = world.window->page()->findChild<LockedText*>();
                ASSERT_TRUE(locked);
                QTest::keyClick(locked, Qt::Key_A);
            },
            withInvoice },
        { 66, At::sheet, { "The number INV-2026-001 is already used." }, opensIssue,
            [](Library& library) {
                ::Test::issued(library, { 11 });
                ::Test::draft(library, { 12 });
                library.profile.invoiceSeries.next.clear();
            } },
        { 66, At::sheet, { "Add at least one line before issuing." }, opensIssue,
            [](Library& library) { ::Test::draft(library, { 11 }).lines.clear(); } },
        { 66, At::sheet, { "An invoice’s total can’t be below zero; make a credit note instead." },
            opensIssue, broken(-1) },
        { 66, At::sheet, { "A credit note’s total must be below zero." }, opensIssue, creditDraft(5) },
        { 66, At::sheet, { "The credit note is for more than is left on INV-2026-001." }, opensIssue,
            creditDraft(-500) },
        { 67, At::banner, { "INV-2026-001 is already fully credited." }, credits,
            [](Library& library) { ::Test::credit(library, ::Test::issued(library, { 11 }).id, 100); } },
        { 67, At::banner, { "A draft credit note for INV-2026-001 is already open.", "Open It" }, credits,
            creditDraft(-5) },
        { 67, At::banner, { "Nothing is left to credit on this invoice." }, credits,
            [](Library& library) {
                auto& draft = ::Test::draft(library, { 11 });
                draft.lines.front().amount = 0;
                ::Test::issue(library, draft.id);
            } },
        { 68, At::banner, { "Only a draft can be changed." }, opensIssue, withInvoice },
        { 68, At::banner, { "An invoice holds jobs for one client." },
            [](W& world) {
                world.model->jobs().makeInvoice(IDs { id(11), id(21) });
            } },
        { 69, At::banner, { "Payments go on issued invoices." },
            [](W& world) {
                world.model->invoices().recordPayment(last(world), { .date = world.now, .amount = 5 });
            },
            withDraft },
        { 69, At::sheet, { "A payment must be more than zero." },
            [](W& world) {
                world.model->openSheet(PaymentSheet { last(world), {} });
                auto* const sum = world.find<LineField>("paymentSum");
                sum->setText("0");
                sum->commit();
                QTest::keyClick(world.window->sheet(), Qt::Key_Return);
            },
            withInvoice },
    });
}

TEST(FixedTexts, ofUpdatesAndReminders)
{
    NoNetwork network;
    MemoryPreferences preferences;
    UpdateCheck check({ .network = network,
        .preferences = preferences,
        .now = [] { return ::Test::moment().now; },
        .version = "1.0" });
    expectFixedTexts({
        { 78, At::box,
            { "Couldn’t check for updates", "Check your internet connection and try again.",
                "Pallisande also checks on its own about once a day." },
            [&](W& world) {
                world.updates = &check;
                world.show(*world.model);
                world.action(Command::checkForUpdates)->trigger();
            } },
            { 74, At::menu, { "Check for Updates…" }, {} },
#ifdef __APPLE__
            { 76, At::banner,
                { "macOS didn’t allow notifications for Pallisande. Turn them on in System Settings › "
                  "Notifications." },
#else
            { 76, At::banner,
                { "The system didn’t allow notifications for Pallisande. Turn them on in its notification "
                  "settings." },
#endif
                [](W& world) {
                    world.notifications.isAllowed = false;
                    world.model->setRemindersOn(true);
                } },
    });
}
