#include "TamberlinKit/Counting/SeenSentences.h"

#include <xxhash.h>

#include <algorithm>
#include <cstring>
#include <utility>

namespace Tamberlin {

std::uint64_t SeenSentences::hash(std::string_view sentence)
{
    return XXH3_64bits(sentence.data(), sentence.size());
}

void SeenSentences::expect(std::size_t count)
{
    auto size = m_slots.size();
    while (4 * (m_used + count) > 3 * size)
        size *= 2;
    if (size > m_slots.size())
        resize(size);
}

bool SeenSentences::insert(const Text& sentence, std::uint64_t hash)
{
    expect(1);
    const auto text = sentence.view();
    const auto mask = m_slots.size() - 1;
    for (auto place = static_cast<std::size_t>(hash) & mask;; place = (place + 1) & mask) {
        auto& slot = m_slots[place];
        if (!slot.text) {
            slot = { sentence.stays() ? text.data() : copied(text), static_cast<std::uint32_t>(text.size()),
                static_cast<std::uint32_t>(hash) };
            ++m_used;
            return true;
        }
        const bool isSame = slot.hash == static_cast<std::uint32_t>(hash) && slot.size == text.size()
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
    Slots slots(size);
    const auto mask = size - 1;
    for (const auto& slot : m_slots) {
        if (!slot.text)
            continue;
        auto place = static_cast<std::size_t>(hash({ slot.text, slot.size })) & mask;
        while (slots[place].text)
            place = (place + 1) & mask;
        slots[place] = slot;
    }
    m_slots = std::move(slots);
}

} // namespace Tamberlin
