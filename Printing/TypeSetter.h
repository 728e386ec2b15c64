#pragma once

#include "Printing/GlyphCheck.h"
#include "Printing/Page.h"

#include <QFont>
#include <QStringList>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Pallisande {

// The tones of a page. They are solid colours, since a PDF for archives holds nothing transparent.
constexpr QRgb ink = 0xff000000;
constexpr QRgb mutedInk = 0xff5c5c5c;
constexpr QRgb hairlineInk = 0xffb4b4b4;

struct TypeStyle {
    enum class Side { start, right }; // A text starts at the right when it is written from there.

    double size; // In points.
    bool strong = false;
    QRgb colour = ink;
    Side side = Side::start;
};

// A text in one style; broken into lines of some width once `breakAt` has been called.
class SetText {
public:
    SetText() = default; // Takes no line.

    double naturalWidth() const { return m_naturalWidth; } // Unbroken.
    void breakAt(double width);
    int lineCount() const { return m_layout ? m_layout->lineCount() : 0; }

private:
    friend class TypeSetter;
    friend class Bands;

    std::shared_ptr<QTextLayout> m_layout;
    QRgb m_colour = ink;
    double m_size = 0;
    double m_naturalWidth = 0;
};

// Lines that share a baseline, and the room that they need above and below it.
struct Band {
    std::vector<PlacedLine> lines; // Their baselines aren’t known yet.
    double above = 0;
    double below = 0;

    double height() const { return above + below; }
};

// Bands below one another; texts put side by side in them share their baselines, line by line.
class Bands {
public:
    // Puts a broken text into the column that begins at `left`, its first line into the band `first`.
    void add(const SetText& text, double left, std::size_t first = 0);
    // Puts it below everything that is there.
    void append(const SetText& text, double left) { add(text, left, m_bands.size()); }

    double height() const;
    bool empty() const { return m_bands.empty(); }
    std::size_t size() const { return m_bands.size(); }
    const Band& operator[](std::size_t index) const { return m_bands[index]; }

private:
    std::vector<Band> m_bands;
};

// Turns the texts of a document into set ones. Every text goes through here, so this is where characters
// without a font are noticed.
class TypeSetter {
public:
    explicit TypeSetter(std::string_view language);

    // Throws PrintingError::tooLong.
    SetText set(std::string_view text, const TypeStyle& style);
    // The same, broken already.
    SetText set(std::string_view text, const TypeStyle& style, double width);

    const QString& missingCharacters() const { return m_check.missing(); }

private:
    QStringList m_families;
    QStringList m_eastAsianFamilies;
    GlyphCheck m_check;
    qsizetype m_length = 0; // Of all texts so far.
};

} // namespace Pallisande
