#include "TamberlinKit/Counting/TextCounter.h"

#include "TamberlinKit/Counting/Characters.h"
#include "TamberlinKit/Counting/DictionaryWords.h"

#include <bit>
#include <string>

namespace Tamberlin {

namespace {

class TextCounter {
public:
    TextCounter(TextBlocks& blocks, const WordRules& rules)
        : m_blocks(blocks)
        , m_text(blocks.text())
        , m_rules(rules)
    {
    }

    TextStats count()
    {
        for (std::size_t at = 0; at < m_text.size();) {
            const auto end = at - at % TextBlock::size + TextBlock::size;
            const auto& block = m_blocks.at(at);
            if ((block.isSimple || block.isCJK) && endsApart(end + block.cut)) {
                if (block.isSimple)
                    takeBlock(block, at);
                else
                    takeBlockOfCJK(block, at);
                at = end + block.cut;
                continue;
            }
            at = takeCJK(at, end);
            CharacterReader characters(m_text, at);
            for (bool isFirst = true; characters.at() < std::min(end, m_text.size()); isFirst = false) {
                if (!isFirst && characters.isAtCJK())
                    break;
                take(characters.next());
            }
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

    // Whether a simple character that ends here isn't joined by what follows.
    bool endsApart(std::size_t end) const
    {
        return end >= m_text.size() || propertiesOf(codePointAt(m_text, end).value).standsAlone();
    }

    // Counts a run of CJK characters and punctuation on the shortest way, up to about `end`.
    std::size_t takeCJK(std::size_t at, std::size_t end)
    {
        const auto begin = at;
        std::int64_t characters = 0, words = 0;
        auto next = codePointAt(m_text, at);
        for (auto properties = propertiesOf(next.value); properties.isLoneCJK() && at < end;) {
            const auto kind = properties.kind();
            const auto behind = at + next.size;
            if (behind < m_text.size()) {
                next = codePointAt(m_text, behind);
                properties = propertiesOf(next.value);
                if (!properties.standsAlone())
                    break;
            } else {
                properties = {};
            }
            ++characters;
            words += kind == CharacterKind::cjk;
            at = behind;
        }
        if (characters > 0) {
            flush(begin, true);
            m_isAfterCJK = true;
        }
        m_stats.charactersWithSpaces += characters;
        m_stats.charactersNoSpaces += characters;
        m_stats.words += words;
        m_stats.cjkCharacters += words;
        return at;
    }

    // The bits of what is left of a block.
    std::uint64_t bitsFrom(std::size_t at) const
    {
        const auto skipped = at % TextBlock::size, begin = at - skipped;
        const auto bits = ~std::uint64_t { 0 } << skipped;
        const auto length = m_text.size() - begin;
        return length < TextBlock::size ? bits & ((std::uint64_t { 1 } << length) - 1) : bits;
    }

    void addCharacters(const TextBlock& block, std::uint64_t all, std::uint64_t separators)
    {
        const auto characters = all & ~block.continuations;
        m_stats.charactersWithSpaces += std::popcount(characters & ~block.lineBreaks);
        m_stats.charactersNoSpaces += std::popcount(characters & ~separators);
    }

    // Counts what is left of a block of CJK at once.
    void takeBlockOfCJK(const TextBlock& block, std::size_t at)
    {
        const auto all = bitsFrom(at), separators = all & (block.spaces | block.lineBreaks);
        addCharacters(block, all, separators);
        const auto words = std::popcount(all & block.wideWords);
        m_stats.words += words;
        m_stats.cjkCharacters += words;
        flush(at, (separators >> at % TextBlock::size & 1) == 0);
        m_isAfterCJK = separators < (all ^ separators); // Which has the last character.
    }

    // Counts what is left of a block of simple characters at once.
    void takeBlock(const TextBlock& block, std::size_t at)
    {
        const auto begin = at - at % TextBlock::size;
        const auto all = bitsFrom(at), separators = all & (block.spaces | block.lineBreaks);
        addCharacters(block, all, separators);
        if (separators == 0)
            return takeRun(block, all, begin);
        const auto first = std::countr_zero(separators), last = 63 - std::countl_zero(separators);
        const auto before = (std::uint64_t { 1 } << first) - 1, behind = ~std::uint64_t { 1 } << last;
        takeRun(block, all & before, begin);
        flush(begin + static_cast<std::size_t>(first), false);
        m_isAfterCJK = false;
        takeWholeRuns(block, all & ~separators & ~before & ~behind);
        takeRun(block, all & behind, begin);
    }

    // Goes on with the open chunk, or opens one.
    void takeRun(const TextBlock& block, std::uint64_t run, std::size_t blockBegin)
    {
        if (run == 0)
            return;
        open(blockBegin + static_cast<std::size_t>(std::countr_zero(run)));
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

    TextBlocks& m_blocks;
    std::string_view m_text;
    WordRules m_rules;
    TextStats m_stats;
    Chunk m_chunk;
    bool m_isAfterCJK = false; // No blank or line break since a CJK character or punctuation mark.
};

} // namespace

#if defined(__x86_64__) && defined(__gnu_linux__) && !defined(__clang__)
// The same with the instructions of newer processors, which count and find bits at once.
__attribute__((target_clones("arch=x86-64-v3", "default"), flatten))
#endif
TextStats
countText(TextBlocks& text, const WordRules& rules)
{
    return TextCounter(text, rules).count();
}

TextStats countText(std::string_view text, const WordRules& rules)
{
    TextBlocks blocks(text);
    return countText(blocks, rules);
}

} // namespace Tamberlin
