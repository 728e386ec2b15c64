#include "TamberlinKit/Counting/Counter.h"

#include "TamberlinKit/Counting/Characters.h"
#include "TamberlinKit/Counting/PreparedCount.h"
#include "TamberlinKit/Counting/Sentences.h"
#include "TamberlinKit/Counting/TextCounter.h"

namespace Tamberlin::Counter {

FileCount count(const Extracted& file, std::int64_t id, const CountOptions& options, SeenSentences& seen)
{
    return PreparedCount(file, options).finish(id, seen);
}

std::vector<FileCount> count(std::span<const Extracted> files, const CountOptions& options)
{
    SeenSentences seen;
    std::vector<FileCount> counts;
    for (const auto& file : files)
        counts.push_back(count(file, static_cast<std::int64_t>(counts.size()), options, seen));
    return counts;
}

TextStats stats(std::string_view text, bool countNumbers, bool countMarks)
{
    return countText(text, { countNumbers, countMarks });
}

std::vector<std::string> sentences(std::string_view text)
{
    std::vector<std::string> sentences;
    TextBlocks blocks(text);
    SentenceReader reader(blocks);
    for (std::string_view sentence; reader.next(sentence);)
        sentences.emplace_back(sentence);
    return sentences;
}

bool isCJK(char32_t codePoint) { return propertiesOf(codePoint).kind() == CharacterKind::cjk; }

TextStats total(std::span<const FileCount> files)
{
    TextStats sum;
    for (const auto& file : files)
        sum += file.total;
    return sum;
}

TextStats repeated(std::span<const FileCount> files)
{
    TextStats sum;
    for (const auto& file : files)
        sum += file.repeated;
    return sum;
}

} // namespace Tamberlin::Counter
