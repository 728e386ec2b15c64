#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace Tamberlin {

// The text of a file, whatever its encoding. Refers to the file's bytes when they are UTF-8 already.
class DecodedText {
public:
    DecodedText(std::string_view text, std::string from)
        : encoding(std::move(from))
        , m_text(text)
    {
    }
    DecodedText(std::string&& text, std::string from)
        : encoding(std::move(from))
        , m_converted(std::move(text))
    {
    }

    // Valid UTF-8, without a byte order mark.
    std::string_view text() const { return m_converted ? std::string_view(*m_converted) : m_text; }

    std::string encoding; // "UTF-8", "windows-1252", …
    bool isGuessed = false; // Nothing said so, and it isn't UTF-8.
    std::size_t replaced = 0; // Bytes or sequences that stand for no character and became U+FFFD.

    // The sentence for the user when something was in doubt.
    std::optional<std::string> note() const;

private:
    std::string_view m_text;
    std::optional<std::string> m_converted;
};

// Decodes text: by its byte order mark, else as the encoding that the file is said to have (a name of IANA or
// of the WHATWG; an unknown one, and a wrong "UTF-8", are ignored), else as what it looks like: UTF-8, UTF-16
// or UTF-32 without mark, or one of the usual code pages.
DecodedText decodeText(std::string_view bytes, std::string_view hint = {});

} // namespace Tamberlin
