#include "TamberlinKit/Counting/TextCounter.h"

#include "TamberlinKit/Counting/Characters.h"
#include "TamberlinKit/Counting/DictionaryWords.h"
#include "TamberlinKit/Counting/TextBlock.h"

#include <bit>
#include <string>

namespace Tamberlin {

namespace {

class TextCounter {
public:
    TextCounter(std::string_view text, const WordRules& rules)
        : m_text(text)
        , m_rules(rules)
    {
    }

    TextStats count()
    {
        for (std::size_t at = 0; at < m_text.size();) {
            if (const auto taken = takeBlock(at)) {
                at += taken;
                continue;
            }
            // Past what kept the block from being taken, so that no byte is looked at many times over.
            const auto next = std::min(m_text.size(), at + TextBlock::size);
            CharacterReader characters(m_text, at);
            while (characters.at() < next)
                take(characters.next());
            at = characters.at();
        }
        flush(m_text.size(), false);
        return m_stats;
    }

private:
    // A run of characters between separators.
    struct Chunk {
        bool isOpen = false;
        bool hasLetter = false;
        bool hasNumber = false;
        bool isDictionary = false;
        bool hasInvisible = false; // Which aren't part of it.
        bool startsAfterCJK = false;
        std::size_t begin = 0;
    };

    void take(const Character& character)
    {
        if (character.kind == CharacterKind::lineBreak) {
            flush(character.begin, false);
            m_isAfterCJK = false;
            return;
        }
        if (character.isInvisible) {
            if (character.isSingle && character.kind == CharacterKind::invisibleSpace)
                flush(character.begin, false);
            m_chunk.hasInvisible = true;
            return;
        }
        ++m_stats.charactersWithSpaces;
        if (character.kind == CharacterKind::space) {
            flush(character.begin, false);
            m_isAfterCJK = false;
            return;
        }
        ++m_stats.charactersNoSpaces;
        if (character.kind == CharacterKind::cjk || character.kind == CharacterKind::cjkPunctuation) {
            flush(character.begin, true);
            m_isAfterCJK = true;
            if (character.kind == CharacterKind::cjk) {
                ++m_stats.words;
                ++m_stats.cjkCharacters;
            }
            return;
        }
        append(character);
    }

    void append(const Character& character)
    {
        open(character.begin);
        switch (character.kind) {
        case CharacterKind::dictionaryLetter:
            m_chunk.isDictionary = true;
            [[fallthrough]];
        case CharacterKind::letter:
            m_chunk.hasLetter = true;
            break;
        case CharacterKind::dictionaryNumber:
            m_chunk.isDictionary = true;
            [[fallthrough]];
        case CharacterKind::number:
            m_chunk.hasNumber = true;
            break;
        case CharacterKind::dictionaryMark:
            m_chunk.isDictionary = true;
            break;
        default:
            break;
        }
    }

    void open(std::size_t begin)
    {
        if (!m_chunk.isOpen)
            m_chunk = { .isOpen = true, .startsAfterCJK = m_isAfterCJK, .begin = begin };
    }

    void flush(std::size_t end, bool isEndedByCJK)
    {
        if (m_chunk.isOpen)
            m_stats.words += words(end, isEndedByCJK);
        m_chunk = {};
    }

    std::int64_t words(std::size_t end, bool isEndedByCJK) const
    {
        if (!m_chunk.hasLetter && !m_chunk.hasNumber)
            return m_rules.countMarks && !m_chunk.startsAfterCJK && !isEndedByCJK;
        if (!m_chunk.hasLetter && !m_rules.countNumbers)
            return 0;
        if (!m_chunk.isDictionary)
            return 1;
        const auto text = m_text.substr(m_chunk.begin, end - m_chunk.begin);
        return dictionaryWords(m_chunk.hasInvisible ? withoutInvisible(text) : text);
    }

    static std::string withoutInvisible(std::string_view text)
    {
        std::string visible;
        for (CharacterReader characters(text); !characters.isAtEnd();) {
            const auto character = characters.next();
            if (!character.isInvisible)
                visible += text.substr(character.begin, character.end - character.begin);
        }
        return visible;
    }

    // Counts 64 bytes at once where all are simple characters, and what follows can't belong to the last.
    // Gives how many bytes were taken: a character that isn't whole is left.
    std::size_t takeBlock(std::size_t at)
    {
        if (m_text.size() - at < TextBlock::size)
            return 0;
        const auto block = textBlockAt(m_text.data() + at);
        if (!block.isSimple())
            return 0;
        const bool isCut = block.leads >> 63;
        const std::size_t size = TextBlock::size - (isCut ? 1 : 0);
        if (at + size < m_text.size() && !beginsSimple(m_text[at + size]))
            return 0;
        const auto all = ~std::uint64_t { 0 } >> (isCut ? 1 : 0);
        const auto characters = all & ~block.continuations;
        const auto separators = block.spaces | block.lineBreaks;
        m_stats.charactersWithSpaces += std::popcount(characters & ~block.lineBreaks);
        m_stats.charactersNoSpaces += std::popcount(characters & ~separators);
        if (separators == 0) {
            takeRun(block, all, at);
            return size;
        }
        const auto first = std::countr_zero(separators), last = 63 - std::countl_zero(separators);
        takeRun(block, (std::uint64_t { 1 } << first) - 1, at);
        flush(at + static_cast<std::size_t>(first), false);
        m_isAfterCJK = false;
        takeWholeRuns(
            block, ~separators & ((std::uint64_t { 1 } << last) - 1) & -(std::uint64_t { 1 } << first));
        const auto rest = last == 63 ? 0 : all & -(std::uint64_t { 1 } << (last + 1));
        takeRun(block, rest, at + static_cast<std::size_t>(last) + 1);
        return size;
    }

    // Goes on with the open chunk, or opens one.
    void takeRun(const TextBlock& block, std::uint64_t run, std::size_t begin)
    {
        if (run == 0)
            return;
        open(begin);
        m_chunk.hasLetter = m_chunk.hasLetter || (block.letters & run);
        m_chunk.hasNumber = m_chunk.hasNumber || (block.digits & run);
    }

    // Chunks that begin and end inside the block, between blanks.
    void takeWholeRuns(const TextBlock& block, std::uint64_t runs)
    {
        const auto starts = runs & ~(runs << 1);
        const auto all = std::popcount(starts);
        if (m_rules.countNumbers && m_rules.countMarks) {
            m_stats.words += all;
            return;
        }
        const auto withoutLetter = runsWithout(runs, starts, block.letters);
        const auto marks = runsWithout(runs, starts, block.letters | block.digits);
        m_stats.words += all - withoutLetter;
        m_stats.words += m_rules.countNumbers ? withoutLetter - marks : 0;
        m_stats.words += m_rules.countMarks ? marks : 0;
    }

    // How many runs hold none of the wanted bits: a bit added at a run's start is carried on to the first
    // wanted bit, or out of its end where there is none.
    static int runsWithout(std::uint64_t runs, std::uint64_t starts, std::uint64_t wanted)
    {
        const auto carried = (runs & ~wanted) + (starts & ~wanted);
        return std::popcount(carried & ~runs & (runs << 1));
    }

    std::string_view m_text;
    WordRules m_rules;
    TextStats m_stats;
    Chunk m_chunk;
    bool m_isAfterCJK = false; // No blank or line break since a CJK character or punctuation mark.
};

} // namespace

TextStats countText(std::string_view text, const WordRules& rules)
{
    return TextCounter(text, rules).count();
}

} // namespace Tamberlin
