#include "DocumentReader/TextLines.h"

#include "DocumentReader/Characters.h"
#include "DocumentReader/VisualOrder.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <unordered_map>

namespace Tamberlin {

namespace {

// In widths of an em.
constexpr float wordGap
    = 0.1f; // A blank is a quarter at least, also in tight lines; pairs are kerned by less.
constexpr float wideGap = 0.4f; // A blank beside East Asian text, which is often set a little apart.
constexpr float fragmentGap = 0.6f; // More between two words and they stand in different columns or cells,
constexpr float drawnGap = 1.2f; // unless they were drawn one after the other,
constexpr float labelGap = 4; // or the first is the label of a list.
constexpr float overlap = 0.5f; // Words that overlap by more were laid over each other.
constexpr float sameBase = 0.15f;

// Glyphs drawn one behind the other in one direction: a range of the page's glyphs.
struct Run {
    std::size_t first = 0, last = 0; // `last` isn't in it.
    float left = 0, right = 0, base = 0, size = 0;
    std::int16_t angle = 0;
    std::uint32_t row = 0;
};

class LineMaker {
public:
    explicit LineMaker(PageGlyphs& page)
        : m_page(page)
    {
    }

    std::vector<TextLine> make()
    {
        makeRuns();
        makeRows();
        std::vector<std::pair<std::size_t, TextLine>> placed; // By the first run of each.
        for (auto& row : m_rows)
            fragments(row, placed);
        std::sort(placed.begin(), placed.end(),
            [](const auto& left, const auto& right) { return left.first < right.first; });
        std::vector<TextLine> lines;
        for (auto& [place, line] : placed)
            lines.push_back(std::move(line));
        return lines;
    }

private:
    using Row = std::vector<std::size_t>; // Runs that share a baseline, and what is raised beside them.

    const Glyph& glyph(std::size_t place) const { return m_page.glyphs[place]; }

    void makeRuns()
    {
        for (std::size_t place = 0; place < m_page.glyphs.size(); ++place) {
            const auto& next = glyph(place);
            if (!m_runs.empty()) {
                auto& run = m_runs.back();
                const float gap = next.x - run.right;
                if (next.angle == run.angle && std::abs(next.y - run.base) < sameBase * run.size
                    && std::abs(next.size - run.size) < 0.2f * run.size && gap > -overlap * run.size
                    && gap < wordGap * run.size) {
                    run.last = place + 1;
                    run.right = std::max(run.right, next.end());
                    continue;
                }
            }
            m_runs.push_back({ place, place + 1, next.x, next.end(), next.y, next.size, next.angle });
        }
    }

    // Whether the run stands beside the one drawn before it, be it raised or lowered.
    bool isBeside(const Run& run, const Run& before) const
    {
        const float em = std::max(run.size, before.size);
        const float small = std::min(run.size, before.size);
        const float top = std::max(run.base - run.size, before.base - before.size);
        const float bottom = std::min(run.base, before.base);
        return run.angle == before.angle && bottom - top > small / 2
            && run.left - before.right < drawnGap * em && before.left - run.right < drawnGap * em;
    }

    void makeRows()
    {
        constexpr float step = 4; // Points; a row is found from the steps beside its own too.
        std::unordered_map<std::int64_t, std::vector<std::uint32_t>> rowsByBase;
        for (std::size_t place = 0; place < m_runs.size(); ++place) {
            auto& run = m_runs[place];
            if (place > 0 && isBeside(run, m_runs[place - 1])) {
                run.row = m_runs[place - 1].row;
                m_rows[run.row].push_back(place);
                continue;
            }
            const auto key = [&](int more) {
                const auto height = std::floor(std::clamp(run.base, -1e7f, 1e7f) / step);
                return (static_cast<std::int64_t>(height) + more) * 1024 + run.angle;
            };
            std::int64_t found = -1;
            for (const int more : { 0, -1, 1 }) {
                const auto rows = rowsByBase.find(key(more));
                if (rows == rowsByBase.end() || found >= 0)
                    continue;
                for (const auto row : rows->second) {
                    const auto& like = m_runs[m_rows[row].front()];
                    if (std::abs(like.base - run.base) < sameBase * std::min(like.size, run.size))
                        found = row;
                }
            }
            if (found < 0) {
                found = static_cast<std::int64_t>(m_rows.size());
                m_rows.emplace_back();
                auto& rows = rowsByBase[key(0)];
                if (rows.size() < 64) // No page has so many in one place, and looking must stay quick.
                    rows.push_back(static_cast<std::uint32_t>(found));
            }
            run.row = static_cast<std::uint32_t>(found);
            m_rows[run.row].push_back(place);
        }
    }

