#include "PallisandeKit/Records/Invoice.h"

#include "TamberlinKit/Quotes/Money.h"

namespace Pallisande {

std::string_view label(InvoiceStatus status)
{
    constexpr std::array<std::string_view, 7> labels { "Draft", "Open", "Overdue", "Part paid", "Paid",
        "Credited", "Credit note" };
    return labels[static_cast<std::size_t>(status)];
}

Base::Decimal Invoice::subtotal() const
{
    Base::Decimal sum;
    for (const auto& line : lines)
        sum += line.amount;
    return sum;
}

Base::Decimal Invoice::tax() const
{
    return Tamberlin::Money::roundToCurrency((subtotal() * taxPercent).shifted(-2), currency);
}

Base::Decimal Invoice::total() const { return subtotal() + tax(); }

Base::Decimal Invoice::paid() const
{
    Base::Decimal sum;
    for (const auto& payment : payments)
        sum += payment.amount;
    return sum;
}

} // namespace Pallisande
