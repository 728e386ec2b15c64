#include "TamberlinKit/Counting/PreparedCount.h"

#include "Base/Text.h"
#include "TamberlinKit/Counting/Characters.h"
#include "TamberlinKit/Counting/Sentences.h"
#include "TamberlinKit/Counting/TextCounter.h"
#include "TamberlinKit/Text/ReadError.h"

#include <exception>
#include <thread>

namespace Tamberlin {

namespace {

constexpr std::size_t worthAThread = 1 << 20; // Bytes of text.

WordRules rulesOf(const CountOptions& options) { return { options.countNumbers, options.countMarks }; }

// Whether a sentence counts as one; mostly its first character tells.
bool holdsAWord(std::string_view sentence, const WordRules& rules)
{
    for (CharacterReader characters(sentence); !characters.isAtEnd();) {
        const auto kind = characters.next().kind;
        if (kind == CharacterKind::letter || kind == CharacterKind::dictionaryLetter
            || kind == CharacterKind::cjk)
            return true;
    }
    return countText(sentence, rules).words > 0;
}

std::size_t sizeOf(std::span<const Segment> segments)
{
    std::size_t size = 0;
    for (const auto& segment : segments)
        size += segment.text.view().size();
    return size;
}

// Where to cut the segments so that each piece has about as much text as the others.
std::vector<std::span<const Segment>> pieces(std::span<const Segment> segments, unsigned threads)
{
    const auto size = sizeOf(segments);
    const auto count = std::clamp<std::size_t>(size / worthAThread, 1, std::max(threads, 1u));
    std::vector<std::span<const Segment>> pieces;
    std::size_t begin = 0, passed = 0;
    for (std::size_t at = 0; at < segments.size() && pieces.size() + 1 < count; ++at) {
        passed += segments[at].text.view().size();
        if (passed >= size / count * (pieces.size() + 1)) {
            pieces.push_back(segments.subspan(begin, at + 1 - begin));
            begin = at + 1;
        }
    }
    pieces.push_back(segments.subspan(begin));
    return pieces;
}

} // namespace

PreparedCount::PreparedCount(
    const Extracted& file, const CountOptions& options, unsigned threads, const std::stop_token& cancel)
    : m_file(file)
    , m_options(options)
    , m_threads(std::max(threads, 1u))
{
    const auto parts = pieces(file.segments, threads);
    m_pieces.resize(parts.size());
    std::vector<std::exception_ptr> faults(parts.size());
    const auto count = [&](std::size_t place) {
        try {
            m_pieces[place].count(parts[place], m_options, file.source.kept != nullptr, cancel);
        } catch (...) {
            faults[place] = std::current_exception();
        }
    };
    {
        std::vector<std::jthread> others;
        for (std::size_t place = 1; place < parts.size(); ++place)
            others.emplace_back(count, place);
        count(0);
    }
    for (const auto& fault : faults) {
        if (fault)
            std::rethrow_exception(fault);
    }
}

void PreparedCount::Piece::count(std::span<const Segment> segments, const CountOptions& options,
    bool hasSource, const std::stop_token& cancel)
{
    constexpr std::size_t betweenChecks = 1024;
    constexpr std::size_t usualSentence = 64; // Bytes, or more.
    constexpr std::size_t ahead = 8;
    if (options.repetitions != RepetitionScope::off)
        sentences.reserve(sizeOf(segments) / usualSentence);
    const auto rules = rulesOf(options);
    TextBlocks blocks;
    for (std::size_t place = 0; place < segments.size(); ++place) {
        if (place % betweenChecks == 0 && cancel.stop_requested())
            throw Cancelled();
        if (place + ahead < segments.size()) // Texts can lie all over the memory.
            __builtin_prefetch(segments[place + ahead].text.view().data());
        const auto& segment = segments[place];
        const auto text = Base::trimmed(segment.text);
        // The main text counts whatever the options say.
        const bool isIncluded = segment.part == Part::body || options.included.contains(segment.part);
        const bool isLookedUp = isIncluded && options.repetitions != RepetitionScope::off;
        blocks.assign(text);
        auto stats = countText(blocks, rules);
        SentenceReader reader(blocks);
        for (std::string_view sentence; reader.next(sentence);) {
            if (!holdsAWord(sentence, rules))
                continue;
            ++stats.segments;
            if (!isLookedUp)
                continue;
            if (!reader.isPieceOfText()) {
                auto* const kept = static_cast<char*>(m_normalized->allocate(sentence.size(), 1));
                sentence = { kept, sentence.copy(kept, sentence.size()) };
            }
            const bool stays = hasSource && segment.text.isStanding() && reader.isPieceOfText();
            sentences.emplace_back(sentence, stays);
        }
        auto& part = byPart[static_cast<std::size_t>(segment.part)];
        part = part.value_or(TextStats {}) + stats;
        if (isIncluded)
            total += stats;
    }
}

FileCount PreparedCount::finish(std::int64_t id, SeenSentences& seenInBatch, Following following)
{
    constexpr std::size_t ahead = 16;
    FileCount count { .id = id,
        .name = m_file.name,
        .format = m_file.format,
        .notes = m_file.notes,
        .approximate = m_file.approximate };
    SeenSentences seenInFile;
    const bool isAcross = m_options.repetitions == RepetitionScope::acrossFiles;
    auto& seen = isAcross ? seenInBatch : seenInFile;
    const bool outlivesFile = isAcross && following == Following::files;
    bool keepsSource = false;
    std::vector<std::string_view> repeated;
    for (auto& piece : m_pieces) {
        count.total += piece.total;
        for (std::size_t part = 0; part < piece.byPart.size(); ++part) {
            if (piece.byPart[part])
                count.byPart[static_cast<Part>(part)] += *piece.byPart[part];
        }
        seen.expect(piece.sentences.size());
        for (std::size_t place = 0; place < piece.sentences.size(); ++place) {
            if (place + ahead < piece.sentences.size())
                seen.prefetch(piece.sentences[place + ahead]);
            const auto& sentence = piece.sentences[place];
            keepsSource = keepsSource || sentence.stays();
            if (!seen.insert(sentence, sentence.stays() || !outlivesFile))
                repeated.push_back(sentence.text());
        }
    }
    count.repeated = countAgain(repeated);
    if (keepsSource)
        seen.keep(m_file.source.kept);
    return count;
}

// Of sentences that stood before.
TextStats PreparedCount::countAgain(const std::vector<std::string_view>& sentences) const
{
    constexpr std::size_t worth = 1000; // For a thread.
    const auto count = std::clamp<std::size_t>(sentences.size() / worth, 1, m_threads);
    std::vector<TextStats> stats(count);
    const auto add = [&](std::size_t number) {
        for (auto at = number * sentences.size() / count; at < (number + 1) * sentences.size() / count; ++at)
            stats[number] += countText(sentences[at], rulesOf(m_options));
    };
    {
        std::vector<std::jthread> others;
        for (std::size_t number = 1; number < count; ++number)
            others.emplace_back(add, number);
        add(0);
    }
    TextStats all;
    for (const auto& some : stats)
        all += some;
    all.segments = static_cast<std::int64_t>(sentences.size());
    return all;
}

} // namespace Tamberlin
