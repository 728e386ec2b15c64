#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/InvoiceSection.h"

#include "TamberlinKit/Quotes/Money.h"

#include <fmt/format.h>

#include <algorithm>

// Payments and exchange rates of issued documents.
namespace Pallisande {

namespace {

constexpr std::string_view giveRate = "Add Exchange Rate";

std::string sourceText(const RateSource& source)
{
    if (const auto* const typed = std::get_if<TypedByUser>(&source))
        return typed->note.empty() ? "typed" : "typed: " + typed->note;
    return "ECB";
}

} // namespace

Payment InvoiceSection::payment(const Invoice& invoice, const PaymentEntry& entry) const
{
    const auto moment = m_model.moment();
    Payment payment { .id = Base::Uuid::random(),
        .date = moment.calendar.noon(entry.date),
        .amount = entry.amount,
        .receivedHome = entry.receivedHome,
        .note = entry.note };
    if (entry.rate) {
        if (*entry.rate <= Base::Decimal())
            throw LedgerError::invalid("A rate must be more than zero.");
        payment.rate = ExchangeRate { .id = Base::Uuid::random(),
            .from = invoice.currency,
            .to = invoice.homeCurrency,
            .rate = *entry.rate,
            .date = payment.date,
            .source = TypedByUser {},
            .recordedAt = moment.now };
    }
    return payment;
}

std::optional<Base::Decimal> InvoiceSection::bankKept(const Invoice& invoice, const Base::Decimal& amount,
    const std::optional<Base::Decimal>& receivedHome, const std::optional<Base::Decimal>& rate)
{
    const bool isForeign = invoice.currency != invoice.homeCurrency;
    if (!receivedHome || (isForeign && !rate))
        return std::nullopt;
    const auto worth
        = isForeign ? Tamberlin::Money::roundToCurrency(amount * *rate, invoice.homeCurrency) : amount;
    return worth - *receivedHome;
}

Edit InvoiceSection::editOfPayments(const std::string& name, std::span<const Base::Uuid> ids) const
{
    Edit edit { .name = name, .isOfPayments = true, .savesAtOnce = true };
    for (const auto& id : ids) {
        edit.touches.push_back({ RecordKind::invoice, id });
        for (const auto& job : m_model.library().jobs) {
            if (job.invoiceID == id)
                edit.touches.push_back({ RecordKind::job, job.id });
        }
    }
    return edit;
}

bool InvoiceSection::enterPayment(const std::string& name, const Base::Uuid& id,
    const std::function<void(Library& library, const Invoice& invoice)>& enter)
{
    const bool isDone = m_model.change(editOfPayments(name, { &id, 1 }), [&](Library& library) {
        const auto* const invoice = m_model.invoice(id);
        if (!invoice)
            throw LedgerError::notFound();
        enter(library, *invoice);
    });
    if (isDone)
        m_model.closeSheet();
    return isDone;
}

bool InvoiceSection::recordPayment(const Base::Uuid& id, const PaymentEntry& entry)
{
    return enterPayment("Record Payment", id, [&](Library& library, const Invoice& invoice) {
        Ledger::addPayment(library, id, payment(invoice, entry), m_model.moment());
    });
}

bool InvoiceSection::editPayment(const Base::Uuid& id, const Base::Uuid& paymentID, const PaymentEntry& entry)
{
    return enterPayment("Change Payment", id, [&](Library& library, const Invoice& invoice) {
        auto edited = payment(invoice, entry);
        edited.id = paymentID;
        for (const auto& old : invoice.payments) { // A rate that wasn't touched keeps its source.
            const bool keepsRate = old.id == paymentID && old.rate
                && (!edited.rate || edited.rate->rate == old.rate->rate) && edited.date == old.date;
            if (keepsRate)
                edited.rate = old.rate;
        }
        Ledger::editPayment(library, id, std::move(edited), m_model.moment());
    });
}

bool InvoiceSection::removePayment(const Base::Uuid& id, const Base::Uuid& paymentID)
{
    return m_model.change(editOfPayments("Remove Payment", { &id, 1 }),
        [&](Library& library) { Ledger::removePayment(library, id, paymentID, m_model.moment()); });
}

bool InvoiceSection::payInFull(std::span<const Base::Uuid> ids, Base::Instant date)
{
    return m_model.change(editOfPayments("Record Payment", ids), [&](Library& library) {
        for (const auto& id : ids) {
            const auto* const invoice = m_model.invoice(id);
            if (!invoice)
                throw LedgerError::notFound();
            if (invoice->kind != DocumentKind::invoice || !invoice->isIssued())
                throw LedgerError::paymentOnDraft();
        }
        for (const auto& id : ids) {
            const auto* const invoice = m_model.invoice(id);
            const auto due = stillDue(*invoice);
            if (!due.isZero())
                Ledger::addPayment(
                    library, id, payment(*invoice, { .date = date, .amount = due }), m_model.moment());
        }
    });
}

// --- Exchange rates

bool InvoiceSection::lacksRate(const Invoice& invoice) const
{
    return invoice.isIssued() && !invoice.homeRate && invoice.currency != invoice.homeCurrency;
}

std::optional<ExchangeRate> InvoiceSection::rateFor(const Invoice& invoice, Base::Instant day) const
{
    const auto& library = m_model.library();
    const auto& home = invoice.isIssued() ? invoice.homeCurrency : library.profile.homeCurrency;
    return library.rates.rate(invoice.currency, home, day, m_model.moment());
}

std::optional<Base::Decimal> InvoiceSection::ecbRate(
    const std::string& from, const std::string& to, Base::Instant day) const
{
    const auto& calendar = m_model.services().calendar;
    const auto& days = m_model.library().rates.ecb;
    for (auto latest = days.rbegin(); latest != days.rend(); ++latest) {
        if (calendar.day(latest->date) > calendar.day(day))
            continue;
        if (const auto rate = latest->rate(from, to))
            return rate;
    }
    return std::nullopt;
}

std::string InvoiceSection::rateText(const ExchangeRate& rate) const
{
    return fmt::format("1 {} = {} {} · {}, {}", rate.from, m_model.formats().exchangeRate(rate.rate), rate.to,
        sourceText(rate.source), Formats::day(m_model.services().calendar.day(rate.date)));
}

bool InvoiceSection::addExchangeRate(const Base::Uuid& id)
{
    const auto* const invoice = m_model.invoice(id);
    if (!m_model.requireEditing() || !invoice)
        return false;
    const auto day = invoice->issueDate.value_or(m_model.moment().now);
    auto rate = rateFor(*invoice, day);
    if (!rate)
        return m_model.openSheet(TypedRateSheet { invoice->currency, invoice->homeCurrency, day, id });
    rate->recordedAt = m_model.moment().now;
    return m_model.change({ .name = std::string(giveRate), .touches = { { RecordKind::invoice, id } } },
        [&](Library& library) { Ledger::setHomeRate(library, id, *rate); });
}

bool InvoiceSection::typeRate(
    const TypedRateSheet& sheet, const Base::Decimal& value, const std::string& note)
{
    const auto moment = m_model.moment();
    const ExchangeRate rate { .id = Base::Uuid::random(),
        .from = sheet.from,
        .to = sheet.to,
        .rate = value,
        .date = moment.calendar.noon(sheet.day),
        .source = TypedByUser { note },
        .recordedAt = moment.now };
    Edit edit { .name = "Add Typed Rate", .touchesRates = true };
    if (sheet.invoiceID)
        edit.touches.push_back({ RecordKind::invoice, *sheet.invoiceID });
    const bool isDone = m_model.change(edit, [&](Library& library) {
        if (sheet.invoiceID) // First: it is the one that can be refused for the document's sake.
            Ledger::setHomeRate(library, *sheet.invoiceID, rate);
        Ledger::addTypedRate(library, rate);
    });
    const auto& open = m_model.sheet(); // Rates are typed in the sheets of issuing and paying too.
    if (isDone && open && std::holds_alternative<TypedRateSheet>(*open))
        m_model.closeSheet();
    return isDone;
}

} // namespace Pallisande
