#include "PallisandeKit/Documents/InvoiceDocument.h"

#include "Tests/Support/Samples.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

using namespace Pallisande;
using namespace Test;
using Tamberlin::PrintedDocument;

namespace {

std::string joined(const std::vector<std::string>& parts)
{
    std::string text;
    for (const auto& part : parts)
        text += (text.empty() ? "" : " / ") + part;
    return text;
}

// All that is printed, a line for each thing.
std::string text(const PrintedDocument& document)
{
    std::string text = "[" + document.metadataTitle + "] [" + document.senderLine + "]\n";
    text += joined(document.senderDetails) + "\nto " + joined(document.recipient) + "\n";
    for (const auto& [label, value] : document.facts)
        text += label + ": " + value + "; ";
    text += "\n# " + document.title + "\n" + document.subtitle + "\n";
    for (const auto& row : document.rows) {
        text += joined({ row.title, row.detail, row.quantity, row.unit, row.price, row.amount, row.sumSoFar })
            + "\n";
    }
    for (const auto& [label, amount] : document.totals)
        text += label + " = " + amount + "\n";
    for (const auto& remark : document.remarks)
        text += "* " + remark + "\n";
    return text + "[" + document.footerLeft + "] [" + document.footerRight + "]\n";
}

Library printingLibrary()
{
    auto library = sampleLibrary();
    library.profile.sender = { .name = "Maria Harrow",
        .address = " 14 Mill Lane\n\nBath BA1 2QF ",
        .email = "maria@harrow.example",
        .website = "harrow.example",
        .taxID = "GB 123",
        .logo = "iVBORw==" };
    library.profile.bankDetails = "IBAN GB33\nBIC BUKB";
    library.profile.paper = Tamberlin::Paper::letter;
    library.clients[0].taxNote = " Tax note ";
    library.clients[0].paymentTerms = "Net 14.";
    auto& job = library.jobs[0];
    job.analyses = { analysis({ { MatchBand::noMatch, 12'340 }, { MatchBand::exact, 1 } }) };
    job.rateOverride = decimal("0.1");
    job.reference = "PO 4711";
    job.surchargePercent = decimal("-2.5");
    job.extras = {
        { .title = "Review", .quantity = decimal("1.5"), .unit = "hours", .unitPrice = decimal("40.125") },
        { .title = "Flat fee", .quantity = 1, .unitPrice = 10 },
        { .title = "Pages", .quantity = 3, .unitPrice = 2 }
    };
    return library;
}

PrintedDocument print(const Library& library, const Invoice& document, std::string_view language = "en",
    std::string_view zone = "Europe/Berlin")
{
    return invoiceDocument(library, document, language, calendar(zone));
}

TEST(InvoiceDocument, showsAnInvoiceFromHeadToFoot)
{
    auto library = printingLibrary();
    const auto drafted = draft(library, { 11, 12 }).id;
    library.invoice(drafted)->notes = "Thank you";
    const auto printed = print(library, issue(library, drafted));
    EXPECT_EQ(text(printed), R"([Invoice INV-2026-001] [Maria Harrow · 14 Mill Lane, Bath BA1 2QF]
14 Mill Lane / Bath BA1 2QF / maria@harrow.example / harrow.example / Tax number GB 123
to Nordlicht Verlag / Ada Ström / Hafenweg 3 / 20457 Hamburg
Invoice: INV-2026-001; Date: 9 March 2026; Due: 23 March 2026; Your tax number: DE123456789; 
# Invoice

Job 11 / de → en, 12,341 words, delivered 6 March 2026, PO 4711 / 12,340.3 / words / 0.10 / 1,234.03 / 1,234.03
Surcharge −2.5% /  /  /  /  / −30.85 / 1,203.18
Review /  / 1.5 / hours / 40.125 / 60.19 / 1,263.37
Flat fee /  /  /  /  / 10.00 / 1,273.37
Pages /  / 3 /  / 2.00 / 6.00 / 1,279.37
Job 12 / de → en, 500 words, delivered 6 March 2026 / 500 / words / 0.10 / 50.00 / 1,329.37
Subtotal = 1,329.37
VAT 19% = 252.58
Total EUR = 1,581.95
* Tax note
* Thank you
* Net 14.
* IBAN GB33
BIC BUKB
[Maria Harrow · Tax number GB 123 · maria@harrow.example] [INV-2026-001]
)");
    EXPECT_EQ(printed.heads,
        (Tamberlin::PrintedHeads { "Description", "Quantity", "Unit", "Price", "Amount EUR" }));
    EXPECT_EQ(printed.carriedForward + ", " + printed.broughtForward, "Carried forward, Brought forward");
    EXPECT_EQ(printed.pageLabel, "Page {n} of {m}");
    EXPECT_EQ(printed.senderName, "Maria Harrow");
    EXPECT_EQ(printed.logo, "iVBORw==");
    EXPECT_EQ(printed.paper, Tamberlin::Paper::letter);
}

TEST(InvoiceDocument, showsACreditNoteWithItsInvoiceAndNoTerms)
{
    auto library = printingLibrary();
    library.jobs[0].analyses.clear();
    const auto invoiceID = issued(library, { 11 }, momentOn("2026-02-28")).id;
    auto note = Ledger::makeCreditNote(library, invoiceID, moment(), labels());
    note.dueDate = noon("2026-03-09");
    note.paymentTerms = "Net 14.";
    note.notes = "Sorry";
    Ledger::editDraft(library, note, moment().now);
    library.clients[0] = client(4); // What is printed was fixed when the invoice was drafted.
    const std::string head = "[Maria Harrow · 14 Mill Lane, Bath BA1 2QF]\n"
                             "14 Mill Lane / Bath BA1 2QF / maria@harrow.example / harrow.example / Tax "
                             "number GB 123\nto Nordlicht Verlag / Ada Ström / Hafenweg 3 / 20457 Hamburg\n";
    const std::string table
        = R"(Review / Job 11, de → en, delivered 6 March 2026, PO 4711 / −1.5 / hours / 40.125 / −60.19 / −60.19
Flat fee /  /  /  /  / −10.00 / −70.19
Pages /  / −3 /  / 2.00 / −6.00 / −76.19
Subtotal = −76.19
VAT 19% = −14.48
Total EUR = −90.67
* Tax note
* Sorry
)";
    const std::string foot = "[Maria Harrow · Tax number GB 123 · maria@harrow.example] ";
    EXPECT_EQ(text(print(library, note)),
        "[Credit note] " + head
            + "Your tax number: DE123456789; \n# Credit note\nCorrects invoice INV-2026-001 of 28 February "
              "2026"
              " · Draft, not an invoice\n"
            + table + foot + "[Draft, not an invoice]\n");
    EXPECT_EQ(text(print(library, issue(library, note.id))),
        "[Credit note CN-2026-001] " + head
            + "Credit note: CN-2026-001; Date: 9 March 2026; Your tax number: DE123456789; \n# Credit note\n"
              "Corrects invoice INV-2026-001 of 28 February 2026\n"
            + table + foot + "[CN-2026-001]\n");
}

TEST(InvoiceDocument, marksADraftAndLeavesOutWhatIsEmpty)
{
    Library library;
    Invoice invoice { .currency = "EUR" };
    EXPECT_EQ(text(print(library, invoice)),
        "[Invoice] []\n\nto \n\n# Invoice\nDraft, not an invoice\nTotal EUR = 0.00\n[] [Draft, not an "
        "invoice]\n");
    invoice.issueDate = noon("2026-03-09"); // A day that the user has chosen already.
    EXPECT_EQ(
        print(library, invoice).facts, (std::vector<Tamberlin::PrintedFact> { { "Date", "9 March 2026" } }));
    invoice.kind = DocumentKind::creditNote;
    invoice.creditsNumber = "INV-2026-001"; // Its invoice isn't there.
    EXPECT_EQ(print(library, invoice).subtitle, "Corrects invoice INV-2026-001 of – · Draft, not an invoice");
}

TEST(InvoiceDocument, showsMoneyInTheDocumentsCurrencyOnly)
{
    const struct {
        std::string currency, amount, taxPercent;
        std::string row, tax, total;
    } cases[] {
        { "EUR", "1234567.8", "7.25", "1,234,567.80", "89,506.17", "1,324,073.97" },
        { "JPY", "-1234567", "10", "−1,234,567", "−123,457", "−1,358,024" },
        { "KWD", "999.5", "0.5", "999.500", "4.998", "1,004.498" },
        { "USD", "-0.004", "19", "−0.004", "0.00", "−0.004" },
    };
    for (const auto& [currency, amount, taxPercent, row, tax, total] : cases) {
        Library library;
        library.profile.homeCurrency = "CHF";
        const Invoice invoice { .currency = currency,
            .lines = { { .title = "x", .quantity = 1, .amount = decimal(amount) } },
            .taxPercent = decimal(taxPercent),
            .homeCurrency = "CHF",
            .homeRate = ExchangeRate { .from = currency, .to = "CHF", .rate = decimal("0.9") } };
        const auto printed = print(library, invoice);
        EXPECT_EQ(printed.rows[0].amount, row);
        EXPECT_EQ(printed.heads.amount, "Amount " + currency);
        const std::vector<Tamberlin::PrintedTotal> totals { { "Subtotal", row },
            { "Tax " + taxPercent + "%", tax }, { "Total " + currency, total } };
        EXPECT_EQ(printed.totals, totals) << "without a label of its own, the tax is called Tax";
        EXPECT_EQ(text(printed).find("CHF"), std::string::npos);
    }
}

TEST(InvoiceDocument, takesItsDaysFromTheCalendarAndItsWordsFromTheLanguage)
{
    auto library = sampleLibrary();
    const auto& invoice = issued(library, { 21 }); // Noon in Berlin is past midnight on Kiritimati.
    EXPECT_EQ(print(library, invoice, "en", "America/Los_Angeles").facts[1].value, "9 March 2026");
    EXPECT_EQ(print(library, invoice, "en", "Pacific/Kiritimati").facts[1].value, "10 March 2026");
    for (const auto language : { "en-GB", "xx", "" }) { // English where there are no labels.
        auto printed = print(library, invoice, language);
        EXPECT_EQ(printed.language, language) << "it chooses the face for Chinese and Japanese";
        printed.language = "en";
        EXPECT_EQ(printed, print(library, invoice));
    }
    EXPECT_EQ(
        print(library, invoice).totals, (std::vector<Tamberlin::PrintedTotal> { { "Total USD", "200.00" } }))
        << "no tax, no subtotal";
}

} // namespace
