#pragma once

#include <cstdint>
#include <string_view>

namespace Tamberlin {

// What the elements of a Word document's stories mean for its text. Those of drawings, formulas and alternate
// content are among them: their names tell them apart well enough without their namespaces.
enum class DocxElement : std::uint8_t {
    other,
    alternateContent,
    branch,
    box,
    chart,
    deletion,
    diagram,
    endOfLine,
    field,
    fieldCode,
    formField,
    headerOrFooter,
    image,
    insertedFile,
    leftOut,
    noBreakHyphen,
    note,
    object,
    paragraph,
    paragraphProperties,
    paragraphStyle,
    picture,
    pieceOfFormula,
    pieceOfRow,
    rowOfFormula,
    run,
    runProperties,
    runStyle,
    softHyphen,
    subdocument,
    symbol,
    tab,
    tabOfParagraph,
    table,
    text,
    vanish,
    wordArt,
};

DocxElement docxElementNamed(std::string_view name);

} // namespace Tamberlin
