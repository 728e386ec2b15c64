#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Tamberlin {

// A character where it is drawn. Coordinates are turned by the angle of the text, so that it runs along x and
// its lines follow each other along y, both growing, whichever way it is turned on the page.
struct Glyph {
    float x = 0, y = 0; // The start of its baseline.
    float advance = 0; // To where the next one is due.
    float size = 0; // Of its font, as on the page.
    char32_t text = 0; // A code point, or from `firstCluster` on the place of several in `clusters`.
    std::uint16_t font = 0; // The same for fonts of the same name.
    std::int16_t angle = 0; // In degrees.

    static constexpr char32_t firstCluster = 0x110000;

    float end() const { return x + advance; }
    float middle() const { return x + advance / 2; }
};

// All that is written on a page, in the order in which it is drawn.
struct PageGlyphs {
    std::vector<Glyph> glyphs;
    std::vector<std::u32string> clusters;
    double height = 0;

    std::u32string_view text(const Glyph& glyph) const
    {
        return glyph.text < Glyph::firstCluster ? std::u32string_view(&glyph.text, 1)
                                                : clusters[glyph.text - Glyph::firstCluster];
    }
    char32_t addCluster(std::u32string text)
    {
        clusters.push_back(std::move(text));
        return Glyph::firstCluster + static_cast<char32_t>(clusters.size() - 1);
    }
};

} // namespace Tamberlin
