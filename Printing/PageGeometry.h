#pragma once

#include "TamberlinKit/Quotes/Paper.h"

// Lengths on a page are tenths of a point. QFont takes whole numbers, and in this measure every type size is
// one, whatever device the page is drawn on later.
namespace Pallisande {

constexpr double points(double count) { return count * 10; }
constexpr double millimetres(double count) { return points(count * 72 / 25.4); }

// A sheet of paper and the edges of the area that is printed on.
struct PaperSheet {
    double width;
    double height;
    double left;
    double top;
    double right;
    double bottom;
    double windowTop; // Where the window of an envelope begins.
};

constexpr PaperSheet sheetOf(Tamberlin::Paper paper)
{
    if (paper == Tamberlin::Paper::letter)
        return { millimetres(215.9), millimetres(279.4), millimetres(19), millimetres(19),
            millimetres(215.9 - 19), millimetres(279.4 - 19), millimetres(44) };
    return { millimetres(210), millimetres(297), millimetres(20), millimetres(20), millimetres(210 - 18),
        millimetres(297 - 20), millimetres(45) };
}

} // namespace Pallisande
