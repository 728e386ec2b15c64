#include "Base/Uuid.h"

#include <system_error>
#include <unistd.h>

namespace Base {

namespace {

constexpr std::size_t textLength = 36;

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

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

bool isHyphenPlace(std::size_t place) { return place == 8 || place == 13 || place == 18 || place == 23; }

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
    Uuid id;
    int nibbles = 0;
    for (std::size_t place = 0; place < textLength; ++place) {
        if (isHyphenPlace(place)) {
            if (text[place] != '-')
                return std::nullopt;
            continue;
        }
        const int value = hexValue(text[place]);
        if (value < 0)
            return std::nullopt;
        auto& half = nibbles++ < 16 ? id.high : id.low;
        half = half << 4 | static_cast<std::uint64_t>(value);
    }
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
    constexpr char hex[] = "0123456789ABCDEF";
    char buffer[textLength];
    int nibbles = 0;
    for (std::size_t place = 0; place < textLength; ++place) {
        if (isHyphenPlace(place)) {
            buffer[place] = '-';
            continue;
        }
        const auto half = nibbles < 16 ? high : low;
        buffer[place] = hex[half >> (60 - 4 * (nibbles % 16)) & 15];
        ++nibbles;
    }
    text.append(buffer, textLength);
}

} // namespace Base
