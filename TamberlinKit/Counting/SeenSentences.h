#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace Tamberlin {

// A set of sentences that only grows. Their texts lie one behind the other in large pieces, and the table
// holds little more than their hashes, so that many millions fit.
class SeenSentences {
public:
    static std::uint64_t hash(std::string_view sentence);

    // Makes room for so many more, so that the table needn't grow step by step.
    void expect(std::size_t count);
    // Has the place of a sentence fetched that is looked up soon; waiting for memory is what takes longest
    // here.
    void prefetch(std::uint64_t hash) const
    {
        __builtin_prefetch(m_slots.data() + (hash & (m_slots.size() - 1)));
    }
    // Whether the sentence is new; it is remembered then.
    bool insert(std::string_view sentence, std::uint64_t hash);

private:
    struct Slot {
        const char* text = nullptr; // Nothing: the slot is free.
        std::uint32_t size = 0;
        std::uint32_t hash = 0; // Its lower half.
    };

    const char* keep(std::string_view sentence);
    void resize(std::size_t size);

    std::vector<Slot> m_slots
        = std::vector<Slot>(64); // A power of two of them, at most three quarters in use.
    std::size_t m_used = 0;
    std::vector<std::unique_ptr<char[]>> m_pieces;
    std::size_t m_left = 0; // In the last piece.
    char* m_next = nullptr;
};

} // namespace Tamberlin
