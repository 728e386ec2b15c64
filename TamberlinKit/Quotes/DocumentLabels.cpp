#include "TamberlinKit/Quotes/DocumentLabels.h"

#include <fmt/format.h>

#include <array>

namespace Tamberlin {

namespace {

constexpr std::string_view minus = "−";

constexpr DocumentLabels english {
    .language = "en",
    .invoice = "Invoice",
    .creditNote = "Credit note",
    .quote = "Quote",
    .number = "Number",
    .date = "Date",
    .due = "Due",
    .validUntil = "Valid until",
    .yourTaxNumber = "Your tax number",
    .taxNumber = "Tax number",
    .description = "Description",
    .quantity = "Quantity",
    .unit = "Unit",
    .price = "Price",
    .amount = "Amount",
    .words = "words",
    .characters = "characters",
    .subtotal = "Subtotal",
    .total = "Total",
    .tax = "Tax",
    .minimumFee = "Minimum fee",
    .surcharge = "Surcharge",
    .correctsInvoice = "Corrects invoice {number} of {date}",
    .delivered = "delivered {date}",
    .credit = "Credit for {number}",
    .draftMark = "Draft, not an invoice",
    .untitledJob = "Untitled job",
    .carriedForward = "Carried forward",
    .broughtForward = "Brought forward",
    .page = "Page {n} of {m}",
    .groupMark = ",",
    .decimalMark = ".",
    .months = { "January", "February", "March", "April", "May", "June", "July", "August", "September",
        "October", "November", "December" },
    .dateForm = "{day} {month} {year}",
};

constexpr std::array<const DocumentLabels*, 1> languages { &english };

} // namespace

std::string DocumentLabels::figure(const Base::Decimal& value, int places) const
{
    const auto plain = value.magnitude().toString(places);
    const auto point = plain.find('.');
    const auto whole = std::string_view(plain).substr(0, point);
    std::string text(value.isNegative() ? minus : "");
    for (std::size_t at = 0; at < whole.size(); ++at) {
        if (at > 0 && (whole.size() - at) % 3 == 0)
            text += groupMark;
        text += whole[at];
    }
    if (point != std::string::npos) {
        text += decimalMark;
        text += plain.substr(point + 1);
    }
    return text;
}

std::string DocumentLabels::day(Base::Day day) const
{
    return filled(dateForm,
        { { "day", std::to_string(day.day) }, { "month", months[day.month - 1] },
            { "year", std::to_string(day.year) } });
}

const DocumentLabels& DocumentLabels::of(std::string_view language)
{
    const auto base = language.substr(0, language.find('-'));
    for (const auto* labels : languages) {
        if (labels->language == base)
            return *labels;
    }
    return english;
}

std::string filled(
    std::string_view pattern, std::initializer_list<std::pair<std::string_view, std::string_view>> values)
{
    std::string text;
    while (!pattern.empty()) {
        const auto open = pattern.find('{');
        const auto close = open == std::string_view::npos ? open : pattern.find('}', open);
        if (close == std::string_view::npos)
            break;
        text += pattern.substr(0, open);
        const auto name = pattern.substr(open + 1, close - open - 1);
        for (const auto& [key, value] : values) {
            if (key == name)
                text += value;
        }
        pattern.remove_prefix(close + 1);
    }
    return text.append(pattern);
}

} // namespace Tamberlin
