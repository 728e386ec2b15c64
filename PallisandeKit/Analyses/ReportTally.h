#pragma once

#include "PallisandeKit/Analyses/Analysis.h"
#include "PallisandeKit/Analyses/BandLabel.h"
#include "PallisandeKit/Analyses/CountColumn.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace Pallisande {

// The figures of one category, or the totals, of one file in a report; those that it doesn't give are absent.
struct ReportFigures {
    std::optional<std::int64_t> segments, words, characters;
};

// Puts the categories of a report into bands and remembers what has to be told about it.
class ReportTally {
public:
    // The number in a cell; nothing when it is empty or, remembered, when it is no number.
    std::optional<std::int64_t> read(const CountColumn& column, std::string_view cell);

    std::int64_t rounded(const Base::Decimal& number); // Half up; that it was a fraction is remembered.

    // Adds a category of a row; one that has no band is only remembered.
    void add(AnalysisRow& row, const BandLabel& label, std::string_view text, const ReportFigures& figures);
    static void setStated(AnalysisRow& row, const ReportFigures& totals);

    // The languages that a row names, empty ones for what it doesn't say.
    void addLanguages(std::string_view source, std::string_view target);

    // Gives the analysis its languages and notes; throws ImportError when it has no rows or absurd counts.
    void finish(Analysis& analysis) const;

private:
    struct Merged {
        MatchBand band = MatchBand::noMatch;
        std::int64_t words = 0;
    };

    std::map<std::string, Merged, std::less<>> m_merged;
    std::map<std::string, std::int64_t, std::less<>> m_ignored, m_unknown;
    std::set<std::string, std::less<>> m_sources, m_targets;
    std::int64_t m_unreadable = 0;
    bool m_hasFractions = false;
};

} // namespace Pallisande
