#pragma once

#include "Printing/DocumentLayout.h"

#include <string>

namespace Pallisande {

// Corrects which characters the glyphs of a PDF are said to stand for. Qt names the first one in Unicode that
// the font draws with a glyph: a tab for every space, an old radical for 日 or 文, an Arabic letter’s shape
// in place of the letter. Who searches the file, or copies from it, means those of the document.
void nameCharactersAsWritten(std::string& pdf, const DocumentLayout& layout);

} // namespace Pallisande
