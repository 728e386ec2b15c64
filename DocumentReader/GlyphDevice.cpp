#include "DocumentReader/GlyphDevice.h"

#include <GfxFont.h>
#include <GfxState.h>
#include <PDFDocEncoding.h>
#include <goo/GooString.h>

#include <cmath>
#include <numbers>

namespace Tamberlin {

namespace {

constexpr std::size_t mostGlyphs = 2'000'000; // On a page.

// Letters are spaced out by up to this, in widths of an em; what is further apart are words.
constexpr double widestSpacing = 0.4;

// The size of a font of drawings (Type 3) says nothing: its unit is its own. But letters are half as wide as
// they are high, near enough.
double sizeFactor(const GfxFont& font)
{
    if (font.getType() != fontType3)
        return 1;
    const auto& letters = static_cast<const Gfx8BitFont&>(font);
    double sum = 0;
    int count = 0;
    for (int code = 0; code < 256; ++code) {
        if (const double width = std::abs(letters.getWidth(static_cast<unsigned char>(code))); width > 0) {
            sum += width;
            ++count;
        }
    }
    return count > 0 ? sum / count / 0.5 : 1;
}

// A text string of PDF: UTF-16 or UTF-8 with a mark, or else PDF's own code page.
std::u32string decoded(const std::string& bytes)
{
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(bytes[at]); };
    std::u32string text;
    if (bytes.starts_with("\xFE\xFF")) {
        for (std::size_t at = 2; at + 1 < bytes.size(); at += 2) {
            const char32_t unit = static_cast<char32_t>(byte(at) << 8 | byte(at + 1));
            const bool isLow = unit >= 0xDC00 && unit < 0xE000;
            if (isLow && !text.empty() && text.back() >= 0xD800 && text.back() < 0xDC00)
                text.back() = 0x10000 + ((text.back() - 0xD800) << 10) + (unit - 0xDC00);
            else
                text += unit;
        }
        return text;
    }
    for (std::size_t at = 0; at < bytes.size(); ++at)
        text += pdfDocEncoding[byte(at)];
    return text;
}

} // namespace

void GlyphDevice::begin(PdfPage& page)
{
    m_page = &page;
    m_glyphs = {};
    m_replacement.reset();
    m_replaced.reset();
}

void GlyphDevice::startPage(int, GfxState* state, XRef*)
{
    m_isStale = true;
    m_font = nullptr; // Another page may have another one in its place.
    m_width = state->getPageWidth();
    m_glyphs.height = state->getPageHeight();
}

std::uint16_t GlyphDevice::fontNumber(const std::string& name)
{
    return m_fonts.try_emplace(name, static_cast<std::uint16_t>(m_fonts.size())).first->second;
}

void GlyphDevice::refresh(GfxState* state)
{
    m_isStale = false;
    const auto& font = state->getFont();
    m_hasFont = font != nullptr;
    if (!m_hasFont)
        return;
    if (font.get() != m_font) {
        m_font = font.get();
        m_sizeFactor = sizeFactor(*font);
        m_fontNumber = fontNumber(font->getNameWithoutSubsetTag());
    }
    const double size = state->getTransformedFontSize() * m_sizeFactor;
    m_hasFont = std::isfinite(size) && size > 0;
    double along[2], across[2];
    state->getFontTransMat(&along[0], &along[1], &across[0], &across[1]);
    const bool isVertical = font->getWMode() == 1;
    const double angle = isVertical ? std::atan2(-across[1], -across[0]) : std::atan2(along[1], along[0]);
    m_like = { .size = static_cast<float>(size), .font = m_fontNumber };
    m_like.angle = static_cast<std::int16_t>(std::lround(angle * 180 / std::numbers::pi));
    const double turn = m_like.angle * std::numbers::pi / 180;
    m_cosine = static_cast<float>(std::cos(turn));
    m_sine = static_cast<float>(std::sin(turn));
    double spacing[2];
    state->textTransformDelta(
        state->getCharSpace() * (isVertical ? 1 : state->getHorizScaling()), 0, &spacing[0], &spacing[1]);
    state->transformDelta(spacing[0], spacing[1], &spacing[0], &spacing[1]);
    const double space = std::hypot(spacing[0], spacing[1]);
    m_spacing = state->getCharSpace() > 0 && space > widestSpacing * size ? static_cast<float>(space) : 0;
}

void GlyphDevice::add(const Glyph& glyph)
{
    // Some make letters bold by drawing them twice.
    if (!m_glyphs.glyphs.empty()) {
        const auto& last = m_glyphs.glyphs.back();
        const float near = 0.1f * glyph.size;
        if (last.text == glyph.text && std::abs(last.x - glyph.x) < near && std::abs(last.y - glyph.y) < near
            && last.angle == glyph.angle)
            return;
    }
    if (m_glyphs.glyphs.size() < mostGlyphs)
        m_glyphs.glyphs.push_back(glyph);
    else
        m_page->isCutOff = true;
}

void GlyphDevice::drawChar(GfxState* state, double x, double y, double dx, double dy, double, double,
    CharCode, int, const Unicode* text, int length)
{
    if (m_isStale)
        refresh(state);
    if (!m_hasFont || (length <= 0 && !m_replacement))
        return;
    double left = 0, base = 0, right = 0, rise = 0;
    state->transform(x, y, &left, &base);
    state->transformDelta(dx, dy, &right, &rise);
    // What lies outside of the page isn't seen.
    if (std::max(left, left + right) < 0 || std::min(left, left + right) > m_width
        || std::max(base, base + rise) < 0 || std::min(base, base + rise) > m_glyphs.height
        || !std::isfinite(left + base + right + rise))
        return;
    Glyph glyph = m_like;
    const auto turned = [&](double across, double down) {
        return std::pair(static_cast<float>(across) * m_cosine + static_cast<float>(down) * m_sine,
            static_cast<float>(down) * m_cosine - static_cast<float>(across) * m_sine);
    };
    std::tie(glyph.x, glyph.y) = turned(left, base);
    glyph.advance = std::max(turned(right, rise).first - m_spacing, 0.0f);
    if (m_replacement) {
        if (!m_replaced)
            m_replaced = glyph;
        else if (std::abs(m_replaced->y - glyph.y) < glyph.size / 2 && m_replaced->angle == glyph.angle)
            m_replaced->advance = std::max(m_replaced->end(), glyph.end()) - m_replaced->x;
        return;
    }
    glyph.text = length == 1 ? text[0] : m_glyphs.addCluster(std::u32string(text, text + length));
    add(glyph);
}

void GlyphDevice::beginActualText(GfxState*, const GooString* text)
{
    m_replacement = decoded(text->toStr());
    m_replaced.reset();
}

void GlyphDevice::endActualText(GfxState*)
{
    if (m_replacement && m_replaced && !m_replacement->empty()) {
        m_replaced->text = m_replacement->size() == 1 ? m_replacement->front()
                                                      : m_glyphs.addCluster(std::move(*m_replacement));
        add(*m_replaced);
    }
    m_replacement.reset();
}

} // namespace Tamberlin
