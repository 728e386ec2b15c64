#include "Fuzzing/Reading.h"

// Subtitles.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    return readAny(&Tamberlin::readSubtitles, textOf(data, size));
}
