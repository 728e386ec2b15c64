#pragma once

#include "TamberlinKit/Counting/TextStats.h"

#include <unicode/brkiter.h>
#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

// The rules of counting as they are told to users, character by character with ICU and without any short cut:
// what the fast way must agree with.
class CounterReference {
public:
    CounterReference(bool countNumbers, bool countMarks)
        : m_countNumbers(countNumbers)
        , m_countMarks(countMarks)
    {
        UErrorCode status = U_ZERO_ERROR;
        m_characters.reset(icu::BreakIterator::createCharacterInstance(icu::Locale::getRoot(), status));
        m_words.reset(icu::BreakIterator::createWordInstance(icu::Locale::getRoot(), status));
    }

    Tamberlin::TextStats stats(std::string_view text)
    {
        m_stats = {};
        m_chunk.clear();
        m_isAfterCJK = false;
        for (const auto& character : charactersOf(text))
            take(character);
        flush(false);
        return m_stats;
    }

    std::vector<std::string> sentences(std::string_view text)
    {
        const std::set<std::u32string> latin { U".", U"!", U"?", U"…" }, wide { U"。", U"！", U"？" },
            closers { U")", U"]", U"\"", U"'", U"”", U"’", U"»", U"」", U"』", U"）", U"】" };
        std::vector<std::string> found;
        std::vector<std::u32string> current;
        bool isPending = false, isWide = false;
        const auto emit = [&] {
            if (auto sentence = normal(current); !sentence.empty())
                found.push_back(std::move(sentence));
            current.clear();
            isPending = false;
        };
        for (const auto& character : charactersOf(text)) {
            if (isPending) {
                if (isBlank(character)) {
                    emit();
                    continue;
                }
                if (closers.contains(character)) {
                    current.push_back(character);
                    continue;
                }
                if (isWide)
                    emit();
                isPending = false;
            }
            current.push_back(character);
            if (latin.contains(character) || wide.contains(character)) {
                isPending = true;
                isWide = wide.contains(character);
            }
        }
        emit();
        return found;
    }

private:
    using Character = std::u32string;

    std::vector<Character> charactersOf(std::string_view text)
    {
        const auto unicode
            = icu::UnicodeString::fromUTF8({ text.data(), static_cast<std::int32_t>(text.size()) });
        m_characters->setText(unicode);
        std::vector<Character> characters;
        for (auto from = m_characters->first(), to = m_characters->next(); to != icu::BreakIterator::DONE;
             from = to, to = m_characters->next()) {
            Character character;
            for (auto at = from; at < to; at = unicode.moveIndex32(at, 1))
                character += static_cast<char32_t>(unicode.char32At(at));
            characters.push_back(std::move(character));
        }
        return characters;
    }

    static bool isLineBreak(const Character& character)
    {
        const auto first = character[0];
        return (first >= 0x0A && first <= 0x0D) || first == 0x85 || first == 0x2028 || first == 0x2029;
    }
    static bool isBlank(const Character& character)
    {
        return isLineBreak(character) || u_isUWhiteSpace(static_cast<UChar32>(character[0]));
    }
    static bool isInvisible(const Character& character)
    {
        return character.find_first_not_of(U"\u00AD\u200B\u200C\u200D\u2060\uFEFF") == character.npos;
    }
    static bool isLetter(char32_t c) { return U_GET_GC_MASK(static_cast<UChar32>(c)) & U_GC_L_MASK; }
    static bool isNumber(char32_t c)
    {
        return u_getIntPropertyValue(static_cast<UChar32>(c), UCHAR_NUMERIC_TYPE) != U_NT_NONE;
    }
    static bool isOf(char32_t c, std::initializer_list<std::pair<char32_t, char32_t>> ranges)
    {
        for (const auto& [first, last] : ranges) {
            if (c >= first && c <= last)
                return true;
        }
        return false;
    }
    static bool isCJK(char32_t c)
    {
        return isOf(c,
            { { 0x1100, 0x11FF }, { 0x2E80, 0x2FDF }, { 0x3005, 0x3005 }, { 0x3007, 0x3007 },
                { 0x3021, 0x3029 }, { 0x3038, 0x303B }, { 0x3040, 0x30FA }, { 0x30FC, 0x30FF },
                { 0x3130, 0x318F }, { 0x31F0, 0x31FF }, { 0x3400, 0x4DBF }, { 0x4E00, 0x9FFF },
                { 0xAC00, 0xD7AF }, { 0xF900, 0xFAFF }, { 0xFF66, 0xFF9F }, { 0x20000, 0x323AF } });
    }
    static bool isCJKPunctuation(char32_t c)
    {
        return isOf(c,
            { { 0x3000, 0x303F }, { 0x30FB, 0x30FB }, { 0xFE30, 0xFE4F }, { 0xFF01, 0xFF0F },
                { 0xFF1A, 0xFF20 }, { 0xFF3B, 0xFF40 }, { 0xFF5B, 0xFF65 } });
    }
    static bool isDictionary(char32_t c)
    {
        return isOf(c, { { 0x0E00, 0x0EFF }, { 0x1780, 0x17FF }, { 0x1000, 0x109F } });
    }

