#pragma once

#include "Base/Json.h"

#include <filesystem>
#include <optional>
#include <string>

namespace Pallisande {

// What finds a folder again at a later start. The bytes mean something to the platform alone; in JSON they
// are Base64 text.
struct Bookmark {
    std::string bytes;

    bool operator==(const Bookmark&) const = default;
};

void writeJson(Base::JsonWriter& writer, const Bookmark& bookmark);

// Makes and resolves bookmarks.
class Bookmarks {
public:
    virtual ~Bookmarks() = default;

    virtual Bookmark make(const std::filesystem::path& folder) = 0;
    // Nothing when the folder can't be found (any more, or for now: its drive may come back).
    virtual std::optional<std::filesystem::path> resolve(const Bookmark& bookmark) = 0;
};

} // namespace Pallisande

template <> struct Base::TypedForm<Pallisande::Bookmark> final : Base::Form {
    void setText(void* target, std::string_view text) const override;
};
