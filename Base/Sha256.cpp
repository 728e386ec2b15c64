#include "Base/Sha256.h"

#include <nettle/sha2.h>

#include <array>

namespace Base {

std::string sha256(std::string_view data)
{
    sha256_ctx context;
    sha256_init(&context);
    sha256_update(&context, data.size(), reinterpret_cast<const std::uint8_t*>(data.data()));
    std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest {};
    sha256_digest(&context, digest.size(), digest.data());
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    text.reserve(2 * digest.size());
    for (const auto byte : digest) {
        text += digits[byte >> 4];
        text += digits[byte & 0xF];
    }
    return text;
}

} // namespace Base
