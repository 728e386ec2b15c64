#include "TamberlinKit/Readers/PdfPages.h"

#include "Base/Text.h"

namespace Tamberlin {

namespace {

constexpr char pageKind = 'p', lastKind = 'e';

// Numbers of fixed size, the least byte first.
template <typename Number> void put(std::string& bytes, Number number)
{
    for (std::size_t place = 0; place < sizeof(Number); ++place)
        bytes += static_cast<char>(static_cast<unsigned char>(number >> (8 * place) & 0xFF));
}

void putText(std::string& bytes, std::string_view text)
{
    put(bytes, static_cast<std::uint32_t>(text.size()));
    bytes += text;
}

std::string frame(char kind, const std::string& content)
{
    std::string bytes(1, kind);
    putText(bytes, content);
    return bytes;
}

// Takes what was put; past the end it gives nothing more and remembers that.
class Cursor {
public:
    explicit Cursor(std::string_view bytes)
        : m_bytes(bytes)
    {
    }

    std::string_view take(std::size_t count)
    {
        if (count > m_bytes.size()) {
            m_isShort = true;
            m_bytes = {};
            return {};
        }
        const auto taken = m_bytes.substr(0, count);
        m_bytes.remove_prefix(count);
        return taken;
    }

    template <typename Number> Number number()
    {
        Number number = 0;
        const auto bytes = take(sizeof(Number));
        for (std::size_t place = 0; place < bytes.size(); ++place)
            number = static_cast<Number>(
                number | static_cast<Number>(static_cast<unsigned char>(bytes[place])) << (8 * place));
        return number;
    }

    std::string_view text() { return take(number<std::uint32_t>()); }

    bool isAtEnd() const { return m_bytes.empty(); }
    bool isShort() const { return m_isShort; }

private:
    std::string_view m_bytes;
    bool m_isShort = false;
};

PdfPage readPage(Cursor cursor, bool& isWhole)
{
    PdfPage page { .number = cursor.number<std::uint32_t>() };
    for (auto left = cursor.number<std::uint32_t>(); left > 0 && !cursor.isShort(); --left)
        page.pictures.push_back(cursor.number<std::uint32_t>());
    page.isDrawnOn = cursor.number<std::uint8_t>() != 0;
    page.isCutOff = cursor.number<std::uint8_t>() != 0;
    while (!cursor.isAtEnd()) {
        const auto top = cursor.number<std::uint16_t>(), bottom = cursor.number<std::uint16_t>();
        page.paragraphs.push_back({ Base::validUtf8(cursor.text()), top, bottom });
    }
    isWhole = !cursor.isShort();
    return page;
}

} // namespace

std::string pdfPageFrame(const PdfPage& page)
{
    std::string content;
    put(content, page.number);
    put(content, static_cast<std::uint32_t>(page.pictures.size()));
    for (const auto picture : page.pictures)
        put(content, picture);
    put(content, static_cast<std::uint8_t>(page.isDrawnOn));
    put(content, static_cast<std::uint8_t>(page.isCutOff));
    for (const auto& paragraph : page.paragraphs) {
        put(content, paragraph.top);
        put(content, paragraph.bottom);
        putText(content, paragraph.text);
    }
    return frame(pageKind, content);
}

std::string pdfLastFrame(const PdfAnswer& answer)
{
    std::string content;
    put(content, static_cast<std::uint8_t>(answer.refusal));
    put(content, answer.pageCount);
    putText(content, answer.languages);
    return frame(lastKind, content);
}

std::optional<PdfAnswer> pdfAnswer(std::string_view frames)
{
    PdfAnswer answer;
    for (Cursor cursor(frames); !cursor.isAtEnd();) {
        const auto kind = cursor.take(1);
        Cursor content(cursor.text());
        bool isWhole = !cursor.isShort();
        if (kind[0] == pageKind) {
            answer.pages.push_back(readPage(content, isWhole));
        } else {
            const auto refusal = content.number<std::uint8_t>();
            answer.refusal = static_cast<PdfAnswer::Refusal>(refusal);
            answer.pageCount = content.number<std::uint32_t>();
            answer.languages = Base::validUtf8(content.text());
            isWhole = isWhole && kind[0] == lastKind && cursor.isAtEnd() && !content.isShort()
                && refusal <= static_cast<std::uint8_t>(PdfAnswer::Refusal::locked);
            if (isWhole)
                return answer;
        }
        if (!isWhole)
            break;
    }
    return std::nullopt;
}

} // namespace Tamberlin
