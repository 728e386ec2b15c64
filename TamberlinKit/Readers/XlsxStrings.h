#pragma once

#include "Base/LargePages.h"
#include "TamberlinKit/Markup/Package.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Tamberlin {

// The texts of cells, which a workbook keeps apart from its sheets, each once.
class SharedStrings {
public:
    // Gives the note for the user when the part is malformed.
    std::optional<std::string> read(const Package& package, std::string_view path);

    // The text with the number that a cell gives; nothing when there is none. One of blanks is empty.
    std::optional<std::string_view> find(std::string_view number) const;
    // Has the place of a text fetched that is looked up soon.
    void prefetch(std::string_view number) const { __builtin_prefetch(m_ends.data() + indexOf(number)); }
    // What the texts stand in.
    std::shared_ptr<const void> kept() const { return m_texts; }

private:
    std::size_t indexOf(std::string_view number) const;

    using Texts = Base::LargeVector<char>;

    std::shared_ptr<Texts> m_texts = std::make_shared<Texts>(); // One behind the other.
    std::vector<std::uint32_t> m_ends; // A part is smaller than 4 GB, and so is its text.
};

// Takes the text of <t> elements together, run after run, but not what shows how a text is pronounced.
class RunText {
public:
    void start(std::string_view element)
    {
        m_phonetic += element == "rPh";
        m_isOpen = element == "t" && m_phonetic == 0;
    }
    void end(std::string_view element)
    {
        m_phonetic -= element == "rPh";
        m_isOpen = false;
    }
    bool isOpen() const { return m_isOpen; }

private:
    int m_phonetic = 0;
    bool m_isOpen = false;
};

} // namespace Tamberlin
