#include "PallisandeKit/Analyses/ImportResult.h"

#include <fmt/format.h>

namespace Pallisande {

ImportError ImportError::absurdCounts(std::string_view name)
{
    return ImportError(fmt::format("“{}” states counts that are too large to be right.", name));
}

ImportError ImportError::tooManyFiles(std::string_view name)
{
    return ImportError(fmt::format(
        "“{}” has more than {} rows, which is too many for an analysis report.", name, mostReportRows));
}

} // namespace Pallisande
