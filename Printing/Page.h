#pragma once

#include <QRectF>
#include <QRgb>
#include <QTextLayout>

#include <memory>
#include <optional>
#include <vector>

namespace Pallisande {

// One line of a set text and where it stands.
struct PlacedLine {
    std::shared_ptr<const QTextLayout> text;
    int line = 0;
    double left = 0; // Of the column that the line is aligned in.
    double baseline = 0;
    QRgb colour = 0;

    QTextLine set() const { return text->lineAt(line); }
    // What the line’s characters take up on the page.
    QRectF area() const
    {
        const auto characters = set();
        return characters.naturalTextRect().translated(left, baseline - characters.ascent());
    }
};

// A thin bar.
struct PlacedRule {
    QRectF area;
    QRgb colour = 0;
};

// What stands on one page, in the order in which it is read.
struct Page {
    std::vector<PlacedLine> lines;
    std::vector<PlacedRule> rules;
    std::optional<QRectF> logo;
};

} // namespace Pallisande
