#pragma once

#include "TamberlinKit/Text/Extracted.h"
#include "TamberlinKit/Text/ReadError.h"
#include "Tests/Support/ZipMaker.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Small Office documents, and what was read from one as lines.
namespace Test {

using Files = std::vector<std::pair<std::string, std::string>>;

// A relationship part. Each relationship has its type's name as its Id as well, with its place behind it:
// "chart1".
inline std::pair<std::string, std::string> relationships(
    const std::string& path, const std::vector<std::pair<std::string, std::string>>& typesAndTargets)
{
    std::string xml = "<Relationships>";
    for (int place = 1; const auto& [type, target] : typesAndTargets)
        xml += "<Relationship Id='" + type + std::to_string(place++) + "' Type='http://x/" + type
            + "' Target='" + target + "'/>";
    const auto name = path.rfind('/') + 1; // 0 for the root.
    return { path.substr(0, name) + "_rels/" + path.substr(name) + ".rels", xml + "</Relationships>" };
}

inline Files operator+(Files files, const Files& more)
{
    files.insert(files.end(), more.begin(), more.end());
    return files;
}

// "body: text", a line for each segment.
inline std::vector<std::string> lines(const Tamberlin::Extracted& extracted)
{
    std::vector<std::string> lines;
    for (const auto& [text, part] : extracted.segments)
        lines.push_back(std::string(caseNames(part).at(static_cast<std::size_t>(part))) + ": " + std::string(text.view()));
    return lines;
}

// The sentence with which a file is refused.
template <typename Reader> std::string refusal(Reader reader, const std::string& file)
{
    try {
        reader(file, "n", {});
        return "(not refused)";
    } catch (const Tamberlin::ReadError& error) {
        return error.what();
    }
}

// A compound file whose directory names a stream, in the fourth of its records.
inline std::string compoundFile(std::string_view stream)
{
    std::string file("\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1", 8), record;
    for (const char letter : stream)
        record += { letter, '\0' };
    record.resize(64);
    record += { static_cast<char>(stream.size() * 2 + 2), '\0', 2 };
    record.resize(128);
    file.resize(512 + 3 * 128);
    return file + record + std::string(512, '\0');
}

} // namespace Test
