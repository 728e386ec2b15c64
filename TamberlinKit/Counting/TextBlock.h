#pragma once

#include <cstdint>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace Tamberlin {

// What 64 bytes of UTF-8 are, a bit each: counting them so takes a fraction of the time of looking at each
// character. Simple characters are ASCII and those letters of two bytes, Latin and Cyrillic, that nothing can
// be said about but that they are letters, and in Unicode's form NFC: U+00C0 to U+027F without × and ÷,
// U+0400 to U+047F.
struct TextBlock {
    static constexpr std::size_t size = 64;

    std::uint64_t lineBreaks = 0; // U+000A to U+000D.
    std::uint64_t tabs = 0;
    std::uint64_t spaces = 0; // Tabs too.
    std::uint64_t letters = 0; // With the second bytes of those of two.
    std::uint64_t digits = 0;
    std::uint64_t leads = 0; // First bytes of letters of two.
    std::uint64_t continuations = 0;
    std::uint64_t timesSigns = 0; // Bytes that make × or ÷ of a first byte C3.
    std::uint64_t c3 = 0;
    std::uint64_t notAscii = 0;

    // Whether the bytes are simple characters, of which the last may go on behind them.
    bool isSimple() const
    {
        return (notAscii & ~(leads | continuations)) == 0 && continuations == leads << 1
            && (timesSigns & c3 << 1) == 0;
    }
};

// Whether a simple character may begin with this byte, which then doesn't belong to the character before it.
inline bool beginsSimple(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte < 0x80 || (byte >= 0xC3 && byte <= 0xC9) || byte == 0xD0 || byte == 0xD1;
}

// Whether the end of a sentence may begin with this byte: . ! ? and the first bytes of … 。！？ in UTF-8.
inline bool mayBeginTerminator(char c)
{
    return c == '.' || c == '!' || c == '?' || c == '\xE2' || c == '\xE3' || c == '\xEF';
}

#ifdef __SSE2__

namespace Detail {

// The bytes between two values, both taken as signed ones.
inline __m128i between(__m128i bytes, char low, char high)
{
    return _mm_and_si128(_mm_cmpgt_epi8(bytes, _mm_set1_epi8(static_cast<char>(low - 1))),
        _mm_cmplt_epi8(bytes, _mm_set1_epi8(static_cast<char>(high + 1))));
}
inline __m128i equal(__m128i bytes, char value) { return _mm_cmpeq_epi8(bytes, _mm_set1_epi8(value)); }

inline std::uint64_t bits(__m128i mask) { return static_cast<std::uint64_t>(_mm_movemask_epi8(mask)); }

} // namespace Detail

inline TextBlock textBlockAt(const char* text)
{
    using namespace Detail;
    TextBlock block;
    for (int part = 0; part < 64; part += 16) {
        const auto bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + part));
        const auto lowered = _mm_or_si128(bytes, _mm_set1_epi8(0x20));
        const auto isTab = equal(bytes, '\t');
        block.lineBreaks |= bits(between(bytes, '\n', '\r')) << part;
        block.tabs |= bits(isTab) << part;
        block.spaces |= bits(_mm_or_si128(equal(bytes, ' '), isTab)) << part;
        block.letters |= bits(between(lowered, 'a', 'z')) << part;
        block.digits |= bits(between(bytes, '0', '9')) << part;
        block.notAscii |= bits(bytes) << part;
    }
    if (block.notAscii == 0)
        return block;
    for (int part = 0; part < 64; part += 16) {
        const auto bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + part));
        const auto isLead = _mm_or_si128(
            between(bytes, '\xC3', '\xC9'), _mm_or_si128(equal(bytes, '\xD0'), equal(bytes, '\xD1')));
        block.leads |= bits(isLead) << part;
        block.continuations |= bits(_mm_cmplt_epi8(bytes, _mm_set1_epi8('\xC0'))) << part;
        block.c3 |= bits(equal(bytes, '\xC3')) << part;
        block.timesSigns |= bits(_mm_or_si128(equal(bytes, '\x97'), equal(bytes, '\xB7'))) << part;
    }
    block.letters |= block.notAscii;
    return block;
}

// Those of 64 bytes with which the end of a sentence may begin.
inline std::uint64_t terminatorsAt(const char* text)
{
    using namespace Detail;
    std::uint64_t found = 0;
    for (int part = 0; part < 64; part += 16) {
        const auto bytes = _mm_loadu_si128(reinterpret_cast<const __m128i*>(text + part));
        const auto ascii
            = _mm_or_si128(equal(bytes, '.'), _mm_or_si128(equal(bytes, '!'), equal(bytes, '?')));
        const auto longer
            = _mm_or_si128(equal(bytes, '\xE2'), _mm_or_si128(equal(bytes, '\xE3'), equal(bytes, '\xEF')));
        found |= bits(_mm_or_si128(ascii, longer)) << part;
    }
    return found;
}

#else

inline TextBlock textBlockAt(const char* text)
{
    TextBlock block;
    for (int place = 0; place < 64; ++place) {
        const auto bit = std::uint64_t { 1 } << place;
        const auto c = static_cast<unsigned char>(text[place]);
        const auto lowered = static_cast<unsigned char>(c | 0x20);
        block.lineBreaks |= c >= '\n' && c <= '\r' ? bit : 0;
        block.tabs |= c == '\t' ? bit : 0;
        block.spaces |= c == ' ' || c == '\t' ? bit : 0;
        block.letters |= (lowered >= 'a' && lowered <= 'z') || c >= 0x80 ? bit : 0;
        block.digits |= c >= '0' && c <= '9' ? bit : 0;
        block.notAscii |= c >= 0x80 ? bit : 0;
        block.leads |= c >= 0x80 && beginsSimple(text[place]) ? bit : 0;
        block.continuations |= c >= 0x80 && c < 0xC0 ? bit : 0;
        block.c3 |= c == 0xC3 ? bit : 0;
        block.timesSigns |= c == 0x97 || c == 0xB7 ? bit : 0;
    }
    return block;
}

inline std::uint64_t terminatorsAt(const char* text)
{
    std::uint64_t found = 0;
    for (int place = 0; place < 64; ++place)
        found |= mayBeginTerminator(text[place]) ? std::uint64_t { 1 } << place : 0;
    return found;
}

#endif

} // namespace Tamberlin
