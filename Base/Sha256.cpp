#include "Base/Sha256.h"

#include <openssl/evp.h>

#include <array>
#include <stdexcept>

namespace Base {

std::string sha256(std::string_view data)
{
    std::array<unsigned char, 32> digest {};
    if (EVP_Digest(data.data(), data.size(), digest.data(), nullptr, EVP_sha256(), nullptr) != 1)
        throw std::runtime_error("SHA-256 can’t be computed on this computer.");
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    text.reserve(2 * digest.size());
    for (const unsigned char byte : digest) {
        text += digits[byte >> 4];
        text += digits[byte & 0xF];
    }
    return text;
}

} // namespace Base
