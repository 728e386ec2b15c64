#include "Tests/Pallisande/ModelWorld.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;
using namespace Pallisande;
using ::Test::decimal;
using ::Test::id;
using ::Test::World;

namespace {

using IDs = std::vector<Base::Uuid>;

struct Invoicing : World {
    Base::Uuid draft(const IDs& jobs)
    {
        EXPECT_TRUE(model->invoices().makeDraft(jobs)) << problem();
        return *model->selection(AppSection::invoices);
    }
    bool issue(const Base::Uuid& invoice)
    {
        model->openSheet(IssueSheet { invoice });
        model->invoices().issue(invoice, now, std::nullopt);
        return model->invoice(invoice)->isIssued();
    }
    Base::Uuid issued(const IDs& jobs)
    {
        const auto invoice = draft(jobs);
        EXPECT_TRUE(issue(invoice)) << problem();
        return invoice;
    }
};

} // namespace

TEST(AppModelInvoices, linesFollowQuantityAndPriceUnlessTheAmountIsTyped)
{
    Invoicing world;
    auto& model = world.start(::Test::sampleLibrary());
    auto& invoices = model.invoices();
    const auto draft = world.draft({ id(11), id(12) });
    const auto line = model.invoice(draft)->lines[0].id;
    const auto amount = [&] { return model.invoice(draft)->lines[0].amount; };
    const auto edit
        = [&](auto change) { EXPECT_TRUE(invoices.editLine(draft, line, change)) << world.problem(); };
    edit([](InvoiceLine& edited) { edited.unitPrice = decimal("0.1234"); });
    EXPECT_EQ(amount(), decimal("123.40"));
    edit([](InvoiceLine& edited) { edited.amount = 99; });
    EXPECT_TRUE(InvoiceSection::amountIsTyped(model.invoice(draft)->lines[0], "EUR"));
    edit([](InvoiceLine& edited) { edited.title = "Renamed"; });
    EXPECT_EQ(amount(), Base::Decimal(99));
    edit([](InvoiceLine& edited) { edited.quantity = 10; });
    EXPECT_EQ(amount(), decimal("1.23"));

    EXPECT_TRUE(invoices.linesAreOutdated(*model.invoice(draft)));
    ASSERT_TRUE(invoices.addLine(draft));
    ASSERT_TRUE(invoices.updateLines(draft));
    EXPECT_FALSE(invoices.linesAreOutdated(*model.invoice(draft)));
    EXPECT_EQ(model.invoice(draft)->lines.size(), 3u); // Two of jobs and the one that was added.
    EXPECT_EQ(amount(), decimal("100"));

    EXPECT_FALSE(invoices.clientIsOutdated(*model.invoice(draft)));
    model.clients().edit(id(1), "Change Name", [](Client& client) { client.name = "New name"; });
    EXPECT_TRUE(invoices.clientIsOutdated(*model.invoice(draft)));
    ASSERT_TRUE(invoices.updateFromClient(draft));
    EXPECT_EQ(model.invoice(draft)->client.name, "New name");

    EXPECT_FALSE(invoices.makeDraft(IDs { id(21), id(11) }));
    EXPECT_EQ(world.problem(), "This job is on a draft invoice.");
    ASSERT_TRUE(invoices.removeLine(draft, model.invoice(draft)->lines[0].id));
    EXPECT_EQ(invoices.otherDelivered(*model.invoice(draft)), IDs { id(11) }); // Without its line it is free.
    EXPECT_FALSE(invoices.makeDraft(IDs { id(21), id(11) }));
    EXPECT_EQ(world.problem(), "An invoice holds jobs for one client.");
}

