#include "Base/Base64.h"

#include <openssl/evp.h>

#include <utility>

namespace Base {

std::string toBase64(std::string_view bytes)
{
    std::string text((bytes.size() + 2) / 3 * 4 + 1, '\0'); // One more for the terminator that is written.
    const auto length = EVP_EncodeBlock(reinterpret_cast<unsigned char*>(text.data()),
        reinterpret_cast<const unsigned char*>(bytes.data()), static_cast<int>(bytes.size()));
    text.resize(static_cast<std::size_t>(length));
    return text;
}

std::optional<std::string> fromBase64(std::string_view text)
{
    if (text.size() % 4 != 0 || text.size() > 64 * 1024 * 1024)
        return std::nullopt;
    std::string bytes(text.size() / 4 * 3, '\0');
    const auto length = EVP_DecodeBlock(reinterpret_cast<unsigned char*>(bytes.data()),
        reinterpret_cast<const unsigned char*>(text.data()), static_cast<int>(text.size()));
    std::size_t padding = 0; // Decoded as zero bytes.
    while (padding < 2 && padding < text.size() && text[text.size() - 1 - padding] == '=')
        ++padding;
    if (length < static_cast<int>(padding))
        return std::nullopt;
    bytes.resize(static_cast<std::size_t>(length) - padding);
    // Blanks around the text and too much padding would pass till here.
    return toBase64(bytes) == text ? std::optional(std::move(bytes)) : std::nullopt;
}

} // namespace Base
