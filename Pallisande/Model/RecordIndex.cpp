#include "Pallisande/Model/RecordIndex.h"

#include "Pallisande/Model/SearchKey.h"
#include "PallisandeKit/Pricing/JobPricing.h"

namespace Pallisande {

// The places are right until records go; then they are noted anew, on the first look that misses.
template <typename Records>
auto* RecordIndex::find(Places& places, const Records& records, const Base::Uuid& id)
{
    const auto lookUp = [&]() -> decltype(records.data()) {
        const auto found = places.find(id);
        return found != places.end() && found->second < records.size() && records[found->second].id == id
            ? &records[found->second]
            : nullptr;
    };
    if (const auto* const record = lookUp())
        return record;
    if (places.size() == records.size())
        return lookUp(); // Nothing came or went, so there is no such record.
    places.clear();
    for (std::size_t place = records.size();
         place-- > 0;) // Of two with one id the first counts, as elsewhere.
        places[records[place].id] = place;
    return lookUp();
}

void RecordIndex::forget() { *this = {}; }

void RecordIndex::update(const LibraryChanges& changes, const Library& library)
{
    if (changes.everything)
        return forget();
    for (const auto* const list : { &changes.changed, &changes.removed }) {
        for (const auto& [kind, id] : *list) {
            m_texts.erase(id);
            m_figures.erase(id);
            if (const auto* const changed = kind == RecordKind::invoice ? invoice(library, id) : nullptr) {
                for (const auto& line : changed->lines) {
                    if (line.jobID)
                        m_figures.erase(*line.jobID);
                }
            }
            if (kind != RecordKind::client || m_figures.empty())
                continue;
            for (const auto& job : library.jobs) { // Whose prices follow from the client.
                if (job.clientID == id)
                    m_figures.erase(job.id);
            }
        }
    }
    if (!changes.removed.empty() || !changes.added.empty()) {
        m_clients.clear();
        m_jobs.clear();
        m_invoices.clear();
    }
    if (changes.concerns(RecordKind::invoice))
        m_credited.reset();
}

const Client* RecordIndex::client(const Library& library, const Base::Uuid& id) const
{
    return find(m_clients, library.clients, id);
}

const Job* RecordIndex::job(const Library& library, const Base::Uuid& id) const
{
    return find(m_jobs, library.jobs, id);
}

const Invoice* RecordIndex::invoice(const Library& library, const Base::Uuid& id) const
{
    return find(m_invoices, library.invoices, id);
}

namespace {

// Fields are kept apart, so that no word is found across two of them.
template <typename... Texts> std::string joined(const Texts&... texts)
{
    std::string all;
    ((all += texts, all += '\n'), ...);
    return all;
}

} // namespace

const std::string& RecordIndex::searchText(const Client& client) const
{
    auto& text = m_texts[client.id];
    if (text.empty())
        text = searchKey(joined(client.name, client.contact, client.email, client.address, client.taxID,
            client.currency, client.notes));
    return text;
}

const std::string& RecordIndex::searchText(const Job& job) const
{
    auto& text = m_texts[job.id];
    if (!text.empty())
        return text;
    auto all = joined(job.title, job.reference, job.pair.text(), job.notes, job.quoteNumber.value_or(""));
    for (const auto& analysis : job.analyses) {
        all += analysis.name + '\n';
        for (const auto& row : analysis.rows)
            all += row.file + '\n';
    }
    return text = searchKey(all);
}

const std::string& RecordIndex::searchText(const Invoice& invoice) const
{
    auto& text = m_texts[invoice.id];
    if (!text.empty())
        return text;
    auto all = joined(invoice.number.value_or("Draft"), invoice.client.name, invoice.client.contact,
        invoice.notes, invoice.currency, invoice.creditsNumber.value_or(""));
    for (const auto& line : invoice.lines)
        all += line.title + '\n' + line.detail + '\n';
    return text = searchKey(all);
}

const RecordIndex::JobFigures& RecordIndex::figures(const Library& library, const Job& job) const
{
    const auto [entry, isNew] = m_figures.try_emplace(job.id);
    auto& figures = entry->second;
    if (!isNew)
        return figures;
    if (const auto* const owner = client(library, job.clientID)) {
        const auto price = JobPricing::price(job, *owner);
        figures = { .net = price.subtotal + price.minimumAdjustment,
            .currency = owner->currency,
            .hasPrice = price.units != 0 || !job.extras.empty(),
            .hasProblems = !price.problems.empty() };
    }
    const auto* const bill = job.invoiceID ? invoice(library, *job.invoiceID) : nullptr;
    if (!bill || !bill->isIssued())
        return figures;
    std::optional<Base::Decimal> billed;
    for (const auto& line : bill->lines) {
        if (line.jobID == job.id)
            billed = billed.value_or(Base::Decimal()) + line.amount;
    }
    if (billed) { // What the client’s rate has become since then doesn’t matter.
        figures.net = *billed;
        figures.currency = bill->currency;
        figures.invoice = bill->number;
        figures.hasPrice = true;
    }
    return figures;
}

Base::Decimal RecordIndex::credited(const Library& library, const Base::Uuid& invoiceID) const
{
    if (!m_credited)
        m_credited.emplace(library);
    return m_credited->of(invoiceID);
}

} // namespace Pallisande
