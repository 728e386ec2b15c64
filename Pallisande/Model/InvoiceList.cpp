#include "Pallisande/Model/AppModel.h"
#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Model/LibraryCopies.h"
#include "Pallisande/Model/SearchKey.h"

#include "Base/Text.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <tuple>

// Which invoices the list shows, in which order and words.
namespace Pallisande {

InvoiceSection::InvoiceSection(AppModel& model)
    : m_model(model)
    , m_list([this](const RecordList::Kept& kept) { return make(kept); })
{
}

InvoiceSection::~InvoiceSection() = default;

InvoiceStatus InvoiceSection::status(const Invoice& invoice) const
{
    const auto& library = m_model.library();
    const auto moment = m_model.moment();
    return Ledger::status(
        invoice, m_model.index().credited(library, invoice.id), moment.now, moment.calendar);
}

Base::Decimal InvoiceSection::stillDue(const Invoice& invoice) const
{
    return Ledger::stillDue(invoice, m_model.index().credited(m_model.library(), invoice.id));
}

bool InvoiceSection::passes(const Invoice& invoice, int thisYear) const
{
    if (m_client && invoice.clientID != *m_client)
        return false;
    if (m_year.kind != YearFilter::Kind::all) {
        const auto& calendar = m_model.services().calendar;
        const auto year = m_year.kind == YearFilter::Kind::thisYear ? thisYear : m_year.year;
        if (calendar.day(invoice.issueDate.value_or(invoice.created)).year != year)
            return false;
    }
    const auto is = [now = status(invoice)](std::initializer_list<InvoiceStatus> wanted) {
        return std::find(wanted.begin(), wanted.end(), now) != wanted.end();
    };
    switch (m_filter) {
    case InvoiceFilter::all:
        return true;
    case InvoiceFilter::drafts:
        return is({ InvoiceStatus::draft });
    case InvoiceFilter::unpaid:
        return is({ InvoiceStatus::open, InvoiceStatus::overdue, InvoiceStatus::partlyPaid });
    case InvoiceFilter::overdue:
        return is({ InvoiceStatus::overdue });
    case InvoiceFilter::paid:
        return is({ InvoiceStatus::paid });
    case InvoiceFilter::credited:
        return is({ InvoiceStatus::credited });
    case InvoiceFilter::creditNotes:
        return invoice.kind == DocumentKind::creditNote;
    }
    return true;
}

InvoiceSection::IDs InvoiceSection::make(const RecordList::Kept& kept) const
{
    const auto words = searchWords(m_model.search(AppSection::invoices));
    const auto isFound = [&](const Invoice& invoice) {
        return words.empty() || std::all_of(words.begin(), words.end(), [&](const std::string& word) {
            return m_model.index().searchText(invoice).find(word) != std::string::npos;
        });
    };
    const auto moment = m_model.moment();
    const int thisYear = moment.calendar.day(moment.now).year;
    struct Entry {
        Base::Decimal amount;
        std::string text;
        std::int64_t first = 0;
        bool isIssued = false;
        std::int64_t newest = 0, sequence = 0;
        Base::Uuid id;
    };
    std::vector<Entry> entries;
    for (const auto& invoice : m_model.library().invoices) {
        if (!(passes(invoice, thisYear) && isFound(invoice)) && !kept.contains(invoice.id))
            continue;
        const auto date = invoice.isIssued() ? invoice.issueDate.value_or(invoice.created) : invoice.created;
        Entry entry { .isIssued = invoice.isIssued(),
            .newest = -date.milliseconds,
            .sequence = -invoice.sequence.value_or(0),
            .id = invoice.id };
        switch (m_sort) {
        case InvoiceSort::newest:
            break;
        case InvoiceSort::client:
            entry.text = sortKey(invoice.client.name);
            break;
        case InvoiceSort::due:
            entry.first = invoice.dueDate.value_or(Base::latestInstant).milliseconds;
            break;
        case InvoiceSort::amount:
            entry.amount = -invoice.total();
            break;
        case InvoiceSort::status:
            entry.first = static_cast<int>(status(invoice));
            break;
        }
        entries.push_back(std::move(entry));
    }
    std::stable_sort(entries.begin(), entries.end(), [](const Entry& left, const Entry& right) {
        return std::tie(left.amount, left.text, left.first, left.isIssued, left.newest, left.sequence)
            < std::tie(right.amount, right.text, right.first, right.isIssued, right.newest, right.sequence);
    });
    IDs ids;
    ids.reserve(entries.size());
    for (const auto& entry : entries)
        ids.push_back(entry.id);
    return ids;
}

InvoiceRow InvoiceSection::row(const Base::Uuid& id) const
{
    const auto* const invoice = m_model.invoice(id);
    if (!invoice)
        return { .id = id };
    const auto moment = m_model.moment();
    const auto today = moment.calendar.day(moment.now);
    InvoiceRow row { .id = id,
        .title = invoice->number.value_or("Draft"),
        .client = invoice->client.name,
        .total = m_model.formats().money(invoice->total(), invoice->currency),
        .status = status(*invoice) };
    const auto date = invoice->isIssued() ? invoice->issueDate.value_or(invoice->created) : invoice->created;
    row.subtitle = fmt::format("{} · {}{}", invoice->client.name, invoice->isIssued() ? "" : "made ",
        Formats::shortDay(moment.calendar.day(date), today));
    row.chip = label(row.status);
    auto state = invoice->isIssued() ? Base::asciiLowered(row.chip)
                                     : "made " + Formats::shortDay(moment.calendar.day(date), today);
    if (row.status == InvoiceStatus::overdue) {
        const auto days = moment.calendar.daysBetween(*invoice->dueDate, moment.now);
        row.chip += " " + counted(days, "day", "days");
        state = "overdue by " + counted(days, "day", "days");
    }
    row.spoken = fmt::format("{}, {}, {}, {}", row.title, invoice->client.name, row.total, state);
    return row;
}

std::string InvoiceSection::countText() const
{
    const auto all = std::ssize(m_model.library().invoices), shown = std::ssize(ids());
    return shown == all ? counted(all, "invoice", "invoices")
                        : fmt::format("{} of {}", shown, counted(all, "invoice", "invoices"));
}

std::vector<int> InvoiceSection::years() const
{
    std::set<int, std::greater<>> years;
    const auto& calendar = m_model.services().calendar;
    for (const auto& invoice : m_model.library().invoices)
        years.insert(calendar.day(invoice.issueDate.value_or(invoice.created)).year);
    return { years.begin(), years.end() };
}

const std::vector<std::string>& InvoiceSection::numbering() const
{
    if (m_numbering)
        return *m_numbering;
    auto& lines = m_numbering.emplace(Ledger::checkNumbering(m_model.library()));
    if (const auto numbers = m_model.copies().unrecorded(); !numbers.empty()) {
        if (numberingIsSound())
            lines.clear();
        lines.push_back(
            fmt::format("{} {} a stored PDF but no record here. Settings › Library › Show Backups… "
                        "takes over what the issue log knows.",
                LibraryCopies::enumerated(numbers), numbers.size() == 1 ? "has" : "have"));
    }
    return lines;
}

bool InvoiceSection::numberingIsSound() const
{
    return numbering().size() == 1 && numbering().front() == "Numbering checked: no gaps, no repeats.";
}

void InvoiceSection::setFilter(InvoiceFilter filter)
{
    if (std::exchange(m_filter, filter) != filter)
        listChosen();
}

void InvoiceSection::setYearFilter(YearFilter year)
{
    if (std::exchange(m_year, year) != year)
        listChosen();
}

void InvoiceSection::setClientFilter(std::optional<Base::Uuid> client)
{
    if (std::exchange(m_client, client) != client)
        listChosen();
}

void InvoiceSection::setSort(InvoiceSort sort)
{
    if (std::exchange(m_sort, sort) != sort)
        listChanged();
}

void InvoiceSection::outdate()
{
    m_list.outdate();
    m_numbering.reset();
}

void InvoiceSection::listChanged()
{
    m_list.outdate();
    m_model.listWasOutdated(AppSection::invoices);
}

// The user wants other rows: what was kept goes.
void InvoiceSection::listChosen()
{
    m_list.letGo();
    listChanged();
}

void InvoiceSection::letGo()
{
    if (m_list.letGo())
        m_model.listWasOutdated(AppSection::invoices);
}

void InvoiceSection::react(const LibraryChanges& changes)
{
    for (const auto& [kind, id] : changes.changed) {
        if (kind == RecordKind::invoice)
            m_list.keep(id);
    }
    if (changes.everything) {
        m_list.letGo();
        m_client.reset();
    }
    if (changes.concerns(RecordKind::invoice) || changes.profile || changes.everything) {
        m_numbering.reset();
        listChanged();
    }
}

void InvoiceSection::unhide(const Base::Uuid& id)
{
    const auto* const invoice = m_model.invoice(id);
    if (!invoice || m_list.shows(id))
        return;
    m_model.setSearch(AppSection::invoices, {});
    const auto moment = m_model.moment();
    if (!passes(*invoice, moment.calendar.day(moment.now).year)) {
        setFilter(InvoiceFilter::all);
        setYearFilter({});
        setClientFilter(std::nullopt);
    }
}

} // namespace Pallisande
