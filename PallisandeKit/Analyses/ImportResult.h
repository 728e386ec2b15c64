#pragma once

#include "PallisandeKit/Analyses/Analysis.h"

#include <stdexcept>
#include <string>
#include <variant>

namespace Pallisande {

// A reader can't make an analysis of a file; `what()` is the sentence for the user.
class ImportError : public std::runtime_error {
public:
    explicit ImportError(const std::string& sentence)
        : std::runtime_error(sentence)
    {
    }
};

struct ImportFailed {
    std::string message;

    bool operator==(const ImportFailed&) const = default;
};

// What importing a file yields.
using ImportResult = std::variant<Analysis, ImportFailed>;

} // namespace Pallisande
