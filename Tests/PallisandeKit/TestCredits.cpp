#include "Tests/Support/Samples.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Pallisande;
using namespace Test;
using Base::Decimal;

namespace {

Invoice& creditDraft(Library& library, const Base::Uuid& invoiceID)
{
    return Ledger::makeCreditNote(library, invoiceID, moment(), labels());
}

// The sentence of issuing a credit note over `net` before tax; it stays a draft when it is refused.
std::string outcome(Library& library, const Base::Uuid& noteID, const Decimal& net)
{
    auto edited = *library.invoice(noteID);
    edited.lines = { { .id = id(801), .title = "Credit", .quantity = 1, .amount = -net } };
    Ledger::editDraft(library, edited, moment().now);
    return refusal(library, [&] { issue(library, noteID); });
}

TEST(CreditNotes, startAsTheMirrorOfTheirInvoice)
{
    auto library = sampleLibrary();
    library.jobs[0].extras = { { .title = "Review", .quantity = 2, .unit = "hours", .unitPrice = 40 } };
    library.clients[0].taxNote = "Note";
    const auto invoice = issued(library, { 11, 12 });
    pay(library, invoice.id, "10");
    library.clients[0] = client(3); // What the client is now doesn't matter.
    library.clients[0].taxPercent = 7;
    const auto note = creditDraft(library, invoice.id);
    auto expected = note;
    expected.lines = invoice.lines;
    for (std::size_t place = 0; place < note.lines.size(); ++place) {
        auto& line = expected.lines[place];
        line.id = note.lines[place].id;
        EXPECT_NE(line.id, invoice.lines[place].id);
        line.jobID.reset();
        line.quantity = -line.quantity;
        line.amount = -line.amount;
    }
    EXPECT_EQ(note, expected);
    EXPECT_EQ(note.lines[1].unitPrice, Decimal(40)) << "−2 hours at 40";
    EXPECT_EQ(note.total(), -invoice.total());
    EXPECT_EQ(note.kind, DocumentKind::creditNote);
    EXPECT_EQ(note.creditsInvoiceID, invoice.id);
    EXPECT_EQ(note.creditsNumber, "INV-2026-001");
    EXPECT_EQ(note.clientID, invoice.clientID);
    EXPECT_EQ(note.client, invoice.client);
    EXPECT_EQ(note.currency + note.taxLabel + note.taxNote, "EURVATNote");
    EXPECT_EQ(note.taxPercent, Decimal(19));
    EXPECT_EQ(note.created, moment().now);
    EXPECT_FALSE(note.isIssued() || note.number || note.issueDate || note.homeRate);
    EXPECT_TRUE(note.payments.empty());
    EXPECT_EQ(Ledger::status(library, note, moment()), InvoiceStatus::draft);
    EXPECT_TRUE(Ledger::credited(library, invoice.id).isZero()) << "a draft credits nothing";
    Ledger::deleteDraft(library, note.id, moment().now);
    EXPECT_EQ(library.invoices.size(), 1u);
    EXPECT_EQ(library.job(id(11))->invoiceID, invoice.id);
}

TEST(CreditNotes, creditAnInvoiceInPartsUntilNothingIsLeft)
{
    auto library = sampleLibrary();
    const auto invoiceID = issued(library, { 11, 12 }).id; // 150.00 and 19%: 178.50.
    const auto first = credit(library, invoiceID, 40);
    EXPECT_EQ(first.number, "CN-2026-001");
    EXPECT_EQ(first.total(), decimal("-47.60"));
    EXPECT_EQ(first.pdfFile, "Invoices/CN-2026-001.pdf");
    EXPECT_EQ(first.issueDate, noon("2026-03-09"));
    EXPECT_FALSE(first.dueDate) << "nothing is due on it";
    EXPECT_EQ(Ledger::credited(library, invoiceID), decimal("47.60"));
    EXPECT_EQ(library.job(id(11))->status, JobStatus::invoiced);
    EXPECT_EQ(library.job(id(11))->invoiceID, invoiceID);
    EXPECT_EQ(credit(library, invoiceID, 10).number, "CN-2026-002");

    const auto rest = creditDraft(library, invoiceID);
    ASSERT_EQ(rest.lines.size(), 1u);
    EXPECT_EQ(rest.lines[0].title, "Credit for INV-2026-001");
    EXPECT_EQ(rest.lines[0].quantity, Decimal(-1));
    EXPECT_EQ(rest.lines[0].unitPrice, Decimal(100));
    EXPECT_EQ(rest.lines[0].amount, Decimal(-100));
    pay(library, invoiceID, "119");
    EXPECT_EQ(library.job(id(11))->status, JobStatus::paid);
    const auto later = momentOn("2026-05-04");
    issue(library, rest.id, later);
    for (const auto number : { 11u, 12u }) {
        EXPECT_EQ(library.job(id(number))->status, JobStatus::delivered);
        EXPECT_FALSE(library.job(id(number))->invoiceID);
        EXPECT_EQ(library.job(id(number))->modified, later.now);
    }
    EXPECT_EQ(Ledger::credited(library, invoiceID), decimal("178.50"));
    EXPECT_EQ(library.profile.invoiceSeries.next.at(2026), 2)
        << "the credit notes have a series of their own";

    // A job that is free again can be billed again, and its first invoice no longer touches it.
    const auto secondID = issued(library, { 11 }).id;
    EXPECT_EQ(*library.invoice(secondID)->number, "INV-2026-002");
    Ledger::removePayment(library, invoiceID, library.invoice(invoiceID)->payments[0].id, moment());
    pay(library, invoiceID, "500");
    EXPECT_EQ(library.job(id(11))->status, JobStatus::invoiced);
    EXPECT_EQ(library.job(id(11))->invoiceID, secondID);
    EXPECT_EQ(library.job(id(12))->status, JobStatus::delivered);
}

TEST(CreditNotes, areNeverForMoreThanIsLeft)
{
    auto library = sampleLibrary();
    library.clients[0].taxPercent = 0;
    const auto invoiceID = issued(library, { 11 }).id; // 100.00
    const std::string above = "The credit note is for more than is left on INV-2026-001.";
    const auto firstID = creditDraft(library, invoiceID).id;
    EXPECT_EQ(outcome(library, firstID, decimal("100.01")), above);
    EXPECT_EQ(outcome(library, firstID, decimal("60")), "(not refused)");
    pay(library, invoiceID, "30"); // Payments leave what can be credited as it is.
    const auto secondID = creditDraft(library, invoiceID).id;
    EXPECT_EQ(library.invoice(secondID)->total(), Decimal(-40));
    EXPECT_EQ(outcome(library, secondID, decimal("40.001")), above);
    EXPECT_EQ(outcome(library, secondID, 0), "A credit note’s total must be below zero.");
    EXPECT_EQ(outcome(library, secondID, -1), "A credit note’s total must be below zero.");
    library.invoice(secondID)->lines.clear();
    EXPECT_EQ(refusal(library, [&] { issue(library, secondID); }), "Add at least one line before issuing.");
    EXPECT_EQ(outcome(library, secondID, 40), "(not refused)");
    EXPECT_EQ(Ledger::status(library, *library.invoice(invoiceID), moment()), InvoiceStatus::credited);
}

TEST(CreditNotes, areMadeOnlyForInvoicesWithSomethingLeft)
{
    auto library = sampleLibrary();
    const auto invoiceID = issued(library, { 11 }).id, draftID = draft(library, { 12 }).id;
    const auto make = [&](const Base::Uuid& document) {
        return refusal(library, [&] { creditDraft(library, document); });
    };
    EXPECT_EQ(make(id(99)), "That item no longer exists.");
    EXPECT_EQ(make(draftID), "Credit notes are made for issued invoices.");
    const auto noteID = creditDraft(library, invoiceID).id;
    EXPECT_EQ(make(invoiceID), "A draft credit note for INV-2026-001 is already open.");
    EXPECT_EQ(make(noteID), "Credit notes are made for issued invoices.");
    const auto note = issue(library, noteID);
    EXPECT_EQ(make(noteID), "Credit notes are made for issued invoices.");
    EXPECT_EQ(make(invoiceID), "INV-2026-001 is already fully credited.");
    library.invoice(draftID)->lines[0].amount = 0;
    issue(library, draftID);
    EXPECT_EQ(make(draftID), "Nothing is left to credit on this invoice.");

    const std::string locked
        = "CN-2026-001 is issued and can’t be changed. Make a credit note to correct it.";
    EXPECT_EQ(refusal(library, [&] { Ledger::editDraft(library, note, moment().now); }), locked);
    EXPECT_EQ(refusal(library, [&] { Ledger::deleteDraft(library, noteID, moment().now); }), locked);
    EXPECT_EQ(refusal(library, [&] { issue(library, noteID); }), "Only a draft can be changed.");
}

TEST(CreditNotes, editedDraftsLeaveTheJobsAlone)
{
    auto library = sampleLibrary();
    const auto invoiceID = issued(library, { 11 }).id;
    auto note = creditDraft(library, invoiceID);
    note.lines[0].jobID = id(12);
    Ledger::editDraft(library, note, moment().now);
    EXPECT_FALSE(library.job(id(12))->invoiceID);
    note.lines[0].jobID = id(11);
    Ledger::editDraft(library, note, moment().now);
    note.lines[0].jobID.reset();
    Ledger::editDraft(library, note, moment().now);
    EXPECT_EQ(library.job(id(11))->invoiceID, invoiceID);
}

TEST(CreditNotes, keepTheRateOfTheirOwnDay)
{
    auto library = sampleLibrary();
    for (const auto& [value, date] : { std::pair { "0.90", "2026-03-02" }, { "0.95", "2026-03-16" } })
        library.rates.typed.push_back(
            { .from = "USD", .to = "EUR", .rate = decimal(value), .date = noon(date) });
    const auto invoiceID = issued(library, { 21 }).id;
    EXPECT_EQ(credit(library, invoiceID, 20, momentOn("2026-03-18")).homeRate->rate, decimal("0.95"));
    EXPECT_EQ(library.invoice(invoiceID)->homeRate->rate, decimal("0.90"));
}

TEST(CreditNotes, shareNoNumberWithInvoices)
{
    auto library = sampleLibrary();
    library.profile.creditSeries.prefix = library.profile.invoiceSeries.prefix;
    const auto invoiceID = issued(library, { 11 }).id;
    const auto noteID = creditDraft(library, invoiceID).id;
    EXPECT_EQ(outcome(library, noteID, 10), "The number INV-2026-001 is already used.");
    Ledger::setNextNumber(library, Ledger::Series::creditNotes, 2026, 2);
    EXPECT_EQ(outcome(library, noteID, 10), "(not refused)");
    EXPECT_EQ(library.invoice(noteID)->number, "INV-2026-002");
    const auto nextID = draft(library, { 12 }).id;
    EXPECT_EQ(refusal(library, [&] { issue(library, nextID); }), "The number INV-2026-002 is already used.");
}

// Rounding the tax makes some totals unreachable; then the credit note is the largest one below.
TEST(CreditNotes, coverTheRestExactlyWhereItCanBeReached)
{
    int reached = 0, unreachable = 0;
    for (const std::string currency : { "EUR", "JPY", "KWD" }) {
        for (const std::string percent : { "0", "7", "7.7", "19", "33.333", "100", "250" }) {
            for (const std::string creditNet : { "0.01", "3.33", "12.34", "50", "77.77", "99.99" }) {
                SCOPED_TRACE(currency + " " + percent + "% after " + creditNet);
                const int places = currency == "EUR" ? 2 : currency == "JPY" ? 0 : 3;
                const auto step = Decimal(1).shifted(-places);
                auto library = sampleLibrary();
                library.clients[0].currency = currency;
                library.clients[0].taxPercent = decimal(percent);
                const auto invoice = issued(library, { 11 }); // 100
                credit(library, invoice.id, std::max(step, decimal(creditNet).rounded(places)));
                const auto rest = invoice.total() - Ledger::credited(library, invoice.id);
                if (rest.isZero())
                    continue;
                const auto note = creditDraft(library, invoice.id);
                auto larger = note;
                larger.lines[0].amount -= step;
                EXPECT_LE(-note.total(), rest);
                EXPECT_GT(-larger.total(), rest);
                ++(-note.total() == rest ? reached : unreachable);
            }
        }
    }
    EXPECT_GT(reached, 80);
    EXPECT_GT(unreachable, 5);
}

} // namespace
