#pragma once

#include "Base/Decimal.h"
#include "Base/Instant.h"
#include "Base/Uuid.h"
#include "PallisandeKit/Rates/ExchangeRate.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Pallisande {

enum class DocumentKind { invoice, creditNote };
constexpr std::array<std::string_view, 2> caseNames(DocumentKind) { return { "invoice", "creditNote" }; }

// Follows from a document, its payments and credit notes and the day; never stored.
enum class InvoiceStatus { draft, open, overdue, partlyPaid, paid, credited, creditNote };
constexpr std::array<std::string_view, 7> caseNames(InvoiceStatus)
{
    return { "draft", "open", "overdue", "partlyPaid", "paid", "credited", "creditNote" };
}
std::string_view label(InvoiceStatus status); // "Part paid"

// The client's details as they are printed on a document.
struct PartySnapshot {
    std::string name;
    std::string contact;
    std::string address;
    std::string email;
    std::string taxID;

    bool operator==(const PartySnapshot&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("name", &PartySnapshot::name),
            Base::field("contact", &PartySnapshot::contact),
            Base::field("address", &PartySnapshot::address),
            Base::field("email", &PartySnapshot::email),
            Base::field("taxID", &PartySnapshot::taxID),
        };
    }
};
static_assert(Base::listsEveryMember<PartySnapshot>);

struct InvoiceLine {
    Base::Uuid id;
    std::optional<Base::Uuid> jobID; // The job that this line bills.
    std::string title;
    std::string detail; // A second line of text.
    Base::Decimal quantity;
    std::string unit;
    Base::Decimal unitPrice;
    Base::Decimal amount; // Before tax, in the document's currency; what totals add up.

    bool operator==(const InvoiceLine&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("id", &InvoiceLine::id, Base::Missing::makesId),
            Base::field("jobID", &InvoiceLine::jobID),
            Base::field("title", &InvoiceLine::title),
            Base::field("detail", &InvoiceLine::detail),
            Base::field("quantity", &InvoiceLine::quantity),
            Base::field("unit", &InvoiceLine::unit),
            Base::field("unitPrice", &InvoiceLine::unitPrice),
            Base::field("amount", &InvoiceLine::amount, Base::Missing::fails),
        };
    }
};
static_assert(Base::listsEveryMember<InvoiceLine>);

// Money received against an issued invoice.
struct Payment {
    Base::Uuid id;
    Base::Instant date; // The day the money arrived, at local noon.
    Base::Decimal amount; // In the invoice's currency.
    std::optional<Base::Decimal> receivedHome; // What arrived in the home currency, after the bank's cut.
    std::optional<ExchangeRate> rate; // Of the payment's day.
    std::string note;

    bool operator==(const Payment&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("id", &Payment::id, Base::Missing::makesId),
            Base::field("date", &Payment::date, Base::Missing::fails),
            Base::field("amount", &Payment::amount, Base::Missing::fails),
            Base::field("receivedHome", &Payment::receivedHome),
            Base::field("rate", &Payment::rate),
            Base::field("note", &Payment::note),
        };
    }
};
static_assert(Base::listsEveryMember<Payment>);

// An invoice or a credit note. A draft has no number, sequence, issuedAt or pdfFile; an issued one has them
// all and is never changed again but for its payments and a missing home rate.
struct Invoice {
    Base::Uuid id;
    DocumentKind kind = DocumentKind::invoice;
    std::optional<std::string> number;
    std::optional<std::int64_t> sequence; // The counter value used.
    Base::Uuid clientID;
    PartySnapshot client;
    std::optional<Base::Instant> issueDate; // At local noon, as every day here; decides the numbering year.
    std::optional<Base::Instant> dueDate;
    std::string currency = "EUR";
    std::vector<InvoiceLine> lines;
    Base::Decimal taxPercent;
    std::string taxLabel;
    std::string taxNote;
    std::string paymentTerms;
    std::string notes;
    std::string homeCurrency; // The profile's when it was issued.
    std::optional<ExchangeRate> homeRate; // From `currency` to `homeCurrency` on the issue day.
    std::optional<Base::Uuid>
        creditsInvoiceID; // On a credit note: what it corrects, and its number as printed.
    std::optional<std::string> creditsNumber;
    std::optional<std::string> pdfFile; // Relative to the library folder.
    std::optional<Base::Instant> issuedAt;
    std::vector<Payment> payments;
    Base::Instant created;

    bool isIssued() const { return number.has_value() && issuedAt.has_value(); }
    Base::Decimal subtotal() const;
    Base::Decimal tax() const; // Rounded to the currency's minor digits.
    Base::Decimal total() const;
    Base::Decimal paid() const;

    bool operator==(const Invoice&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("id", &Invoice::id, Base::Missing::makesId),
            Base::field("kind", &Invoice::kind, Base::Missing::fails),
            Base::field("number", &Invoice::number),
            Base::field("sequence", &Invoice::sequence),
            Base::field("clientID", &Invoice::clientID, Base::Missing::fails),
            Base::field("client", &Invoice::client),
            Base::field("issueDate", &Invoice::issueDate),
            Base::field("dueDate", &Invoice::dueDate),
            Base::field("currency", &Invoice::currency, Base::Missing::fails),
            Base::field("lines", &Invoice::lines, Base::Missing::fails),
            Base::field("taxPercent", &Invoice::taxPercent),
            Base::field("taxLabel", &Invoice::taxLabel),
            Base::field("taxNote", &Invoice::taxNote),
            Base::field("paymentTerms", &Invoice::paymentTerms),
            Base::field("notes", &Invoice::notes),
            Base::field("homeCurrency", &Invoice::homeCurrency),
            Base::field("homeRate", &Invoice::homeRate),
            Base::field("creditsInvoiceID", &Invoice::creditsInvoiceID),
            Base::field("creditsNumber", &Invoice::creditsNumber),
            Base::field("pdfFile", &Invoice::pdfFile),
            Base::field("issuedAt", &Invoice::issuedAt),
            Base::field("payments", &Invoice::payments),
            Base::field("created", &Invoice::created, Base::Missing::takesNow),
        };
    }
};
static_assert(Base::listsEveryMember<Invoice>);

} // namespace Pallisande
