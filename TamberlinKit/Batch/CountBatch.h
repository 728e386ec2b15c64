#pragma once

#include "TamberlinKit/Counting/CountOptions.h"
#include "TamberlinKit/Counting/FileCount.h"
#include "TamberlinKit/Text/Extracted.h"

#include <cstddef>
#include <filesystem>
#include <functional>
#include <stop_token>
#include <string>
#include <vector>

namespace Tamberlin {

// A file of a batch that couldn't be read, and the sentence for the user.
struct ReadFailure {
    std::string file;
    std::string message;

    bool operator==(const ReadFailure&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("file", &ReadFailure::file),
            Base::field("message", &ReadFailure::message),
        };
    }
};
static_assert(Base::listsEveryMember<ReadFailure>);

struct BatchCount {
    std::vector<FileCount> files; // In the order of the list, without those that failed.
    std::vector<ReadFailure> failures;
};

struct BatchOptions {
    CountOptions counting;
    unsigned threads = 0; // 0: one for each core.
    std::function<void(std::size_t done, std::size_t all)> onProgress; // Called in the thread that counts.
    std::function<void(const Extracted& file)> onRead; // The same, in the order of the list.
};

// Reads documents on all cores and counts them in the order of the list, so that the first of two equal
// sentences is the one that comes first there. Only a few documents are in memory at a time. Throws Cancelled
// soon after a stop was asked for.
BatchCount countBatch(const std::vector<std::filesystem::path>& files, const BatchOptions& options,
    const std::stop_token& cancel);

} // namespace Tamberlin
