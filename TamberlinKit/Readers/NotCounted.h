#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Tamberlin {

// What a reader saw in a document and gave no text for.
struct NotCounted {
    std::int64_t pictures = 0;
    std::int64_t charts = 0;
    std::int64_t formulas = 0;
    std::int64_t objects = 0; // Documents of other kinds embedded in this one.
    std::int64_t formFields = 0;

    // Adds a sentence that tells the user, if there is something to tell.
    void tell(std::vector<std::string>& notes) const;
};

} // namespace Tamberlin
