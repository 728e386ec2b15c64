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

private:
    int m_number;
    UConverter* m_converter = nullptr; // Of a multi-byte code page only.
    std::array<std::string, 128> m_high;
};

// The code pages of one document and its fonts. They are made when they are first asked for and stay where
// they are.
class RtfCodePages {
public:
    void setDocument(int number) { m_document = number; }
    void setDefaultFont(int font) { m_defaultFont = font; }
    // The font table: names a font, and then its page by character set or by number.
    void beginFont(int font) { m_begunFont = font; }
    void setCharset(int charset);
    void setPage(int number) { m_fonts[m_begunFont] = number; }

    const RtfCodePage& ofDocument() { return (*this)[m_document]; }
    const RtfCodePage& ofDefaultFont() { return ofFont(m_defaultFont); }
    const RtfCodePage& ofFont(int font);

private:
    const RtfCodePage& operator[](int number);

    int m_document = RtfCodePage::western;
    int m_defaultFont = 0, m_begunFont = 0;
    std::unordered_map<int, int> m_fonts; // Code pages of those that name one.
    std::map<std::string, std::unique_ptr<RtfCodePage>> m_pages; // By ICU's name, of which there are few.
    std::unordered_map<int, const RtfCodePage*> m_places;
};

} // namespace Tamberlin
