#pragma once

#include "Printing/DocumentLayout.h"

#include <string>

namespace Pallisande {

// The document as a PDF for archives (PDF/A-1b) in memory, with its fonts. Throws PrintingError, for missing
// characters too.
std::string makePdf(const Tamberlin::PrintedDocument& document);

} // namespace Pallisande
