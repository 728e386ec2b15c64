#pragma once

#include "Base/Calendar.h"
#include "PallisandeKit/Records/Library.h"
#include "TamberlinKit/Quotes/PrintedDocument.h"

#include <string_view>

namespace Pallisande {

// What stands where on an invoice or credit note, in the words of `language`. A draft carries a mark and no
// number.
Tamberlin::PrintedDocument invoiceDocument(const Library& library, const Invoice& invoice,
    std::string_view language, const Base::Calendar& calendar);

} // namespace Pallisande
