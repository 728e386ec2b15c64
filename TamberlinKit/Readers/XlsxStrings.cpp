#include "TamberlinKit/Readers/XlsxStrings.h"

#include "TamberlinKit/Readers/OfficeMarkup.h"

#include <charconv>

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
                    if (hasText(text))
                        m_texts->insert(m_texts->end(), text.begin(), text.end());
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

std::optional<std::string_view> SharedStrings::find(std::string_view number) const
{
    std::size_t index = 0;
    const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), index);
    if (error != std::errc() || index >= m_ends.size())
        return std::nullopt;
    const auto begin = index == 0 ? 0 : m_ends[index - 1];
    return std::string_view(m_texts->data() + begin, m_ends[index] - begin);
}

} // namespace Tamberlin
