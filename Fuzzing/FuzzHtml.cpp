#include "Fuzzing/Reading.h"

// A web page.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    return readAny(&Tamberlin::readHtml, textOf(data, size));
}
