#include "DocumentReader/PageParagraphs.h"

#include "Base/Text.h"
#include "DocumentReader/Characters.h"
#include "DocumentReader/ReadingOrder.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>

namespace Tamberlin {

namespace {

using Lines = std::span<const TextLine>;

// Between the baselines of a column, in widths of an em: double spacing is 2.3.
constexpr float closest = 0.5f, furthest = 2.6f;

bool isBelow(const TextLine& line, const TextLine& last)
{
    const float step = line.base - last.base, em = std::max(line.size, last.size);
    return line.angle == last.angle && step > closest * em && step < furthest * em
        && std::min(line.size, last.size) > 0.8f * em && line.left < last.right && last.left < line.right;
}

// Whether a sentence goes on from one line to the next.
bool goesOn(std::u32string_view last, std::u32string_view next)
{
    while (!last.empty() && last.back() == U' ')
        last.remove_suffix(1);
    constexpr std::u32string_view ends = U".!?…:;";
    return !last.empty() && ends.find(last.back()) == ends.npos && isLower(next.front());
}

// Lines below each other at one distance, of one size: a column, or a part of it.
class Block {
public:
    explicit Block(Lines lines)
        : m_lines(lines)
        , m_left(lines.front().left)
        , m_right(lines.front().right)
    {
        for (std::size_t place = 0; place < lines.size(); ++place) {
            m_left = std::min(m_left, lines[place].left);
            m_right = std::max(m_right, lines[place].right);
            if (place > 0)
                m_step = std::min(m_step, lines[place].base - lines[place - 1].base);
        }
    }

    bool startsParagraph(std::size_t place, std::size_t first) const
    {
        const auto &line = m_lines[place], &last = m_lines[place - 1];
        if (line.hasLabel || line.runsLeftwards != last.runsLeftwards || isIndented(place, first))
            return true;
        const float step = line.base - last.base;
        if (goesOn(last.text, line.text) && step < 1.6f * m_step && room(line, last) < (m_right - m_left) / 4)
            return false;
        const bool changesFont
            = line.font != last.font && line.font != TextLine::mixed && last.font != TextLine::mixed;
        return changesFont || step > 1.2f * m_step || room(line, last) > line.firstWord + 0.3f * line.size;
    }

private:
    // What is left free on the last line. When the first word of the line would have fitted there, another
    // paragraph starts with it.
    float room(const TextLine& line, const TextLine& last) const
    {
        const float before = last.left - m_left, behind = m_right - last.right;
        const bool isCentred = std::abs(before - behind) < 0.5f * line.size && before > line.size;
        return isCentred ? before + behind : line.runsLeftwards ? before : behind;
    }

    // Where the line starts, inwards from the margin.
    float indent(std::size_t place) const
    {
        return m_lines[place].runsLeftwards ? m_right - m_lines[place].right : m_lines[place].left - m_left;
    }

    // Whether the line stands further in or out than the one before it because it starts a paragraph. The
    // second line of a paragraph may do either: its first line is indented, or it hangs.
    bool isIndented(std::size_t place, std::size_t first) const
    {
        const float much = 0.7f * m_lines[place].size;
        const float more = indent(place) - indent(place - 1);
        if (std::abs(more) < much)
            return false;
        if (place - first > 1)
            return true;
        if (more < 0 || m_lines[first].hasLabel)
            return false;
        return place + 1 == m_lines.size() || indent(place) - indent(place + 1) > much;
    }

    Lines m_lines;
    float m_left, m_right;
    float m_step = 1e9f;
};

PdfParagraph paragraphOf(Lines lines, double height)
{
    PdfParagraph paragraph;
    double top = 1e9, bottom = -1e9;
    for (const auto& line : lines) {
        for (const char32_t c : line.text)
            Base::appendUtf8(paragraph.text, c);
        paragraph.text += '\n';
        const double turn = line.angle * std::numbers::pi / 180;
        for (const float x : { line.left, line.right }) {
            for (const float y : { line.base - 0.8f * line.size, line.base + 0.2f * line.size }) {
                const double down = x * std::sin(turn) + y * std::cos(turn);
                top = std::min(top, down);
                bottom = std::max(bottom, down);
            }
        }
    }
    const auto share = [&](double down) {
        return static_cast<std::uint16_t>(std::clamp(down / std::max(height, 1.0) * 1000, 0.0, 1000.0));
    };
    paragraph.top = share(top);
    paragraph.bottom = share(bottom);
    return paragraph;
}

} // namespace

std::vector<PdfParagraph> pageParagraphs(std::vector<TextLine> lines, double height)
{
    if (isScrambled(lines))
        sortByColumns(lines);
    std::vector<PdfParagraph> paragraphs;
    for (std::size_t start = 0, end = 0; start < lines.size(); start = end) {
        for (end = start + 1; end < lines.size() && isBelow(lines[end], lines[end - 1]);)
            ++end;
        const auto piece = Lines(lines).subspan(start, end - start);
        const Block block(piece);
        for (std::size_t first = 0, place = 1; place <= piece.size(); ++place) {
            if (place < piece.size() && !block.startsParagraph(place, first))
                continue;
            paragraphs.push_back(paragraphOf(piece.subspan(first, place - first), height));
            first = place;
        }
    }
    return paragraphs;
}

} // namespace Tamberlin