    void take(const Character& character)
    {
        const auto first = character[0];
        if (isLineBreak(character)) {
            flush(false);
            m_isAfterCJK = false;
        } else if (isInvisible(character)) {
            if (first == 0x200B)
                flush(false);
        } else if (isBlank(character)) {
            flush(false);
            ++m_stats.charactersWithSpaces;
            m_isAfterCJK = false;
        } else {
            ++m_stats.charactersWithSpaces;
            ++m_stats.charactersNoSpaces;
            if (isCJK(first) || isCJKPunctuation(first)) {
                flush(true);
                m_stats.words += isCJK(first);
                m_stats.cjkCharacters += isCJK(first);
                m_isAfterCJK = true;
            } else {
                if (m_chunk.empty())
                    m_startsAfterCJK = m_isAfterCJK;
                m_chunk.push_back(character);
            }
        }
    }

    void flush(bool isEndedByCJK)
    {
        if (!m_chunk.empty())
            m_stats.words += wordsOfChunk(isEndedByCJK);
        m_chunk.clear();
    }

    std::int64_t wordsOfChunk(bool isEndedByCJK)
    {
        bool hasLetter = false, hasNumber = false, hasDictionary = false;
        icu::UnicodeString text;
        for (const auto& character : m_chunk) {
            hasLetter = hasLetter || isLetter(character[0]);
            hasNumber = hasNumber || isNumber(character[0]);
            hasDictionary = hasDictionary || isDictionary(character[0]);
            for (const auto c : character)
                text.append(static_cast<UChar32>(c));
        }
        if (!hasLetter && !hasNumber)
            return m_countMarks && !m_startsAfterCJK && !isEndedByCJK;
        if (!hasLetter && !m_countNumbers)
            return 0;
        if (!hasDictionary)
            return 1;
        m_words->setText(text);
        std::int64_t words = 0;
        for (auto from = m_words->first(), to = m_words->next(); to != icu::BreakIterator::DONE;
             from = to, to = m_words->next()) {
            bool holdsAWord = false;
            for (auto at = from; at < to; at = text.moveIndex32(at, 1)) {
                const auto c = static_cast<char32_t>(text.char32At(at));
                holdsAWord = holdsAWord || isLetter(c) || isNumber(c);
            }
            words += holdsAWord;
        }
        return std::max<std::int64_t>(words, 1);
    }

    static std::string normal(const std::vector<Character>& sentence)
    {
        icu::UnicodeString text;
        bool isPending = false;
        for (const auto& character : sentence) {
            if (isBlank(character)) {
                isPending = !text.isEmpty();
                continue;
            }
            if (isPending)
                text.append(u' ');
            isPending = false;
            for (const auto c : character)
                text.append(static_cast<UChar32>(c));
        }
        UErrorCode status = U_ZERO_ERROR;
        std::string result;
        icu::Normalizer2::getNFCInstance(status)->normalize(text, status).toUTF8String(result);
        return result;
    }

    bool m_countNumbers, m_countMarks;
    std::unique_ptr<icu::BreakIterator> m_characters, m_words;
    Tamberlin::TextStats m_stats;
    std::vector<Character> m_chunk;
    bool m_isAfterCJK = false, m_startsAfterCJK = false;
};
