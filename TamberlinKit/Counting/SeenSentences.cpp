#include "TamberlinKit/Counting/SeenSentences.h"

#include <xxhash.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace Tamberlin {

SeenSentences::Sentence::Sentence(std::string_view text, bool stays)
    : m_begin(text.data())
    , m_size(static_cast<std::uint32_t>(std::min<std::size_t>(text.size(), longest)) & longest)
    , m_stays(stays)
    , m_hash(static_cast<std::uint32_t>(XXH3_64bits(text.data(), text.size())))
{
}

void SeenSentences::expect(std::size_t count)
{
    const auto needed = (m_used + count) * 4 / 3 + 1;
    if (needed > m_slots.size())
        resize(count == 1 ? 2 * m_slots.size() : std::max(needed, m_slots.size() + m_slots.size() / 2));
}

bool SeenSentences::insert(const Sentence& sentence, bool stays)
{
    expect(1);
    const auto text = sentence.text();
    const auto hash = sentence.hash();
    for (auto place = placeOf(hash);; place = place + 1 < m_slots.size() ? place + 1 : 0) {
        auto& slot = m_slots[place];
        if (!slot.text) {
            slot = { stays ? text.data() : copied(text), static_cast<std::uint32_t>(text.size()), hash };
            ++m_used;
            return true;
        }
        const bool isSame = slot.hash == hash && slot.size == text.size()
            && (slot.text == text.data() || std::string_view(slot.text, slot.size) == text);
        if (isSame)
            return false;
    }
}

void SeenSentences::keep(std::shared_ptr<const void> source)
{
    if (source)
        m_sources.push_back(std::move(source));
}

const char* SeenSentences::copied(std::string_view sentence)
{
    constexpr std::size_t pieceSize = 1 << 20;
    if (sentence.size() > m_left || !m_next) {
        const auto size = std::max(pieceSize, sentence.size());
        m_pieces.push_back(std::unique_ptr<char[]>(new char[size]));
        m_next = m_pieces.back().get();
        m_left = size;
    }
    auto* const kept = m_next;
    std::memcpy(kept, sentence.data(), sentence.size());
    m_next += sentence.size();
    m_left -= sentence.size();
    return kept;
}

void SeenSentences::resize(std::size_t size)
{
    const auto slots = std::exchange(m_slots, Slots(size));
    for (const auto& slot : slots) {
        if (!slot.text)
            continue;
        auto place = placeOf(slot.hash);
        while (m_slots[place].text)
            place = place + 1 < size ? place + 1 : 0;
        m_slots[place] = slot;
    }
}

} // namespace Tamberlin
