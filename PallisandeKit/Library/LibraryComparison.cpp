#include "PallisandeKit/Library/LibraryComparison.h"

#include <algorithm>
#include <unordered_map>

namespace Pallisande {

namespace {

// Whether two records agree in everything but the field of that key.
template <typename Record> bool isSame(const Record& left, const Record& right, std::string_view except = {})
{
    return std::apply(
        [&](const auto&... field) {
            return ((field.key == except || left.*field.member == right.*field.member) && ...);
        },
        Record::fields());
}

template <typename Records> auto byId(const Records& records)
{
    std::unordered_map<Base::Uuid, const typename Records::value_type*> found;
    found.reserve(records.size());
    for (const auto& record : records)
        found.emplace(record.id, &record);
    return found;
}

template <typename Record>
LibraryComparison::Records<Record> compareRecords(
    const std::vector<Record>& present, const std::vector<Record>& other, std::string_view except = {})
{
    LibraryComparison::Records<Record> result;
    auto left = byId(present);
    for (const auto& record : other) {
        const auto found = left.find(record.id);
        if (found == left.end()) {
            result.added.push_back(&record);
        } else {
            if (!isSame(*found->second, record, except))
                result.changed.push_back(&record);
            left.erase(found);
        }
    }
    for (const auto& record : present) {
        if (left.contains(record.id))
            result.gone.push_back(&record);
    }
    return result;
}

// A payment that moved to another document has gone from the one and been added to the other.
LibraryComparison::Payments comparePayments(const Library& present, const Library& other)
{
    LibraryComparison::Payments result;
    const auto before = byId(present.invoices), after = byId(other.invoices);
    const std::vector<Payment> none;
    const auto paymentsOf = [&](const auto& invoices, const Base::Uuid& id) -> const std::vector<Payment>& {
        const auto found = invoices.find(id);
        return found == invoices.end() ? none : found->second->payments;
    };
    for (const auto& invoice : other.invoices) {
        const auto payments = compareRecords(paymentsOf(before, invoice.id), invoice.payments);
        for (const auto* payment : payments.added)
            result.added.push_back({ &invoice, payment });
        for (const auto* payment : payments.changed)
            result.changed.push_back({ &invoice, payment });
    }
    for (const auto& invoice : present.invoices) {
        for (const auto* payment : compareRecords(invoice.payments, paymentsOf(after, invoice.id)).gone)
            result.gone.push_back({ &invoice, payment });
    }
    return result;
}

Profile withoutNextNumbers(Profile profile)
{
    for (auto* series : { &profile.invoiceSeries, &profile.creditSeries, &profile.quoteSeries })
        series->next.clear();
    return profile;
}

} // namespace

LibraryContents LibraryContents::of(const Library& library)
{
    LibraryContents contents { .clients = library.clients.size(), .jobs = library.jobs.size() };
    std::optional<Base::Instant> latest;
    for (const auto& invoice : library.invoices) {
        if (!invoice.isIssued())
            continue;
        ++contents.documents;
        if (!latest || *invoice.issuedAt >= *latest) {
            latest = invoice.issuedAt;
            contents.lastNumber = *invoice.number;
        }
    }
    return contents;
}

bool LibraryComparison::isSame() const
{
    return clients.isEmpty() && jobs.isEmpty() && documents.isEmpty() && payments.isEmpty()
        && std::all_of(nextNumbers.begin(), nextNumbers.end(),
            [](const NextNumber& next) { return next.present == next.other; })
        && !hasOtherProfile && !hasOtherRates && !hasOtherCounting;
}

LibraryComparison compare(const Library& present, const Library& other, std::int64_t year)
{
    LibraryComparison result;
    result.clients = compareRecords(present.clients, other.clients);
    result.jobs = compareRecords(present.jobs, other.jobs, "modified");
    result.documents = compareRecords(present.invoices, other.invoices, "payments");
    result.payments = comparePayments(present, other);
    for (const auto which : { Ledger::Series::invoices, Ledger::Series::creditNotes, Ledger::Series::quotes })
        result.nextNumbers.push_back({ which, Ledger::series(present.profile, which).upcoming(year).number,
            Ledger::series(other.profile, which).upcoming(year).number });
    result.hasOtherProfile = withoutNextNumbers(present.profile) != withoutNextNumbers(other.profile);
    result.hasOtherRates = present.rates != other.rates;
    result.hasOtherCounting = present.counting != other.counting;
    return result;
}

} // namespace Pallisande
