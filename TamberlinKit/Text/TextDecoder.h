#pragma once

#include <cstddef>
#include <memory>
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
        , converted(std::make_shared<const std::string>(std::move(text)))
        , m_text(*converted)
    {
    }

    // Valid UTF-8, without a byte order mark. Stands in the file's bytes or in `converted`.
    std::string_view text() const { return m_text; }

    std::string encoding; // "UTF-8", "windows-1252", …
    bool isGuessed = false; // Nothing said so, and it isn't UTF-8.
    std::size_t replaced = 0; // Bytes or sequences that stand for no character and became U+FFFD.
    std::shared_ptr<const std::string> converted; // Nothing where the file's own bytes are the text.

    // The sentence for the user when something was in doubt.
    std::optional<std::string> note() const;

private:
    std::string_view m_text;
};

// Decodes text: by its byte order mark, else as the encoding that the file is said to have (a name of IANA or
// of the WHATWG; an unknown one, and a wrong "UTF-8", are ignored), else as what it looks like: UTF-8, UTF-16
// or UTF-32 without mark, or one of the usual code pages.
DecodedText decodeText(std::string_view bytes, std::string_view hint = {});

} // namespace Tamberlin
