#pragma once

#include "TamberlinKit/Quotes/PrintedDocument.h"

#include <QImage>
#include <QSizeF>

#include <filesystem>
#include <string>
#include <variant>

namespace Pallisande {

// What pages are shown of: a document that is laid out now, or a PDF that was stored.
using PageSource = std::variant<std::monostate, Tamberlin::PrintedDocument, std::filesystem::path>;

// How large a page is drawn: as large as fits, or in percent of its size on paper.
struct PageScale {
    QSize room; // In device-independent pixels; what a page must fit into.
    int percent = 0; // 0: fit.
    double density = 1; // Device pixels in each of those.
};

struct DrawnPage {
    QImage image;
    QSizeF size; // In device-independent pixels.
    int page = 0, pages = 0;
    std::string failure; // Why there is no image.
    std::string missingCharacters; // That no font has.
};

// Lays out and draws one page; the last one where there are fewer. It takes its time, needs no window and may
// run in any thread: fonts that were set in one thread can't be drawn in another, so it does both.
DrawnPage drawnPage(const PageSource& source, int page, const PageScale& scale);

bool canDrawStoredPDFs(); // Whether this program was built to.

} // namespace Pallisande
