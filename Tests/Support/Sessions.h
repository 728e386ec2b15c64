#pragma once

#include "Base/Json.h"
#include "PallisandeKit/Library/LibrarySession.h"
#include "Tests/Support/Samples.h"

#include <memory>
#include <string>

namespace Test {

// Stands in for the drawing of PDFs: the document's own text behind a PDF's first bytes.
class TextRenderer final : public Pallisande::DocumentRenderer {
public:
    std::string render(const Tamberlin::PrintedDocument& document) override
    {
        if (!refusal.empty())
            throw Pallisande::RenderError(refusal);
        return "%PDF-1.4 " + Base::toJson(document, Base::JsonStyle::compact);
    }

    std::string refusal;
};

// A clock that tests set, and what else a session is handed.
struct Surroundings {
    Base::Instant now = Test::moment().now;
    TextRenderer renderer;

    Pallisande::SessionServices services()
    {
        return { .now = [this] { return now; }, .calendar = Test::calendar(), .renderer = &renderer };
    }

    Pallisande::LibrarySession open(const std::filesystem::path& folder,
        Pallisande::LibrarySession::Access access = Pallisande::LibrarySession::Access::writing)
    {
        return Pallisande::LibrarySession::open(folder, access, services());
    }
};

} // namespace Test
