#pragma once

#include "TamberlinKit/Readers/PdfPages.h"
#include "TamberlinKit/Text/Extracted.h"

#include <vector>

namespace Tamberlin {

// Makes the paragraphs of pages, which must be in order, into segments: lines become one text, a sentence
// that goes on in the next column or on the next page stays whole, and what repeats at the head or foot of
// three pages or more is headers and footers.
//
// A line that ends in a hyphen and goes on in lower case is joined without it, as a hyphenated word; unless
// the document has the word with its hyphen inside a line, or the word behind it is an “and” or “or” (as in
// German “Vor- und Nachteile”), or a blank stands behind the hyphen. Before a capital or a digit the hyphen
// stays.
std::vector<Segment> pdfSegments(const std::vector<PdfPage>& pages);

} // namespace Tamberlin
