#pragma once

#include "PallisandeKit/Analyses/Analysis.h"
#include "PallisandeKit/Analyses/ColumnMapping.h"

#include <stdexcept>
#include <string>
#include <string_view>
#include <variant>

namespace Pallisande {

// A reader can't make an analysis of a file; `what()` is the sentence for the user.
class ImportError : public std::runtime_error {
public:
    explicit ImportError(const std::string& sentence)
        : std::runtime_error(sentence)
    {
    }

    static ImportError absurdCounts(std::string_view name);
    static ImportError tooManyFiles(std::string_view name);
};

// Rows of a report beyond which no memory is spent on it; real ones have a few thousand.
inline constexpr std::size_t mostReportRows = 1'000'000;

// The file is a table, but not of a kind that is known: the user says what its columns hold.
struct NeedsMapping {
    MappingTable table;
    std::string reason;

    bool operator==(const NeedsMapping&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("table", &NeedsMapping::table),
            Base::field("reason", &NeedsMapping::reason),
        };
    }
};
static_assert(Base::listsEveryMember<NeedsMapping>);

struct ImportFailed {
    std::string message;

    bool operator==(const ImportFailed&) const = default;
};

// What importing a file yields.
using ImportResult = std::variant<Analysis, NeedsMapping, ImportFailed>;

} // namespace Pallisande
