#include "Pallisande/Model/UpdateFeed.h"

#include "Base/Base64.h"
#include "Base/Json.h"

#include <openssl/evp.h>

#include <algorithm>
#include <charconv>
#include <memory>

namespace Pallisande {

namespace {

constexpr std::string_view scheme = "Ed25519 ";
constexpr std::size_t keySize = 32, signatureSize = 64;
constexpr std::size_t longestPage = 2000, longestNumber = 9;

// Only the one way of writing the bytes that we write ourselves.
std::string decoded(std::string_view text, std::size_t size)
{
    const auto bytes = Base::fromBase64(text);
    if (!bytes || bytes->size() != size || Base::toBase64(*bytes) != text)
        throw UpdateFeedError("A key or signature is not in Base64.");
    return *bytes;
}

const unsigned char* unsignedBytes(std::string_view bytes)
{
    return reinterpret_cast<const unsigned char*>(bytes.data());
}

bool isSigned(std::string_view message, const std::string& signature, const std::string& publicKey)
{
    const std::unique_ptr<EVP_PKEY, decltype(&EVP_PKEY_free)> key(
        EVP_PKEY_new_raw_public_key(EVP_PKEY_ED25519, nullptr, unsignedBytes(publicKey), publicKey.size()),
        &EVP_PKEY_free);
    const std::unique_ptr<EVP_MD_CTX, decltype(&EVP_MD_CTX_free)> context(EVP_MD_CTX_new(), &EVP_MD_CTX_free);
    return key && context && EVP_DigestVerifyInit(context.get(), nullptr, nullptr, nullptr, key.get()) == 1
        && EVP_DigestVerify(context.get(), unsignedBytes(signature), signature.size(), unsignedBytes(message),
               message.size())
        == 1;
}

bool isWebPage(std::string_view address)
{
    const auto isPlain
        = [](char c) { return c > ' ' && c < '\x7F' && c != '"' && c != '<' && c != '>' && c != '\\'; };
    return address.starts_with("https://") && address.size() > 8 && address.size() <= longestPage
        && std::all_of(address.begin(), address.end(), isPlain);
}

} // namespace

std::optional<AppVersion> AppVersion::parse(std::string_view text)
{
    AppVersion version;
    for (auto& part : version.parts) {
        const auto number = text.substr(0, text.find('.'));
        const char* const end = number.data() + number.size();
        const bool isPlain = !number.empty() && number.size() <= longestNumber && number[0] != '-'
            && (number[0] != '0' || number.size() == 1);
        if (!isPlain || std::from_chars(number.data(), end, part).ptr != end)
            return std::nullopt;
        if (number.size() == text.size())
            return version;
        text.remove_prefix(number.size() + 1);
    }
    return std::nullopt;
}

UpdateFeed UpdateFeed::read(std::string_view file, std::string_view publicKey)
{
    if (file.size() > largest)
        throw UpdateFeedError("The feed is too large.");
    const auto lineEnd = file.find('\n');
    if (!file.starts_with(scheme) || lineEnd == std::string_view::npos)
        throw UpdateFeedError("The feed isn’t signed.");
    const auto signature = decoded(file.substr(scheme.size(), lineEnd - scheme.size()), signatureSize);
    const auto document = file.substr(lineEnd + 1);
    if (!isSigned(document, signature, decoded(publicKey, keySize)))
        throw UpdateFeedError("The feed’s signature is wrong.");

    UpdateFeed feed;
    try {
        feed = Base::fromJson<UpdateFeed>(document, {});
    } catch (const Base::DecodingError& error) {
        throw UpdateFeedError(error.what());
    }
    if (feed.product != "Pallisande" || !AppVersion::parse(feed.version) || !isWebPage(feed.page))
        throw UpdateFeedError("The feed isn’t one of ours.");
    return feed;
}

} // namespace Pallisande
