#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace Tamberlin {

// What 64 bytes of UTF-8 are, a bit each: counting them so takes a fraction of the time of looking at each
// character. Simple characters are ASCII, and beyond it those that nothing can be said about but that they
// are letters or marks, in Unicode's form NFC: the Latin, Greek and Cyrillic letters of U+00C0 to U+027F,
// U+0386 to U+03FF and U+0400 to U+047F; « and »; the dashes, quotes and other marks of U+2010 to U+2027; ‹,
// › and €; the no-break spaces U+00A0 and U+202F inside of a block. Blocks of CJK hold the characters that are
// words each: kana, the ideographs of U+4E00 to U+9FFF and Hangul syllables up to U+D77F; the marks 、。〈 to
// 】 and those of U+FF01 to U+FF20; and between them nothing but ASCII blanks.
struct TextBlock {
    static constexpr std::size_t size = 64;

    std::uint64_t lineBreaks; // U+000A to U+000D.
    std::uint64_t oddBlanks; // Tabs and all bytes of no-break spaces.
    std::uint64_t spaces; // The same, and spaces.
    std::uint64_t letters; // ASCII and simple ones; both bytes of those of two.
    std::uint64_t wideWords; // Where a CJK character that is a word begins, in a block of CJK.
    std::uint64_t digits;
    std::uint64_t continuations; // Bytes that aren't the first of their character.
    std::uint64_t terminators; // Where . ! ? … 。！？ begin.
    bool isSimple; // All that begins here is a simple character.
    bool isCJK; // All that begins here is of blocks of CJK; it isn't both.
    std::uint8_t cut; // How many bytes of the last character stand in the next block.
};

// The blocks of a text, one behind the other from its beginning. They are made when they are asked for, many
// at once, by the widest instructions that the processor has. Behind the end of the text its last block has
// blanks.
class TextBlocks {
public:
    TextBlocks() = default;
    explicit TextBlocks(std::string_view text) { assign(text); }

    // The text must stay while its blocks are asked for.
    void assign(std::string_view text)
    {
        m_text = text;
        m_begin = m_end = 0;
    }
    std::string_view text() const { return m_text; }

    // The block with the byte at `position`; valid until the next call.
    const TextBlock& at(std::size_t position)
    {
        const auto index = position / TextBlock::size;
        if (index < m_begin || index >= m_end)
            make(index);
        return m_blocks[index - m_begin];
    }

private:
    void make(std::size_t index);

    std::string_view m_text;
    std::size_t m_begin = 0, m_end = 0; // The indices of the blocks that are there.
    std::array<TextBlock, 64> m_blocks;
};

} // namespace Tamberlin
