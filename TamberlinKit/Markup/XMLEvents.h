#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <stop_token>
#include <string>
#include <string_view>

namespace Tamberlin {

// The name of an element.
struct XMLName {
    operator std::string_view() const { return written; }

    std::string_view written, local; // "w:p", "p".
};

struct XMLAttribute {
    std::string_view name, value;
};

// The attributes of one start tag; they are looked up only when asked for.
class XMLAttributes {
public:
    explicit XMLAttributes(std::span<const XMLAttribute> attributes)
        : m_attributes(attributes)
    {
    }

    std::optional<std::string_view> find(std::string_view name) const
    {
        for (const auto& attribute : m_attributes) {
            if (attribute.name == name)
                return attribute.value;
        }
        return std::nullopt;
    }

    // The value of the attribute written so, else of the first one whose name behind its prefix is this.
    std::optional<std::string_view> findLocal(std::string_view name) const
    {
        const XMLAttribute* found = nullptr;
        for (const auto& attribute : m_attributes) {
            if (!attribute.name.ends_with(name))
                continue;
            const auto before = attribute.name.size() - name.size();
            if (before == 0)
                return attribute.value;
            if (!found && attribute.name[before - 1] == ':' && name.find(':') == name.npos)
                found = &attribute;
        }
        return found ? std::optional(found->value) : std::nullopt;
    }

private:
    std::span<const XMLAttribute> m_attributes;
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
// The same with a document that `write` first writes to where it is read.
std::optional<std::string> parseXML(std::size_t size, const std::function<void(char* into)>& write,
    const XMLLimits& limits,
    const std::function<void(const XMLName& element, XMLAttributes attributes)>& onStart,
    const std::function<void(const XMLName& element)>& onEnd,
    const std::function<void(std::string_view text)>& onText = {}, const std::stop_token& cancel = {});

} // namespace Tamberlin
