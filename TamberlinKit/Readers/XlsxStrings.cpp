#include "TamberlinKit/Readers/XlsxStrings.h"

#include "TamberlinKit/Readers/OfficeMarkup.h"

#include <algorithm>

namespace Tamberlin {

std::optional<std::string> SharedStrings::read(const Package& package, std::string_view path)
{
    RunText run;
    std::string text;
    return package.scan(path,
        {
            .onStart = [&](std::string_view element, const XMLScan::Attributes&) { run.start(element); },
            .onEnd =
                [&](std::string_view element) {
                    run.end(element);
                    if (element != "si")
                        return;
                    decodeEscapes(text);
                    if (hasText(text)) {
                        const auto begin = m_texts->size();
                        m_texts->resize(begin + text.size());
                        text.copy(m_texts->data() + begin, text.size());
                    }
                    text.clear();
                    m_ends.push_back(static_cast<std::uint32_t>(m_texts->size()));
                },
            .onText =
                [&](std::string_view piece) {
                    if (run.isOpen())
                        text += piece;
                },
        });
}

// Their number for one that there isn't.
std::size_t SharedStrings::indexOf(std::string_view number) const
{
    std::size_t index = 0, digits = 0;
    for (; digits < number.size() && number[digits] >= '0' && number[digits] <= '9'; ++digits)
        index = std::min(index * 10 + static_cast<std::size_t>(number[digits] - '0'), m_ends.size());
    return digits > 0 ? index : m_ends.size();
}

std::optional<std::string_view> SharedStrings::find(std::string_view number) const
{
    const auto index = indexOf(number);
    if (index == m_ends.size())
        return std::nullopt;
    const auto begin = index == 0 ? 0 : m_ends[index - 1];
    return std::string_view(m_texts->data() + begin, m_ends[index] - begin);
}

} // namespace Tamberlin
