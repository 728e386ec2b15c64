#include "TamberlinKit/Counting/Sentences.h"

#include "TamberlinKit/Counting/Characters.h"
#include "TamberlinKit/Counting/TextBlock.h"

#include <unicode/bytestream.h>
#include <unicode/normalizer2.h>

#include <algorithm>
#include <bit>
#include <stdexcept>
#include <string>

namespace Tamberlin {

namespace {

bool isAscii(char c) { return static_cast<unsigned char>(c) < 0x80; }
bool isBlank(const Character& character)
{
    return character.kind == CharacterKind::space || character.kind == CharacterKind::lineBreak;
}

enum class Terminator { none, latin, wide };

Terminator terminator(const Character& character)
{
    if (!character.isSingle)
        return Terminator::none;
    switch (character.first) {
    case U'.':
    case U'!':
    case U'?':
    case U'…':
        return Terminator::latin;
    case U'。':
    case U'！':
    case U'？':
        return Terminator::wide;
    default:
        return Terminator::none;
    }
}

bool isCloser(const Character& character)
{
    constexpr std::u32string_view closers = U")]\"'”’»」』）】";
    return character.isSingle && closers.find(character.first) != closers.npos;
}

// Whether a text is as it would be normalized: single blanks between words, none at its ends, and in NFC. So
// are most sentences. Where that is hard to tell the answer is no.
class NormalForm {
public:
    explicit NormalForm(std::string_view text)
        : m_text(text)
    {
    }

    bool holds()
    {
        if (m_text.empty() || m_text.front() == ' ' || m_text.back() == ' ')
            return false;
        while (m_at < m_text.size()) {
            if (m_text.size() - m_at < TextBlock::size) {
                if (!takeUntil(m_text.size()))
                    return false;
                continue;
            }
            const auto block = textBlockAt(m_text.data() + m_at);
            const auto doubled = block.spaces & (block.spaces << 1 | (m_wasBlank ? 1 : 0));
            if (block.lineBreaks | block.tabs | doubled)
                return false;
            if (block.isSimple()) {
                m_at += TextBlock::size - (block.leads >> 63); // A character that isn't whole is left.
                m_wasBlank = block.spaces >> 63;
            } else if (!takeUntil(m_at + TextBlock::size)) {
                return false;
            }
        }
        return true;
    }

private:
    bool takeUntil(std::size_t end)
    {
        while (m_at < end) {
            const char c = m_text[m_at];
            if (isAscii(c)) {
                if ((c >= '\t' && c <= '\r') || (c == ' ' && m_wasBlank))
                    return false;
                m_wasBlank = c == ' ';
                ++m_at;
                continue;
            }
            const auto [codePoint, size] = longCodePointAt(m_text, m_at);
            const auto properties = propertiesOf(codePoint);
            const auto kind = properties.kind();
            const bool joinsBlank = m_wasBlank && properties.clusterBreak() != ClusterBreak::other;
            if (!properties.isComposed() || joinsBlank || kind == CharacterKind::space
                || kind == CharacterKind::lineBreak)
                return false;
            m_wasBlank = false;
            m_at += size;
        }
        return true;
    }

    std::string_view m_text;
    std::size_t m_at = 0;
    bool m_wasBlank = false;
};

const icu::Normalizer2& composition()
{
    static const auto* const normalizer = [] {
        UErrorCode status = U_ZERO_ERROR;
        const auto* const found = icu::Normalizer2::getNFCInstance(status);
        if (U_FAILURE(status))
            throw std::runtime_error("The Unicode data of this computer can’t be used.");
        return found;
    }();
    return *normalizer;
}

// Texts that Unicode holds for the same become the same.
void compose(std::string& text)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::StringPiece piece(text.data(), static_cast<std::int32_t>(text.size()));
    if (composition().isNormalizedUTF8(piece, status) || U_FAILURE(status))
        return;
    std::string composed;
    icu::StringByteSink<std::string> sink(&composed);
    composition().normalizeUTF8(0, piece, sink, nullptr, status);
    if (U_SUCCESS(status))
        text = std::move(composed);
}

// Goes through a text and hands its sentences over.
class Splitter {
public:
    Splitter(std::string_view text, const std::function<void(std::string_view)>& visit)
        : m_text(text)
        , m_visit(visit)
    {
    }

