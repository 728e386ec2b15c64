#pragma once

#include <array>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

struct UConverter;

namespace Tamberlin {

// One of the encodings that bytes of RTF can be in, by its Windows number.
class RtfCodePage {
public:
    static constexpr int western = 1252, japanese = 932, utf8 = 65001;
    static constexpr int symbols = 42; // Fonts of signs: each byte is one sign of no script.

    // One that isn't known is taken for the western one.
    explicit RtfCodePage(int number);
    RtfCodePage(RtfCodePage&&) = delete;
    ~RtfCodePage();

    // Whether characters may have several bytes.
    bool isMultiByte() const { return m_converter != nullptr; }
    // Whether a byte begins a character of two bytes, the second of which may be an ASCII one.
    bool isLead(unsigned char byte) const;

    // In UTF-8: a single byte from 0x80 on, and a run of bytes.
    std::string_view character(unsigned char byte) const { return m_high[byte - 0x80u]; }
    std::string text(std::string_view bytes) const;
    static void append(std::string& text, char32_t codePoint);

private:
    int m_number;
    UConverter* m_converter = nullptr; // Of a multi-byte code page only.
    std::array<std::string, 128> m_high;
};

// The code pages of one document. They are made when they are first asked for and stay where they are.
class RtfCodePages {
public:
    const RtfCodePage& operator[](int number);
    // The code page that a font's character set stands for; that of the document for "default".
    static int ofCharset(int charset, int document);

private:
    std::map<std::string, std::unique_ptr<RtfCodePage>> m_pages; // By ICU's name, of which there are few.
    std::unordered_map<int, const RtfCodePage*> m_places;
};

} // namespace Tamberlin
