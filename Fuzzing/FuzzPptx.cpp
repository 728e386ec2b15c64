#include "Fuzzing/Parts.h"
#include "Fuzzing/Reading.h"

// A presentation, or its parts as text.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    return readAny(&Tamberlin::readPptx, archiveOfParts(textOf(data, size)));
}
