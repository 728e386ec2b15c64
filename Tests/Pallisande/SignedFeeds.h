#pragma once

#include "Base/Base64.h"
#include "Pallisande/Model/UpdateCheck.h"

#include <fmt/format.h>
#include <openssl/evp.h>

#include <string>
#include <string_view>
#include <vector>

namespace Test {

// An Ed25519 key pair of 32 equal bytes.
struct Signer {
    explicit Signer(char seed)
    {
        const std::string secret(32, seed);
        key = EVP_PKEY_new_raw_private_key(
            EVP_PKEY_ED25519, nullptr, reinterpret_cast<const unsigned char*>(secret.data()), secret.size());
    }
    ~Signer() { EVP_PKEY_free(key); }

    std::string publicKey() const
    {
        std::string bytes(32, '\0');
        std::size_t size = bytes.size();
        EVP_PKEY_get_raw_public_key(key, reinterpret_cast<unsigned char*>(bytes.data()), &size);
        return Base::toBase64(bytes);
    }
    std::string signedFeed(const std::string& document) const
    {
        std::string signature(64, '\0');
        std::size_t size = signature.size();
        auto* const context = EVP_MD_CTX_new();
        EVP_DigestSignInit(context, nullptr, nullptr, nullptr, key);
        EVP_DigestSign(context, reinterpret_cast<unsigned char*>(signature.data()), &size,
            reinterpret_cast<const unsigned char*>(document.data()), document.size());
        EVP_MD_CTX_free(context);
        return "Ed25519 " + Base::toBase64(signature) + "\n" + document;
    }

    EVP_PKEY* key;
};

inline std::string feedDocument(std::string_view version, std::string_view published = "2026-03-01T00:00:00Z")
{
    return fmt::format(R"({{"product":"Pallisande","version":"{}","published":"{}",)"
                       R"("page":"https://pallisande.example/download","notes":"Faster.\nCalmer."}})",
        version, published);
}

// Answers at once, when told to.
struct FakeNetwork final : Pallisande::Network {
    void fetch(const Base::DownloadRequest& request, std::function<void(Base::DownloadResult)> done) override
    {
        requests.push_back(request);
        waiting = std::move(done);
    }
    void answer(const std::string& body)
    {
        std::exchange(waiting, {})({ .end = Base::DownloadResult::End::done, .status = 200, .body = body });
    }

    std::vector<Base::DownloadRequest> requests;
    std::function<void(Base::DownloadResult)> waiting;
};

} // namespace Test
