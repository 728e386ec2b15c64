#include "TamberlinKit/Text/TextDecoder.h"

#include "TamberlinKit/Text/EncodingGuess.h"

#include <fmt/format.h>
#include <unicode/ucnv.h>
#include <unicode/ucnv_cb.h>

#include <algorithm>
#include <array>
#include <memory>
#include <stdexcept>
#include <utility>

namespace Tamberlin {

namespace {

struct CloseConverter {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

Converter opened(const std::string& encoding)
{
    UErrorCode status = U_ZERO_ERROR;
    Converter converter(ucnv_open(encoding.c_str(), &status));
    return U_SUCCESS(status) ? std::move(converter) : nullptr;
}

struct Decoded {
    std::string text;
    std::size_t replaced = 0;
};

// What stands for no character becomes U+FFFD.
void replace(const void* count, UConverterToUnicodeArgs* args, const char*, std::int32_t,
    UConverterCallbackReason reason, UErrorCode* status)
{
    if (reason > UCNV_IRREGULAR)
        return;
    *status = U_ZERO_ERROR;
    const char16_t replacement = 0xFFFD;
    ucnv_cbToUWriteUChars(args, &replacement, 1, 0, status);
    ++*static_cast<std::size_t*>(const_cast<void*>(count));
}

Decoded decoded(std::string_view bytes, const std::string& encoding)
{
    const auto from = opened(encoding), to = opened("UTF-8");
    if (!from || !to)
        throw std::runtime_error("The Unicode data of this computer can’t be used.");
    Decoded result;
    result.text.reserve(bytes.size() + bytes.size() / 4);
    UErrorCode status = U_ZERO_ERROR;
    ucnv_setToUCallBack(from.get(), replace, &result.replaced, nullptr, nullptr, &status);
    std::array<char, 16'384> piece;
    std::array<char16_t, 4096> pivot;
    char16_t *pivotBegin = pivot.data(), *pivotEnd = pivot.data();
    const char *source = bytes.data(), *const sourceEnd = source + bytes.size();
    do {
        status = U_ZERO_ERROR;
        char* end = piece.data();
        ucnv_convertEx(to.get(), from.get(), &end, piece.data() + piece.size(), &source, sourceEnd,
            pivot.data(), &pivotBegin, &pivotEnd, pivot.data() + pivot.size(), false, true, &status);
        result.text.append(piece.data(), end);
    } while (status == U_BUFFER_OVERFLOW_ERROR);
    return result;
}

DecodedText converted(std::string_view bytes, std::string encoding)
{
    auto [text, replaced] = decoded(bytes, encoding);
    DecodedText result(std::move(text), std::move(encoding));
    result.replaced = replaced;
    return result;
}

DecodedText asUtf8(std::string_view bytes, const Utf8Check& utf8)
{
    return utf8.invalid == 0 ? DecodedText(bytes, "UTF-8") : converted(bytes, "UTF-8");
}

// Encodings that are part of a larger one of which programs make use under their name, as the WHATWG Encoding
// standard has it.
std::string_view larger(std::string_view name)
{
    constexpr std::pair<std::string_view, std::string_view> encodings[] {
        { "ISO-8859-1", "windows-1252" },
        { "US-ASCII", "windows-1252" },
        { "ISO-8859-9", "windows-1254" },
        { "ISO-8859-11", "windows-874" },
        { "TIS-620", "windows-874" },
        { "GB2312", "GB18030" },
        { "GB_2312-80", "GB18030" },
        { "EUC-CN", "GB18030" },
        { "GBK", "GB18030" },
        { "Shift_JIS", "windows-31j" },
        { "EUC-KR", "windows-949" },
        { "KS_C_5601-1987", "windows-949" },
    };
    for (const auto& [part, whole] : encodings) {
        if (name == part)
            return whole;
    }
    return name;
}

// The usual name of a supported encoding in which ASCII is ASCII; empty for others, which no file can say of
// itself in plain letters.
std::string knownEncoding(std::string_view hint)
{
    const auto converter = opened(std::string(hint.substr(0, 60)));
    if (hint.empty() || !converter)
        return {};
    UErrorCode status = U_ZERO_ERROR;
    const std::string internal = ucnv_getName(converter.get(), &status);
    const auto named = [&](const char* standard) {
        UErrorCode none = U_ZERO_ERROR; // It has no name there, then.
        return ucnv_getStandardName(internal.c_str(), standard, &none);
    };
    const char *const mime = named("MIME"), *const iana = named("IANA");
    const std::string encoding(larger(mime ? mime : iana ? iana : internal));
    constexpr std::string_view ascii = "<meta charset=\"~\\\">\r\n\t 0123456789 AZaz {|}";
    return decoded(ascii, encoding).text == ascii ? encoding : "";
}

std::optional<DecodedText> decodedByMark(std::string_view bytes)
{
    constexpr std::pair<std::string_view, const char*> marks[] {
        { { "\xFF\xFE\0\0", 4 }, "UTF-32LE" },
        { { "\0\0\xFE\xFF", 4 }, "UTF-32BE" },
        { "\xFF\xFE", "UTF-16LE" },
        { "\xFE\xFF", "UTF-16BE" },
    };
    for (const auto& [mark, encoding] : marks) {
        if (bytes.starts_with(mark))
            return converted(bytes.substr(mark.size()), encoding);
    }
    return std::nullopt;
}

// The first guess in which hardly a byte makes no sense.
std::string bestGuess(std::string_view sample)
{
    const auto guesses = guessedCodePages(sample);
    const auto high = std::count_if(sample.begin(), sample.end(), [](char c) { return (c & 0x80) != 0; });
    const auto fits = [&](const std::string& guess) {
        return decoded(sample, guess).replaced * 200 <= static_cast<std::size_t>(high);
    };
    const auto found = std::find_if(guesses.begin(), guesses.end(), fits);
    return found == guesses.end() ? guesses.front() : *found;
}

} // namespace

DecodedText decodeText(std::string_view bytes, std::string_view hint)
{
    if (bytes.starts_with("\xEF\xBB\xBF")) {
        bytes.remove_prefix(3);
        return asUtf8(bytes, checkUtf8(bytes));
    }
    if (auto marked = decodedByMark(bytes))
        return std::move(*marked);

    const auto utf8 = checkUtf8(bytes);
    if (const auto wide = wideEncoding(bytes, utf8); !wide.empty())
        return converted(bytes, std::string(wide));
    const auto said = knownEncoding(hint);
    if (utf8.firstHigh == bytes.npos && bytes.find("\x1B$B") != bytes.npos)
        return converted(bytes, "ISO-2022-JP"); // Its letters are ASCII too, between escape sequences.
    if (utf8.firstHigh == bytes.npos && !said.starts_with("ISO-2022") && !said.starts_with("HZ"))
        return { bytes, said.empty() ? "UTF-8" : said };
    const bool isUtf8 = utf8.valid >= 4 * utf8.invalid; // Damaged here and there, perhaps.
    // No other encoding gives valid UTF-8 by chance, save for a few bytes of the double-byte ones.
    if (isUtf8 && (said.empty() || said == "UTF-8" || (utf8.invalid == 0 && utf8.valid > 2)))
        return asUtf8(bytes, utf8);
    if (!said.empty() && said != "UTF-8")
        return converted(bytes, said);
    auto guessed = converted(bytes, bestGuess(guessingSample(bytes, utf8)));
    guessed.isGuessed = true;
    return guessed;
}

std::optional<std::string> DecodedText::note() const
{
    if (isGuessed) {
        return fmt::format("The file’s character encoding was guessed: {}.", encoding);
    }
    if (replaced > 0) {
        return fmt::format("{} in the file that {} no character in {} {} counted as “\uFFFD”.",
            replaced == 1 ? "One place" : fmt::format("{} places", replaced), replaced == 1 ? "is" : "are",
            encoding, replaced == 1 ? "is" : "are");
    }
    return std::nullopt;
}

} // namespace Tamberlin
