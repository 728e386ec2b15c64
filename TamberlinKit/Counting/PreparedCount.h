#pragma once

#include "Base/LargePages.h"
#include "TamberlinKit/Counting/CountOptions.h"
#include "TamberlinKit/Counting/FileCount.h"
#include "TamberlinKit/Counting/SeenSentences.h"
#include "TamberlinKit/Text/Extracted.h"

#include <array>
#include <cstdint>
#include <memory>
#include <memory_resource>
#include <optional>
#include <span>
#include <stop_token>
#include <string_view>
#include <vector>

namespace Tamberlin {

// The count of one file as far as it doesn't depend on the files before it, so that many can be prepared at
// once, and the pieces of a long one too. Only the look-up of repetitions is left, which goes in the order of
// the batch.
class PreparedCount {
public:
    // The file must stay while this is used. Throws Cancelled.
    PreparedCount(const Extracted& file, const CountOptions& options, unsigned threads = 1,
        const std::stop_token& cancel = {});

    // Finishes the count; called once. What the texts of the file stand in is kept by `seenInBatch`, and so
    // are copies of other texts unless no file follows that they could be repeated in.
    enum class Following { files, none };
    FileCount finish(std::int64_t id, SeenSentences& seenInBatch, Following following = Following::files);

private:
    // Some of the segments.
    class Piece {
    public:
        void count(std::span<const Segment> segments, const CountOptions& options, bool hasSource,
            const std::stop_token& cancel);

        TextStats total;
        std::array<std::optional<TextStats>, caseNames(Part {}).size()> byPart;
        Base::LargeVector<SeenSentences::Sentence> sentences; // That take part in the look-up.

    private:
        // Holds those that differ from what stands in the file.
        std::unique_ptr<std::pmr::monotonic_buffer_resource> m_normalized
            = std::make_unique<std::pmr::monotonic_buffer_resource>();
    };

    TextStats countAgain(const std::vector<std::string_view>& sentences) const;

    const Extracted& m_file;
    CountOptions m_options;
    unsigned m_threads;
    std::vector<Piece> m_pieces;
};

} // namespace Tamberlin
