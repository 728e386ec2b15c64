#pragma once

#include "TamberlinKit/Markup/XMLEvents.h"

#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

namespace Tamberlin {

// Goes through one XML part of a document and calls back for elements and text. Elements are named without
// their prefix: "w:p" is "p". External entities are never read.
struct XMLScan {
    class Attributes {
    public:
        explicit Attributes(XMLAttributes raw)
            : m_raw(raw)
        {
        }

        // The value of the attribute written so, else of the first one whose name behind its prefix is this.
        std::optional<std::string_view> find(std::string_view name) const { return m_raw.findLocal(name); }
        std::string_view valueOr(std::string_view name, std::string_view other) const
        {
            return find(name).value_or(other);
        }

    private:
        XMLAttributes m_raw;
    };

    std::function<void(std::string_view element, const Attributes& attributes)> onStart;
    std::function<void(std::string_view element)> onEnd;
    std::function<void(std::string_view text)>
        onText; // Text comes in any number of pieces, CDATA sections too.

    // Gives the parser's reason when the part isn't well-formed; what came before was called back all the
    // same. Throws Cancelled when a stop was asked for.
    std::optional<std::string> parse(std::string_view part, const std::stop_token& cancel) const;
    // The same with a part of so many bytes that `write` writes to where it is asked to.
    std::optional<std::string> parse(
        std::size_t size, const std::function<void(char* into)>& write, const std::stop_token& cancel) const;
};

} // namespace Tamberlin
