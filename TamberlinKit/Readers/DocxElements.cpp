#include "TamberlinKit/Readers/DocxElements.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <utility>

namespace Tamberlin {

DocxElement docxElementNamed(std::string_view name)
{
    using enum DocxElement;
    static constexpr std::pair<std::string_view, DocxElement> named[] {
        { "AlternateContent", alternateContent },
        { "Choice", branch },
        { "Fallback", branch },
        { "altChunk", insertedFile },
        { "br", endOfLine },
        { "chart", chart },
        { "comment", note },
        { "cr", endOfLine },
        { "ddList", formField },
        { "deg", pieceOfFormula },
        { "del", deletion },
        { "den", pieceOfFormula },
        { "e", pieceOfRow },
        { "endnote", note },
        { "eqArr", rowOfFormula },
        { "fldChar", field },
        { "footerReference", headerOrFooter },
        { "footnote", note },
        { "headerReference", headerOrFooter },
        { "imagedata", image },
        { "instrText", fieldCode },
        { "lim", pieceOfFormula },
        { "moveFrom", deletion },
        { "mr", rowOfFormula },
        { "nary", rowOfFormula },
        { "noBreakHyphen", noBreakHyphen },
        { "num", pieceOfFormula },
        { "object", object },
        { "p", paragraph },
        { "pPr", paragraphProperties },
        { "pPrChange", leftOut },
        { "pStyle", paragraphStyle },
        { "pic", picture },
        { "ptab", tabOfParagraph },
        { "r", run },
        { "rPr", runProperties },
        { "rPrChange", leftOut },
        { "rStyle", runStyle },
        { "relIds", diagram },
        { "rt", leftOut }, // How a ruby's base is read aloud; the base is the text.
        { "sdtEndPr", leftOut },
        { "sdtPr", leftOut },
        { "sectPrChange", leftOut },
        { "softHyphen", softHyphen },
        { "sub", pieceOfRow },
        { "subDoc", subdocument },
        { "sup", pieceOfRow },
        { "sym", symbol },
        { "symEx", symbol },
        { "t", text },
        { "tab", tab },
        { "tbl", table },
        { "tc", table },
        { "textpath", wordArt },
        { "txBody", box },
        { "txbxContent", box },
        { "vanish", vanish },
    };
    static_assert(std::is_sorted(std::begin(named), std::end(named)));
    // Where the names with each first letter begin. Most names aren't among them and have no equal in length.
    static constexpr auto begin = [] {
        std::array<std::uint8_t, 129> places {};
        for (std::size_t letter = 0; letter < places.size(); ++letter) {
            auto& place = places[letter];
            while (place < std::size(named) && static_cast<unsigned char>(named[place].first[0]) < letter)
                ++place;
        }
        return places;
    }();
    const auto first = name.empty() ? 0 : static_cast<unsigned char>(name.front());
    if (first >= 128)
        return other;
    for (std::size_t place = begin[first]; place < begin[first + 1u]; ++place) {
        if (named[place].first == name)
            return named[place].second;
    }
    return other;
}

} // namespace Tamberlin
