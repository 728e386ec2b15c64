#pragma once

#include "Base/Checked.h"
#include "Base/Decimal.h"
#include "PallisandeKit/Analyses/Analysis.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace Pallisande {

// A count from a report, as a whole number.
struct Count {
    std::int64_t value = 0; // One too large to be right is `absurd`, which CountBound refuses.
    bool wasFractional = false; // It was rounded half up.

    static constexpr std::int64_t absurd = Base::Checked::largestCount + 1;
    static Count of(const Base::Decimal& number);

    bool operator==(const Count&) const = default;
};

// Adds without ever overflowing: a sum too large to be right stays absurd.
void addCount(std::int64_t& total, std::int64_t count);

// The numbers of one column. Which mark divides thousands and which begins the decimals is decided from all
// its cells: "1.234" alone could be either, next to "1.234.567" or "0.5" it can't. Blanks and apostrophes
// only ever group.
class CountColumn {
public:
    // Without one, it is learned.
    static CountColumn withDecimalMark(char mark);

    void learn(std::string_view cell);

    // What the rest of the table showed decides where this column's own cells leave it open; without either,
    // a mark before three digits groups, since counts are whole.
    bool isSettled() const { return m_point != Mark::open || m_comma != Mark::open; }
    void settleLike(const CountColumn& other);

    // Nothing when the cell is empty or no number by the rules of its column (a percentage isn't one either).
    std::optional<Count> read(std::string_view cell) const;

private:
    enum class Mark { open, groups, decimal, contradictory };

    Mark m_point = Mark::open, m_comma = Mark::open;
};

// The note for a report in which any count was fractional.
ImportNote fractionalCountsNote();

} // namespace Pallisande
