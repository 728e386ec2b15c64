#include "TamberlinKit/Readers/RtfControls.h"

#include "TamberlinKit/Text/Part.h"

#include <array>
#include <cstddef>
#include <iterator>

namespace Tamberlin {

namespace {

using enum RtfControl::Action;

struct Word {
    std::string_view word;
    RtfControl::Action action = none;
    std::uint16_t value = 0;
};

constexpr std::uint16_t part(Part part) { return static_cast<std::uint16_t>(part); }

constexpr Word words[] { { "tab", character, '\t' }, { "line", character, '\n' }, { "page", character, '\n' },
    { "column", character, '\n' }, { "emdash", character, 0x2014 }, { "endash", character, 0x2013 },
    { "bullet", character, 0x2022 }, { "lquote", character, 0x2018 }, { "rquote", character, 0x2019 },
    { "ldblquote", character, 0x201C }, { "rdblquote", character, 0x201D }, { "emspace", character, 0x2003 },
    { "enspace", character, 0x2002 }, { "qmspace", character, 0x2005 }, { "zwbo", character, 0x200B },
    { "zwnbo", character, 0x2060 }, { "zwj", character, 0x200D }, { "zwnj", character, 0x200C },
    { "ltrmark", character, 0x200E }, { "rtlmark", character, 0x200F },

    { "par", paragraphEnd }, { "sect", paragraphEnd }, { "cell", paragraphEnd }, { "nestcell", paragraphEnd },
    { "row", paragraphEnd }, { "nestrow", paragraphEnd },

    { "header", container, part(Part::headersFooters) }, { "headerl", container, part(Part::headersFooters) },
    { "headerr", container, part(Part::headersFooters) },
    { "headerf", container, part(Part::headersFooters) }, { "footer", container, part(Part::headersFooters) },
    { "footerl", container, part(Part::headersFooters) },
    { "footerr", container, part(Part::headersFooters) },
    { "footerf", container, part(Part::headersFooters) }, { "footnote", container, part(Part::footnotes) },
    { "annotation", container, part(Part::comments) }, { "shptxt", container, part(Part::textBoxes) },
    { "dptxbxtext", container, part(Part::textBoxes) }, { "shpinst", transparent }, { "do", transparent },
    { "shppict", transparent }, { "moMath", transparent }, { "moMathPara", transparent },

    { "sp", shapeProperty }, { "sn", shapePropertyName }, { "sv", shapePropertyValue }, { "pict", picture },
    { "object", object },

    { "fonttbl", fontTable }, { "f", font }, { "af", associatedFont }, { "ltrch", leftToRight },
    { "rtlch", rightToLeft }, { "fcharset", fontCharset }, { "cpg", fontCodePage }, { "deff", defaultFont },
    { "plain", plain }, { "ansicpg", codePage }, { "mac", codePage, 10000 }, { "pc", codePage, 437 },
    { "pca", codePage, 850 }, { "v", hidden }, { "deleted", deleted }, { "mvf", deleted }, { "u", unicode },
    { "uc", unicodeSkip }, { "bin", binary }, { "upr", bothEncodings }, { "ud", unicodeText } };

// Destinations without text, known by name since some writers leave out the mark that lets readers skip them.
constexpr std::string_view skippedWords[] { // Tables of the document.
    "colortbl", "stylesheet", "info", "filetbl", "listtable", "list", "listoverridetable", "revtbl",
    "rsidtbl", "listpicture", "generator", "latentstyles", "themedata", "colorschememapping", "datastore",
    "xmlnstbl", "userprops", "docvar", "panose", "falt", "leveltext", "levelnumbers", "listname",
    // Labels of lists, codes of fields, entries of indexes, who commented.
    "listtext", "pntext", "pntxta", "pntxtb", "fldinst", "fldtype", "datafield", "formfield", "xe", "tc",
    "tcn", "rxe", "txe", "bkmkstart", "bkmkend", "atnid", "atnauthor", "atntime", "atndate", "atnref",
    "atrfstart", "atrfend", "ftnsep", "ftnsepc", "ftncn", "aftnsep", "aftnsepc", "aftncn",
    // What other readers show instead of a shape, a picture or a table within a table.
    "shprslt", "nonshppict", "nonesttables", "mmathPict", "objdata", "objclass", "objname", "private"
};

// FNV-1a.
constexpr std::uint32_t hashOf(std::string_view word)
{
    std::uint32_t hash = 2'166'136'261;
    for (const char letter : word)
        hash = (hash ^ static_cast<unsigned char>(letter)) * 16'777'619;
    return hash;
}

constexpr std::size_t count = std::size(words) + std::size(skippedWords);
constexpr Word wordAt(std::size_t place)
{
    return place < std::size(words) ? words[place] : Word { skippedWords[place - std::size(words)], skipped };
}

// Open addressing; the words are few against the places, and nearly every word asked for is decided by the
// first.
constexpr std::size_t places = 1024;
constexpr auto table = [] {
    std::array<Word, places> made {};
    for (std::size_t word = 0; word < count; ++word) {
        auto place = hashOf(wordAt(word).word) % places;
        while (!made[place].word.empty())
            place = (place + 1) % places;
        made[place] = wordAt(word);
    }
    return made;
}();

} // namespace

RtfControl rtfControl(std::string_view word)
{
    for (auto place = hashOf(word) % places; !table[place].word.empty(); place = (place + 1) % places) {
        if (table[place].word == word)
            return { table[place].action, table[place].value };
    }
    // Properties of mathematical structures, such as the sign of a sum.
    if (word.starts_with('m') && word.ends_with("Pr"))
        return { skipped };
    return {};
}

} // namespace Tamberlin
