#include "Base/Text.h"
#include "Fuzzing/Expect.h"
#include "TamberlinKit/Archives/ZipReader.h"

using namespace Tamberlin;

// An archive: a sentence, or entries of which each gives a sentence or as many bytes as are stated.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const auto archive = textOf(data, size);
    std::uint64_t left = 1 << 26; // Entries can share their bytes.
    try {
        for (const auto& entry : ZipReader::entries(archive)) {
            expect(Base::validUtf8(entry.path) == entry.path, "A path isn't UTF-8.");
            const auto work = std::max(entry.size, std::min<std::uint64_t>(entry.compressedSize, size));
            if (work > left)
                continue;
            left -= work;
            try {
                expect(
                    ZipReader::read(entry, archive).data.size() == entry.size, "An entry has another size.");
            } catch (const ZipReader::Failure& failure) {
                expect(std::string_view(failure.what()).starts_with("“"), "A refusal names no entry.");
            }
        }
    } catch (const ZipReader::Failure& failure) {
        expect(*failure.what() != 0, "A refusal has no sentence.");
    }
    return 0;
}
