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
