#pragma once

#include "CommandLine/Command.h"
#include "TamberlinKit/Batch/CountBatch.h"

#include <string>
#include <vector>

namespace Pallisande::CommandLine {

// What may be said about counting beside the files.
struct CountArguments {
    std::vector<std::string> paths;
    std::vector<std::string> included;
    bool noNumbers = false, noMarks = false, reads = false;
    std::string repetitions;
    unsigned threads = 0;
    bool showsSegments = false, asCSV = false;
};

// Adds PATH… and the switches of counting to a verb.
void addCountOptions(CLI::App& verb, CountArguments& arguments);

// Counts the files, with progress and interruption (Ctrl-C) as a terminal expects; `options` are those that
// hold where none were given.
Tamberlin::BatchCount counted(const CountArguments& arguments, Tamberlin::CountOptions options);

// The figures of a batch for people; its failures go to standard error.
std::string countTable(const Tamberlin::BatchCount& batch);
void tellFailures(const Tamberlin::BatchCount& batch);

} // namespace Pallisande::CommandLine
