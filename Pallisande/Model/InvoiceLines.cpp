#include "Pallisande/Model/InvoiceSection.h"

#include "TamberlinKit/Quotes/Money.h"

#include <algorithm>

// The lines of a draft.
namespace Pallisande {

namespace {

auto lineOf(std::vector<InvoiceLine>& lines, const Base::Uuid& id)
{
    const auto found
        = std::find_if(lines.begin(), lines.end(), [&](const InvoiceLine& line) { return line.id == id; });
    if (found == lines.end())
        throw LedgerError::notFound();
    return found;
}

Base::Decimal product(const InvoiceLine& line, const std::string& currency)
{
    return Tamberlin::Money::roundToCurrency(line.quantity * line.unitPrice, currency);
}

} // namespace

bool InvoiceSection::addLine(const Base::Uuid& id)
{
    return editAlone(id, "Change Draft",
        [](Invoice& draft) { draft.lines.push_back({ .id = Base::Uuid::random(), .quantity = 1 }); });
}

bool InvoiceSection::editLine(
    const Base::Uuid& id, const Base::Uuid& line, const std::function<void(InvoiceLine&)>& change)
{
    return edit(id, "Change Draft", [&](Invoice& draft) {
        auto& edited = *lineOf(draft.lines, line);
        const auto before = edited;
        change(edited);
        const bool isReckoned = edited.quantity != before.quantity || edited.unitPrice != before.unitPrice;
        if (isReckoned && edited.amount == before.amount)
            edited.amount = product(edited, draft.currency);
    });
}

bool InvoiceSection::removeLine(const Base::Uuid& id, const Base::Uuid& line)
{
    return editAlone(
        id, "Change Draft", [&](Invoice& draft) { draft.lines.erase(lineOf(draft.lines, line)); });
}

bool InvoiceSection::moveLine(const Base::Uuid& id, const Base::Uuid& line, int by)
{
    return edit(id, "Change Draft", [&](Invoice& draft) {
        const auto from = lineOf(draft.lines, line) - draft.lines.begin();
        const auto to = std::clamp<std::ptrdiff_t>(from + by, 0, std::ssize(draft.lines) - 1);
        auto moved = std::move(draft.lines[static_cast<std::size_t>(from)]);
        draft.lines.erase(draft.lines.begin() + from);
        draft.lines.insert(draft.lines.begin() + to, std::move(moved));
    });
}

bool InvoiceSection::amountIsTyped(const InvoiceLine& line, const std::string& currency)
{
    return line.amount != product(line, currency);
}

} // namespace Pallisande
