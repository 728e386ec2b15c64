#pragma once

#include "TamberlinKit/Text/Extracted.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What the parts of PowerPoint and Excel documents have in common.
namespace Tamberlin {

// Takes exactly one branch of each mc:AlternateContent: the first. The others hold the same text for older
// programs.
class OneBranch {
public:
    // Whether the element counts. Each start and end tag passes through here before anything else looks at
    // it.
    bool start(std::string_view element);
    bool end(std::string_view element);

    bool isSkipping() const { return m_skipped > 0; }

private:
    std::vector<bool> m_taken; // Of each open mc:AlternateContent, whether a branch was taken.
    std::size_t m_skipped = 0; // Open elements of a branch that isn't taken.
};

// The xsd:boolean of an attribute.
bool isOn(std::optional<std::string_view> attribute);

// Decodes the escapes of ST_Xstring (ISO/IEC 29500-1, 22.9.2.19) behind `from`: "_x000D_" is a line break.
void decodeEscapes(std::string& text, std::size_t from = 0);

// Adds a segment unless there is nothing but blanks in it.
void addSegment(std::vector<Segment>& segments, std::string_view text, Part part);

// Adds a note, once.
void addNote(Extracted& extracted, const std::optional<std::string>& note);

} // namespace Tamberlin