    void split()
    {
        for (std::size_t at = nextOfInterest(0); at < m_text.size(); at = nextOfInterest(at)) {
            const auto kind = terminatorAt(at);
            at = kind == Terminator::none ? at + 1 : end(characterAt(m_text, at).end, kind);
        }
        emit(m_text.size());
    }

private:
    // The next position where a terminator may begin.
    std::size_t nextOfInterest(std::size_t at)
    {
        while (m_text.size() - at >= TextBlock::size || at < m_blockEnd) {
            if (at >= m_blockEnd) {
                m_found = terminatorsAt(m_text.data() + at);
                m_blockEnd = at + TextBlock::size;
            }
            const auto passed = TextBlock::size - (m_blockEnd - at);
            if (const auto left = m_found >> passed << passed)
                return m_blockEnd - TextBlock::size + static_cast<std::size_t>(std::countr_zero(left));
            at = m_blockEnd;
        }
        const auto from = m_text.begin() + static_cast<std::ptrdiff_t>(at);
        return static_cast<std::size_t>(
            std::find_if(from, m_text.end(), &mayBeginTerminator) - m_text.begin());
    }

    Terminator terminatorAt(std::size_t at) const
    {
        const auto kind = terminator(characterAt(m_text, at));
        // It is none when the character before takes it to itself; those are encoded in two to four bytes.
        for (std::size_t back = 2; kind != Terminator::none && back <= std::min<std::size_t>(4, at); ++back) {
            const auto [codePoint, size] = codePointAt(m_text, at - back);
            if (size == back && propertiesOf(codePoint).clusterBreak() == ClusterBreak::prepend)
                return Terminator::none;
        }
        return kind;
    }

    // Behind a terminator: ends the sentence if it is to end here. Gives where to go on.
    std::size_t end(std::size_t at, Terminator kind)
    {
        while (at < m_text.size()) {
            const auto character = characterAt(m_text, at);
            if (isBlank(character)) {
                emit(at);
                m_start = character.end;
                return character.end;
            }
            if (!isCloser(character)) {
                if (kind == Terminator::wide)
                    emit(at);
                return at;
            }
            at = character.end;
        }
        return at;
    }

    void emit(std::size_t end)
    {
        const auto sentence = m_text.substr(m_start, end - m_start);
        m_start = end;
        if (NormalForm(sentence).holds())
            return m_visit(sentence);
        normalize(sentence);
        if (!m_normal.empty())
            m_visit(m_normal);
    }

    void normalize(std::string_view sentence)
    {
        constexpr char32_t firstCombining = 0x300; // What comes before it is in NFC whatever its neighbours.
        m_normal.clear();
        bool mayCompose = false;
        bool isPending = false; // A blank, which is written when something follows.
        for (CharacterReader characters(sentence); !characters.isAtEnd();) {
            const auto character = characters.next();
            if (isBlank(character)) {
                isPending = !m_normal.empty();
                continue;
            }
            if (isPending)
                m_normal += ' ';
            isPending = false;
            m_normal += sentence.substr(character.begin, character.end - character.begin);
            mayCompose = mayCompose || character.first >= firstCombining || !character.isSingle;
        }
        if (mayCompose)
            compose(m_normal);
    }

    std::string_view m_text;
    const std::function<void(std::string_view)>& m_visit;
    std::size_t m_start = 0;
    std::size_t m_blockEnd = 0; // Of the 64 bytes that were looked at last,
    std::uint64_t m_found = 0; // and where terminators may begin in them.
    std::string m_normal;
};

} // namespace

void forEachSentence(std::string_view text, const std::function<void(std::string_view)>& visit)
{
    Splitter(text, visit).split();
}

} // namespace Tamberlin
