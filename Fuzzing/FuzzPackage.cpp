#include "Base/Text.h"
#include "Fuzzing/Expect.h"
#include "Fuzzing/Parts.h"
#include "TamberlinKit/Markup/Package.h"

using namespace Tamberlin;

namespace {

void expectUtf8(std::string_view text) { expect(Base::validUtf8(text) == text, "A text isn't UTF-8."); }

void scan(const Package& package, const std::string& path)
{
    std::size_t depth = 0;
    const XMLScan scan {
        .onStart =
            [&](std::string_view element, const XMLScan::Attributes& attributes) {
                ++depth;
                expectUtf8(element);
                expectUtf8(attributes.valueOr("val", ""));
            },
        .onEnd =
            [&](std::string_view) {
                expect(depth > 0, "An element ends that didn't begin.");
                --depth;
            },
        .onText = &expectUtf8,
    };
    const auto note = package.scan(path, scan);
    expect(note || depth == 0 || !package.has(path), "An element doesn't end.");
}

} // namespace

// A package of parts: a sentence, or parts that can all be scanned and whose relationships lead to clean
// paths.
extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size)
{
    const auto archive = archiveOfParts(textOf(data, size));
    try {
        const Package package(archive, "name", "kind");
        for (const auto& path : package.paths("", ".xml")) {
            try {
                scan(package, path);
                for (const auto& [id, target] : package.relationships(path))
                    expectUtf8(target);
                package.related(path, "header");
            } catch (const ReadError& error) {
                expect(*error.what() != 0, "A refusal has no sentence.");
            }
        }
    } catch (const ReadError& error) {
        expect(std::string_view(error.what()).find("“name”") != std::string_view::npos,
            "A refusal has no name.");
    }
    return 0;
}
