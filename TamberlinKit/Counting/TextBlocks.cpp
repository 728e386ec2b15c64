#include "TamberlinKit/Counting/TextBlocks.h"

#include "TamberlinKit/Counting/Characters.h"

#include <algorithm>
#include <cstring>
#include <span>

#ifdef __x86_64__
#include <immintrin.h>
#endif

namespace Tamberlin {

namespace {

// Bytes are compared as signed numbers: those above 7F are less than 0.
constexpr char asSigned(int byte) { return static_cast<char>(static_cast<unsigned char>(byte)); }

// Of the byte that stands for a character of two bytes, or begins one of three, that may be simple.
bool isSimpleCharacter(char32_t c)
{
    if (c < 0x280)
        return c < 0x80 || c == U'«' || c == U'»' || (c >= 0xC0 && c != U'×' && c != U'÷');
    if (c < 0x400)
        return c >= 0x386 && c != 0x387 && c != 0x38B && c != 0x38D && c != 0x3A2 && c != 0x3F6;
    return c < 0x480 || (c >= 0x2010 && c <= 0x2027) || c == U'‹' || c == U'›' || c == U'€';
}

// The same for blocks of CJK.
bool isWideCharacter(char32_t c)
{
    const auto isIn = [c](char32_t first, char32_t last) { return c >= first && c <= last; };
    return isIn(0x4E00, 0x9FFF) || isIn(0x3040, 0x3098) || isIn(0x309B, 0x30FF) || isIn(0xAC00, 0xD77F)
        || isIn(0x3001, 0x3002) || isIn(0x3008, 0x3011) || isIn(0xFF01, 0xFF0F) || isIn(0xFF1A, 0xFF20);
}

std::size_t bytesBehind(std::string_view text, std::size_t position)
{
    for (std::size_t back = 1; back <= std::min<std::size_t>(2, position); ++back) {
        const auto [codePoint, size] = codePointAt(text, position - back);
        if (size > back)
            return isSimpleCharacter(codePoint) || isWideCharacter(codePoint) ? size - back : 0;
    }
    return 0;
}

// How many bytes behind `position` belong to a character of those that begins before it.
inline std::size_t carriedBytes(std::string_view text, std::size_t position)
{
    return position == 0 || (text[position - 1] & 0x80) == 0 ? 0 : bytesBehind(text, position);
}

namespace OnAnyProcessor {

struct Vector {
#ifdef __SSE2__
    static constexpr int size = 16;
    __m128i value;

    static Vector at(const char* bytes)
    {
        return { _mm_loadu_si128(reinterpret_cast<const __m128i*>(bytes)) };
    }
    static __m128i all(int byte) { return _mm_set1_epi8(asSigned(byte)); }
    std::uint64_t bits() const { return static_cast<std::uint32_t>(_mm_movemask_epi8(value)); }
    Vector is(int byte) const { return { _mm_cmpeq_epi8(value, all(byte)) }; }
    Vector isBelow(int byte) const { return { _mm_cmplt_epi8(value, all(byte)) }; }
    Vector isBetween(int low, int high) const
    {
        return { _mm_and_si128(_mm_cmpgt_epi8(value, all(low - 1)), _mm_cmplt_epi8(value, all(high + 1))) };
    }
    Vector lowered() const { return { _mm_or_si128(value, all(0x20)) }; }
    Vector operator|(Vector other) const { return { _mm_or_si128(value, other.value) }; }
#else
    static constexpr int size = 1;
    int value;

    static Vector at(const char* byte) { return { static_cast<signed char>(*byte) }; }
    std::uint64_t bits() const { return static_cast<std::uint64_t>(value); }
    Vector is(int byte) const { return { value == static_cast<signed char>(byte) }; }
    Vector isBelow(int byte) const { return { value < static_cast<signed char>(byte) }; }
    Vector isBetween(int low, int high) const
    {
        return { value >= static_cast<signed char>(low) && value <= static_cast<signed char>(high) };
    }
    Vector lowered() const { return { value | 0x20 }; }
    Vector operator|(Vector other) const { return { value | other.value }; }
#endif
};

#include "TamberlinKit/Counting/FillTextBlock.inc"

} // namespace OnAnyProcessor

#ifdef __x86_64__
#ifdef __clang__
#pragma clang attribute push(__attribute__((target("avx2"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2")
#endif
namespace WithAVX2 {

struct Vector {
    static constexpr int size = 32;
    __m256i value;

    static Vector at(const char* bytes)
    {
        return { _mm256_loadu_si256(reinterpret_cast<const __m256i*>(bytes)) };
    }
    static __m256i all(int byte) { return _mm256_set1_epi8(asSigned(byte)); }
    std::uint64_t bits() const { return static_cast<std::uint32_t>(_mm256_movemask_epi8(value)); }
    Vector is(int byte) const { return { _mm256_cmpeq_epi8(value, all(byte)) }; }
    Vector isBelow(int byte) const { return { _mm256_cmpgt_epi8(all(byte), value) }; }
    Vector isBetween(int low, int high) const
    {
        return { _mm256_and_si256(
            _mm256_cmpgt_epi8(value, all(low - 1)), _mm256_cmpgt_epi8(all(high + 1), value)) };
    }
    Vector lowered() const { return { _mm256_or_si256(value, all(0x20)) }; }
    Vector operator|(Vector other) const { return { _mm256_or_si256(value, other.value) }; }
};

#include "TamberlinKit/Counting/FillTextBlock.inc"

} // namespace WithAVX2
#ifdef __clang__
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif
#endif

auto* const fillTextBlock =
#ifdef __x86_64__
    __builtin_cpu_supports("avx2") ? &WithAVX2::fill :
#endif
                                   &OnAnyProcessor::fill;

} // namespace

void TextBlocks::make(std::size_t index)
{
    constexpr std::size_t looksAhead = 2; // For characters of three bytes.
    m_begin = index;
    const auto end = (m_text.size() + TextBlock::size - 1) / TextBlock::size;
    m_end = std::min(index + m_blocks.size(), end);
    for (auto& block : std::span(m_blocks).first(m_end - m_begin)) {
        const auto position = index++ * TextBlock::size;
        const auto rest = m_text.substr(position);
        std::array<char, TextBlock::size + looksAhead> last;
        const char* bytes = rest.data();
        if (rest.size() < last.size()) {
            last.fill(' ');
            std::memcpy(last.data(), rest.data(), rest.size());
            bytes = last.data();
        }
        fillTextBlock(block, bytes, carriedBytes(m_text, position));
        if (block.cut > 0 && carriedBytes(m_text, position + TextBlock::size) != block.cut)
            block.isSimple = block.isCJK = false;
    }
}

} // namespace Tamberlin
