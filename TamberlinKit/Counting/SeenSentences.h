#pragma once

#include "Base/LargePages.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

namespace Tamberlin {

// A set of sentences that only grows. Texts that stay where they are are referred to; copies of the others
// lie one behind the other in large pieces. The table holds little more than their hashes, so that many
// millions fit.
class SeenSentences {
public:
    // The text of a sentence and its hash, in 16 bytes, since there are millions. What is longer than 2 GB is
    // compared by its beginning; no file that is read is.
    class Sentence {
    public:
        Sentence(std::string_view text, bool stays);

        std::string_view text() const { return { m_begin, m_size }; }
        bool stays() const { return m_stays; } // As long as the set does.
        std::uint32_t hash() const { return m_hash; }

    private:
        static constexpr std::uint32_t longest = 0x7FFF'FFFF;

        const char* m_begin;
        std::uint32_t m_size : 31;
        std::uint32_t m_stays : 1;
        std::uint32_t m_hash;
    };

    // Makes room for so many more, so that the table needn't grow step by step.
    void expect(std::size_t count);
    // Has the place of a sentence fetched that is looked up soon; waiting for memory is what takes longest
    // here.
    void prefetch(const Sentence& sentence) const
    {
        __builtin_prefetch(m_slots.data() + placeOf(sentence.hash()));
    }
    // Whether the sentence is new; it is remembered then, as a copy if it doesn't stay.
    bool insert(const Sentence& sentence) { return insert(sentence, sentence.stays()); }
    bool insert(const Sentence& sentence, bool stays);
    // Keeps what texts that stay stand in.
    void keep(std::shared_ptr<const void> source);

private:
    struct Slot {
        const char* text = nullptr; // Nothing: the slot is free.
        std::uint32_t size = 0;
        std::uint32_t hash = 0;
    };
    using Slots = Base::LargeVector<Slot>;

    // The upper bits decide, so that the table may have any size.
    std::size_t placeOf(std::uint32_t hash) const
    {
        return static_cast<std::size_t>(std::uint64_t(hash) * m_slots.size() >> 32);
    }
    const char* copied(std::string_view sentence);
    void resize(std::size_t size);

    Slots m_slots = Slots(64); // At most three quarters in use, and less than 2^32.
    std::size_t m_used = 0;
    std::vector<std::shared_ptr<const void>> m_sources;
    std::vector<std::unique_ptr<char[]>> m_pieces;
    std::size_t m_left = 0; // In the last piece.
    char* m_next = nullptr;
};

} // namespace Tamberlin
