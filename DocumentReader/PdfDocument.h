#pragma once

#include "DocumentReader/PageGlyphs.h"
#include "TamberlinKit/Readers/PdfPages.h"

#include <memory>
#include <string_view>

namespace Tamberlin {

// A PDF in memory, which must stay there. The only place that knows Poppler's inner interface: the outer one
// hands text over as words in objects of their own, at twice the cost of drawing the page.
class PdfDocument {
public:
    explicit PdfDocument(std::string_view file);
    ~PdfDocument();

    PdfAnswer::Refusal refusal() const { return m_refusal; }
    std::uint32_t pageCount() const { return m_pageCount; }

    // What is written on the page of that number, from 1. `page` gets what there is beside text.
    PageGlyphs read(std::uint32_t number, PdfPage& page);

private:
    struct Poppler;
    std::unique_ptr<Poppler> m_poppler;
    PdfAnswer::Refusal m_refusal = PdfAnswer::Refusal::none;
    std::uint32_t m_pageCount = 0;
};

} // namespace Tamberlin
