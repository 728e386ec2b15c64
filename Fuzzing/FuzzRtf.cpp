#include "Fuzzing/Reading.h"

// A document in Rich Text Format.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    return readAny(&Tamberlin::readRtf, textOf(data, size));
}
