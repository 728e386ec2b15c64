#include "PallisandeKit/Ledger/Find.h"
#include "PallisandeKit/Ledger/Ledger.h"
#include "TamberlinKit/Quotes/Money.h"

#include <fmt/format.h>

#include <algorithm>

namespace Pallisande::Ledger {

namespace {

Invoice& payable(Library& library, const Base::Uuid& invoiceID)
{
    auto& invoice = required(library.invoice(invoiceID));
    if (invoice.kind != DocumentKind::invoice || !invoice.isIssued())
        throw LedgerError::paymentOnDraft();
    return invoice;
}

void checkAmount(const Payment& payment)
{
    if (payment.amount <= Base::Decimal())
        throw LedgerError::paymentNotPositive();
}

void complete(Payment& payment, const Library& library, const Invoice& invoice, const Base::Moment& moment)
{
    payment.date = moment.calendar.noon(payment.date);
    if (!payment.rate)
        payment.rate = library.rates.rate(invoice.currency, invoice.homeCurrency, payment.date, moment);
}

auto findPayment(Invoice& invoice, const Base::Uuid& id)
{
    const auto found = std::find_if(invoice.payments.begin(), invoice.payments.end(),
        [&](const Payment& payment) { return payment.id == id; });
    if (found == invoice.payments.end())
        throw LedgerError::notFound();
    return found;
}

void settle(Library& library, const Invoice& invoice, const Base::Moment& moment)
{
    changeJobs(library, settledJobs(library, invoice, credited(library, invoice.id), moment));
}

void checkRate(const ExchangeRate& rate)
{
    if (!Tamberlin::Money::isCurrencyCode(rate.from) || !Tamberlin::Money::isCurrencyCode(rate.to)
        || rate.from == rate.to)
        throw LedgerError::invalid("Choose two different currencies.");
    if (rate.rate <= Base::Decimal())
        throw LedgerError::invalid("A rate must be more than zero.");
}

} // namespace

Payment& addPayment(
    Library& library, const Base::Uuid& invoiceID, Payment payment, const Base::Moment& moment)
{
    auto& invoice = payable(library, invoiceID);
    checkAmount(payment);
    complete(payment, library, invoice, moment);
    const auto isSame = [&](const Payment& other) { return other.id == payment.id; };
    if (payment.id.isNil() || std::any_of(invoice.payments.begin(), invoice.payments.end(), isSame))
        payment.id = Base::Uuid::random();
    invoice.payments.push_back(std::move(payment));
    settle(library, invoice, moment);
    return invoice.payments.back();
}

void editPayment(Library& library, const Base::Uuid& invoiceID, Payment payment, const Base::Moment& moment)
{
    auto& invoice = payable(library, invoiceID);
    const auto old = findPayment(invoice, payment.id);
    checkAmount(payment);
    const bool isOfAnotherDay = moment.calendar.day(payment.date) != moment.calendar.day(old->date);
    if (isOfAnotherDay && payment.rate == old->rate)
        payment.rate.reset(); // The old day's rate doesn't fit the new one.
    complete(payment, library, invoice, moment);
    *old = std::move(payment);
    settle(library, invoice, moment);
}

void removePayment(
    Library& library, const Base::Uuid& invoiceID, const Base::Uuid& paymentID, const Base::Moment& moment)
{
    auto& invoice = payable(library, invoiceID);
    invoice.payments.erase(findPayment(invoice, paymentID));
    settle(library, invoice, moment);
}

void setHomeRate(Library& library, const Base::Uuid& invoiceID, ExchangeRate rate)
{
    auto& invoice = required(library.invoice(invoiceID));
    if (!invoice.isIssued())
        throw LedgerError::invalid("A draft gets its exchange rate when it is issued.");
    const bool hadOneAtIssue = invoice.homeRate && invoice.homeRate->recordedAt <= *invoice.issuedAt;
    if (hadOneAtIssue)
        throw LedgerError::locked(*invoice.number);
    checkRate(rate);
    if (rate.from != invoice.currency || rate.to != invoice.homeCurrency)
        throw LedgerError::invalid(
            fmt::format("This document needs a rate from {} to {}.", invoice.currency, invoice.homeCurrency));
    invoice.homeRate = std::move(rate);
}

ExchangeRate& addTypedRate(Library& library, ExchangeRate rate)
{
    checkRate(rate);
    return library.rates.typed.emplace_back(std::move(rate));
}

} // namespace Pallisande::Ledger
