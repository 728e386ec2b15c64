#include "Fuzzing/Parts.h"
#include "Fuzzing/Reading.h"

// An OpenDocument file, or its parts as text.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    return readAny(&Tamberlin::readOdt, archiveOfParts(textOf(data, size)));
}
