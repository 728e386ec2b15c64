#include "Printing/TypeSetter.h"

#include "Printing/DocumentFonts.h"
#include "Printing/PageGeometry.h"
#include "Printing/PrintingError.h"

#include <QTextOption>

#include <algorithm>

namespace Pallisande {

namespace {

// What a line takes for each point of its size, above and below its baseline.
constexpr double abovePerSize = 1.09;
constexpr double belowPerSize = 0.31;
constexpr double unbroken = 1e7;

// Setting a text takes time that grows with the square of its length: some seconds at the worst for this one.
constexpr qsizetype longestText = 20'000;
constexpr qsizetype mostText = 1'000'000;

// The text with line separators for breaks, and without controls, which would be drawn as boxes.
QString printable(std::string_view text)
{
    const auto raw = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    QString result;
    result.reserve(raw.size());
    for (qsizetype at = 0; at < raw.size(); ++at) {
        const QChar character = raw[at];
        if (character == u'\r' && at + 1 < raw.size() && raw[at + 1] == u'\n')
            continue;
        const bool breaks = (character >= u'\n' && character <= u'\r') || character == u'\x85'
            || character == QChar::ParagraphSeparator;
        if (breaks)
            result += QChar(QChar::LineSeparator);
        else if (character == u'\t' || character.category() != QChar::Other_Control)
            result += character;
    }
    return result;
}

bool isEastAsian(QChar::Script script)
{
    return script == QChar::Script_Han || script == QChar::Script_Hiragana || script == QChar::Script_Katakana
        || script == QChar::Script_Hangul || script == QChar::Script_Bopomofo;
}

// Left to itself, Qt takes whichever East Asian face the system prefers, so these characters ask for theirs
// by name.
QList<QTextLayout::FormatRange> eastAsianRuns(const QString& text, const QStringList& families)
{
    QList<QTextLayout::FormatRange> runs;
    QTextCharFormat format;
    format.setFontFamilies(families);
    for (qsizetype at = 0, length = 1; at < text.size(); at += length) {
        const bool pair = text[at].isHighSurrogate() && at + 1 < text.size();
        length = pair ? 2 : 1;
        const char32_t character = pair ? QChar::surrogateToUcs4(text[at], text[at + 1]) : text[at].unicode();
        if (!isEastAsian(QChar::script(character)))
            continue;
        const auto start = static_cast<int>(at), count = static_cast<int>(length);
        if (!runs.isEmpty() && runs.last().start + runs.last().length == start)
            runs.last().length += count;
        else
            runs.append({ start, count, format });
    }
    return runs;
}

// Fonts of other scripts ask for much more room than most of their characters fill, so it is what this line’s
// characters fill that counts.
void makeRoomForInk(const QTextLine& line, double& above, double& below)
{
    const double air = points(0.5);
    for (const auto& run : line.glyphRuns()) {
        const QRawFont font = run.rawFont();
        const auto glyphs = run.glyphIndexes();
        const auto positions = run.positions();
        for (qsizetype index = 0; index < glyphs.size(); ++index) {
            const QRectF box = font.boundingRect(glyphs[index]);
            if (box.isEmpty())
                continue;
            const double raised = line.ascent() - positions[index].y();
            above = std::max(above, raised - box.top() + air);
            below = std::max(below, box.bottom() - raised + air);
        }
    }
}

} // namespace

void SetText::breakAt(double width)
{
    if (!m_layout)
        return;
    m_layout->beginLayout();
    for (auto line = m_layout->createLine(); line.isValid(); line = m_layout->createLine()) {
        line.setLineWidth(width);
        line.setPosition({});
    }
    m_layout->endLayout();
}

void Bands::add(const SetText& text, double left, std::size_t first)
{
    const auto count = static_cast<std::size_t>(text.lineCount());
    m_bands.resize(std::max(m_bands.size(), count == 0 ? 0 : first + count));
    for (std::size_t index = 0; index < count; ++index) {
        const auto number = static_cast<int>(index);
        const auto line = text.m_layout->lineAt(number);
        double above = points(text.m_size * abovePerSize);
        double below = points(text.m_size * belowPerSize);
        if (line.ascent() > above || line.descent() > below)
            makeRoomForInk(line, above, below);
        Band& band = m_bands[first + index];
        band.above = std::max(band.above, above);
        band.below = std::max(band.below, below);
        band.lines.push_back(
            { .text = text.m_layout, .line = number, .left = left, .colour = text.m_colour });
    }
}

double Bands::height() const
{
    double height = 0;
    for (const auto& band : m_bands)
        height += band.height();
    return height;
}

TypeSetter::TypeSetter(std::string_view language)
    : m_families(fontFamilies(language))
    , m_eastAsianFamilies(eastAsianFamilies(language))
{
}

SetText TypeSetter::set(std::string_view text, const TypeStyle& style)
{
    SetText result;
    const QString characters = printable(text);
    if (characters.size() > longestText)
        throw PrintingError::textTooLong(text);
    m_length += characters.size();
    if (m_length > mostText)
        throw PrintingError::tooLong();
    if (characters.isEmpty())
        return result;
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    const bool fromRight = style.side == TypeStyle::Side::right || characters.isRightToLeft();
    option.setAlignment(fromRight ? Qt::AlignRight : Qt::AlignLeft);
    option.setTextDirection(Qt::LayoutDirectionAuto);
    option.setTabStopDistance(millimetres(10));
    option.setUseDesignMetrics(true);
    result.m_layout
        = std::make_shared<QTextLayout>(characters, pageFont(m_families, style.size, style.strong));
    result.m_layout->setTextOption(option);
    result.m_layout->setFormats(eastAsianRuns(characters, m_eastAsianFamilies));
    result.m_layout->setCacheEnabled(true);
    result.m_colour = style.colour;
    result.m_size = style.size;
    result.breakAt(unbroken);
    for (int line = 0; line < result.lineCount(); ++line)
        result.m_naturalWidth
            = std::max(result.m_naturalWidth, result.m_layout->lineAt(line).naturalTextWidth());
    m_check.inspect(*result.m_layout);
    return result;
}

SetText TypeSetter::set(std::string_view text, const TypeStyle& style, double width)
{
    auto result = set(text, style);
    result.breakAt(width);
    return result;
}

} // namespace Pallisande
