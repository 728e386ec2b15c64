#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>

namespace Pallisande {

// Small texts under keys that the platform keeps for this user, outside every library.
class Preferences {
public:
    virtual ~Preferences() = default;

    virtual std::optional<std::string> load(const std::string& key) const = 0;
    // False when the text couldn't be kept; it holds for this run all the same.
    virtual bool store(const std::string& key, const std::string& text) = 0;
};

// Preferences of one run.
class MemoryPreferences final : public Preferences {
public:
    std::optional<std::string> load(const std::string& key) const override
    {
        const auto found = texts.find(key);
        return found == texts.end() ? std::nullopt : std::optional(found->second);
    }
    bool store(const std::string& key, const std::string& text) override
    {
        texts[key] = text;
        return true;
    }

    std::map<std::string, std::string> texts;
};

} // namespace Pallisande
