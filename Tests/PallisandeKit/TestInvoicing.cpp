#include "PallisandeKit/Ledger/Ledger.h"

#include "Tests/Support/Samples.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Pallisande;
using namespace Test;
using Base::Decimal;

namespace {

const std::string gone = "That item no longer exists.";
const std::string locked = "INV-2026-001 is issued and can’t be changed. Make a credit note to correct it.";

// The lines of a document: "title | detail | quantity unit × price = amount".
std::vector<std::string> lines(const Invoice& document)
{
    std::vector<std::string> texts;
    for (const auto& line : document.lines) {
        texts.push_back(line.title + " | " + line.detail + " | " + line.quantity.toString() + " " + line.unit
            + " × " + line.unitPrice.toString() + " = " + line.amount.toString());
    }
    return texts;
}

TEST(Drafts, billEveryPartOfAJobsPrice)
{
    auto library = sampleLibrary();
    library.clients[0].minimumFee = 250;
    auto& first = library.jobs[0];
    first.analyses.push_back(analysis({ { MatchBand::exact, 500 } })); // Billed at 30%.
    first.rateOverride = decimal("0.12");
    first.surchargePercent = 10;
    first.extras = { { .title = "Review", .quantity = decimal("1.5"), .unit = "hours", .unitPrice = 40 },
        { .title = "Nothing", .quantity = 0, .unitPrice = 5 } };
    first.reference = "PO 4711";
    auto& second = library.jobs[1]; // No words, a discount, no title, delivered after midnight in Berlin.
    second.title.clear();
    second.analyses.clear();
    second.pair.source.clear();
    second.extras = { { .title = "Layout", .quantity = 1, .unitPrice = 300 },
        { .title = "Discount", .quantity = 1, .unitPrice = -20 } };
    second.deliveredAt = instant("2026-03-06T23:30:00Z");

    const auto& invoice = draft(library, { 12, 11, 12 });
    const std::vector<std::string> expected {
        "Layout | Untitled job, ? → en, delivered 7 March 2026 | 1  × 300 = 300",
        "Discount |  | 1  × -20 = -20",
        "Job 11 | de → en, 1,500 words, delivered 6 March 2026, PO 4711 | 1150 words × 0.12 = 138",
        "Surcharge 10% |  | 1  × 13.8 = 13.8",
        "Review |  | 1.5 hours × 40 = 60",
        "Minimum fee |  | 1  × 38.2 = 38.2",
    };
    EXPECT_EQ(lines(invoice), expected);
    for (std::size_t place = 0; place < expected.size(); ++place)
        EXPECT_EQ(invoice.lines[place].jobID, id(place < 2 ? 12 : 11));
    EXPECT_EQ(invoice.subtotal(), decimal("530.00"));
    EXPECT_EQ(library.jobs[0].invoiceID, invoice.id);
    EXPECT_EQ(library.jobs[1].invoiceID, invoice.id);
    EXPECT_EQ(library.jobs[0].modified, moment().now);
    EXPECT_EQ(library.jobs[0].status, JobStatus::delivered);

    library.clients[1].unit = RateUnit::character;
    library.jobs[2].deliveredAt.reset();
    library.jobs[2].analyses[0].rows[0].counts.characters = { { MatchBand::noMatch, 12'345 } };
    EXPECT_EQ(lines(draft(library, { 21 })),
        std::vector<std::string> { "Job 21 | de → en, 12,345 characters | 12345 characters × 0.1 = 1234.5" });
}

TEST(Drafts, keepTheTermsOfTheirMoment)
{
    auto library = sampleLibrary();
    library.clients[0].taxNote = "Reverse charge";
    library.clients[0].email = "ada@nordlicht.example";
    library.clients[1].paymentTerms = "Net 10.";
    const auto first = draft(library, { 11 }), second = draft(library, { 21 });
    EXPECT_EQ(first.kind, DocumentKind::invoice);
    EXPECT_EQ(first.clientID, id(1));
    EXPECT_EQ(first.client,
        (PartySnapshot { "Nordlicht Verlag", "Ada Ström", "Hafenweg 3\n20457 Hamburg",
            "ada@nordlicht.example", "DE123456789" }));
    EXPECT_EQ(first.currency + second.currency, "EURUSD");
    EXPECT_EQ(first.taxPercent, Decimal(19));
    EXPECT_EQ(first.taxLabel + first.taxNote, "VATReverse charge");
    EXPECT_EQ(first.paymentTerms, "Payment within 30 days of the invoice date, by bank transfer.");
    EXPECT_EQ(second.paymentTerms, "Net 10.");
    EXPECT_EQ(first.created, moment().now);
    EXPECT_FALSE(first.number || first.sequence || first.issueDate || first.dueDate || first.issuedAt
        || first.pdfFile || first.homeRate || first.creditsInvoiceID || first.creditsNumber);
    auto changed = client(1);
    changed.defaultRate = 5;
    changed.name = "Renamed";
    changed.taxPercent = 0;
    Ledger::replaceClient(library, changed);
    EXPECT_EQ(*library.invoice(first.id), first);
    EXPECT_EQ(issue(library, first.id).total(), decimal("119.00"));
}

TEST(Drafts, takeOnlyFreeJobsOfOneClient)
{
    auto library = sampleLibrary();
    issued(library, { 11 });
    EXPECT_EQ(refusal(library, [&] { draft(library, {}); }), "Choose at least one job for the invoice.");
    EXPECT_EQ(refusal(library, [&] { draft(library, { 12, 99 }); }), gone);
    EXPECT_EQ(refusal(library, [&] { draft(library, { 12, 21 }); }), "An invoice holds jobs for one client.");
    EXPECT_EQ(refusal(library, [&] { draft(library, { 12, 11 }); }), "This job is on INV-2026-001.");
    draft(library, { 12 });
    EXPECT_EQ(refusal(library, [&] { draft(library, { 12 }); }), "This job is on a draft invoice.");
}

TEST(Drafts, areEditedInWhatIsPrinted)
{
    auto library = sampleLibrary();
    const auto invoiceID = draft(library, { 11 }).id;
    auto edited = *library.invoice(invoiceID);
    edited.lines.front().jobID = id(12); // Job 12 in the place of job 11.
    edited.lines.push_back({ .id = id(801), .title = "Courier", .quantity = 1, .amount = 7 });
    edited.issueDate = noon("2026-03-11");
    edited.dueDate = noon("2026-05-01");
    edited.taxPercent = 7;
    edited.taxLabel = "MwSt.";
    edited.taxNote = "Note";
    edited.paymentTerms = "At once";
    edited.notes = "Thank you";
    edited.client.name = "Nordlicht";
    const auto wanted = edited;
    edited.payments = { { .amount = 5 } }; // What isn't edited but recorded or set by issuing.
    edited.pdfFile = "a.pdf";
    edited.sequence = 9;
    edited.homeCurrency = "CHF";
    edited.creditsNumber = "x";
    edited.created = {};
    Ledger::editDraft(library, edited, moment().now);
    EXPECT_EQ(*library.invoice(invoiceID), wanted);
    EXPECT_FALSE(library.job(id(11))->invoiceID);
    EXPECT_EQ(library.job(id(12))->invoiceID, invoiceID);
    Ledger::deleteDraft(library, invoiceID, moment().now);
    EXPECT_TRUE(library.invoices.empty());
    EXPECT_FALSE(library.job(id(12))->invoiceID);
    EXPECT_EQ(library.job(id(12))->status, JobStatus::delivered);
}

TEST(Drafts, refuseEditsThatTheyCannotHold)
{
    auto library = sampleLibrary();
    const auto sent = issued(library, { 11 });
    const auto open = draft(library, { 12 });
    const auto edited = [&](auto change) {
        auto copy = open;
        change(copy);
        return refusal(library, [&] { Ledger::editDraft(library, copy, moment().now); });
    };
    const std::string identity = "A draft keeps its kind, its client and its currency.";
    EXPECT_EQ(edited([](Invoice& copy) { copy.kind = DocumentKind::creditNote; }), identity);
    EXPECT_EQ(edited([](Invoice& copy) { copy.clientID = id(2); }), identity);
    EXPECT_EQ(edited([](Invoice& copy) { copy.currency = "CHF"; }), identity);
    EXPECT_EQ(edited([](Invoice& copy) { copy.number = "X"; }), "Only a draft can be changed.");
    EXPECT_EQ(edited([](Invoice& copy) { copy.issuedAt = moment().now; }), "Only a draft can be changed.");
    EXPECT_EQ(edited([](Invoice& copy) { copy.lines[0].jobID = id(11); }), "This job is on INV-2026-001.");
    EXPECT_EQ(
        edited([](Invoice& copy) { copy.lines[0].jobID = id(21); }), "An invoice holds jobs for one client.");
    EXPECT_EQ(edited([](Invoice& copy) { copy.lines[0].jobID = id(99); }), gone);
    EXPECT_EQ(edited([](Invoice& copy) { copy.id = id(99); }), gone);
    EXPECT_EQ(refusal(library, [&] { Ledger::editDraft(library, sent, moment().now); }), locked);
    EXPECT_EQ(refusal(library, [&] { Ledger::deleteDraft(library, sent.id, moment().now); }), locked);
    EXPECT_EQ(refusal(library, [&] { Ledger::deleteDraft(library, id(99), moment().now); }), gone);
}

TEST(Issuing, setsAllThatADraftLacks)
{
    auto library = sampleLibrary();
    const auto drafted = draft(library, { 11, 12 });
    const auto before = library;
    const auto plan = Ledger::planIssue(library, drafted.id, std::nullopt, moment());
    EXPECT_EQ(library, before) << "a plan changes nothing";
    Ledger::carryOut(library, plan);
    auto expected = drafted;
    expected.number = "INV-2026-001";
    expected.sequence = 1;
    expected.issueDate = noon("2026-03-09");
    expected.dueDate = noon("2026-03-23");
    expected.homeCurrency = "EUR";
    expected.homeRate = library.invoices[0].homeRate;
    expected.pdfFile = "Invoices/INV-2026-001.pdf";
    expected.issuedAt = moment().now;
    EXPECT_EQ(library.invoices, std::vector { expected });
    EXPECT_EQ(expected.homeRate->rate, Decimal(1));
    EXPECT_EQ(library.profile.invoiceSeries.next, (std::map<std::int64_t, std::int64_t> { { 2026, 2 } }));
    for (const auto number : { 11u, 12u }) {
        EXPECT_EQ(library.job(id(number))->status, JobStatus::invoiced);
        EXPECT_EQ(library.job(id(number))->modified, moment().now);
    }
    const auto after = library;
    Ledger::carryOut(library, plan);
    EXPECT_EQ(library, after) << "and again changes nothing more";
    library = before; // As after a restored backup: the draft is unknown and the counter has fallen back.
    library.invoices.clear();
    Ledger::carryOut(library, plan);
    EXPECT_EQ(library, after);
    EXPECT_EQ(Ledger::pdfPath("RE/26:1"), "Invoices/RE261.pdf");
}

TEST(Issuing, datesTheDocumentInTheUsersZone)
{
    const struct {
        std::string now, zone, asked, drafted, draftedDue;
        std::string number, issueDate, dueDate;
    } cases[] {
        { "2026-03-20T10:00:00Z", "Europe/Berlin", "", "", "", "INV-2026-001", "2026-03-20",
            "2026-04-03" }, // Summer time begins in between.
        { "2026-12-31T23:30:00Z", "Europe/Berlin", "", "", "", "INV-2027-001", "2027-01-01", "2027-01-15" },
        { "2026-12-31T23:30:00Z", "America/New_York", "", "", "", "INV-2026-001", "2026-12-31",
            "2027-01-14" },
        { "2026-12-31T10:30:00Z", "Pacific/Apia", "", "", "", "INV-2026-001", "2026-12-31", "2027-01-14" },
        { "2026-12-31T11:30:00Z", "Pacific/Apia", "", "", "", "INV-2027-001", "2027-01-01", "2027-01-15" },
        { "2026-03-20T10:00:00Z", "Europe/Berlin", "", "2025-12-31", "", "INV-2025-001", "2025-12-31",
            "2026-01-14" },
        { "2026-03-20T10:00:00Z", "Europe/Berlin", "2024-02-15", "2025-12-31", "", "INV-2024-001",
            "2024-02-15", "2024-02-29" },
        { "2026-03-20T10:00:00Z", "Europe/Berlin", "", "", "2026-06-30", "INV-2026-001", "2026-03-20",
            "2026-06-30" },
    };
    for (const auto& [now, zone, asked, drafted, draftedDue, number, issueDate, dueDate] : cases) {
        SCOPED_TRACE(now + " " + zone + " " + asked);
        const Base::Moment when { instant(now), calendar(zone) };
        const auto evening = [&](const std::string& text) {
            return text.empty() ? std::nullopt : std::optional(when.calendar.instant(day(text), 21, 0));
        };
        auto library = sampleLibrary();
        auto& invoice = draft(library, { 11 }, when);
        invoice.issueDate = evening(drafted);
        invoice.dueDate = evening(draftedDue);
        const auto document = issue(library, invoice.id, when, evening(asked));
        EXPECT_EQ(document.number, number);
        EXPECT_EQ(document.issueDate, when.calendar.noon(day(issueDate)));
        EXPECT_EQ(document.dueDate, when.calendar.noon(day(dueDate)));
        EXPECT_EQ(document.issuedAt, when.now);
    }
}

TEST(Issuing, refusesWhatMayNotBecomeADocument)
{
    auto library = sampleLibrary();
    const auto issuedID = issued(library, { 11 }).id;
    const auto draftID = draft(library, { 12 }).id;
    const auto plan = [&](const Base::Uuid& id) {
        return refusal(library, [&] { Ledger::planIssue(library, id, std::nullopt, moment()); });
    };
    EXPECT_EQ(plan(id(99)), gone);
    EXPECT_EQ(plan(issuedID), "Only a draft can be changed.");
    auto& lines = library.invoice(draftID)->lines;
    lines[0].amount = decimal("-0.01");
    EXPECT_EQ(plan(draftID), "An invoice’s total can’t be below zero; make a credit note instead.");
    lines.clear();
    EXPECT_EQ(plan(draftID), "Add at least one line before issuing.");
    lines.push_back({ .id = id(801), .title = "Goodwill", .quantity = 1 });
    library.profile.invoiceSeries.next[2026] = 1;
    EXPECT_EQ(plan(draftID), "The number INV-2026-001 is already used.");
    library.profile.invoiceSeries.next[2026] = 2;
    // A total of 0 is no reason to refuse; it shows as credited, yet its job isn't freed.
    EXPECT_EQ(Ledger::status(library, issue(library, draftID), moment()), InvoiceStatus::credited);
    EXPECT_EQ(library.job(id(12))->status, JobStatus::invoiced);
    EXPECT_EQ(library.job(id(12))->invoiceID, draftID);
}

TEST(Invoices, totalsRoundTheTaxOnTheirSumOnce)
{
    const struct {
        std::string currency;
        std::vector<std::string> amounts;
        std::string percent, subtotal, tax, total;
    } cases[] {
        { "EUR", { "0.13", "0.13" }, "19", "0.26", "0.05", "0.31" }, // 0.0494, not twice 0.0247.
        { "EUR", { "10.50" }, "5", "10.5", "0.53", "11.03" }, // 0.525 away from zero
        { "EUR", { "-10.50" }, "5", "-10.5", "-0.53", "-11.03" },
        { "JPY", { "1005" }, "10", "1005", "101", "1106" },
        { "KWD", { "1.005", "2" }, "7.5", "3.005", "0.225", "3.23" },
        { "USD", { "100", "-40" }, "0", "60", "0", "60" },
        { "EUR", {}, "19", "0", "0", "0" },
    };
    for (const auto& [currency, amounts, percent, subtotal, tax, total] : cases) {
        Invoice invoice { .currency = currency, .taxPercent = decimal(percent) };
        for (const auto& amount : amounts)
            invoice.lines.push_back({ .quantity = 7, .unitPrice = 3, .amount = decimal(amount) });
        EXPECT_EQ(invoice.subtotal().toString(), subtotal);
        EXPECT_EQ(invoice.tax().toString(), tax);
        EXPECT_EQ(invoice.total().toString(), total);
    }
}

TEST(Invoices, standAsPaymentsCreditsAndTheDaySay)
{
    const struct {
        std::vector<std::string> payments;
        std::string credit, today; // The total is 119.00, due on 23 March; credits are before tax.
        std::string label, due;
        JobStatus job;
    } cases[] {
        { {}, "", "2026-03-23", "Open", "119", JobStatus::invoiced },
        { {}, "", "2026-03-24", "Overdue", "119", JobStatus::invoiced },
        { { "50" }, "", "2026-03-23", "Part paid", "69", JobStatus::invoiced },
        { { "50" }, "", "2026-03-24", "Overdue", "69", JobStatus::invoiced },
        { { "50", "68.99" }, "", "2026-03-23", "Part paid", "0.01", JobStatus::invoiced },
        { { "50", "69" }, "", "2026-04-30", "Paid", "0", JobStatus::paid },
        { { "120" }, "", "2026-04-30", "Paid", "0", JobStatus::paid },
        { {}, "50", "2026-03-23", "Open", "59.5", JobStatus::invoiced },
        { { "59.50" }, "50", "2026-04-30", "Paid", "0", JobStatus::paid },
        { {}, "100", "2026-04-30", "Credited", "0", JobStatus::delivered },
        { { "119" }, "100", "2026-04-30", "Credited", "0", JobStatus::delivered },
    };
    for (const auto& [payments, creditNet, today, label, due, job] : cases) {
        SCOPED_TRACE(label + " " + due + " on " + today);
        auto library = sampleLibrary();
        const auto invoiceID = draft(library, { 11 }).id;
        const auto status = [&] {
            return std::string(
                Pallisande::label(Ledger::status(library, *library.invoice(invoiceID), momentOn(today))));
        };
        EXPECT_EQ(status(), "Draft");
        issue(library, invoiceID);
        for (const auto& amount : payments)
            pay(library, invoiceID, amount);
        if (!creditNet.empty()) {
            credit(library, invoiceID, decimal(creditNet));
            EXPECT_EQ(
                Ledger::status(library, library.invoices[1], momentOn(today)), InvoiceStatus::creditNote);
        }
        EXPECT_EQ(status(), label);
        EXPECT_EQ(
            Ledger::stillDue(library.invoices[0], Ledger::credited(library, invoiceID)).toString(), due);
        EXPECT_EQ(Ledger::CreditedAmounts(library).of(invoiceID), Ledger::credited(library, invoiceID));
        EXPECT_EQ(library.job(id(11))->status, job);
        EXPECT_EQ(library.job(id(11))->invoiceID.has_value(), job != JobStatus::delivered);
        EXPECT_EQ(library.job(id(12))->status, JobStatus::delivered);
    }
}

TEST(Invoices, areOverdueFromTheMidnightAfterTheirDueDay)
{
    auto library = sampleLibrary();
    auto invoice = issued(library, { 11 }); // Due on 23 March, stored as noon in Berlin.
    const struct {
        std::string today, zone;
        bool isOverdue;
    } cases[] {
        { "2026-03-23T22:59:59.999Z", "Europe/Berlin", false },
        { "2026-03-23T23:00:00Z", "Europe/Berlin", true },
        { "2026-03-24T03:59:59Z", "America/New_York", false },
        { "2026-03-24T04:00:00Z", "America/New_York", true },
        { "2026-03-23T14:59:59Z", "Asia/Tokyo", false },
        { "2026-03-23T15:00:00Z", "Asia/Tokyo", true },
    };
    for (const auto& [today, zone, isOverdue] : cases) {
        EXPECT_EQ(Ledger::status(invoice, 0, instant(today), calendar(zone)),
            isOverdue ? InvoiceStatus::overdue : InvoiceStatus::open)
            << today << " " << zone;
    }
    invoice.dueDate.reset();
    EXPECT_EQ(Ledger::status(invoice, 0, instant("2099-01-01T00:00:00Z"), calendar()), InvoiceStatus::open);
}

} // namespace
