#include "TamberlinKit/Quotes/CountCSV.h"

#include "TamberlinKit/Counting/Counter.h"

#include <fmt/format.h>

#include <algorithm>
#include <string_view>
#include <vector>

namespace Tamberlin {

namespace {

constexpr std::size_t partCount = Base::EnumMap<Part, TextStats>::caseCount;

bool looksLikeAFormula(std::string_view text)
{
    constexpr std::array<std::string_view, 10> beginnings { "=", "+", "-", "@", "\t", "\r", "＝", "＋", "－",
        "＠" };
    return std::any_of(beginnings.begin(), beginnings.end(),
        [&](std::string_view beginning) { return text.starts_with(beginning); });
}

std::string textCell(std::string_view text)
{
    std::string cell(looksLikeAFormula(text) ? "'" : "");
    cell += text;
    if (cell.find_first_of(",\"\r\n") == cell.npos)
        return cell;
    std::string quoted = "\"";
    for (const char c : cell) {
        quoted += c;
        if (c == '"')
            quoted += c;
    }
    return quoted + '"';
}

std::string line(const FileCount& file, std::string_view format)
{
    std::vector<std::string> cells { textCell(file.name), std::string(format) };
    const auto& [words, noSpaces, withSpaces, cjk, segments] = file.total;
    for (const auto figure :
        { words, noSpaces, withSpaces, cjk, segments, file.repeated.words, file.repeated.segments })
        cells.push_back(std::to_string(figure));
    for (std::size_t part = 0; part < partCount; ++part)
        cells.push_back(std::to_string(file.byPart.valueOr(static_cast<Part>(part), {}).words));
    cells.emplace_back(file.approximate ? "yes" : "");
    cells.push_back(textCell(fmt::format("{}", fmt::join(file.notes, " "))));
    return fmt::format("{}\r\n", fmt::join(cells, ","));
}

} // namespace

std::string countCSV(std::span<const FileCount> files)
{
    std::string csv
        = "File,Format,Words,Characters without spaces,Characters with spaces,CJK characters,Segments,"
          "Repeated words,Repeated segments";
    for (std::size_t part = 0; part < partCount; ++part)
        csv += fmt::format(",Words: {}", title(static_cast<Part>(part)));
    csv += ",Approximate,Notes\r\n";

    FileCount sum { .name = "Total" };
    for (const auto& file : files) {
        csv += line(file, title(file.format));
        file.byPart.forEach([&](Part part, const TextStats& stats) { sum.byPart[part] += stats; });
        sum.approximate = sum.approximate || file.approximate;
    }
    sum.total = Counter::total(files);
    sum.repeated = Counter::repeated(files);
    return csv + line(sum, "");
}

} // namespace Tamberlin
