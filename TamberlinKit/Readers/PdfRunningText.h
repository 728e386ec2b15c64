#pragma once

#include "TamberlinKit/Readers/PdfPages.h"

#include <vector>

namespace Tamberlin {

// Which paragraphs, counted through all pages, are running headers and footers: from the edge of the page
// inwards, those that stand at the same height on three pages or more and differ in nothing but numbers. The
// first that doesn't ends the search, so that nothing inside the text is taken for one.
std::vector<bool> runningParagraphs(const std::vector<PdfPage>& pages);

} // namespace Tamberlin
