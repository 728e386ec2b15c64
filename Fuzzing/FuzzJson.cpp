#include "Fuzzing/Imported.h"

// A report as JSON.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    expectSound(Pallisande::Importer::import(textOf(data, size), "report.json", Base::Instant()));
    return 0;
}
