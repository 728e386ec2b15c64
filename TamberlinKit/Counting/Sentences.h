#pragma once

#include "TamberlinKit/Counting/TextBlocks.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace Tamberlin {

struct Character;

// Cuts a text into sentences: behind . ! ? … and closing marks where a blank follows, behind 。！？ wherever
// they stand. Each has single blanks between its words and is in Unicode's form NFC.
class SentenceReader {
public:
    explicit SentenceReader(TextBlocks& text)
        : m_blocks(text)
        , m_text(text.text())
    {
    }

    // False when there is none any more.
    bool next(std::string_view& sentence);
    // Whether the last sentence is a piece of the text as it stands, and not a copy that the next call
    // overwrites.
    bool isPieceOfText() const { return m_isPieceOfText; }

private:
    enum class Terminator { none, latin, wide };

    static Terminator terminatorOf(const Character& character);
    // Where something may stand: in the block that was looked at last, and up to where before it.
    struct Stains {
        std::uint64_t inBlock = 0;
        std::size_t end = 0;
    };
    void look(std::size_t begin, const TextBlock& block);
    std::size_t nextOfInterest(std::size_t at);
    Terminator terminatorAt(std::size_t at) const;
    bool endsBehind(std::size_t& at, Terminator kind, std::size_t& next) const;
    bool isClean(const Stains& stains, std::size_t end) const;
    bool emit(std::size_t end, std::size_t next, std::string_view& sentence);
    bool joinLines(std::string_view sentence);
    void normalize(std::string_view sentence);

    TextBlocks& m_blocks;
    std::string_view m_text;
    std::size_t m_start = 0; // Of the next sentence,
    std::size_t m_at = 0; // and up to where it was searched for its end.
    std::size_t m_lookedTo = 0; // The end of the block that was looked at last.
    Stains m_breaks, m_odd; // Line breaks; what else isn't in normal form, or may not be.
    std::string m_normal;
    bool m_isPieceOfText = true;
};

} // namespace Tamberlin
