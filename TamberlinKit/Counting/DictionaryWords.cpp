#include "TamberlinKit/Counting/DictionaryWords.h"

#include <unicode/brkiter.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <memory>

namespace Tamberlin {

namespace {

// One a thread: making it takes longer than cutting a sentence.
icu::BreakIterator* wordBreaks()
{
    thread_local const auto iterator = [] {
        UErrorCode status = U_ZERO_ERROR;
        std::unique_ptr<icu::BreakIterator> made(
            icu::BreakIterator::createWordInstance(icu::Locale::getRoot(), status));
        return U_SUCCESS(status) ? std::move(made) : nullptr;
    }();
    return iterator.get();
}

bool holdsAWord(const icu::UnicodeString& text, std::int32_t from, std::int32_t to)
{
    for (auto at = from; at < to; at = text.moveIndex32(at, 1)) {
        const auto c = text.char32At(at);
        if ((U_GET_GC_MASK(c) & U_GC_L_MASK) || u_getIntPropertyValue(c, UCHAR_NUMERIC_TYPE) != U_NT_NONE)
            return true;
    }
    return false;
}

} // namespace

std::int64_t dictionaryWords(std::string_view text)
{
    auto* const breaks = wordBreaks();
    if (!breaks)
        return 1;
    // In UTF-16: over UTF-8 the dictionaries of ICU 72 cut some texts elsewhere.
    const auto unicode
        = icu::UnicodeString::fromUTF8({ text.data(), static_cast<std::int32_t>(text.size()) });
    breaks->setText(unicode);
    std::int64_t words = 0;
    auto from = breaks->first();
    for (auto to = breaks->next(); to != icu::BreakIterator::DONE; from = to, to = breaks->next())
        words += holdsAWord(unicode, from, to);
    return std::max<std::int64_t>(words, 1);
}

} // namespace Tamberlin
