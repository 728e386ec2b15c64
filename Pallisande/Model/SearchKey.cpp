#include "Pallisande/Model/SearchKey.h"

#include "Base/Text.h"

#include <unicode/coll.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <cstdint>
#include <memory>
#include <stdexcept>

namespace Pallisande {

namespace {

bool isAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }

icu::UnicodeString fromUtf8(std::string_view text)
{
    return icu::UnicodeString::fromUTF8(
        icu::StringPiece(text.data(), static_cast<std::int32_t>(text.size())));
}

[[noreturn]] void noUnicodeData()
{
    throw std::runtime_error("The Unicode data of this computer can’t be used.");
}

// A run of characters beyond ASCII: taken apart, in one case, without the marks above and below letters.
void appendFolded(std::string& key, std::string_view run)
{
    UErrorCode status = U_ZERO_ERROR;
    const auto* const form = icu::Normalizer2::getNFKDInstance(status);
    if (U_FAILURE(status))
        noUnicodeData();
    const auto folded = form->normalize(fromUtf8(run).foldCase(), status).foldCase();
    icu::UnicodeString letters;
    for (std::int32_t at = 0; at < folded.length(); at = folded.moveIndex32(at, 1)) {
        const auto c = folded.char32At(at);
        if (u_charType(c) != U_NON_SPACING_MARK)
            letters.append(c);
    }
    letters.toUTF8String(key);
}

} // namespace

std::string searchKey(std::string_view text)
{
    std::string key;
    key.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        auto end = at;
        while (end < text.size() && !isAscii(text[end]))
            ++end;
        if (end > at) {
            appendFolded(key, text.substr(at, end - at));
            at = end;
            continue;
        }
        const char c = text[at++];
        key += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return key;
}

std::string sortKey(std::string_view text)
{
    static const auto collator = [] {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::Collator> made(icu::Collator::createInstance(icu::Locale::getRoot(), status));
        if (U_FAILURE(status))
            noUnicodeData();
        made->setAttribute(UCOL_NUMERIC_COLLATION, UCOL_ON, status);
        return made;
    }();
    const auto source = fromUtf8(text);
    std::string key(text.size() * 3 + 16, '\0');
    const auto write = [&] {
        return collator->getSortKey(
            source, reinterpret_cast<std::uint8_t*>(key.data()), static_cast<std::int32_t>(key.size()));
    };
    const auto needed = static_cast<std::size_t>(write());
    const bool wasTooSmall = needed > key.size();
    key.resize(needed);
    if (wasTooSmall)
        write();
    return key;
}

std::vector<std::string> searchWords(std::string_view search)
{
    std::vector<std::string> words;
    const auto key = searchKey(search);
    for (std::string_view rest = Base::trimmed(key); !rest.empty(); rest = Base::trimmed(rest)) {
        const auto end = std::min(rest.find(' '), rest.size());
        words.emplace_back(rest.substr(0, end));
        rest.remove_prefix(end);
    }
    return words;
}

} // namespace Pallisande
