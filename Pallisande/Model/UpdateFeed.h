#pragma once

#include "Base/Fields.h"
#include "Base/Instant.h"

#include <array>
#include <compare>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <tuple>

namespace Pallisande {

// "1.10.2": one to four whole numbers, without leading zeros; those left out are 0.
struct AppVersion {
    std::array<std::int64_t, 4> parts {};

    static std::optional<AppVersion> parse(std::string_view text);

    auto operator<=>(const AppVersion&) const = default;
};

// What is published about the newest version.
struct UpdateFeed {
    std::string product; // "Pallisande"; a feed of something else signed with the same key is not ours.
    std::string version;
    Base::Instant published; // Of the feed, not of the version: it rises with every new feed.
    std::string page; // Where the version can be had (https).
    std::string notes; // What is new, as plain text.

    bool operator==(const UpdateFeed&) const = default;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("product", &UpdateFeed::product, Base::Missing::fails),
            Base::field("version", &UpdateFeed::version, Base::Missing::fails),
            Base::field("published", &UpdateFeed::published, Base::Missing::fails),
            Base::field("page", &UpdateFeed::page, Base::Missing::fails),
            Base::field("notes", &UpdateFeed::notes),
        };
    }

    static constexpr std::size_t largest = 64 * 1024; // Bytes of the whole file.

    // Reads a feed as it is fetched: the line "Ed25519 " with the Base64 of the signature, then a JSON
    // document, every byte of which is signed. `publicKey` is Base64 too. Throws UpdateFeedError.
    static UpdateFeed read(std::string_view file, std::string_view publicKey);
};
static_assert(Base::listsEveryMember<UpdateFeed>);

// A feed is not to be believed. The user is told only that the check failed.
class UpdateFeedError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace Pallisande
