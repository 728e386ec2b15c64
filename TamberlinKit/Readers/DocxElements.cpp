#include "TamberlinKit/Readers/DocxElements.h"

#include <algorithm>
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
    const auto place = std::lower_bound(std::begin(named), std::end(named), name,
        [](const auto& entry, std::string_view wanted) { return entry.first < wanted; });
    return place != std::end(named) && place->first == name ? place->second : other;
}

} // namespace Tamberlin
