#include "TamberlinKit/Readers/RtfCodePage.h"

#include "Base/Text.h"

#include <fmt/format.h>
#include <unicode/ucnv.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <utility>

namespace Tamberlin {

namespace {

// What ICU calls a code page; western if it is none of those that documents are in. Letters stand in the same
// places in the Arabic and Hebrew sets of the Macintosh and in those named here instead.
std::string converterName(int number)
{
    static const std::map<int, std::string> names { { 708, "iso-8859-6" }, { 819, "iso-8859-1" },
        { 10000, "macintosh" }, { 10004, "iso-8859-6" }, { 10005, "windows-1255" }, { 10006, "x-mac-greek" },
        { 10007, "x-mac-cyrillic" }, { 10029, "x-mac-centraleurroman" }, { 10081, "x-mac-turkish" },
        { 20866, "koi8-r" }, { 21866, "koi8-u" }, { 20932, "euc-jp" }, { 51932, "euc-jp" },
        { 51949, "euc-kr" }, { 54936, "gb18030" }, { RtfCodePage::utf8, "utf-8" } };
    static constexpr int dos[] { 437, 720, 737, 775, 850, 852, 855, 857, 858, 860, 861, 862, 863, 864, 865,
        866, 869 };
    static constexpr int windows[] { 874, 932, 936, 949, 950, 1250, 1251, 1253, 1254, 1255, 1256, 1257,
        1258 };
    if (const auto name = names.find(number); name != names.end())
        return name->second;
    if (number > 28590 && number < 28606)
        return fmt::format("iso-8859-{}", number - 28590);
    if (std::find(std::begin(dos), std::end(dos), number) != std::end(dos))
        return fmt::format("ibm-{}", number);
    const bool isWindows = std::find(std::begin(windows), std::end(windows), number) != std::end(windows);
    return fmt::format("windows-{}", isWindows ? number : RtfCodePage::western);
}

} // namespace

RtfCodePage::RtfCodePage(int number)
    : m_number(number)
{
    if (number == symbols) { // Where Windows puts the signs of such fonts.
        for (char32_t byte = 0x80; byte < 0x100; ++byte)
            Base::appendUtf8(m_high[byte - 0x80], 0xF000 + byte);
        return;
    }
    UErrorCode status = U_ZERO_ERROR;
    auto* const converter = ucnv_open(converterName(number).c_str(), &status);
    if (U_FAILURE(status))
        return; // Only where ICU's data are incomplete.
    m_converter = converter;
    if (ucnv_getMaxCharSize(converter) > 1)
        return;
    for (unsigned byte = 0x80; byte < 0x100; ++byte)
        m_high[byte - 0x80] = text(std::string(1, static_cast<char>(byte)));
    ucnv_close(std::exchange(m_converter, nullptr));
}

RtfCodePage::~RtfCodePage()
{
    if (m_converter)
        ucnv_close(m_converter);
}

bool RtfCodePage::isLead(unsigned char byte) const
{
    if (!m_converter || m_number == utf8)
        return false;
    const bool halfWidthKana = byte >= 0xA0 && byte < 0xE0;
    return byte > 0x80 && byte < 0xFF && !(m_number == japanese && halfWidthKana);
}

std::string RtfCodePage::text(std::string_view bytes) const
{
    UErrorCode status = U_ZERO_ERROR;
    icu::UnicodeString decoded(bytes.data(), static_cast<std::int32_t>(bytes.size()), m_converter, status);
    decoded.findAndReplace(u"\x1A", u"\xFFFD"); // Some converters say so that a byte means nothing.
    std::string text;
    decoded.toUTF8String(text);
    return text;
}

const RtfCodePage& RtfCodePages::operator[](int number)
{
    const auto place = m_places.try_emplace(number, nullptr).first;
    if (!place->second) {
        auto& page = m_pages[number == RtfCodePage::symbols ? "symbols" : converterName(number)];
        if (!page)
            page = std::make_unique<RtfCodePage>(number);
        place->second = page.get();
    }
    return *place->second;
}

const RtfCodePage& RtfCodePages::ofFont(int font)
{
    const auto page = m_fonts.find(font);
    // Where the whole document is UTF-8, fonts keep their character sets out of habit.
    const bool own = page != m_fonts.end() && m_document != RtfCodePage::utf8;
    return (*this)[own ? page->second : m_document];
}

void RtfCodePages::setCharset(int charset)
{
    static constexpr std::pair<int, int> pages[] { { 0, 1252 }, { 2, RtfCodePage::symbols }, { 77, 10000 },
        { 78, 932 }, { 79, 949 }, { 80, 936 }, { 81, 950 }, { 83, 10005 }, { 84, 10004 }, { 85, 10006 },
        { 86, 10081 }, { 87, 874 }, { 88, 10029 }, { 89, 10007 }, { 128, 932 }, { 129, 949 }, { 130, 1361 },
        { 134, 936 }, { 136, 950 }, { 161, 1253 }, { 162, 1254 }, { 163, 1258 }, { 177, 1255 }, { 178, 1256 },
        { 186, 1257 }, { 204, 1251 }, { 222, 874 }, { 238, 1250 }, { 254, 437 }, { 255, 850 } };
    const auto page = std::find_if(
        std::begin(pages), std::end(pages), [&](const auto& entry) { return entry.first == charset; });
    setPage(page == std::end(pages) ? m_document : page->second); // "Default" is that of the document.
}

} // namespace Tamberlin
