#include "Printing/GlyphCheck.h"

#include <QGlyphRun>
#include <QPainterPath>

#include <algorithm>
#include <array>

namespace Pallisande {

namespace {

constexpr qsizetype enough = 100; // Of missing characters, of which only the first are ever named.

// Characters that leave no mark on paper: controls, formats, separators, and what Unicode calls ignorable by
// default.
bool isInvisible(char32_t character)
{
    switch (QChar::category(character)) {
    case QChar::Other_Control:
    case QChar::Other_Format:
    case QChar::Separator_Space:
    case QChar::Separator_Line:
    case QChar::Separator_Paragraph:
        return true;
    default:
        break;
    }
    struct Range {
        char32_t first, last;
    };
    static constexpr std::array<Range, 11> invisible { {
        { 0x034F, 0x034F }, // Combining grapheme joiner
        { 0x115F, 0x1160 }, // Hangul fillers
        { 0x17B4, 0x17B5 }, // Inherent Khmer vowels
        { 0x180B, 0x180F }, // Mongolian variation selectors
        { 0x2065, 0x2065 }, { 0x2800, 0x2800 }, // Blank Braille pattern
        { 0x3164, 0x3164 }, // Hangul filler
        { 0xFE00, 0xFE0F }, // Variation selectors
        { 0xFFA0, 0xFFA0 }, // Hangul filler
        { 0xFFF0, 0xFFF8 }, { 0xE0000, 0xE0FFF }, // Tags and further variation selectors
    } };
    return std::any_of(invisible.begin(), invisible.end(),
        [&](const Range& range) { return character >= range.first && character <= range.last; });
}

} // namespace

GlyphCheck::Face& GlyphCheck::faceOf(const QRawFont& font)
{
    const auto known = m_faces.find(font);
    if (known != m_faces.end())
        return *known;
    const auto has = [&](const char* table) { return !font.fontTable(table).isEmpty(); };
    // Bitmap fonts have no tables, nor has what Qt draws boxes with when no font is installed.
    auto outlines = Face::Outlines::some;
    if (!has("head"))
        outlines = Face::Outlines::none;
    else if (has("loca") && !has("COLR") && !has("CBDT") && !has("sbix") && !has("SVG "))
        outlines = Face::Outlines::all;
    return *m_faces.insert(font, { .outlines = outlines });
}

bool GlyphCheck::draws(const QRawFont& font, const QString& character)
{
    const auto outlines = faceOf(font).outlines;
    const auto glyphs = font.glyphIndexesForString(character);
    if (outlines == Face::Outlines::none || glyphs.isEmpty() || glyphs.first() == 0)
        return false;
    return outlines == Face::Outlines::all || !font.pathForGlyph(glyphs.first()).isEmpty();
}

void GlyphCheck::inspect(const QTextLayout& text)
{
    const auto runs = text.glyphRuns();
    const bool certain = std::all_of(runs.begin(), runs.end(), [&](const QGlyphRun& run) {
        const Face& face = faceOf(run.rawFont());
        const auto glyphs = run.glyphIndexes();
        return std::all_of(glyphs.begin(), glyphs.end(), [&](quint32 glyph) {
            return glyph != 0 && (face.outlines == Face::Outlines::all || face.drawable.contains(glyph));
        });
    });
    if (certain)
        return;

    const QString characters = text.text();
    const auto before = m_missing.size();
    for (qsizetype at = 0, length = 1; at < characters.size() && m_missing.size() < enough; at += length) {
        const bool pair = characters[at].isHighSurrogate() && at + 1 < characters.size();
        length = pair ? 2 : 1;
        const QString character = characters.mid(at, length);
        if (isInvisible(character.toUcs4().first()) || m_missing.contains(character))
            continue;
        const auto drawn = text.glyphRuns(static_cast<int>(at), static_cast<int>(length));
        const bool lacks = std::any_of(drawn.begin(), drawn.end(), [&](const QGlyphRun& run) {
            const bool doubtful
                = run.glyphIndexes().contains(0) || faceOf(run.rawFont()).outlines != Face::Outlines::all;
            return doubtful && !draws(run.rawFont(), character);
        });
        if (lacks)
            m_missing += character;
    }
    if (m_missing.size() == before) {
        for (const auto& run : runs) {
            for (const auto glyph : run.glyphIndexes())
                faceOf(run.rawFont()).drawable.insert(glyph);
        }
    }
}

} // namespace Pallisande