TEST(AppModelInvoices, anInvoicedJobKeepsThePriceThatWasBilled)
{
    Invoicing world;
    auto& model = world.start(::Test::sampleLibrary());
    auto& jobs = model.jobs();
    const auto price = [&](int job) { return jobs.row(id(job)).price; };
    ASSERT_TRUE(jobs.edit(id(11), "Change Surcharge", [](Job& job) { job.surchargePercent = 10; }));
    const auto draft = world.draft({ id(11) });
    ASSERT_TRUE(model.clients().edit(
        id(1), "Change Rate", [](Client& client) { client.defaultRate = decimal("0.15"); }));
    EXPECT_EQ(price(11), "165.00\u00A0EUR"); // A draft can still follow it.
    EXPECT_FALSE(jobs.figures(*model.job(id(11))).invoice);
    ASSERT_TRUE(model.invoices().updateLines(draft));
    ASSERT_TRUE(model.invoices().addLine(draft));
    const auto own = model.invoice(draft)->lines.back().id; // Of no job, so not part of its price.
    ASSERT_TRUE(model.invoices().editLine(draft, own, [](InvoiceLine& line) { line.amount = 7; }));
    const auto translation = model.invoice(draft)->lines.front().id;
    ASSERT_TRUE(model.invoices().editLine(draft, translation, [](InvoiceLine& line) { line.amount = 120; }));
    ASSERT_TRUE(world.issue(draft)) << world.problem();
    EXPECT_EQ(price(11), "135.00\u00A0EUR"); // With the surcharge, a line of its own.

    ASSERT_TRUE(model.clients().edit(id(1), "Change Rate", [](Client& client) {
        client.defaultRate = decimal("0.30");
        client.currency = "CHF";
    })) << world.problem();
    EXPECT_EQ(price(11), "135.00\u00A0EUR");
    EXPECT_EQ(jobs.figures(*model.job(id(11))).invoice, model.invoice(draft)->number);
    EXPECT_EQ(jobs.price(*model.job(id(11))).subtotal, Base::Decimal(330)); // What it would be now.
    EXPECT_EQ(price(12).substr(price(12).size() - 3), "CHF");
    EXPECT_EQ(jobs.row(id(11)).client, "Nordlicht Verlag");
}

TEST(AppModelInvoices, issuingTellsStoresAndLocks)
{
    Invoicing world;
    auto& model = world.start(::Test::sampleLibrary());
    const auto invoice = world.draft({ id(11) });
    const auto outlook = model.invoices().outlook(invoice, world.now, std::nullopt);
    EXPECT_EQ(outlook.number, "INV-2026-001");
    EXPECT_EQ(outlook.total, "119.00\u00A0EUR");
    EXPECT_EQ(outlook.rate, "");
    EXPECT_EQ(outlook.warnings.size(), 2u); // No sender, no bank.
    ASSERT_TRUE(world.issue(invoice));
    EXPECT_EQ(world.notice(), "Issued INV-2026-001.");
    EXPECT_FALSE(model.sheet());
    EXPECT_FALSE(model.invoices().isIssuing());
    EXPECT_NE(world.document().find("INV-2026-001"), std::string::npos); // Before it was told.
    EXPECT_EQ(model.job(id(11))->status, JobStatus::invoiced);

    EXPECT_FALSE(
        model.invoices().edit(invoice, "Change Draft", [](Invoice& edited) { edited.notes = "No"; }));
    EXPECT_EQ(
        world.problem(), "INV-2026-001 is issued and can’t be changed. Make a credit note to correct it.");
    model.invoices().openStoredPDF(invoice);
    EXPECT_EQ(world.openedFiles, std::vector { world.library / "Invoices" / "INV-2026-001.pdf" });
    EXPECT_EQ(world.notice(), "Issued INV-2026-001.");

    const auto pdf = world.openedFiles.front();
    fs::permissions(pdf, fs::perms::owner_all);
    ::Test::writeFile(pdf, "%PDF-1.4 altered");
    model.invoices().openStoredPDF(invoice);
    EXPECT_EQ(
        world.notice(), "The stored PDF for INV-2026-001 isn’t the file that was stored when it was issued.");
    fs::remove(pdf);
    model.invoices().openStoredPDF(invoice);
    EXPECT_EQ(world.problem(),
        "The stored PDF for INV-2026-001 is missing from the library folder. Restore it from a backup of the "
        "folder; "
        "Pallisande doesn’t make a new one, so the issued document stays as issued.");
    EXPECT_EQ(world.openedFiles.size(), 2u);
}

