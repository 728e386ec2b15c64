#pragma once

#include "TamberlinKit/Counting/CountOptions.h"
#include "TamberlinKit/Counting/FileCount.h"
#include "TamberlinKit/Counting/SeenSentences.h"
#include "TamberlinKit/Text/Extracted.h"

#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <vector>

namespace Tamberlin {

// The count of one file as far as it doesn't depend on the files before it, so that many can be prepared at
// once. Only the look-up of repetitions is left, which goes in the order of the batch.
class PreparedCount {
public:
    PreparedCount(
        const Extracted& file, const CountOptions& options); // The file's texts must stay while this is used.
    PreparedCount(const PreparedCount&) = delete;
    PreparedCount& operator=(const PreparedCount&) = delete;

    // Finishes the count; called once.
    FileCount finish(std::int64_t id, SeenSentences& seenInBatch);

private:
    void keep(std::string_view sentence, std::string_view segment);

    CountOptions m_options;
    FileCount m_count;
    struct Sentence {
        std::string_view text;
        std::uint64_t hash;
    };
    std::vector<Sentence> m_sentences; // That take part in the look-up.
    std::deque<std::string> m_normalized; // Those that differ from what stands in the file.
};

} // namespace Tamberlin
