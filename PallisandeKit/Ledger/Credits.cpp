#include "PallisandeKit/Ledger/Find.h"
#include "PallisandeKit/Ledger/Ledger.h"
#include "TamberlinKit/Quotes/Money.h"

#include <algorithm>

namespace Pallisande::Ledger {

namespace {

using Base::Decimal;

// The net amount whose total with tax is `rest`, or the one that comes nearest from below: rounding the tax
// can make a total unreachable, and a credit may never be above what is left.
Decimal netOfRest(const Decimal& rest, const Invoice& invoice)
{
    const int places = std::max(Tamberlin::Money::minorDigits(invoice.currency), rest.places());
    const auto step = Decimal(1).shifted(-places);
    const auto totalOf = [&](const Decimal& net) {
        return net
            + Tamberlin::Money::roundToCurrency((net * invoice.taxPercent).shifted(-2), invoice.currency);
    };
    const auto divisor = Decimal(1) + invoice.taxPercent.shifted(-2);
    const auto guess = divisor.isZero() ? rest : rest.dividedBy(divisor, places);
    constexpr int reach = 3; // How far rounding can move the amount, in steps.
    auto best = Decimal();
    for (int offset = reach; offset >= -reach; --offset) {
        const auto net = guess + step * offset;
        const auto total = totalOf(net);
        if (total == rest)
            return net;
        if (total < rest && totalOf(best) < total)
            best = net;
    }
    return best;
}

std::vector<InvoiceLine> mirrored(const std::vector<InvoiceLine>& lines)
{
    auto mirror = lines;
    for (auto& line : mirror) {
        line.id = Base::Uuid::random();
        line.jobID.reset(); // The jobs stay with the invoice until it is fully credited.
        line.quantity = -line.quantity;
        line.amount = -line.amount;
    }
    return mirror;
}

} // namespace

Invoice& makeCreditNote(Library& library, const Base::Uuid& invoiceID, const Base::Moment& moment,
    const Tamberlin::DocumentLabels& labels)
{
    const auto& invoice = required(library.invoice(invoiceID));
    if (invoice.kind != DocumentKind::invoice || !invoice.isIssued())
        throw LedgerError::invalid("Credit notes are made for issued invoices.");
    const bool hasOpenDraft = std::any_of(library.invoices.begin(), library.invoices.end(),
        [&](const Invoice& other) { return other.creditsInvoiceID == invoiceID && !other.isIssued(); });
    if (hasOpenDraft)
        throw LedgerError::creditDraftOpen(*invoice.number);
    const auto total = invoice.total(), alreadyCredited = credited(library, invoiceID);
    if (total <= Decimal())
        throw LedgerError::nothingToCredit();
    if (alreadyCredited >= total)
        throw LedgerError::alreadyCredited(*invoice.number);

    Invoice note {
        .id = Base::Uuid::random(),
        .kind = DocumentKind::creditNote,
        .clientID = invoice.clientID,
        .client = invoice.client,
        .currency = invoice.currency,
        .taxPercent = invoice.taxPercent,
        .taxLabel = invoice.taxLabel,
        .taxNote = invoice.taxNote,
        .creditsInvoiceID = invoice.id,
        .creditsNumber = invoice.number,
        .created = moment.now,
    };
    if (alreadyCredited.isZero()) {
        note.lines = mirrored(invoice.lines);
    } else {
        const auto net = netOfRest(total - alreadyCredited, invoice);
        note.lines.push_back({ .id = Base::Uuid::random(),
            .title = Tamberlin::filled(labels.credit, { { "number", *invoice.number } }),
            .quantity = -1,
            .unitPrice = net,
            .amount = -net });
    }
    return library.invoices.emplace_back(std::move(note));
}

} // namespace Pallisande::Ledger
