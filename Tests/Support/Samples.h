#pragma once

#include "PallisandeKit/Ledger/Ledger.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Records that many tests start from, and the values that they are made of.
namespace Test {

inline Base::Decimal decimal(std::string_view text) { return Base::Decimal::parse(text).value(); }
inline Base::Instant instant(std::string_view text) { return Base::Instant::parse(text).value(); }
inline Base::Day day(std::string_view text) { return Base::Day::parse(text).value(); }
inline Base::Calendar calendar(std::string_view zone = "Europe/Berlin")
{
    return Base::Calendar::named(zone).value();
}
inline Base::Instant noon(std::string_view text) { return calendar().noon(day(text)); }
inline Base::Uuid id(std::uint64_t number)
{
    return { 0xA000'0000'0000'4000, 0x8000'0000'0000'0000 | number };
}

inline Base::Moment moment(std::string_view zone = "Europe/Berlin")
{
    return { instant("2026-03-09T14:05:31.250Z"), calendar(zone) };
}
inline Base::Moment momentOn(std::string_view text)
{
    return { calendar().instant(day(text), 15, 5), calendar() };
}

inline const Tamberlin::DocumentLabels& labels() { return Tamberlin::DocumentLabels::of("en"); }

inline Pallisande::Client client(std::uint64_t number)
{
    return {
        .id = id(number),
        .name = "Nordlicht Verlag",
        .contact = "Ada Ström",
        .address = "Hafenweg 3\n20457 Hamburg",
        .taxID = "DE123456789",
        .timeZone = "Europe/Berlin",
        .weights = Pallisande::BandWeights::of(Pallisande::BandWeights::Preset::graduated),
        .taxPercent = 19,
        .taxLabel = "VAT",
        .paymentDays = 14,
        .created = instant("2025-01-02T03:04:05.006Z"),
    };
}

inline Pallisande::Analysis analysis(const Pallisande::BandMap<std::int64_t>& words)
{
    Pallisande::AnalysisRow row { .id = id(901), .file = "manual.docx" };
    row.counts.words = words;
    return { .id = id(900),
        .name = "manual.docx",
        .importedAt = instant("2026-03-01T10:00:00.000Z"),
        .rows = { row } };
}

// A delivered job of that many new words.
inline Pallisande::Job job(std::uint64_t number, std::uint64_t clientNumber, std::int64_t words)
{
    return {
        .id = id(number),
        .title = "Job " + std::to_string(number),
        .clientID = id(clientNumber),
        .pair = { "de", "en" },
        .status = Pallisande::JobStatus::delivered,
        .received = instant("2026-03-01T08:00:00.000Z"),
        .deliveredAt = instant("2026-03-06T16:00:00.000Z"),
        .analyses = { analysis({ { Pallisande::MatchBand::noMatch, words } }) },
        .created = instant("2026-03-01T08:00:00.000Z"),
        .modified = instant("2026-03-06T16:00:00.000Z"),
    };
}

// Client 1 (EUR, 19% tax) with the delivered jobs 11 (100.00) and 12 (50.00), client 2 (USD, no tax) with 21
// (200.00).
inline Pallisande::Library sampleLibrary()
{
    auto library = Pallisande::Library::makeNew();
    library.counting.rateCards.front().id = id(5);
    library.clients = { client(1), client(2) };
    library.clients[1].name = "Harbor Books";
    library.clients[1].currency = "USD";
    library.clients[1].taxPercent = 0;
    library.jobs = { job(11, 1, 1000), job(12, 1, 500), job(21, 2, 2000) };
    return library;
}

inline Pallisande::Invoice& draft(Pallisande::Library& library, std::initializer_list<std::uint64_t> jobs,
    const Base::Moment& when = moment())
{
    std::vector<Base::Uuid> ids;
    for (const auto number : jobs)
        ids.push_back(id(number));
    return Pallisande::Ledger::draftInvoice(library, ids, when, labels());
}

inline Pallisande::Invoice& issue(Pallisande::Library& library, const Base::Uuid& draftID,
    const Base::Moment& when = moment(), std::optional<Base::Instant> issueDate = std::nullopt)
{
    const auto plan = Pallisande::Ledger::planIssue(library, draftID, issueDate, when);
    Pallisande::Ledger::carryOut(library, plan);
    return *library.invoice(plan.document.id);
}

inline Pallisande::Invoice& issued(Pallisande::Library& library, std::initializer_list<std::uint64_t> jobs,
    const Base::Moment& when = moment())
{
    return issue(library, draft(library, jobs, when).id, when);
}

// Issues a credit note over `net` before tax.
inline Pallisande::Invoice& credit(Pallisande::Library& library, const Base::Uuid& invoiceID,
    const Base::Decimal& net, const Base::Moment& when = moment())
{
    auto edited = Pallisande::Ledger::makeCreditNote(library, invoiceID, when, labels());
    edited.lines = { { .id = id(800), .title = "Credit", .quantity = -1, .unitPrice = net, .amount = -net } };
    Pallisande::Ledger::editDraft(library, edited, when.now);
    return issue(library, edited.id, when);
}

inline Pallisande::Payment& pay(Pallisande::Library& library, const Base::Uuid& invoiceID,
    std::string_view amount, std::string_view date = "2026-03-09")
{
    return Pallisande::Ledger::addPayment(
        library, invoiceID, { .date = noon(date), .amount = decimal(amount) }, moment());
}

// The sentence of a refused operation, which must leave the library as it was.
template <typename Operation> std::string refusal(Pallisande::Library& library, Operation operation)
{
    const auto before = library;
    try {
        operation();
        return "(not refused)";
    } catch (const Pallisande::LedgerError& error) {
        EXPECT_EQ(library, before);
        return error.what();
    }
}

} // namespace Test
