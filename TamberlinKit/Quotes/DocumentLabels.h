#pragma once

#include "Base/Calendar.h"
#include "Base/Decimal.h"

#include <string>
#include <string_view>

namespace Tamberlin {

// The words and forms of one language for what is printed on documents.
struct DocumentLabels {
    std::string_view language; // BCP 47.

    std::string_view invoice, creditNote, quote;
    std::string_view number, date, due, validUntil, yourTaxNumber, taxNumber;
    std::string_view description, quantity, unit, price, amount;
    std::string_view words, characters;
    std::string_view subtotal, total, tax, minimumFee, surcharge;
    std::string_view correctsInvoice; // "Corrects invoice {number} of {date}"
    std::string_view delivered; // "delivered {date}"
    std::string_view credit; // The line of a credit note for what is left of {number}.
    std::string_view draftMark;
    std::string_view untitledJob;
    std::string_view carriedForward, broughtForward;
    std::string_view page; // "Page {n} of {m}"

    std::string_view groupMark, decimalMark;
    std::string_view months[12];
    std::string_view dateForm; // "{day} {month} {year}"

    // Grouped, with at least `places` digits after the decimal mark, and a true minus: "−1,234.50".
    std::string figure(const Base::Decimal& value, int places = 0) const;
    std::string figure(std::int64_t value) const { return figure(Base::Decimal(value)); }
    std::string day(Base::Day day) const;

    // The language's labels; English for a language that has none. A region is passed over: "en-GB" is "en".
    static const DocumentLabels& of(std::string_view language);
};

// `pattern` with each "{name}" replaced by its value.
std::string filled(
    std::string_view pattern, std::initializer_list<std::pair<std::string_view, std::string_view>> values);

} // namespace Tamberlin