    void fragments(Row& row, std::vector<std::pair<std::size_t, TextLine>>& placed)
    {
        std::stable_sort(row.begin(), row.end(),
            [&](std::size_t left, std::size_t right) { return m_runs[left].left < m_runs[right].left; });
        removeDoubles(row);
        for (std::size_t start = 0; start < row.size();) {
            float right = m_runs[row[start]].right;
            std::size_t end = start + 1;
            bool hasLabel = false;
            for (; end < row.size(); ++end) {
                const auto &next = m_runs[row[end]], &last = m_runs[row[end - 1]];
                const float em = std::max(next.size, last.size);
                const float gap = (next.left - right) / em;
                const bool follows = std::max(row[end], row[end - 1]) - std::min(row[end], row[end - 1]) == 1;
                if (gap >= (follows ? drawnGap : fragmentGap)) {
                    if (!follows || gap >= labelGap || end != start + 1 || !isLabel(last))
                        break;
                    hasLabel = true;
                }
                right = std::max(right, next.right);
            }
            auto line = lineOf({ row.begin() + static_cast<std::ptrdiff_t>(start),
                row.begin() + static_cast<std::ptrdiff_t>(end) });
            line.hasLabel = hasLabel || startsWithBullet(line.text);
            if (!line.text.empty())
                placed.emplace_back(*std::min_element(row.begin() + static_cast<std::ptrdiff_t>(start),
                                        row.begin() + static_cast<std::ptrdiff_t>(end)),
                    std::move(line));
            start = end;
        }
    }

    bool isSameText(const Run& left, const Run& right) const
    {
        const auto length = left.last - left.first;
        if (length != right.last - right.first)
            return false;
        for (std::size_t place = 0; place < length; ++place) {
            if (m_page.text(glyph(left.first + place)) != m_page.text(glyph(right.first + place)))
                return false;
        }
        return true;
    }

    // What is drawn again a hair beside it, to look bold or to cast a shadow.
    void removeDoubles(Row& row) const
    {
        constexpr std::size_t mostLooked = 8;
        std::size_t kept = 0;
        for (std::size_t place = 0; place < row.size(); ++place) {
            const auto& run = m_runs[row[place]];
            bool isDouble = false;
            for (std::size_t back = 1; back <= std::min(kept, mostLooked) && !isDouble; ++back) {
                const auto& other = m_runs[row[kept - back]];
                isDouble = std::abs(other.left - run.left) < 0.2f * run.size
                    && std::abs(other.right - run.right) < 0.2f * run.size && isSameText(run, other);
            }
            if (!isDouble)
                row[kept++] = row[place];
        }
        row.resize(kept);
    }

    bool isLabel(const Run& run) const
    {
        std::u32string text;
        for (std::size_t place = run.first; place < run.last && text.size() < 12; ++place)
            text += m_page.text(glyph(place));
        while (!text.empty() && isBlank(text.back()))
            text.pop_back();
        return !text.empty()
            && (startsWithBullet(text)
                || (text.size() <= 6 && (text.back() == '.' || text.back() == ')')
                    && text.find(U' ') == text.npos));
    }

    TextLine lineOf(const Row& runs) const
    {
        TextLine line;
        const auto& first = m_runs[runs.front()];
        line.left = first.left;
        line.right = first.right;
        line.angle = first.angle;
        line.font = glyph(first.first).font;
        std::size_t longest = 0;
        std::vector<Glyph> glyphs;
        for (const auto number : runs) {
            const auto& run = m_runs[number];
            line.right = std::max(line.right, run.right);
            if (run.last - run.first > longest) {
                longest = run.last - run.first;
                line.size = run.size;
                line.base = run.base;
            }
            for (std::size_t place = run.first; place < run.last; ++place) {
                if (glyph(place).font != line.font)
                    line.font = TextLine::mixed;
                line.runsLeftwards = line.runsLeftwards || isLeftward(m_page.text(glyph(place)).front());
            }
            glyphs.insert(glyphs.end(), m_page.glyphs.begin() + static_cast<std::ptrdiff_t>(run.first),
                m_page.glyphs.begin() + static_cast<std::ptrdiff_t>(run.last));
        }
        if (line.runsLeftwards)
            std::tie(line.text, line.runsLeftwards) = logicalText(m_page, glyphs);
        else
            line.text = text(glyphs);
        trim(line);
        line.firstWord = firstWord(line, glyphs);
        return line;
    }

