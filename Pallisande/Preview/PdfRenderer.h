#pragma once

#include "PallisandeKit/Library/DocumentRenderer.h"
#include "Printing/PdfDocument.h"
#include "Printing/PrintingError.h"

namespace Pallisande {

// Draws what is issued as PDF/A, in this program.
class PdfRenderer final : public DocumentRenderer {
public:
    std::string render(const Tamberlin::PrintedDocument& document) override
    {
        try {
            return makePdf(document);
        } catch (const PrintingError& error) {
            throw RenderError(error.what());
        }
    }
};

} // namespace Pallisande
