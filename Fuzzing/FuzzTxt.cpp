#include "Fuzzing/Reading.h"

// Plain text in any encoding.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    return readAny(&Tamberlin::readText, textOf(data, size));
}
