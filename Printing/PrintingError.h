#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

namespace Pallisande {

// A document can't be printed. `what()` is the sentence that the user reads.
class PrintingError : public std::runtime_error {
public:
    enum class Case { missingCharacters, unreadableLogo, tooLong, notMade };

    // Names the first of them when there are many.
    static PrintingError missingCharacters(std::string_view text);
    static PrintingError unreadableLogo()
    {
        return { Case::unreadableLogo, "The logo isn’t a readable PNG or JPEG image." };
    }
    static PrintingError tooLong() { return { Case::tooLong, "The document is too long to be printed." }; }
    static PrintingError textTooLong(std::string_view text);
    static PrintingError notMade() { return { Case::notMade, "The PDF couldn’t be made." }; }

    Case kind() const { return m_kind; }

private:
    PrintingError(Case kind, const std::string& sentence)
        : std::runtime_error(sentence)
        , m_kind(kind)
    {
    }

    Case m_kind;
};

} // namespace Pallisande
