#include "TamberlinKit/Readers/PdfRunningText.h"

#include <algorithm>
#include <cstdlib>
#include <string>
#include <unordered_map>

namespace Tamberlin {

namespace {

// In thousandths of the page's height.
constexpr std::uint16_t zone = 150; // At either end of a page.
constexpr std::uint16_t sameHeight = 8;

constexpr std::size_t mostAtAnEdge = 6; // A header of three columns above a line of two.
constexpr std::size_t longest = 300; // Bytes; a header is no paragraph.
constexpr int fewestPages = 3;

// A text with each number in it the same; a page may also be numbered in Roman.
std::string pattern(std::string_view text)
{
    const auto letters = text.substr(0, text.find_last_not_of(" \n") + 1);
    if (!letters.empty() && letters.find_first_not_of("ivxlcdm") == letters.npos)
        return "#";
    std::string pattern;
    for (const char c : letters) {
        const bool isDigit = c >= '0' && c <= '9';
        if (!isDigit)
            pattern += c;
        else if (!pattern.ends_with('#'))
            pattern += '#';
    }
    return pattern;
}

struct Candidate {
    std::size_t number; // Among all paragraphs.
    std::string key; // Edge and pattern.
    std::uint16_t height;
    std::uint32_t page;
};

} // namespace

std::vector<bool> runningParagraphs(const std::vector<PdfPage>& pages)
{
    std::size_t count = 0;
    for (const auto& page : pages)
        count += page.paragraphs.size();
    std::vector<bool> running(count);
    if (pages.size() < fewestPages)
        return running;

    // The outermost paragraphs of each page, from the edge inwards.
    std::vector<std::vector<Candidate>> edges;
    count = 0;
    for (const auto& page : pages) {
        std::vector<Candidate> top, bottom;
        for (const auto& paragraph : page.paragraphs) {
            const auto number = count++;
            if (paragraph.text.size() > longest)
                continue;
            if (paragraph.bottom <= zone)
                top.push_back({ number, 't' + pattern(paragraph.text), paragraph.bottom, page.number });
            else if (paragraph.top >= 1000 - zone)
                bottom.push_back({ number, 'b' + pattern(paragraph.text), paragraph.top, page.number });
        }
        std::stable_sort(top.begin(), top.end(),
            [](const Candidate& left, const Candidate& right) { return left.height < right.height; });
        std::stable_sort(bottom.begin(), bottom.end(),
            [](const Candidate& left, const Candidate& right) { return left.height > right.height; });
        for (auto* const edge : { &top, &bottom }) {
            edge->resize(std::min(edge->size(), mostAtAnEdge), {});
            edges.push_back(std::move(*edge));
        }
    }

    std::unordered_map<std::string, std::vector<const Candidate*>> alike;
    for (const auto& edge : edges) {
        for (const auto& candidate : edge)
            alike[candidate.key].push_back(&candidate);
    }
    // Those of one pattern by height: enough pages within a hair's breadth of it.
    std::vector<bool> repeats(running.size());
    for (auto& [key, candidates] : alike) {
        std::stable_sort(candidates.begin(), candidates.end(),
            [](const Candidate* left, const Candidate* right) { return left->height < right->height; });
        for (std::size_t start = 0, end = 0; start < candidates.size(); start = end) {
            std::vector<std::uint32_t> onPages;
            for (end = start;
                 end < candidates.size() && candidates[end]->height - candidates[start]->height <= sameHeight;
                 ++end)
                onPages.push_back(candidates[end]->page);
            std::sort(onPages.begin(), onPages.end());
            const auto different = std::unique(onPages.begin(), onPages.end()) - onPages.begin();
            for (auto place = start; different >= fewestPages && place < end; ++place)
                repeats[candidates[place]->number] = true;
        }
    }
    for (const auto& edge : edges) {
        for (const auto& candidate : edge) {
            const bool isOutermost = std::abs(candidate.height - edge.front().height) <= sameHeight;
            const bool isNumber = candidate.key.ends_with('#') && candidate.key.size() == 2;
            if (!repeats[candidate.number] || (isNumber && !isOutermost)) // Numbers further in are a table's.
                break;
            running[candidate.number] = true;
        }
    }
    return running;
}

} // namespace Tamberlin
