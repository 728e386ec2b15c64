#include "TamberlinKit/Text/EncodingGuess.h"

#include <unicode/ucsdet.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <memory>

namespace Tamberlin {

namespace {

struct Sequence {
    std::size_t length;
    bool isValid;
};

unsigned byteAt(std::string_view bytes, std::size_t at)
{
    return at < bytes.size() ? static_cast<unsigned char>(bytes[at]) : 0U;
}

bool isContinuation(char c) { return (c & 0xC0) == 0x80; }

// One sequence of UTF-8 that doesn't begin with an ASCII byte (Unicode, table 3-7); of an invalid one as much
// as could begin a valid one.
Sequence sequenceAt(std::string_view bytes, std::size_t at)
{
    const auto first = byteAt(bytes, at), second = byteAt(bytes, at + 1);
    if (first < 0xC2 || first > 0xF4)
        return { 1, false };
    const auto least = first == 0xE0 ? 0xA0U : first == 0xF0 ? 0x90U : 0x80U;
    const auto most = first == 0xED ? 0x9FU : first == 0xF4 ? 0x8FU : 0xBFU;
    if (second < least || second > most)
        return { 1, false };
    const std::size_t length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    for (std::size_t place = 2; place < length; ++place) {
        if ((byteAt(bytes, at + place) & 0xC0) != 0x80)
            return { place, false };
    }
    return { length, true };
}

// Passes the usual sequences that stand at `at`, of which texts of other scripts mostly consist, on the
// shortest way; gives how many those were.
std::size_t passUsualSequences(std::string_view bytes, std::size_t& at)
{
    // Begins a valid sequence of three bytes, if the next two are continuations.
    const auto begins = [](std::uint64_t first, std::uint64_t second) {
        return (first > 0xE0 && first < 0xED) || (first == 0xE0 && second >= 0xA0);
    };
    std::size_t count = 0;
    // Two of three bytes each at once.
    while (std::endian::native == std::endian::little && bytes.size() - at >= 8) {
        std::uint64_t word;
        std::memcpy(&word, bytes.data() + at, sizeof word);
        const bool haveEnds = (word & 0xC0C0'00C0'C000) == 0x8080'0080'8000;
        if (!haveEnds || !begins(word & 0xFF, word >> 8 & 0xFF)
            || !begins(word >> 24 & 0xFF, word >> 32 & 0xFF))
            break;
        at += 6;
        count += 2;
    }
    for (; bytes.size() - at >= 3; ++count) {
        const auto* const next = bytes.data() + at;
        const auto first = static_cast<unsigned char>(next[0]), second = static_cast<unsigned char>(next[1]);
        if (begins(first, second) && isContinuation(next[1]) && isContinuation(next[2]))
            at += 3;
        else if (first >= 0xC2 && first < 0xE0 && isContinuation(next[1]))
            at += 2;
        else
            break;
    }
    return count;
}

// Where the next byte above ASCII stands.
std::size_t endOfAscii(std::string_view bytes, std::size_t at)
{
    constexpr std::uint64_t highBits = 0x8080'8080'8080'8080;
    std::array<std::uint64_t, 4> words;
    for (; bytes.size() - at >= sizeof words; at += sizeof words) {
        std::memcpy(words.data(), bytes.data() + at, sizeof words);
        if ((words[0] | words[1] | words[2] | words[3]) & highBits)
            break;
    }
    for (std::uint64_t word; bytes.size() - at >= sizeof word; at += sizeof word) {
        std::memcpy(&word, bytes.data() + at, sizeof word);
        word &= highBits;
        if (word != 0) {
            const bool isLittle = std::endian::native == std::endian::little;
            return at
                + static_cast<std::size_t>(isLittle ? std::countr_zero(word) : std::countl_zero(word)) / 8;
        }
    }
    while (at < bytes.size() && (bytes[at] & 0x80) == 0)
        ++at;
    return at;
}

} // namespace

Utf8Check checkUtf8(std::string_view bytes)
{
    Utf8Check check;
    auto at = endOfAscii(bytes, 0);
    if (at < bytes.size())
        check.firstHigh = at;
    while (at < bytes.size()) {
        check.valid += passUsualSequences(bytes, at);
        if (byteAt(bytes, at) >= 0x80) {
            const auto [length, isValid] = sequenceAt(bytes, at);
            ++(isValid ? check.valid : check.invalid);
            at += length;
        } else {
            at = endOfAscii(bytes, at);
        }
    }
    return check;
}

std::string_view wideEncoding(std::string_view bytes, const Utf8Check& utf8)
{
    // Zero bytes by their place in a group of four.
    std::array<std::size_t, 4> zeros {};
    const auto sample = bytes.substr(0, 65'536);
    for (auto at = sample.find('\0'); at != sample.npos; at = sample.find('\0', at + 1))
        ++zeros[at % 4];
    const auto groups = sample.size() / 4;
    if (groups == 0)
        return {};
    const auto mostly = [groups](std::size_t count) { return count * 10 >= groups * 9; };
    if (mostly(zeros[2]) && mostly(zeros[3]) && !mostly(zeros[0]))
        return "UTF-32LE";
    if (mostly(zeros[0]) && mostly(zeros[1]) && !mostly(zeros[3]))
        return "UTF-32BE";
    const auto even = zeros[0] + zeros[2], odd = zeros[1] + zeros[3];
    // Every other byte of Latin text is zero; of other text only some are, but then it is no UTF-8 either.
    const auto enough
        = utf8.invalid == 0 ? std::max<std::size_t>(2, groups / 4) : std::max<std::size_t>(1, groups / 250);
    if (odd >= enough && odd > 4 * even)
        return "UTF-16LE";
    if (even >= enough && even > 4 * odd)
        return "UTF-16BE";
    return {};
}

namespace {

constexpr std::size_t sampleSize = 32'768;

constexpr bool isHigh(char c) { return (static_cast<unsigned char>(c) & 0x80) != 0; }

// The detector of ICU knows no Thai. What gives it away is that vowel signs and tone marks only follow
// consonants and each other.
bool looksThai(std::string_view sample)
{
    std::size_t high = 0, marks = 0, misplaced = 0;
    bool takesMark = false;
    for (const char c : sample) {
        const auto byte = static_cast<unsigned char>(c);
        const bool isMark = byte == 0xD1 || (byte >= 0xD4 && byte <= 0xDA) || (byte >= 0xE7 && byte <= 0xEE);
        const bool isUnused = (byte >= 0xDB && byte <= 0xDE) || byte >= 0xFC;
        high += isHigh(c) ? 1 : 0;
        marks += isMark ? 1 : 0;
        misplaced += isUnused || (isMark && !takesMark) ? 1 : 0;
        takesMark = isMark || (byte >= 0xA1 && byte <= 0xCE);
    }
    return marks > 2 && marks * 10 > high && misplaced * 50 <= high;
}

// Two bytes for each syllable, the first of them from a small range.
bool looksKorean(std::string_view sample)
{
    std::size_t syllables = 0, others = 0;
    for (std::size_t at = 0; at < sample.size(); ++at) {
        if (!isHigh(sample[at]))
            continue;
        const auto first = static_cast<unsigned char>(sample[at++]);
        const auto second = at < sample.size() ? static_cast<unsigned char>(sample[at]) : 0xFF;
        ++(first >= 0xB0 && first <= 0xC8 && second >= 0xA1 ? syllables : others);
    }
    return syllables > 3 && syllables > 9 * others;
}

// What a text is by the look of its bytes alone, when it is too short for more.
std::string_view shortGuess(std::string_view sample)
{
    std::size_t latin = 0, lower = 0, upper = 0;
    for (const char c : sample) {
        latin += (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ? 1 : 0;
        const auto byte = static_cast<unsigned char>(c);
        lower += byte >= 0xE0 ? 1 : 0; // Small letters in windows-1251, capitals in KOI8-R.
        upper += byte >= 0xC0 && byte < 0xE0 ? 1 : 0;
    }
    if (latin >= lower + upper)
        return "windows-1252";
    return lower >= upper ? "windows-1251" : "KOI8-U";
}

// The code page of Windows that has all characters of the ISO one, or all that matter.
std::string_view preferred(std::string_view name, std::string_view sample)
{
    if (name == "ISO-8859-1")
        return "windows-1252";
    if (name == "ISO-8859-9")
        return "windows-1254";
    if (name.starts_with("ISO-8859-8"))
        return "windows-1255";
    if (name == "ISO-8859-7"
        && sample.find('\xB6') == sample.npos) // An accented capital there, a pilcrow here.
        return "windows-1253";
    if (name == "Shift_JIS")
        return "windows-31j";
    if (name == "KOI8-R")
        return "KOI8-U"; // Letters where that has lines for boxes.
    return name == "EUC-KR" ? "windows-949" : name;
}

} // namespace

std::string_view guessingSample(std::string_view bytes, const Utf8Check& utf8)
{
    constexpr std::size_t before = 32; // A word or a few; more would speak for a language in plain ASCII.
    return bytes.substr(utf8.firstHigh > before ? utf8.firstHigh - before : 0, sampleSize);
}

std::vector<std::string> guessedCodePages(std::string_view sample)
{
    std::vector<std::string> guesses;
    if (looksKorean(sample))
        guesses.emplace_back("windows-949");
    else if (looksThai(sample))
        guesses.emplace_back("windows-874");
    UErrorCode status = U_ZERO_ERROR;
    const std::unique_ptr<UCharsetDetector, decltype(&ucsdet_close)> detector(
        ucsdet_open(&status), ucsdet_close);
    ucsdet_enableInputFilter(detector.get(), true); // Tags of HTML would speak for English.
    ucsdet_setText(detector.get(), sample.data(), static_cast<std::int32_t>(sample.size()), &status);
    std::int32_t count = 0;
    const auto* const* const matches = ucsdet_detectAll(detector.get(), &count, &status);
    for (std::int32_t index = 0; U_SUCCESS(status) && index < count; ++index) {
        const std::string_view name = ucsdet_getName(matches[index], &status);
        const auto confidence = ucsdet_getConfidence(matches[index], &status);
        const bool isLatin = name == "ISO-8859-1" || name == "windows-1252";
        // Ten is what an encoding gets of which nothing is known but that the bytes are possible in it.
        if (!name.starts_with("UTF-") && !name.starts_with("IBM") && (confidence > 10 || isLatin))
            guesses.emplace_back(preferred(name, sample));
    }
    guesses.emplace_back(shortGuess(sample));
    return guesses;
}

} // namespace Tamberlin
