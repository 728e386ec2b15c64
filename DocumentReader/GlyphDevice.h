#pragma once

#include "DocumentReader/PageGlyphs.h"
#include "TamberlinKit/Readers/PdfPages.h"

#include <OutputDev.h>

#include <optional>
#include <string>
#include <unordered_map>

namespace Tamberlin {

// Gathers the characters that Poppler draws.
class GlyphDevice final : public OutputDev {
public:
    void begin(PdfPage& page);
    PageGlyphs take() { return std::move(m_glyphs); }

    bool upsideDown() override { return true; }
    bool useDrawChar() override { return true; }
    bool interpretType3Chars() override { return false; }
    bool needNonText() override { return false; }

    void startPage(int number, GfxState* state, XRef* xref) override;
    void restoreState(GfxState*) override { m_isStale = true; }
    void updateCTM(GfxState*, double, double, double, double, double, double) override { m_isStale = true; }
    void updateFont(GfxState*) override { m_isStale = true; }
    void updateTextMat(GfxState*) override { m_isStale = true; }
    void updateCharSpace(GfxState*) override { m_isStale = true; }
    void updateHorizScaling(GfxState*) override { m_isStale = true; }
    void stroke(GfxState*) override { m_page->isDrawnOn = true; }
    void fill(GfxState*) override { m_page->isDrawnOn = true; }
    void eoFill(GfxState*) override { m_page->isDrawnOn = true; }

    void drawChar(GfxState* state, double x, double y, double dx, double dy, double originX, double originY,
        CharCode code, int byteCount, const Unicode* text, int length) override;
    void beginActualText(GfxState* state, const GooString* text) override;
    void endActualText(GfxState* state) override;

private:
    void refresh(GfxState* state);
    std::uint16_t fontNumber(const std::string& name);
    void add(const Glyph& glyph);

    PdfPage* m_page = nullptr;
    PageGlyphs m_glyphs;
    double m_width = 0;

    // Of the font as it is set now; worked out when something is drawn after a change.
    bool m_isStale = true;
    Glyph m_like;
    float m_cosine = 1, m_sine = 0;
    float m_spacing = 0; // Space between characters that is too large to be one of letters.
    bool m_hasFont = false;

    const GfxFont* m_font = nullptr; // That the next two are of.
    double m_sizeFactor = 1;
    std::uint16_t m_fontNumber = 0;
    std::unordered_map<std::string, std::uint16_t> m_fonts;
    std::optional<std::u32string> m_replacement; // What the glyphs drawn now stand for.
    std::optional<Glyph> m_replaced;
};

} // namespace Tamberlin
