#pragma once

#include "Tests/Support/ZipMaker.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

// An archive as it is, or one of the parts written as text:
//
//     === word/document.xml
//     <w:document/>
//
// Changed bytes of text give an archive whose checksums are right, so that they reach what is behind them.
inline std::string archiveOfParts(std::string_view input)
{
    constexpr std::string_view mark = "=== ";
    if (!input.starts_with(mark))
        return std::string(input);
    std::vector<std::pair<std::string, std::string>> parts;
    while (input.starts_with(mark)) {
        input.remove_prefix(mark.size());
        const auto next = input.find("\n=== ");
        const auto part = input.substr(0, next);
        const auto path = part.substr(0, part.find('\n'));
        parts.emplace_back(path, part.substr(std::min(part.size(), path.size() + 1)));
        input.remove_prefix(next == input.npos ? input.size() : next + 1);
    }
    return Test::zipOf(parts);
}
