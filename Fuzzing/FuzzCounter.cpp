#include "Base/Text.h"
#include "Fuzzing/Expect.h"
#include "TamberlinKit/Counting/Counter.h"
#include "Tests/TamberlinKit/CounterReference.h"

#include <algorithm>

using namespace Tamberlin;

namespace {

TextStats stats(std::string_view text, bool countsNumbers, bool countsMarks)
{
    static CounterReference references[2][2] { { { false, false }, { false, true } },
        { { true, false }, { true, true } } };
    const auto stats = Counter::stats(text, countsNumbers, countsMarks);
    expect(stats == references[countsNumbers][countsMarks].stats(text), "Other counts than the rules give.");
    return stats;
}

} // namespace

// A text: it counts as the rules say, in parts as in whole, and its sentences are found again in a copy.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const auto text = Base::validUtf8(textOf(data, size));
    const CountOptions options { .countNumbers = size % 2 == 0, .countMarks = size % 3 == 0 };
    const auto count
        = [&](std::string_view piece) { return stats(piece, options.countNumbers, options.countMarks); };
    const auto whole = count(text);
    if (const auto line = text.find('\n'); line != text.npos)
        expect(count(text.substr(0, line)) + count(text.substr(line + 1)) == whole, "A line break matters.");

    static CounterReference reference(true, true);
    const auto sentences = Counter::sentences(text);
    expect(sentences == reference.sentences(text), "Other sentences than the rules give.");
    const auto counted = std::count_if(sentences.begin(), sentences.end(),
        [&](const std::string& sentence) { return count(sentence).words > 0; });

    const Extracted file { .segments = { { text, Part::body }, { text, Part::body } } };
    const auto twice = Counter::count(std::span(&file, 1), options).front();
    expect(twice.total.words == 2 * count(Base::trimmed(text)).words, "A copy has other words.");
    expect(twice.total.segments == 2 * counted, "Sentences are missing.");
    expect(twice.repeated.segments >= counted, "A copy isn't repeated.");
    expect(
        twice == Counter::count(std::span(&file, 1), options).front(), "Counting again gives another count.");
    return 0;
}
