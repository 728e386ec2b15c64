#include "PallisandeKit/Ledger/Ledger.h"

#include "PallisandeKit/Pricing/JobPricing.h"
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

ExchangeRate rate(
    const std::string& from, const std::string& to, std::string_view value, std::string_view date)
{
    return { .id = id(70),
        .from = from,
        .to = to,
        .rate = decimal(value),
        .date = noon(date),
        .source = TypedByUser { "bank" },
        .recordedAt = instant("2026-03-01T09:00:00Z") };
}

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

TEST(Clients, areAddedReplacedArchivedAndDeleted)
{
    auto library = sampleLibrary();
    auto& added = Ledger::addClient(library, client(3));
    EXPECT_EQ(&added, &library.clients.back());
    auto renamed = client(2);
    renamed.name = "Renamed";
    Ledger::replaceClient(library, renamed);
    EXPECT_EQ(library.clients[1], renamed) << "in the old one's place";
    const auto before = library;
    Ledger::replaceClient(library, client(99));
    EXPECT_EQ(library, before);
    for (const bool archived : { true, false }) {
        Ledger::archiveClient(library, id(2), archived);
        EXPECT_EQ(library.client(id(2))->archived, archived);
    }
    library.counting.cardClients = { { id(5), id(3) }, { id(6), id(1) } };
    Ledger::deleteClient(library, id(3));
    EXPECT_FALSE(library.client(id(3)));
    EXPECT_EQ(library.counting.cardClients, (std::map<Base::Uuid, Base::Uuid> { { id(6), id(1) } }));
}

TEST(Clients, refuseWhatTheirRecordsForbid)
{
    auto library = sampleLibrary();
    issued(library, { 21 });
    library.jobs.pop_back(); // Client 2 is left with an invoice and no job.
    auto odd = client(3);
    odd.currency = "Eur";
    const std::string currency = "“Eur” isn’t a currency code; use three capital letters such as EUR.";
    EXPECT_EQ(refusal(library, [&] { Ledger::addClient(library, odd); }), currency);
    odd.id = id(1);
    EXPECT_EQ(refusal(library, [&] { Ledger::replaceClient(library, odd); }), currency);
    EXPECT_EQ(refusal(library, [&] { Ledger::addClient(library, client(1)); }),
        "A client with this id is already there.");
    EXPECT_EQ(refusal(library, [&] { Ledger::archiveClient(library, id(99), true); }), gone);
    EXPECT_EQ(refusal(library, [&] { Ledger::deleteClient(library, id(99)); }), gone);
    EXPECT_EQ(refusal(library, [&] { Ledger::deleteClient(library, id(1)); }),
        "Nordlicht Verlag has jobs or invoices. Archive the client instead.");
    EXPECT_EQ(refusal(library, [&] { Ledger::deleteClient(library, id(2)); }),
        "Harbor Books has jobs or invoices. Archive the client instead.");
}

TEST(Jobs, changeTheirStatusByHandOnlyAsTheTableSays)
{
    // A row for each status now, a column for each new one.
    const std::string_view allowed[] { "yy...y", "yyy..y", ".yy..y", "...y..", "....y.", "yy...y" };
    const std::string_view names[] { "Quote", "In progress", "Delivered", "Invoiced", "Paid", "Cancelled" };
    const auto now = instant("2026-04-01T10:00:00Z");
    for (std::size_t from = 0; from < 6; ++from) {
        for (std::size_t to = 0; to < 6; ++to) {
            SCOPED_TRACE(std::string(names[from]) + " to " + std::string(names[to]));
            auto library = sampleLibrary();
            auto& job = library.jobs.front();
            job.status = static_cast<JobStatus>(from);
            job.deliveredAt.reset();
            const auto answer = refusal(
                library, [&] { Ledger::setStatus(library, job.id, static_cast<JobStatus>(to), now); });
            if (allowed[from][to] == 'y') {
                EXPECT_EQ(answer, "(not refused)");
                EXPECT_EQ(job.status, static_cast<JobStatus>(to));
                EXPECT_EQ(job.modified, now);
                EXPECT_EQ(job.deliveredAt.has_value(), to == 2 && from != 2);
            } else {
                EXPECT_EQ(answer,
                    "A job can’t go from " + std::string(names[from]) + " to " + std::string(names[to])
                        + " by hand.");
            }
        }
    }
    auto library = sampleLibrary();
    EXPECT_EQ(refusal(library, [&] { Ledger::setStatus(library, id(99), JobStatus::quote, now); }), gone);
}

