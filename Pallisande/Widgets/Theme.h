#pragma once

#include "PallisandeKit/Analyses/MatchBand.h"

#include <QColor>
#include <QFont>
#include <QPalette>

#include <array>

class QWidget;

namespace Pallisande {

// Colours that carry a meaning, always together with a word and a shape.
enum class Tone { red, amber, green, blue, purple, grey, teal };

enum class TextStyle { largeNumber, title, heading, body, bodyStrong, small, tableHead };

// What a text is written in.
enum class Ink { text, muted, accent, red, amber, green };

// Distances in device-independent pixels, at every text size.
namespace Space {
inline constexpr int tiny = 4, small = 8, medium = 12, large = 16, group = 24, page = 32;
}
namespace Radius {
inline constexpr int field = 6, card = 10, sheet = 12;
}

struct Colours {
    struct Pair {
        QColor text, tint;
    };

    QColor window, sidebar; // The page behind cards.
    QColor content, card, inset, raised; // Lists, cards, heads of tables, sheets and popovers.
    QColor hover, select, selectInactive; // Rows.
    QColor border, outline; // Hairlines; edges of controls.
    QColor text, muted, disabled;
    QColor accent, onAccent;
    std::array<Pair, 7> tones; // By Tone.
    std::array<QColor, 9> bands; // By MatchBand, against a card.
    QColor secondSeries; // Of charts; the first is the accent.
    QColor shadow;

    const Pair& tone(Tone tone) const { return tones[static_cast<std::size_t>(tone)]; }
    QColor band(MatchBand band) const { return bands[static_cast<std::size_t>(band)]; }
    QColor ink(Ink ink) const;

    static const Colours& light();
    static const Colours& dark();
    // What a desktop of high contrast asks for: its own colours and nothing between them.
    static Colours of(const QPalette& palette);
};

// Every colour, font and measure that the window is drawn with. A value: two of them describe two looks.
class Theme {
public:
    static constexpr int smallestTextSize = 85, largestTextSize = 200; // Percent.

    Theme(const Colours& colours, const QFont& systemFont, int textSize = 100);

    // The one that the widget is drawn with.
    static const Theme& of(const QWidget* widget);

    Colours colours;
    int edge = 1; // Of controls; 2 at high contrast.
    bool animates = true;

    QFont font(TextStyle style) const;
    int lineHeight(TextStyle style) const; // 1.4 times the size, in whole pixels.
    int textSize() const { return m_textSize; }

    int scaled(int pixels) const { return (pixels * m_textSize + 50) / 100; } // With the size of the text.
    int controlHeight() const { return scaled(30); }
    int iconSize() const { return scaled(16); }

    QPalette palette() const;
    // Bodies of cards and sheets have their own page colour.
    QPalette palette(const QColor& page) const;

private:
    QFont m_font;
    int m_bodySize;
    int m_textSize;
};

// How far two colours stand apart: 1 to 21 (WCAG 2).
double contrast(const QColor& first, const QColor& second);

// `amount` of `over` on `under`.
QColor blend(const QColor& under, const QColor& over, double amount);

} // namespace Pallisande
