#include "Benchmarks/MakeReport.h"

#include "Benchmarks/Dice.h"

#include <fmt/format.h>

#include <iterator>

namespace Benchmarks {

namespace {

struct Category {
    std::string_view element, range;
};

constexpr Category categories[] { { "perfect", "" }, { "inContextExact", "" }, { "exact", "" },
    { "locked", "" }, { "crossFileRepeated", "" }, { "repeated", "" }, { "new", "" },
    { "fuzzy", R"( min="50" max="74")" }, { "fuzzy", R"( min="75" max="84")" },
    { "fuzzy", R"( min="85" max="94")" }, { "fuzzy", R"( min="95" max="99")" } };

struct Figures {
    std::int64_t segments = 0, words = 0, characters = 0;

    void add(const Figures& other)
    {
        segments += other.segments;
        words += other.words;
        characters += other.characters;
    }
};

void addElement(std::string& report, std::string_view element, std::string_view range, const Figures& figures)
{
    fmt::format_to(std::back_inserter(report),
        "      <{} segments=\"{}\" words=\"{}\" characters=\"{}\" placeables=\"{}\" tags=\"{}\"{}/>\n",
        element, figures.segments, figures.words, figures.characters, figures.segments / 9,
        figures.segments / 5, range);
}

} // namespace

std::string makeReport(std::size_t bytes, std::uint64_t seed)
{
    Dice dice(seed);
    std::string report
        = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<task name=\"analyse\">\n  <taskInfo taskId=\"7\" "
          "runAt=\"2026-03-09 11:00:00\">\n    <project name=\"Handbook\"/>\n    <language lcid=\"1031\" "
          "name=\"German (Germany)\"/>\n  </taskInfo>\n";
    report.reserve(bytes + 4096);
    Figures batch;
    while (report.size() < bytes) {
        fmt::format_to(std::back_inserter(report), "  <file name=\"{}.docx\" guid=\"{}\">\n    <analyse>\n",
            dice.words(3), dice.uuid().toString());
        Figures file;
        for (const auto& [element, range] : categories) {
            const auto words = dice.between(0, 3000);
            const Figures figures { words / 11, words, words * 6 };
            addElement(report, element, range, figures);
            file.add(figures);
        }
        addElement(report, "total", "", file);
        report += "    </analyse>\n  </file>\n";
        batch.add(file);
    }
    report += "  <batchTotal>\n    <analyse>\n";
    addElement(report, "total", "", batch);
    report += "    </analyse>\n  </batchTotal>\n</task>\n";
    return report;
}

} // namespace Benchmarks
