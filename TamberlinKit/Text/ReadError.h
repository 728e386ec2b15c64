#pragma once

#include <stdexcept>
#include <string>

namespace Tamberlin {

// A document can't be read; `what()` is the sentence for the user, shown as it stands.
class ReadError : public std::runtime_error {
public:
    explicit ReadError(const std::string& sentence)
        : std::runtime_error(sentence)
    {
    }
};

// The user doesn't want the result any more. Not an error, so nothing that handles errors catches it.
class Cancelled { };

} // namespace Tamberlin