TEST(Jobs, deliveredAgainKeepTheirFirstDelivery)
{
    auto library = sampleLibrary();
    const auto first = library.jobs[0].deliveredAt;
    Ledger::setStatus(library, id(11), JobStatus::inProgress, moment().now);
    EXPECT_EQ(library.jobs[0].deliveredAt, first);
    Ledger::setStatus(library, id(11), JobStatus::delivered, moment().now);
    EXPECT_EQ(library.jobs[0].deliveredAt, first);
}

TEST(Jobs, areAddedReplacedAndDeleted)
{
    auto library = sampleLibrary();
    auto added = job(13, 1, 10);
    added.status = JobStatus::cancelled;
    EXPECT_EQ(Ledger::addJob(library, added), added);
    auto& invoice = issued(library, { 11 });
    Ledger::giveQuoteNumber(library, id(11), moment());

    // What only other operations change stays as it was.
    auto edited = job(11, 1, 777);
    edited.title = "Edited";
    edited.status = JobStatus::quote;
    edited.created = {};
    const auto now = instant("2026-04-01T10:00:00Z");
    Ledger::replaceJob(library, edited, now);
    const auto& replaced = library.jobs.front();
    EXPECT_EQ(replaced.title, "Edited");
    EXPECT_EQ(replaced.status, JobStatus::invoiced);
    EXPECT_EQ(replaced.invoiceID, invoice.id);
    EXPECT_EQ(replaced.quoteNumber, "Q-2026-001");
    EXPECT_EQ(replaced.created, job(11, 1, 1).created);
    EXPECT_EQ(replaced.modified, now);
    auto before = library;
    Ledger::replaceJob(library, job(99, 1, 1), now);
    EXPECT_EQ(library, before);

    auto moved = *library.job(id(12));
    moved.clientID = id(2);
    Ledger::replaceJob(library, moved, now);
    EXPECT_EQ(library.job(id(12))->clientID, id(2)) << "a job on no invoice may change its client";
    Ledger::deleteJob(library, id(13));
    EXPECT_FALSE(library.job(id(13)));

    edited.clientID = id(2);
    EXPECT_EQ(refusal(library, [&] { Ledger::replaceJob(library, edited, now); }),
        "An invoice holds jobs for one client.");
    edited.clientID = id(99);
    EXPECT_EQ(refusal(library, [&] { Ledger::replaceJob(library, edited, now); }), gone);
    EXPECT_EQ(refusal(library, [&] { Ledger::deleteJob(library, id(99)); }), gone);
    EXPECT_EQ(refusal(library, [&] { Ledger::deleteJob(library, id(11)); }), "This job is on INV-2026-001.");
    draft(library, { 21 });
    EXPECT_EQ(
        refusal(library, [&] { Ledger::deleteJob(library, id(21)); }), "This job is on a draft invoice.");
}

TEST(Jobs, startUnbilled)
{
    auto library = sampleLibrary();
    const auto refused = [&](auto change) {
        auto fresh = job(13, 1, 10);
        change(fresh);
        return refusal(library, [&] { Ledger::addJob(library, fresh); });
    };
    const std::string early = "A new job has neither an invoice nor a quote number yet.";
    EXPECT_EQ(refused([](Job& job) { job.clientID = id(99); }), gone);
    EXPECT_EQ(refused([](Job& job) { job.id = id(12); }), "A job with this id is already there.");
    EXPECT_EQ(refused([](Job& job) { job.status = JobStatus::invoiced; }),
        "A job can’t go from Quote to Invoiced by hand.");
    EXPECT_EQ(refused([](Job& job) { job.status = JobStatus::paid; }),
        "A job can’t go from Quote to Paid by hand.");
    EXPECT_EQ(refused([](Job& job) { job.invoiceID = id(1); }), early);
    EXPECT_EQ(refused([](Job& job) { job.quoteNumber = "Q-1"; }), early);
}

