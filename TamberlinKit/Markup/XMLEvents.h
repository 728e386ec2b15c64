#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

namespace Tamberlin {

// The name of an element.
struct XMLName {
    explicit XMLName(const char* name)
    {
        auto end = name, behindPrefix = name;
        for (; *end != '\0'; ++end) {
            if (*end == ':' && behindPrefix == name)
                behindPrefix = end + 1;
        }
        written = { name, end };
        local = { behindPrefix, end };
    }

    operator std::string_view() const { return written; }

    std::string_view written, local; // "w:p", "p".
};

// The attributes of one start tag; they are looked up only when asked for.
class XMLAttributes {
public:
    explicit XMLAttributes(const char* const* pairs)
        : m_pairs(pairs)
    {
    }

    std::optional<std::string_view> find(std::string_view name) const
    {
        for (auto pair = m_pairs; *pair; pair += 2) {
            if (isSame(*pair, name))
                return std::string_view(pair[1]);
        }
        return std::nullopt;
    }

    // The value of the attribute written so, else of the first one whose name behind its prefix is this.
    std::optional<std::string_view> findLocal(std::string_view name) const
    {
        const char* found = nullptr;
        for (auto pair = m_pairs; *pair; pair += 2) {
            if (isSame(*pair, name))
                return std::string_view(pair[1]);
            const char* local = nullptr; // Behind the last colon.
            for (auto at = *pair; *at != '\0'; ++at) {
                if (*at == ':')
                    local = at + 1;
            }
            if (!found && local && isSame(local, name))
                found = pair[1];
        }
        return found ? std::optional<std::string_view>(found) : std::nullopt;
    }

private:
    // Most differ in their first letters.
    static bool isSame(const char* written, std::string_view name)
    {
        for (const char letter : name) {
            if (*written++ != letter)
                return false;
        }
        return *written == '\0';
    }

    const char* const* m_pairs; // Name, value, name, value, null.
};

struct XMLLimits {
    std::size_t deepest = 1000; // Nested elements.
    std::size_t elements = 50'000'000;
};

// Goes through an XML 1.0 document and calls back for each start and end tag, and for text where that is
// wanted. No external entity is ever read. Gives the parser's reason when the document isn't well-formed or
// passes a limit; what came before was called back all the same. Throws Cancelled when a stop was asked for.
std::optional<std::string> parseXML(std::string_view document, const XMLLimits& limits,
    const std::function<void(const XMLName& element, XMLAttributes attributes)>& onStart,
    const std::function<void(const XMLName& element)>& onEnd,
    const std::function<void(std::string_view text)>& onText = {}, const std::stop_token& cancel = {});
// The same with a document of less than 1 GB that `write` first writes to where the parser reads it.
std::optional<std::string> parseXML(std::size_t size, const std::function<void(char* into)>& write,
    const XMLLimits& limits,
    const std::function<void(const XMLName& element, XMLAttributes attributes)>& onStart,
    const std::function<void(const XMLName& element)>& onEnd,
    const std::function<void(std::string_view text)>& onText = {}, const std::stop_token& cancel = {});

} // namespace Tamberlin
