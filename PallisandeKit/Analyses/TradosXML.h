#pragma once

#include "PallisandeKit/Analyses/ImportResult.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The report "Analyze Files" that Trados Studio saves as XML: per file and for the batch, one element a match
// category.
namespace Pallisande::TradosXML {

// The figures of one category.
struct Numbers {
    std::optional<std::int64_t> segments;
    std::int64_t words = 0;
    std::optional<std::int64_t> characters;
};

// What is collected for one `analyse` section: one file, or the batch total.
struct Reader {
    struct Merged {
        MatchBand band = MatchBand::noMatch;
        std::int64_t words = 0;
    };

    BandCounts counts;
    std::optional<Numbers> total; // As the section states it.
    std::int64_t internalFuzzyWords = 0;
    std::int64_t internalFuzzySegments = 0;
    std::int64_t internalFuzzyCharacters = 0;
    std::map<std::string, Merged> merged; // Categories that were counted into a band of another name.
};

// Reads a report; throws ImportError when it isn't one. `name` is the file's name as it is shown.
Analysis read(std::string_view data, const std::string& name, Base::Instant now);

} // namespace Pallisande::TradosXML
