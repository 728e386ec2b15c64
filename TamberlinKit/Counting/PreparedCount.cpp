#include "TamberlinKit/Counting/PreparedCount.h"

#include "Base/Text.h"
#include "TamberlinKit/Counting/Characters.h"
#include "TamberlinKit/Counting/Sentences.h"
#include "TamberlinKit/Counting/TextCounter.h"

#include <functional>

namespace Tamberlin {

namespace {

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

} // namespace

PreparedCount::PreparedCount(const Extracted& file, const CountOptions& options)
    : m_options(options)
{
    m_count.name = file.name;
    m_count.format = file.format;
    m_count.notes = file.notes;
    m_count.approximate = file.approximate;
    const auto rules = rulesOf(options);
    for (const auto& segment : file.segments) {
        const auto text = Base::trimmed(segment.text);
        // The main text counts whatever the options say.
        const bool isIncluded = segment.part == Part::body || options.included.contains(segment.part);
        auto stats = countText(text, rules);
        forEachSentence(text, [&](std::string_view sentence) {
            if (!holdsAWord(sentence, rules))
                return;
            ++stats.segments;
            if (isIncluded && options.repetitions != RepetitionScope::off)
                keep(sentence, text);
        });
        m_count.byPart[segment.part] += stats;
        if (isIncluded)
            m_count.total += stats;
    }
}

void PreparedCount::keep(std::string_view sentence, std::string_view segment)
{
    const std::less_equal<const char*> isNotBehind;
    const bool standsInFile = isNotBehind(segment.data(), sentence.data())
        && isNotBehind(sentence.data() + sentence.size(), segment.data() + segment.size());
    const std::string_view kept = standsInFile ? sentence : m_normalized.emplace_back(sentence);
    m_sentences.push_back({ kept, SeenSentences::hash(kept) });
}

FileCount PreparedCount::finish(std::int64_t id, SeenSentences& seenInBatch)
{
    constexpr std::size_t ahead = 16;
    SeenSentences seenInFile;
    auto& seen = m_options.repetitions == RepetitionScope::acrossFiles ? seenInBatch : seenInFile;
    seen.expect(m_sentences.size());
    for (std::size_t place = 0; place < m_sentences.size(); ++place) {
        if (place + ahead < m_sentences.size())
            seen.prefetch(m_sentences[place + ahead].hash);
        const auto& [sentence, hash] = m_sentences[place];
        if (seen.insert(sentence, hash))
            continue;
        auto stats = countText(sentence, rulesOf(m_options));
        stats.segments = 1;
        m_count.repeated += stats;
    }
    m_count.id = id;
    return std::move(m_count);
}

} // namespace Tamberlin
