// The least that reading a document costs with the libraries that are at hand, as a program to be measured:
//
//     reading-reference xml ARCHIVE PART…    unpacks and checks the parts, and parses them with nothing to do
//     reading-reference words FILE           goes through the words of a UTF-8 text, line by line

#include "Base/DurableFile.h"
#include "TamberlinKit/Archives/ZipReader.h"

#include <expat.h>
#include <fmt/format.h>
#include <unicode/ubrk.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstdio>
#include <exception>
#include <memory>
#include <span>
#include <stdexcept>

namespace {

constexpr std::int64_t largestFile = 1'073'741'824;

void parse(std::string_view part)
{
    const std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> parser(
        XML_ParserCreate(nullptr), &XML_ParserFree);
    XML_SetElementHandler(
        parser.get(), [](void*, const XML_Char*, const XML_Char**) {}, [](void*, const XML_Char*) {});
    XML_SetCharacterDataHandler(parser.get(), [](void*, const XML_Char*, int) {});
    if (XML_Parse(parser.get(), part.data(), static_cast<int>(part.size()), true) != XML_STATUS_OK)
        throw std::runtime_error("A part isn’t well-formed.");
}

std::size_t parseParts(std::string_view archive, std::span<char*> parts)
{
    std::size_t bytes = 0;
    for (const auto& entry : Tamberlin::ZipReader::entries(archive)) {
        if (std::find(parts.begin(), parts.end(), entry.path) == parts.end())
            continue;
        const auto part = Tamberlin::ZipReader::read(entry, archive);
        parse(part.view());
        bytes += part.data.size();
    }
    return bytes;
}

std::size_t countWords(std::string_view text)
{
    auto error = U_ZERO_ERROR;
    const std::unique_ptr<UBreakIterator, decltype(&ubrk_close)> breaks(
        ubrk_open(UBRK_WORD, "th", nullptr, 0, &error), &ubrk_close);
    std::size_t words = 0;
    while (!text.empty() && U_SUCCESS(error)) {
        const auto end = std::min(text.find('\n'), text.size());
        const auto line = icu::UnicodeString::fromUTF8({ text.data(), static_cast<std::int32_t>(end) });
        ubrk_setText(breaks.get(), line.getBuffer(), line.length(), &error);
        while (ubrk_next(breaks.get()) != UBRK_DONE)
            words += ubrk_getRuleStatus(breaks.get()) >= UBRK_WORD_NONE_LIMIT;
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return words;
}

} // namespace

int main(int count, char** arguments)
try {
    const std::span all(arguments, static_cast<std::size_t>(count));
    if (all.size() < 3)
        throw std::runtime_error("reading-reference xml ARCHIVE PART… | words FILE");
    const auto file = Base::readBytes(all[2], largestFile);
    const std::string_view bytes(file.data(), file.size());
    fmt::print(
        "{}\n", all[1] == std::string_view("xml") ? parseParts(bytes, all.subspan(3)) : countWords(bytes));
} catch (const std::exception& error) {
    fmt::print(stderr, "{}\n", error.what());
    return 1;
}
