#include "Base/Uuid.h"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <unistd.h>

namespace Base {

namespace {

constexpr std::size_t textLength = 36;

constexpr char hexDigits[] = "0123456789ABCDEF";

// The value of each character as a hexadecimal digit; what is none has the bit `noDigit`.
constexpr std::uint8_t noDigit = 0x80;
constexpr auto hexValues = [] {
    std::array<std::uint8_t, 256> values {};
    values.fill(noDigit);
    for (std::uint8_t value = 0; value < 16; ++value) {
        const auto digit = static_cast<unsigned char>(hexDigits[value]);
        values[digit] = value;
        values[value < 10 ? digit : digit - 'A' + 'a'] = value;
    }
    return values;
}();

// Where the two digits of each byte stand in "00112233-4455-6677-8899-AABBCCDDEEFF".
constexpr std::array<std::uint8_t, 16> bytePlaces { 0, 2, 4, 6, 9, 11, 14, 16, 19, 21, 24, 26, 28, 30, 32,
    34 };
constexpr std::array<std::uint8_t, 4> hyphenPlaces { 8, 13, 18, 23 };

// Random numbers of the system, fetched many at a time, since asking costs far more than the numbers.
class RandomWords {
public:
    std::uint64_t next()
    {
        if (m_used == m_words.size()) {
            if (getentropy(m_words.data(), sizeof m_words) != 0)
                throw std::system_error(errno, std::generic_category());
            m_used = 0;
        }
        return m_words[m_used++];
    }

private:
    std::array<std::uint64_t, 32> m_words; // As much as one call gives.
    std::size_t m_used = m_words.size();
};

} // namespace

Uuid Uuid::random()
{
    thread_local RandomWords words;
    constexpr std::uint64_t version = 0x4000, variant = 0x8000'0000'0000'0000;
    return { (words.next() & ~std::uint64_t { 0xF000 }) | version, (words.next() >> 2) | variant };
}

std::optional<Uuid> Uuid::parse(std::string_view text)
{
    if (text.size() != textLength)
        return std::nullopt;
    if (!std::all_of(
            hyphenPlaces.begin(), hyphenPlaces.end(), [&](auto place) { return text[place] == '-'; }))
        return std::nullopt;
    Uuid id;
    unsigned all = 0;
    for (std::size_t byte = 0; byte < bytePlaces.size(); ++byte) {
        const auto value
            = [&](std::size_t place) { return hexValues[static_cast<unsigned char>(text[place])]; };
        const unsigned upper = value(bytePlaces[byte]), lower = value(bytePlaces[byte] + std::size_t { 1 });
        all |= upper | lower;
        auto& half = byte < 8 ? id.high : id.low;
        half = half << 8 | (upper << 4 | lower);
    }
    if (all & noDigit)
        return std::nullopt;
    return id;
}

std::string Uuid::toString() const
{
    std::string text;
    appendTo(text);
    return text;
}

void Uuid::appendTo(std::string& text) const
{
    char buffer[textLength];
    for (const auto place : hyphenPlaces)
        buffer[place] = '-';
    for (std::size_t byte = 0; byte < bytePlaces.size(); ++byte) {
        const auto value = (byte < 8 ? high : low) >> (56 - 8 * (byte % 8)) & 0xFF;
        buffer[bytePlaces[byte]] = hexDigits[value >> 4];
        buffer[bytePlaces[byte] + 1] = hexDigits[value & 15];
    }
    text.append(buffer, textLength);
}

} // namespace Base
