#pragma once

#include "PallisandeKit/Analyses/MatchBand.h"

#include <optional>
#include <string>
#include <string_view>

namespace Pallisande {

// What a header or the label of a row means in the report of a CAT tool, in many spellings and languages.
struct BandLabel {
    enum class Kind {
        band,
        total,
        ignored, // Reported but not billed.
        other, // Known, and no band: a file name, a language, a ratio.
        unknown,
    };
    enum class Metric { words, segments, characters, percent, other };

    Kind kind = Kind::unknown;
    MatchBand band = MatchBand::noMatch; // Of Kind::band.
    bool isExact = false; // The band's own name or standard range, not a neighbour that is counted with it.

    bool isBand() const { return kind == Kind::band; }

    static BandLabel of(std::string_view label);
    static Metric metric(std::string_view header);

    // A header such as "95%-99% - Characters", taken apart; without a metric the label is the whole header's.
    struct Split;
    static Split split(std::string_view header);

    // What labels are compared as: lower case, Latin letters without diacritics, one kind of dash, single
    // blanks, nothing around it.
    static std::string normalized(std::string_view label);

    bool operator==(const BandLabel&) const = default;
};

struct BandLabel::Split {
    BandLabel label;
    std::optional<Metric> metric;
    std::string text; // Of the label, normalized.
};

} // namespace Pallisande