TEST(AppModelInvoices, aPDFThatCantBeStoredIssuesNothing)
{
    Invoicing world;
    auto& model = world.start(::Test::sampleLibrary());
    const auto invoice = world.draft({ id(11) });
    const auto before = model.library();
    world.renderer.refusal = "No installed font has the characters “𒀀”; they would print as empty boxes.";
    EXPECT_FALSE(world.issue(invoice));
    EXPECT_EQ(world.problem(),
        "The invoice wasn’t issued, because its PDF couldn’t be stored: No installed font has the characters "
        "“𒀀”; "
        "they would print as empty boxes.");
    EXPECT_TRUE(model.problem()->isInSheet);
    EXPECT_TRUE(model.sheet()); // The sheet stays, with the sentence in it.
    world.renderer.refusal.clear();
    fs::create_directory(world.library / "Invoices");
    ::Test::writeFile(world.library / "Invoices" / "INV-2026-001.pdf", "%PDF of somebody else");
    EXPECT_FALSE(world.issue(invoice));
    EXPECT_EQ(world.problem(),
        "The invoice wasn’t issued, because its PDF couldn’t be stored: A PDF for INV-2026-001 is already "
        "stored; an "
        "issued PDF is never replaced.");
    EXPECT_EQ(model.library(), before);
    EXPECT_EQ(model.undoText(), "Undo Make Draft");
    model.closeSheet();
    EXPECT_EQ(world.problem(), ""); // It belonged to the sheet.

    world.answer = { world.root / "no folder" / "Draft.pdf" };
    model.invoices().saveDraftPDF(invoice);
    EXPECT_EQ(world.problem(), "The PDF couldn’t be saved: No such file or directory");
    world.answer = { world.root / "Draft.pdf" };
    model.invoices().saveDraftPDF(invoice);
    EXPECT_TRUE(::Test::fileText(world.root / "Draft.pdf").starts_with("%PDF"));
}

// Drawing takes a while, and the user goes on working: what is stored must be what is recorded.
TEST(AppModelInvoices, aDraftThatChangesWhileItIsDrawnIsDrawnAnew)
{
    Invoicing world;
    auto& model = world.start(::Test::sampleLibrary());
    const auto invoice = world.draft({ id(11) });
    world.background.isHeld = true;
    model.invoices().issue(invoice, world.now, std::nullopt);
    EXPECT_TRUE(model.invoices().isIssuing());
    model.invoices().edit(invoice, "Change Notes", [](Invoice& draft) { draft.notes = "With thanks"; });
    world.background.letGo();
    ASSERT_TRUE(model.invoice(invoice)->isIssued());
    const auto pdf = ::Test::fileText(world.library / "Invoices" / "INV-2026-001.pdf");
    EXPECT_NE(pdf.find("With thanks"), std::string::npos);
}

