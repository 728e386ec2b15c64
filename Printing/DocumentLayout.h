#pragma once

#include "Printing/Page.h"
#include "Printing/PageGeometry.h"
#include "TamberlinKit/Quotes/PrintedDocument.h"

#include <QImage>

#include <string>
#include <vector>

namespace Pallisande {

// A document laid out on pages, for whatever they are drawn on: a PDF, a printer, a preview.
struct DocumentLayout {
    PaperSheet sheet;
    QImage logo; // Null when there is none.
    std::vector<Page> pages;
    std::string missingCharacters; // Those that no font has, each once; such a document is not to be issued.
};

// Throws PrintingError for a logo that can’t be read and for texts that are too long. Missing characters
// don’t keep a draft from being shown.
DocumentLayout layOut(const Tamberlin::PrintedDocument& document);

} // namespace Pallisande
