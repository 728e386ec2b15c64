#pragma once

#include "TamberlinKit/Text/Extracted.h"

#include <cstddef>
#include <string_view>
#include <vector>

namespace Tamberlin {

// Gives the lines of a text one after the other, without their ends (LF, CR or both).
class Lines {
public:
    explicit Lines(std::string_view text)
        : m_text(text)
    {
    }

    bool next(std::string_view& line);
    std::size_t position() const { return m_at; }

private:
    std::string_view m_text;
    std::size_t m_at = 0;
    std::size_t m_feed = 0; // The next line feed, looked for once.
};

bool isBlank(std::string_view line);
// Without spaces, tabs and the like at both ends.
std::string_view withoutBlanks(std::string_view text);

// Adds the segments of a paragraph of plain text: its lines, which follow each other in one text. A line is a
// segment, unless the text is wrapped: where the next word wouldn't have fitted on the line any more, the
// sentence goes on. The segments stand in that text.
void addParagraph(std::vector<Segment>& segments, const std::vector<std::string_view>& lines);

} // namespace Tamberlin
