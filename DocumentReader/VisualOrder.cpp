#include "DocumentReader/VisualOrder.h"

#include "DocumentReader/Characters.h"

#include <algorithm>
#include <cmath>
#include <unicode/uchar.h>

namespace Tamberlin {

namespace {

// Something that keeps its place when a line is turned round: a letter with its marks, a blank.
struct Unit {
    enum class Side { leftward, rightward, number, neutral };
    std::u32string text;
    Side side = Side::neutral;
};

Unit::Side sideOf(char32_t c)
{
    switch (u_charDirection(static_cast<UChar32>(c))) {
    case U_RIGHT_TO_LEFT:
    case U_RIGHT_TO_LEFT_ARABIC:
        return Unit::Side::leftward;
    case U_LEFT_TO_RIGHT:
        return Unit::Side::rightward;
    case U_EUROPEAN_NUMBER:
    case U_ARABIC_NUMBER:
        return Unit::Side::number;
    default:
        return Unit::Side::neutral;
    }
}

// From left to right, as they stand. Marks go to the letter that they stand on, wherever they were drawn.
std::vector<Unit> unitsOf(const PageGlyphs& page, std::vector<Glyph> glyphs)
{
    std::stable_sort(glyphs.begin(), glyphs.end(),
        [](const Glyph& left, const Glyph& right) { return left.middle() < right.middle(); });
    std::vector<Unit> units;
    struct Letter {
        std::size_t unit;
        float middle;
    };
    std::vector<Letter> letters;
    std::vector<const Glyph*> marks;
    const Glyph* last = nullptr;
    for (const auto& glyph : glyphs) {
        const auto text = page.text(glyph);
        if (isMark(text.front())) {
            marks.push_back(&glyph);
            continue;
        }
        if (last && isWordGap(page, *last, glyph))
            units.push_back({ U" " });
        letters.push_back({ units.size(), glyph.middle() });
        units.push_back({ .side = sideOf(text.front()) });
        appendExpanded(units.back().text, text);
        last = &glyph;
    }
    std::size_t nearest = 0; // Marks and letters are both in order.
    for (const auto* const mark : marks) {
        const auto distance
            = [&](std::size_t place) { return std::abs(letters[place].middle - mark->middle()); };
        while (nearest + 1 < letters.size() && distance(nearest + 1) <= distance(nearest))
            ++nearest;
        if (nearest < letters.size())
            appendExpanded(units[letters[nearest].unit].text, page.text(*mark));
    }
    return units;
}

} // namespace

std::pair<std::u32string, bool> logicalText(const PageGlyphs& page, std::vector<Glyph> glyphs)
{
    auto units = unitsOf(page, std::move(glyphs));
    const auto count = [&](Unit::Side side) {
        return std::count_if(units.begin(), units.end(), [&](const Unit& unit) { return unit.side == side; });
    };
    const bool runsLeftwards = count(Unit::Side::leftward) >= count(Unit::Side::rightward);

    // What runs the other way than the line is turned: from its first strong character to its last.
    if (runsLeftwards) {
        std::reverse(units.begin(), units.end());
        // No line starts with a full stop. It stands there where such a line was set as if it ran to the
        // right.
        constexpr std::u32string_view ends = U".,!?:;،؛؟";
        const auto first = std::find_if(units.begin(), units.end(), [&](const Unit& unit) {
            return unit.text.size() != 1 || ends.find(unit.text.front()) == ends.npos;
        });
        std::rotate(units.begin(), first, units.end());
    }
    const auto isOther = [&](const Unit& unit) {
        return runsLeftwards ? unit.side == Unit::Side::rightward || unit.side == Unit::Side::number
                             : unit.side == Unit::Side::leftward;
    };
    for (std::size_t start = 0; start < units.size(); ++start) {
        if (!isOther(units[start]))
            continue;
        std::size_t last = start;
        bool isNumber = units[start].side == Unit::Side::number; // Two numbers stay in the order of the line.
        for (std::size_t place = start + 1; place < units.size(); ++place) {
            const auto side = units[place].side;
            if (isOther(units[place]))
                last = place;
            else if (side != Unit::Side::neutral || (isNumber && units[place].text == U" "))
                break;
            isNumber = isNumber && side != Unit::Side::rightward;
        }
        std::reverse(units.begin() + static_cast<std::ptrdiff_t>(start),
            units.begin() + static_cast<std::ptrdiff_t>(last) + 1);
        start = last;
    }
    std::pair<std::u32string, bool> result { {}, runsLeftwards };
    for (const auto& unit : units)
        result.first += unit.text;
    return result;
}

} // namespace Tamberlin
