#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Tamberlin {

struct SandboxLimits {
    std::uint64_t memoryBytes = 1'500'000'000; // Of addresses, beyond what is mapped already.
    std::uint64_t processorSeconds = 60;
    std::vector<std::string> readableFolders; // Where there are any; all else on disk is out of reach.
};

// Takes from this process, for good, all that reading a document doesn't need, so that a document that takes
// hold of it gains nothing: no other programs or processes, no files but for reading in those folders, no
// network, no debugging. It keeps its open descriptors and the limits above. Of these rings the ones that the
// system doesn't know are left out silently. The process must have one thread.
void enterSandbox(const SandboxLimits& limits);

} // namespace Tamberlin
