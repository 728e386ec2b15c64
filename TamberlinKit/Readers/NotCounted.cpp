#include "TamberlinKit/Readers/NotCounted.h"

#include <fmt/format.h>

#include <string_view>
#include <utility>

namespace Tamberlin {

void NotCounted::tell(std::vector<std::string>& notes) const
{
    struct {
        std::int64_t count;
        std::string_view name;
    } const kinds[] { { pictures, "picture" }, { charts, "chart" }, { formulas, "formula" },
        { objects, "embedded object" }, { formFields, "form field" } };
    std::vector<std::string> seen;
    for (const auto& [count, name] : kinds) {
        if (count > 0)
            seen.push_back(fmt::format("{} {}{}", count, name, count == 1 ? "" : "s"));
    }
    if (seen.empty())
        return;
    const auto last = std::move(seen.back());
    seen.pop_back();
    notes.push_back(fmt::format(
        "Text in {}{}{} isn’t counted.", fmt::join(seen, ", "), seen.empty() ? "" : " and ", last));
}

} // namespace Tamberlin
