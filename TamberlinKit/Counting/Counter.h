#pragma once

#include "TamberlinKit/Counting/CountOptions.h"
#include "TamberlinKit/Counting/FileCount.h"
#include "TamberlinKit/Counting/SeenSentences.h"
#include "TamberlinKit/Text/Extracted.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Counts documents as a word processor does: blanks separate words, a word with a hyphen is one, numbers
// count, each CJK character is a word; Thai, Lao, Khmer and Myanmar text is cut with a dictionary. Characters
// are those that users perceive (grapheme clusters). Counting can't fail.
namespace Tamberlin::Counter {

// One count a file, in their order. Repetitions across files are across this list.
std::vector<FileCount> count(std::span<const Extracted> files, const CountOptions& options);

// One file of a batch whose sentences so far are in `seen`.
FileCount count(const Extracted& file, std::int64_t id, const CountOptions& options, SeenSentences& seen);

// The counts of one text; its segments are 0.
TextStats stats(std::string_view text, bool countNumbers, bool countMarks);

std::vector<std::string> sentences(std::string_view text);

bool isCJK(char32_t codePoint);

// Sums over a batch.
TextStats total(std::span<const FileCount> files);
TextStats repeated(std::span<const FileCount> files);

} // namespace Tamberlin::Counter
