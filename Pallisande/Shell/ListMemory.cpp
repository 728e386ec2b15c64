#include "Pallisande/Shell/ListMemory.h"

#include "Pallisande/Model/ClientSection.h"
#include "Pallisande/Model/InvoiceSection.h"
#include "Pallisande/Model/JobSection.h"

#include <charconv>

namespace Pallisande {

namespace {

constexpr AppSection lists[] { AppSection::jobs, AppSection::clients, AppSection::invoices };

std::string key(const char* what, AppSection section)
{
    return std::string(what) + "." + std::to_string(static_cast<int>(section));
}

template <typename Enumeration> void store(ViewState& view, const std::string& name, Enumeration value)
{
    view.setText(name, std::to_string(static_cast<int>(value)));
}

// A number of an enumeration that may have had more values when it was kept.
std::optional<int> number(const ViewState& view, const std::string& name, int last)
{
    const auto text = view.text(name);
    int value = -1;
    if (text)
        std::from_chars(text->data(), text->data() + text->size(), value);
    return value >= 0 && value <= last ? std::optional(value) : std::nullopt;
}

std::optional<Base::Uuid> record(const ViewState& view, const std::string& name)
{
    const auto text = view.text(name);
    return text ? Base::Uuid::parse(*text) : std::nullopt;
}

} // namespace

void storeLists(AppModel& model, ViewState& view)
{
    store(view, "section", model.section());
    for (const auto section : lists) {
        const auto selected = model.selection(section);
        view.setText(key("selection", section), selected ? selected->toString() : "");
    }
    store(view, key("sort", AppSection::jobs), model.jobs().sort());
    store(view, key("sort", AppSection::clients), model.clients().sort());
    store(view, key("sort", AppSection::invoices), model.invoices().sort());
    store(view, key("filter", AppSection::jobs), model.jobs().filter());
    store(view, key("filter", AppSection::invoices), model.invoices().filter());
    view.setFlag("showsArchived", model.clients().showsArchived());
    const auto year = model.invoices().yearFilter();
    store(view, "year.kind", year.kind);
    store(view, "year", year.year);
    const auto client = [&](AppSection section, const std::optional<Base::Uuid>& id) {
        view.setText(key("client", section), id ? id->toString() : "");
    };
    client(AppSection::jobs, model.jobs().clientFilter());
    client(AppSection::invoices, model.invoices().clientFilter());
}

void restoreLists(AppModel& model, const ViewState& view)
{
    constexpr int lastYear = 9999;
    if (const auto sort = number(view, key("sort", AppSection::jobs), static_cast<int>(JobSort::price)))
        model.jobs().setSort(JobSort(*sort));
    if (const auto sort
        = number(view, key("sort", AppSection::clients), static_cast<int>(ClientSort::outstanding)))
        model.clients().setSort(ClientSort(*sort));
    if (const auto sort
        = number(view, key("sort", AppSection::invoices), static_cast<int>(InvoiceSort::status)))
        model.invoices().setSort(InvoiceSort(*sort));
    if (const auto filter = number(view, key("filter", AppSection::jobs), static_cast<int>(JobFilter::all)))
        model.jobs().setFilter(JobFilter(*filter));
    if (const auto filter
        = number(view, key("filter", AppSection::invoices), static_cast<int>(InvoiceFilter::creditNotes)))
        model.invoices().setFilter(InvoiceFilter(*filter));
    model.clients().setShowsArchived(view.flag("showsArchived"));
    if (const auto kind = number(view, "year.kind", static_cast<int>(YearFilter::Kind::year)))
        model.invoices().setYearFilter(
            { YearFilter::Kind(*kind), number(view, "year", lastYear).value_or(0) });
    if (const auto id = record(view, key("client", AppSection::jobs)); id && model.client(*id))
        model.jobs().setClientFilter(id);
    if (const auto id = record(view, key("client", AppSection::invoices)); id && model.client(*id))
        model.invoices().setClientFilter(id);
    for (const auto section : lists) {
        const auto id = record(view, key("selection", section));
        const bool isThere = id && (model.job(*id) || model.client(*id) || model.invoice(*id));
        if (isThere)
            model.select(section, id);
    }
    if (const auto section = number(view, "section", static_cast<int>(AppSection::invoices)))
        model.setSection(AppSection(*section));
}

} // namespace Pallisande
