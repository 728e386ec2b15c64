#pragma once

#include "TamberlinKit/Text/Extracted.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <vector>

namespace Tamberlin {

// Where a byte stands in a text that is gone through once.
class Occurrences {
public:
    Occurrences(std::string_view text, char byte)
        : m_text(text)
        , m_byte(byte)
        , m_at(std::min(text.find(byte), text.size()))
    {
    }

    // The first one at or behind `position`, which never goes back; the text's end when there is none.
    std::size_t from(std::size_t position)
    {
        if (m_at < position)
            m_at = std::min(m_text.find(m_byte, position), m_text.size());
        return m_at;
    }

private:
    std::string_view m_text;
    char m_byte;
    std::size_t m_at;
};

// Gives the lines of a text one after the other, without their ends (LF, CR or both).
class Lines {
public:
    explicit Lines(std::string_view text)
        : m_text(text)
        , m_feeds(text, '\n')
        , m_returns(text, '\r')
    {
    }

    bool next(std::string_view& line);
    std::size_t position() const { return m_at; }

private:
    std::string_view m_text;
    std::size_t m_at = 0;
    Occurrences m_feeds, m_returns;
};

bool isBlank(std::string_view line);
// Without spaces, tabs and the like at both ends.
std::string_view withoutBlanks(std::string_view text);

// Adds the segments of a paragraph of plain text: its lines, which follow each other in one text. A line is a
// segment, unless the text is wrapped: where the next word wouldn't have fitted on the line any more, the
// sentence goes on. The segments stand in that text.
void addParagraph(std::vector<Segment>& segments, const std::vector<std::string_view>& lines);

} // namespace Tamberlin
