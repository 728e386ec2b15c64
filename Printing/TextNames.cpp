#include "Printing/TextNames.h"

#include <QGlyphRun>
#include <QHash>
#include <QRawFont>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <map>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

namespace Pallisande {

namespace {

// The characters of the document, and with which glyphs of which fonts they are drawn.
class WrittenCharacters {
public:
    explicit WrittenCharacters(const DocumentLayout& layout)
    {
        std::map<QString, QRawFont> fonts; // One for all sizes: they share their glyphs.
        for (const auto& page : layout.pages) {
            for (const auto& line : page.lines) {
                const auto set = line.set();
                const auto text = QStringView(line.text->text()).mid(set.textStart(), set.textLength());
                m_characters.insert(text.begin(), text.end());
                for (const auto& run : set.glyphRuns())
                    fonts.try_emplace(run.rawFont().familyName() + run.rawFont().styleName(), run.rawFont());
            }
        }
        for (const auto& [name, font] : fonts) {
            QHash<quint32, QChar> glyphs;
            for (const QChar character : m_characters) {
                const auto glyph = glyphOf(font, character);
                if (glyph != 0 && character.category() != QChar::Other_Control && !glyphs.contains(glyph))
                    glyphs.insert(glyph, character);
            }
            m_fonts.emplace_back(font, std::move(glyphs));
        }
    }

    // What is written where Qt names this one.
    QChar written(QChar named) const
    {
        if (m_characters.contains(named) && named.category() != QChar::Other_Control)
            return named;
        for (const auto& [font, glyphs] : m_fonts) {
            if (const auto known = glyphs.find(glyphOf(font, named)); known != glyphs.end())
                return *known;
        }
        const auto tag = named.decompositionTag();
        const bool isShape = tag >= QChar::Initial && tag <= QChar::Isolated;
        const auto letters = isShape ? named.decomposition() : QString();
        return letters.size() == 1 ? letters.front() : named;
    }

private:
    static quint32 glyphOf(const QRawFont& font, QChar character)
    {
        const auto glyphs = font.glyphIndexesForString(QString(character));
        return glyphs.isEmpty() ? 0 : glyphs.first();
    }

    std::set<QChar> m_characters;
    std::vector<std::pair<QRawFont, QHash<quint32, QChar>>> m_fonts;
};

// The lines of a table are “<first> <last> [<name> <name> …]”, or end with the name of the first alone.
void correctLine(char* line, char* end, const WrittenCharacters& characters)
{
    constexpr std::ptrdiff_t beforeNames = 14;
    constexpr std::ptrdiff_t nameLength = 6;
    if (end - line < beforeNames + nameLength)
        return;
    const bool oneByOne
        = line[beforeNames] == '[' || std::equal(line, line + nameLength, line + nameLength + 1);
    for (char* at = line + beforeNames; oneByOne && end - at >= nameLength; ++at) {
        std::uint16_t named = 0;
        if (*at != '<' || std::from_chars(at + 1, at + 5, named, 16).ptr != at + 5)
            continue;
        const auto hexadecimal = QByteArray::number(characters.written(QChar(named)).unicode(), 16);
        const auto name = hexadecimal.rightJustified(4, '0').toUpper();
        std::copy(name.begin(), name.end(), at + 1);
    }
}

} // namespace

void nameCharactersAsWritten(std::string& pdf, const DocumentLayout& layout)
{
    const WrittenCharacters characters(layout);
    const std::string_view opening = "beginbfrange\n", closing = "endbfrange";
    for (auto at = pdf.find(opening); at != pdf.npos; at = pdf.find(opening, at)) {
        at += opening.size();
        const auto end = std::min(pdf.find(closing, at), pdf.size());
        while (at < end) {
            const auto lineEnd = std::min(pdf.find('\n', at), end);
            correctLine(pdf.data() + at, pdf.data() + lineEnd, characters);
            at = lineEnd + 1;
        }
    }
}

} // namespace Pallisande
