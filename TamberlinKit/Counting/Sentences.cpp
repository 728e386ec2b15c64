#include "TamberlinKit/Counting/Sentences.h"

#include "TamberlinKit/Counting/Characters.h"

#include <unicode/bytestream.h>
#include <unicode/normalizer2.h>

#include <algorithm>
#include <bit>
#include <stdexcept>
#include <string>
#include <utility>

namespace Tamberlin {

namespace {

bool isBlank(const Character& character)
{
    return character.kind == CharacterKind::space || character.kind == CharacterKind::lineBreak;
}

bool isCloser(const Character& character)
{
    constexpr std::u32string_view closers = U")]\"'”’»」』）】";
    return character.isSingle && closers.find(character.first) != closers.npos;
}

// Behind the ordinary code points that stand at `at`.
std::size_t endOfOrdinary(std::string_view text, std::size_t at)
{
    while (at < text.size()) {
        const auto [codePoint, size] = codePointAt(text, at);
        if (!propertiesOf(codePoint).isOrdinary())
            break;
        at += size;
    }
    return at;
}

// Behind what stands at `at` as it would be normalized: ordinary code points with single blanks between them.
std::size_t endOfNormal(std::string_view text, std::size_t at)
{
    auto end = endOfOrdinary(text, at);
    while (end > at && end < text.size() && text[end] == ' ') {
        const auto next = endOfOrdinary(text, end + 1);
        if (next == end + 1)
            break;
        end = next;
    }
    return end;
}

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

bool isComposed(std::string_view text)
{
    UErrorCode status = U_ZERO_ERROR;
    const icu::StringPiece piece(text.data(), static_cast<std::int32_t>(text.size()));
    return composition().isNormalizedUTF8(piece, status) && U_SUCCESS(status);
}

// Whether the blanks of a text, from one on, are single spaces between characters that don't join them.
bool haveSingleBlanks(std::string_view text, std::size_t at)
{
    bool isBehindBlank = false;
    for (; at < text.size();) {
        const auto [codePoint, size] = codePointAt(text, at);
        const auto properties = propertiesOf(codePoint);
        const bool isBlankPoint
            = properties.kind() == CharacterKind::space || properties.kind() == CharacterKind::lineBreak;
        if (isBlankPoint ? codePoint != U' ' || isBehindBlank : isBehindBlank && !properties.standsAlone())
            return false;
        isBehindBlank = isBlankPoint;
        at += size;
    }
    return !isBehindBlank;
}

// Whether a text is as it would be normalized: single blanks between words, none at its ends, and in NFC.
// Where that is hard to tell the answer is no.
bool isInNormalForm(std::string_view text)
{
    const auto ordinary = endOfNormal(text, 0);
    return ordinary > 0
        && (ordinary == text.size() || (haveSingleBlanks(text, ordinary) && isComposed(text)));
}

// Texts that Unicode holds for the same become the same.
void compose(std::string& text)
{
    if (isComposed(text))
        return;
    UErrorCode status = U_ZERO_ERROR;
    const icu::StringPiece piece(text.data(), static_cast<std::int32_t>(text.size()));
    std::string composed;
    icu::StringByteSink<std::string> sink(&composed);
    composition().normalizeUTF8(0, piece, sink, nullptr, status);
    if (U_SUCCESS(status))
        text = std::move(composed);
}

} // namespace

SentenceReader::Terminator SentenceReader::terminatorOf(const Character& character)
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

bool SentenceReader::next(std::string_view& sentence)
{
    while (m_start < m_text.size()) {
        std::size_t end = m_text.size(), next = end;
        for (m_at = nextOfInterest(m_at); m_at < m_text.size(); m_at = nextOfInterest(m_at)) {
            const auto kind = terminatorAt(m_at);
            m_at = kind == Terminator::none ? m_at + 1 : characterAt(m_text, m_at).end;
            if (kind == Terminator::none || !endsBehind(m_at, kind, next))
                continue;
            end = std::exchange(m_at, next);
            break;
        }
        if (emit(end, next, sentence))
            return true;
    }
    return false;
}

// The next position where a terminator begins.
std::size_t SentenceReader::nextOfInterest(std::size_t at)
{
    while (at < m_text.size()) {
        const auto passed = at % TextBlock::size, begin = at - passed;
        const auto& block = m_blocks.at(at);
        if (m_lookedTo != begin + TextBlock::size)
            look(begin, block);
        if (const auto left = block.terminators >> passed << passed)
            return begin + static_cast<std::size_t>(std::countr_zero(left));
        at = begin + TextBlock::size;
    }
    return m_text.size();
}

// Remembers what in a block isn't in normal form, or may not be.
void SentenceReader::look(std::size_t begin, const TextBlock& block)
{
    const bool isBehindGap = begin > m_lookedTo;
    for (auto* const stains : { &m_breaks, &m_odd }) {
        if (stains->inBlock != 0 || isBehindGap)
            stains->end = begin;
    }
    const bool followsBlank = begin > 0 && m_text[begin - 1] == ' ';
    const auto doubled = block.spaces & (block.spaces << 1 | (followsBlank ? 1 : 0));
    m_breaks.inBlock = block.lineBreaks;
    m_odd.inBlock = block.isSimple || block.isCJK ? block.oddBlanks | doubled : ~std::uint64_t { 0 };
    m_lookedTo = begin + TextBlock::size;
}

SentenceReader::Terminator SentenceReader::terminatorAt(std::size_t at) const
{
    const auto kind = terminatorOf(characterAt(m_text, at));
    // It is none when the character before takes it to itself; those are encoded in two to four bytes.
    for (std::size_t back = 2; kind != Terminator::none && back <= std::min<std::size_t>(4, at); ++back) {
        const auto [codePoint, size] = codePointAt(m_text, at - back);
        if (size == back && propertiesOf(codePoint).clusterBreak() == ClusterBreak::prepend)
            return Terminator::none;
    }
    return kind;
}

// Behind a terminator: whether the sentence ends here, at `at` then, and where the next one begins. Else `at`
// is where to go on.
bool SentenceReader::endsBehind(std::size_t& at, Terminator kind, std::size_t& next) const
{
    while (at < m_text.size()) {
        const auto character = characterAt(m_text, at);
        if (!isCloser(character)) {
            const bool ends = isBlank(character) || kind == Terminator::wide;
            if (ends)
                next = isBlank(character) ? character.end : at;
            return ends;
        }
        at = character.end;
    }
    return false;
}

// Whether nothing of that stands in the sentence that ends at `end`. Most sentences need no second look.
bool SentenceReader::isClean(const Stains& stains, std::size_t end) const
{
    const auto begin = m_lookedTo - TextBlock::size;
    if (m_start < stains.end || end > m_lookedTo || end <= begin)
        return false;
    auto stands = ~std::uint64_t { 0 } >> (m_lookedTo - end); // Bits of the last block.
    if (m_start > begin)
        stands &= ~std::uint64_t { 0 } << (m_start - begin);
    return (stains.inBlock & stands) == 0;
}

bool SentenceReader::emit(std::size_t end, std::size_t next, std::string_view& sentence)
{
    sentence = m_text.substr(m_start, end - m_start);
    bool isNormalized = false;
    if (!isClean(m_odd, end)) {
        m_isPieceOfText = isInNormalForm(sentence);
    } else if (isClean(m_breaks, end)) {
        m_isPieceOfText = !sentence.empty() && sentence.front() != ' ' && sentence.back() != ' ';
    } else {
        isNormalized = joinLines(sentence);
        m_isPieceOfText = !isNormalized && isInNormalForm(sentence);
    }
    m_start = next;
    if (!m_isPieceOfText) {
        if (!isNormalized)
            normalize(sentence);
        sentence = m_normal;
    }
    return !sentence.empty();
}

// A sentence of simple characters on several lines, without blanks at their ends: subtitles, wrapped text.
bool SentenceReader::joinLines(std::string_view sentence)
{
    m_normal.assign(sentence);
    for (auto at = m_normal.find('\n'); at != m_normal.npos; at = m_normal.find('\n', at)) {
        if (at > 0 && m_normal[at - 1] == '\r')
            m_normal.erase(--at, 1);
        m_normal[at] = ' ';
        if (at == 0 || m_normal[at - 1] == ' ' || at + 1 == m_normal.size() || m_normal[at + 1] == ' ')
            return false;
    }
    const auto holds = [this](char c) { return m_normal.find(c) != m_normal.npos; };
    return m_normal.front() != ' ' && m_normal.back() != ' ' && !holds('\r') && !holds('\v') && !holds('\f');
}

void SentenceReader::normalize(std::string_view sentence)
{
    m_normal.clear();
    bool mayCompose = false;
    bool isPending = false; // A blank, which is written when something follows.
    const auto append = [&](std::string_view text) {
        if (isPending)
            m_normal += ' ';
        isPending = false;
        m_normal += text;
    };
    for (std::size_t at = 0; at < sentence.size();) {
        const auto normal = endOfNormal(sentence, at);
        if (normal > at)
            append(sentence.substr(at, normal - at));
        at = normal;
        if (at == sentence.size())
            break;
        const auto character = characterAt(sentence, at);
        at = character.end;
        if (isBlank(character)) {
            isPending = !m_normal.empty();
            continue;
        }
        append(sentence.substr(character.begin, character.end - character.begin));
        mayCompose = true;
    }
    if (mayCompose)
        compose(m_normal);
}

} // namespace Tamberlin
