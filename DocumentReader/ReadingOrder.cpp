#include "DocumentReader/ReadingOrder.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <tuple>

namespace Tamberlin {

namespace {

constexpr std::size_t mostCut = 4'000; // Lines; cutting more would take long, and no such page has columns.

float top(const TextLine& line) { return line.base - 0.8f * line.size; }
float bottom(const TextLine& line) { return line.base + 0.2f * line.size; }

// The widest gap that runs through all lines, if one is wider than `least`: the place of the first line
// behind it, in the order of `start`.
template <typename Start, typename End>
std::size_t widestGap(std::span<TextLine> lines, float least, Start start, End end)
{
    std::sort(lines.begin(), lines.end(),
        [&](const TextLine& left, const TextLine& right) { return start(left) < start(right); });
    std::size_t found = 0;
    float reach = end(lines.front());
    for (std::size_t place = 1; place < lines.size(); ++place) {
        if (start(lines[place]) - reach > least) {
            least = start(lines[place]) - reach;
            found = place;
        }
        reach = std::max(reach, end(lines[place]));
    }
    return found;
}

} // namespace

bool isScrambled(const std::vector<TextLine>& lines)
{
    std::size_t jumps = 0;
    for (std::size_t place = 1; place < lines.size(); ++place) {
        const auto &last = lines[place - 1], &next = lines[place];
        const float shared = std::min(last.right, next.right) - std::max(last.left, next.left);
        const float narrow = std::min(last.right - last.left, next.right - next.left);
        if (last.angle == next.angle && next.base < last.base - next.size && shared > 0.3f * narrow)
            ++jumps;
    }
    return jumps >= 4 && jumps * 5 > lines.size();
}

void sortByColumns(std::vector<TextLine>& lines)
{
    std::stable_sort(lines.begin(), lines.end(), [](const TextLine& left, const TextLine& right) {
        return std::tuple(left.angle, left.base, left.left) < std::tuple(right.angle, right.base, right.left);
    });
    if (lines.size() > mostCut)
        return;
    // Cuts at gutters between columns first, then where a heading or picture parts columns above from those
    // below. What can't be cut any more is in order.
    std::vector<std::span<TextLine>> left { lines };
    while (!left.empty()) {
        const auto piece = left.back();
        left.pop_back();
        if (piece.size() < 2 || piece.front().angle != piece.back().angle)
            continue;
        const float em = piece.front().size;
        auto cut = widestGap(
            piece, em, [](const auto& line) { return line.left; },
            [](const auto& line) { return line.right; });
        if (cut == 0)
            cut = widestGap(piece, 0.3f * em, top, bottom);
        if (cut == 0)
            continue;
        left.push_back(piece.first(cut));
        left.push_back(piece.subspan(cut));
    }
}

} // namespace Tamberlin
