// Writes a made-up library into a folder, to try the application out with as much as anybody may ever have:
//
//     make-library FOLDER [JOBS INVOICES]
//
// The folder gets the document alone, no stored PDFs or reports.

#include "Benchmarks/MakeLibrary.h"
#include "PallisandeKit/Library/LibraryStore.h"

#include <fmt/format.h>

#include <charconv>
#include <cstdio>

namespace {

bool parseCount(std::string_view text, std::size_t& count)
{
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), count);
    return error == std::errc() && end == text.data() + text.size() && count > 0;
}

} // namespace

int main(int argumentCount, char** arguments)
{
    Benchmarks::LibrarySize size;
    const bool givesSize = argumentCount == 4;
    if (!(argumentCount == 2 || givesSize)
        || (givesSize && !(parseCount(arguments[2], size.jobs) && parseCount(arguments[3], size.invoices)))) {
        fmt::print(stderr, "make-library FOLDER [JOBS INVOICES]\n");
        return 2;
    }
    try {
        const Pallisande::LibraryStore store(arguments[1]);
        if (store.exists()) {
            fmt::print(stderr, "There is a library in that folder already.\n");
            return 1;
        }
        const auto document = Pallisande::LibraryStore::encode(Benchmarks::makeLibrary(size));
        store.save(document);
        fmt::print("{:.1f} MB\n", static_cast<double>(document.size()) / 1e6);
    } catch (const std::exception& error) {
        fmt::print(stderr, "{}\n", error.what());
        return 1;
    }
}
