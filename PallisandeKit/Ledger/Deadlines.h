#pragma once

#include "Base/Calendar.h"
#include "PallisandeKit/Records/Library.h"

#include <array>
#include <optional>
#include <string_view>
#include <vector>

namespace Pallisande {

// How soon a job is due, in the order of the lanes on the board.
enum class DeadlineLane { overdue, today, tomorrow, week, later, none };
constexpr std::array<std::string_view, 6> caseNames(DeadlineLane)
{
    return { "overdue", "today", "tomorrow", "week", "later", "none" };
}

namespace Deadlines {

// `calendar` decides where a day begins.
DeadlineLane lane(std::optional<Base::Instant> deadline, const Base::Moment& moment);
DeadlineLane lane(const Job& job, const Base::Moment& moment);

// The jobs still to be done, lane by lane: neither delivered, invoiced, paid nor cancelled. Within a lane by
// deadline, then title.
struct Board {
    std::array<std::vector<const Job*>, 6> lanes;
    std::vector<const Job*> deliveredNotInvoiced; // On no draft either; the longest delivered first.
};
Board board(const Library& library, const Base::Moment& moment);

} // namespace Deadlines

} // namespace Pallisande