TEST(Jobs, takeAnalysesWhileTheCountsStayRight)
{
    auto library = sampleLibrary();
    const auto now = instant("2026-04-01T10:00:00Z");
    const auto huge = analysis({ { MatchBand::noMatch, 9'007'199'254'740'991 - 3'500 } });
    Ledger::attachAnalysis(library, id(11), huge, now);
    EXPECT_EQ(library.jobs[0].analyses.size(), 2u);
    EXPECT_EQ(library.jobs[0].modified, now);
    const auto one = analysis({ { MatchBand::exact, 1 } });
    EXPECT_EQ(refusal(library, [&] { Ledger::attachAnalysis(library, id(12), one, now); }),
        "With this analysis the library’s counts would be too large to be right.");
    EXPECT_EQ(refusal(library, [&] { Ledger::attachAnalysis(library, id(99), one, now); }), gone);
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

TEST(Payments, keepTheRateOfTheirOwnDay)
{
    auto library = sampleLibrary();
    for (const auto& [value, date] : { std::pair { "0.90", "2026-03-02" }, { "0.95", "2026-03-16" } })
        Ledger::addTypedRate(library, rate("USD", "EUR", value, date));
    const auto invoiceID = issued(library, { 21 }).id;
    EXPECT_EQ(library.invoices[0].homeRate->rate, decimal("0.90"));
    const auto rateOf = [](const Payment& payment) {
        return payment.rate
            ? payment.rate->rate.toString() + " of " + calendar().day(payment.rate->date).toString()
            : "none";
    };

    EXPECT_EQ(rateOf(pay(library, invoiceID, "10", "2026-02-20")), "none");
    const auto first = Ledger::addPayment(library, invoiceID,
        { .date = instant("2026-03-19T23:30:00Z"), .amount = 20, .receivedHome = 17, .note = "wire" },
        moment());
    EXPECT_EQ(first.date, noon("2026-03-20"));
    EXPECT_FALSE(first.id.isNil());
    EXPECT_EQ(first.receivedHome, Decimal(17));
    EXPECT_EQ(rateOf(first), "0.95 of 2026-03-16");
    const auto own = rate("USD", "EUR", "0.77", "2026-03-20");
    EXPECT_EQ(Ledger::addPayment(
                  library, invoiceID, { .id = id(60), .date = own.date, .amount = 1, .rate = own }, moment())
                  .rate,
        own);

    const auto edited = [&](auto change) {
        auto payment = library.invoices[0].payments[1];
        change(payment);
        Ledger::editPayment(library, invoiceID, payment, moment());
        return rateOf(library.invoices[0].payments[1]);
    };
    library.rates.typed.clear(); // What is recorded doesn't follow the book, unless the day changes.
    Ledger::addTypedRate(library, rate("USD", "EUR", "0.5", "2026-03-01"));
    EXPECT_EQ(edited([](Payment& payment) { payment.amount = 25; }), "0.95 of 2026-03-16");
    EXPECT_EQ(edited([](Payment& payment) { payment.date = noon("2026-03-18"); }), "0.5 of 2026-03-01");
    EXPECT_EQ(edited([&](Payment& payment) { payment.date = noon("2026-03-19"), payment.rate = own; }),
        "0.77 of 2026-03-20");
    EXPECT_EQ(library.invoices[0].paid(), Decimal(36));
    EXPECT_EQ(rateOf(pay(library, issued(library, { 11 }).id, "1")), "1 of 2026-03-09") << "EUR to EUR";
}

TEST(Payments, moveTheJobsToPaidAndBack)
{
    auto library = sampleLibrary();
    const auto invoiceID = issued(library, { 11, 12 }).id; // 178.50
    const auto& first = *library.job(id(11));
    pay(library, invoiceID, "100");
    auto last = pay(library, invoiceID, "78.50");
    EXPECT_EQ(first.status, JobStatus::paid);
    EXPECT_EQ(library.job(id(12))->status, JobStatus::paid);
    last.amount = decimal("78.49");
    const auto later = momentOn("2026-04-02");
    Ledger::editPayment(library, invoiceID, last, later);
    EXPECT_EQ(first.status, JobStatus::invoiced);
    EXPECT_EQ(first.modified, later.now);
    last.amount = 500;
    Ledger::editPayment(library, invoiceID, last, later);
    EXPECT_EQ(first.status, JobStatus::paid);
    Ledger::removePayment(library, invoiceID, last.id, later);
    EXPECT_EQ(first.status, JobStatus::invoiced);
    EXPECT_EQ(library.invoices[0].payments.size(), 1u);
}

TEST(Payments, areRefusedWhereThereIsNothingToPay)
{
    auto library = sampleLibrary();
    const auto invoiceID = issued(library, { 11 }).id, draftID = draft(library, { 12 }).id;
    const auto noteID = credit(library, invoiceID, 10).id;
    const auto known = pay(library, invoiceID, "5").id;
    const auto added = [&](const Base::Uuid& document, std::string_view amount) {
        return refusal(library, [&] { pay(library, document, amount); });
    };
    EXPECT_EQ(added(draftID, "1"), "Payments go on issued invoices.");
    EXPECT_EQ(added(noteID, "1"), "Payments go on issued invoices.");
    EXPECT_EQ(added(id(99), "1"), gone);
    EXPECT_EQ(added(invoiceID, "0"), "A payment must be more than zero.");
    EXPECT_EQ(added(invoiceID, "-3"), "A payment must be more than zero.");
    const auto edited = [&](const Base::Uuid& payment, int amount) {
        return refusal(library, [&] {
            Ledger::editPayment(
                library, invoiceID, { .id = payment, .date = moment().now, .amount = amount }, moment());
        });
    };
    EXPECT_EQ(edited(known, 0), "A payment must be more than zero.");
    EXPECT_EQ(edited(id(98), 1), gone);
    EXPECT_EQ(refusal(library, [&] { Ledger::removePayment(library, invoiceID, id(98), moment()); }), gone);
    EXPECT_EQ(refusal(library, [&] { Ledger::removePayment(library, draftID, known, moment()); }),
        "Payments go on issued invoices.");
}

TEST(HomeRates, areAddedLaterOnlyWhereThereWasNone)
{
    auto library = sampleLibrary();
    const auto draftID = draft(library, { 21 }).id;
    auto late = rate("USD", "EUR", "0.9", "2026-03-09");
    late.recordedAt = instant("2026-03-12T09:00:00Z");
    const auto set = [&](const Base::Uuid& document, const ExchangeRate& rate) {
        return refusal(library, [&] { Ledger::setHomeRate(library, document, rate); });
    };
    EXPECT_EQ(set(draftID, late), "A draft gets its exchange rate when it is issued.");
    EXPECT_FALSE(issue(library, draftID).homeRate) << "issued all the same";
    const std::string direction = "This document needs a rate from USD to EUR.";
    EXPECT_EQ(set(draftID, rate("EUR", "USD", "1.1", "2026-03-09")), direction);
    EXPECT_EQ(set(draftID, rate("USD", "CHF", "1.1", "2026-03-09")), direction);
    EXPECT_EQ(set(draftID, rate("USD", "EUR", "0", "2026-03-09")), "A rate must be more than zero.");
    EXPECT_EQ(set(draftID, rate("USD", "USD", "1", "2026-03-09")), "Choose two different currencies.");
    EXPECT_EQ(set(id(99), late), gone);
    EXPECT_EQ(set(draftID, late), "(not refused)");
    late.rate = decimal("0.91"); // Mistyped the first time.
    EXPECT_EQ(set(draftID, late), "(not refused)");
    EXPECT_EQ(library.invoices[0].homeRate, late);
    library.rates.typed.push_back(late);
    EXPECT_EQ(set(issued(library, { 11 }).id, late),
        "INV-2026-002 is issued and can’t be changed. Make a credit note to correct it.");
}

} // namespace
