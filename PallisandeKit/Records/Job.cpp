#include "PallisandeKit/Records/Job.h"

namespace Pallisande {

std::string_view title(JobStatus status)
{
    constexpr std::array<std::string_view, 6> titles { "Quote", "In progress", "Delivered", "Invoiced",
        "Paid", "Cancelled" };
    return titles[static_cast<std::size_t>(status)];
}

} // namespace Pallisande
