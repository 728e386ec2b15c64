#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Tamberlin {

// A paragraph as it stands on a page.
struct PdfParagraph {
    std::string text; // UTF-8, in logical order; its lines end with line feeds.
    std::uint16_t top = 0, bottom = 0; // In thousandths of the page's height, from the top.

    bool operator==(const PdfParagraph&) const = default;
};

struct PdfPage {
    std::uint32_t number = 0; // From 1.
    std::vector<PdfParagraph> paragraphs; // In reading order.
    std::vector<std::uint32_t> pictures; // Numbers of those on it; a helper names each only once.
    bool isDrawnOn = false; // There is something to see beside text.
    bool isCutOff = false; // There was more text than a page can hold.

    bool operator==(const PdfPage&) const = default;
};

// What the helper programs say about a PDF: some of its pages, or why it can't be read.
struct PdfAnswer {
    enum class Refusal : std::uint8_t { none, damaged, locked };

    Refusal refusal = Refusal::none;
    std::vector<PdfPage> pages;
    std::uint32_t pageCount = 0; // Of the whole document.
    std::string languages; // That text was recognised in; empty when there are no data for it.

    bool operator==(const PdfAnswer&) const = default;
};

// An answer travels through a pipe as frames: kind, length, content. Page frames come as the pages are read;
// the last frame, without which an answer isn't whole, says all else.
std::string pdfPageFrame(const PdfPage& page);
std::string pdfLastFrame(const PdfAnswer& answer);

// Nothing for anything but a whole answer. All text in it is made valid UTF-8.
std::optional<PdfAnswer> pdfAnswer(std::string_view frames);

} // namespace Tamberlin