TEST(AppModelInvoices, refusalsOfTheLedgerReachTheUser)
{
    Invoicing world;
    auto& model = world.start(::Test::sampleLibrary());
    auto& invoices = model.invoices();
    const auto invoice = world.issued({ id(11) });
    const auto empty = world.draft({ id(12) });
    ASSERT_TRUE(invoices.edit(empty, "Change Draft", [](Invoice& draft) { draft.lines.clear(); }));
    ASSERT_TRUE(invoices.makeCreditNote(invoice));
    const auto note = *model.selection(AppSection::invoices);
    const struct {
        std::string sentence;
        std::function<void()> attempt;
    } cases[] {
        { "Add at least one line before issuing.", [&] { world.issue(empty); } },
        { "Payments go on issued invoices.",
            [&] {
                invoices.recordPayment(empty, { world.now, 5 });
            } },
        { "A payment must be more than zero.",
            [&] {
                invoices.recordPayment(invoice, { world.now, 0 });
            } },
        { "A draft credit note for INV-2026-001 is already open.",
            [&] { invoices.makeCreditNote(invoice); } },
        { "INV-2026-001 is issued and can’t be changed. Make a credit note to correct it.",
            [&] { invoices.removeDraft(invoice); } },
        { "That item no longer exists.", [&] { invoices.removePayment(invoice, id(77)); } },
        { "Only a draft can be changed.", [&] { invoices.openIssueSheet(invoice); } },
        { "The credit note is for more than is left on INV-2026-001.",
            [&] {
                invoices.edit(note, "Change Draft", [](Invoice& draft) { draft.lines[0].amount = -500; });
                world.issue(note);
            } },
    };
    for (const auto& [sentence, attempt] : cases) {
        model.closeSheet();
        model.dismissProblem();
        attempt();
        EXPECT_EQ(world.problem(), sentence);
    }
    model.closeSheet();
    EXPECT_FALSE(invoices.makeCreditNote(invoice));
    EXPECT_EQ(model.problem()->action, Problem::Action::openInvoice);
    EXPECT_EQ(model.problem()->subject, note);
    EXPECT_EQ(invoices.numbering(), std::vector<std::string> { "Numbering checked: no gaps, no repeats." });
}

TEST(AppModelInvoices, paymentsInAnotherCurrencyAndTheRatesTheyLack)
{
    Invoicing world;
    auto& model = world.start(::Test::sampleLibrary());
    auto& invoices = model.invoices();
    const auto draft = world.draft({ id(21) }); // 200.00 USD
    EXPECT_EQ(invoices.outlook(draft, world.now, std::nullopt).rate,
        "No exchange rate for this day yet. You can add one later from the invoice.");
    ASSERT_TRUE(world.issue(draft));
    ASSERT_TRUE(invoices.lacksRate(*model.invoice(draft)));
    ASSERT_TRUE(invoices.addExchangeRate(draft));
    const auto sheet = std::get<TypedRateSheet>(*model.sheet());
    EXPECT_EQ(sheet.from, "USD");
    EXPECT_EQ(sheet.invoiceID, draft);
    EXPECT_FALSE(invoices.typeRate(sheet, 0, ""));
    EXPECT_EQ(world.problem(), "A rate must be more than zero.");
    ASSERT_TRUE(invoices.typeRate(sheet, decimal("0.9"), "bank"));
    EXPECT_FALSE(model.sheet());
    EXPECT_EQ(
        invoices.rateText(*model.invoice(draft)->homeRate), "1 USD = 0.900000 EUR · typed: bank, 9 Mar 2026");
    model.undo(); // Rate and document were one step.
    EXPECT_TRUE(invoices.lacksRate(*model.invoice(draft)));
    EXPECT_TRUE(model.library().rates.typed.empty());

    ASSERT_TRUE(invoices.recordPayment(draft,
        { .date = world.now, .amount = 50, .receivedHome = decimal("43.20"), .rate = decimal("0.88") }));
    EXPECT_EQ(model.saveState(), SaveState::saved);
    const auto payment = model.invoice(draft)->payments.front();
    EXPECT_EQ(payment.rate->rate, decimal("0.88"));
    ASSERT_TRUE(invoices.editPayment(draft, payment.id,
        { .date = world.now, .amount = 60, .receivedHome = decimal("50"), .rate = decimal("0.88") }));
    EXPECT_EQ(model.invoice(draft)->payments.front().rate, payment.rate);
    EXPECT_EQ(invoices.status(*model.invoice(draft)), InvoiceStatus::partlyPaid);
    ASSERT_TRUE(invoices.payInFull(IDs { draft }, world.now));
    EXPECT_EQ(invoices.status(*model.invoice(draft)), InvoiceStatus::paid);
    EXPECT_EQ(model.job(id(21))->status, JobStatus::paid);
}
