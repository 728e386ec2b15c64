#include "DocumentReader/Input.h"
#include "DocumentReader/PageParagraphs.h"
#include "DocumentReader/PdfDocument.h"
#include "DocumentReader/Sandbox.h"
#include "DocumentReader/TextLines.h"

#include <charconv>
#include <cstdio>
#include <exception>
#include <unistd.h>

// pallisande-document-reader: takes the text out of a PDF, or out of one of several equal shares of its
// pages. The file is standard input, share and number of shares are the arguments, frames (PdfPages.h) come
// out.

namespace {

using namespace Tamberlin;

constexpr std::size_t written = 64 * 1024; // At once.

std::uint32_t number(const char* argument)
{
    std::uint32_t number = 0;
    const std::string_view text(argument);
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

void read(std::uint64_t share, std::uint64_t shares)
{
    const auto file = mappedInput();
    // Tables of East Asian characters are read when a document names them.
    enterSandbox({ .readableFolders = { "/usr/share/poppler" } });
    PdfDocument document(file);
    const std::uint64_t count = document.pageCount();
    std::string frames;
    for (auto place = count * share / shares; place < count * (share + 1) / shares; ++place) {
        PdfPage page;
        auto glyphs = document.read(static_cast<std::uint32_t>(place + 1), page);
        const double height = glyphs.height;
        page.paragraphs = pageParagraphs(textLines(std::move(glyphs)), height);
        frames += pdfPageFrame(page);
        if (frames.size() >= written) {
            writeOutput(frames);
            frames.clear();
        }
    }
    frames += pdfLastFrame({ .refusal = document.refusal(), .pageCount = document.pageCount() });
    writeOutput(frames);
    ::_exit(0); // There is nothing to clean up that the system doesn't do faster.
}

} // namespace

int main(int count, char** arguments)
{
    const auto share = count == 3 ? number(arguments[1]) : 0, shares = count == 3 ? number(arguments[2]) : 0;
    if (share >= shares) {
        std::fputs("usage: pallisande-document-reader SHARE SHARES < FILE\n", stderr);
        return 2;
    }
    try {
        read(share, shares);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
    }
    return 1;
}
