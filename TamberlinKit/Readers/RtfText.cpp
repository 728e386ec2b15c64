#include "TamberlinKit/Readers/RtfText.h"

#include "Base/Text.h"

#include <utility>

namespace Tamberlin {

namespace {

constexpr char32_t replacement = 0xFFFD;

} // namespace

void RtfText::byte(unsigned char byte)
{
    if (m_state.destination != RtfState::Destination::text)
        return;
    if (byte < 0x80 && !m_trailDue) {
        // A new line written as a byte is one that is shown as a blank.
        const char shown = byte < 0x20 ? ' ' : static_cast<char>(byte);
        put({ &shown, 1 });
    } else if (page().isMultiByte()) {
        m_trailDue = !m_trailDue && page().isLead(byte);
        m_bytes += static_cast<char>(byte);
    } else {
        put(page().character(byte));
    }
}

void RtfText::character(char32_t codePoint)
{
    std::string text;
    Base::appendUtf8(text, codePoint);
    put(text);
}

void RtfText::unicode(std::int32_t parameter)
{
    if (!m_bytes.empty())
        flush();
    auto codePoint = static_cast<char32_t>(parameter < 0 ? parameter + 0x10000 : parameter);
    const auto high = std::exchange(m_highSurrogate, 0);
    if (codePoint >= 0xDC00 && codePoint < 0xE000) {
        codePoint = high != 0 ? 0x10000 + ((high - 0xD800) << 10) + (codePoint - 0xDC00) : replacement;
    } else if (high != 0) {
        character(replacement);
    }
    if (codePoint >= 0xD800 && codePoint < 0xDC00)
        m_highSurrogate = codePoint;
    else if (codePoint != 0)
        character(codePoint < 0x110000 ? codePoint : replacement);
}

void RtfText::put(std::string_view text)
{
    if (!m_bytes.empty() || m_highSurrogate != 0)
        flush();
    if (m_state.destination == RtfState::Destination::text && !m_state.deleted)
        m_writer.append(text, m_state.hidden);
}

// Gives out what waits for more to come.
void RtfText::flush()
{
    if (m_highSurrogate != 0) {
        m_highSurrogate = 0;
        character(replacement);
    }
    if (m_bytes.empty())
        return;
    m_trailDue = false;
    put(page().text(std::exchange(m_bytes, {})));
}

} // namespace Tamberlin
