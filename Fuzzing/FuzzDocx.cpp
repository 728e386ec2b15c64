#include "Fuzzing/Parts.h"
#include "Fuzzing/Reading.h"

// A word processor's document, or its parts as text.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    return readAny(&Tamberlin::readDocx, archiveOfParts(textOf(data, size)));
}