    std::u32string text(const std::vector<Glyph>& glyphs) const
    {
        std::u32string text;
        const Glyph* last = nullptr; // That can be seen.
        bool hasBlank = false;
        for (const auto& glyph : glyphs) {
            const auto more = m_page.text(glyph);
            if (more.size() == 1 && isBlank(more.front())) {
                hasBlank = true;
                continue;
            }
            if (last && (hasBlank ? !isTakenBack(*last, glyph) : isWordGap(m_page, *last, glyph)))
                text += U' ';
            appendExpanded(text, more);
            if (glyph.advance > 0 || !last) // Marks stand somewhere on their letter.
                last = &glyph;
            hasBlank = false;
        }
        return hasBlank ? text + U' ' : text;
    }

    // Some programs draw blanks and step back behind each, so that nothing lies between the letters.
    static bool isTakenBack(const Glyph& left, const Glyph& right)
    {
        const float gap = right.x - left.end();
        return gap < 0.03f * right.size && gap > -overlap * right.size;
    }

    // Leaves one blank between words, none in front, and at the end one if there were any.
    static void trim(TextLine& line)
    {
        std::u32string text;
        for (const char32_t c : line.text) {
            if (!isBlank(c))
                text += c;
            else if (!text.empty() && text.back() != U' ')
                text += U' ';
        }
        line.text = std::move(text);
        if (line.text == U" ")
            line.text.clear();
    }

    // The width of the first word; about, where a line runs to the left.
    float firstWord(const TextLine& line, const std::vector<Glyph>& glyphs) const
    {
        if (line.runsLeftwards) {
            const auto word = std::min(line.text.find(U' '), line.text.size());
            return (line.right - line.left) * static_cast<float>(word)
                / std::max(static_cast<float>(line.text.size()), 1.0f);
        }
        std::size_t place = 0;
        while (place < glyphs.size() && isBlank(m_page.text(glyphs[place]).back()))
            ++place;
        const auto start = place;
        while (place < glyphs.size() && !isBlank(m_page.text(glyphs[place]).back())
            && (place == start || !isWordGap(m_page, glyphs[place - 1], glyphs[place])))
            ++place;
        if (place == start)
            return 0;
        const float width = glyphs[place - 1].end() - glyphs[start].x;
        return breaksAnywhere(m_page.text(glyphs[start]).front()) ? std::min(width, 3 * line.size) : width;
    }

    PageGlyphs& m_page;
    std::vector<Run> m_runs;
    std::vector<Row> m_rows;
};

// Older programs draw accents on their own, before or behind the letter that they stand on.
void composeAccents(PageGlyphs& page)
{
    auto& glyphs = page.glyphs;
    const auto stands = [&](const Glyph& accent, const Glyph& letter) {
        return accent.angle == letter.angle && std::abs(accent.y - letter.y) < 0.6f * letter.size
            && std::abs(accent.middle() - letter.middle()) < 0.25f * letter.size && letter.text > U' '
            && !combining(letter.text);
    };
    std::size_t kept = 0;
    for (std::size_t place = 0; place < glyphs.size(); ++place) {
        const char32_t mark = combining(glyphs[place].text);
        if (mark && place + 1 < glyphs.size() && stands(glyphs[place], glyphs[place + 1])) {
            auto letter = glyphs[++place];
            const char32_t plain = letter.text == U'ı' ? U'i' : letter.text;
            std::u32string both(1, plain);
            if (plain >= Glyph::firstCluster)
                both = page.text(letter);
            letter.text = page.addCluster(both + mark);
            glyphs[kept++] = letter;
        } else if (mark && kept > 0 && stands(glyphs[place], glyphs[kept - 1])) {
            auto both = std::u32string(page.text(glyphs[kept - 1])) + mark;
            glyphs[kept - 1].text = page.addCluster(std::move(both));
        } else {
            glyphs[kept++] = glyphs[place];
        }
    }
    glyphs.resize(kept);
}

} // namespace

bool isWordGap(const PageGlyphs& page, const Glyph& left, const Glyph& right)
{
    const float em = std::min(left.size, right.size);
    const float gap = right.x - left.end();
    if (gap <= wordGap * em)
        return gap < -overlap * em && right.x - left.x < -overlap * em;
    return gap > wideGap * em
        || (!isEastAsian(page.text(left).back()) && !isEastAsian(page.text(right).front()));
}

std::vector<TextLine> textLines(PageGlyphs page)
{
    const auto isAccent = [](const Glyph& glyph) { return combining(glyph.text) != 0; };
    if (std::any_of(page.glyphs.begin(), page.glyphs.end(), isAccent))
        composeAccents(page);
    return LineMaker(page).make();
}

} // namespace Tamberlin
