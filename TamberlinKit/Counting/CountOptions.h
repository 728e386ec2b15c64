#pragma once

#include "Base/Fields.h"
#include "TamberlinKit/Text/Part.h"

#include <set>
#include <tuple>

namespace Tamberlin {

// Where a sentence must have stood before to count as a repetition.
enum class RepetitionScope { withinFile, acrossFiles, off };
constexpr std::array<std::string_view, 3> caseNames(RepetitionScope)
{
    return { "withinFile", "acrossFiles", "off" };
}
std::string_view title(RepetitionScope scope);

// The user's counting switches. They start as a word processor counts.
struct CountOptions {
    std::set<Part> included { Part::body, Part::footnotes, Part::textBoxes };
    bool countNumbers = true;
    bool countMarks = true; // Symbols standing alone are words.
    RepetitionScope repetitions = RepetitionScope::acrossFiles;
    bool ocrScannedPDFs = false;

    bool operator==(const CountOptions&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("included", &CountOptions::included, Base::Missing::fails),
            Base::field("countNumbers", &CountOptions::countNumbers, Base::Missing::fails),
            Base::field("countMarks", &CountOptions::countMarks, Base::Missing::fails),
            Base::field("repetitions", &CountOptions::repetitions, Base::Missing::fails),
            Base::field("ocrScannedPDFs", &CountOptions::ocrScannedPDFs, Base::Missing::fails),
        };
    }
};
static_assert(Base::listsEveryMember<CountOptions>);

} // namespace Tamberlin
