#pragma once

#include "TamberlinKit/Quotes/PrintedDocument.h"

#include <stdexcept>
#include <string>

namespace Pallisande {

// A document can't be made into a PDF; `what()` is the reason in a sentence or part of one.
class RenderError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Makes PDFs. The kit decides what stands on a document; how it is drawn is somebody else's.
class DocumentRenderer {
public:
    virtual ~DocumentRenderer() = default;
    // The bytes of a whole PDF; throws RenderError.
    virtual std::string render(const Tamberlin::PrintedDocument& document) = 0;
};

} // namespace Pallisande
