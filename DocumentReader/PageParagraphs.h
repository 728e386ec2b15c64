#pragma once

#include "DocumentReader/TextLines.h"
#include "TamberlinKit/Readers/PdfPages.h"

#include <vector>

namespace Tamberlin {

// The paragraphs of a page in reading order. That is the order in which it was drawn, which programs that
// make documents keep to; where it jumps up and down the page, columns are looked for instead. `height` is
// that of the page.
std::vector<PdfParagraph> pageParagraphs(std::vector<TextLine> lines, double height);

} // namespace Tamberlin
