#pragma once

#include "TamberlinKit/Markup/XMLScan.h"
#include "TamberlinKit/Text/Extracted.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What the parts of Word, PowerPoint and Excel documents have in common.
namespace Tamberlin {

// Takes exactly one branch of each mc:AlternateContent: the first. The others hold the same text for older
// programs.
class OneBranch {
public:
    // A scan that hands what counts of a part to the start(), end() and text() of a gatherer. It calls back
    // here: keep this object and the gatherer where they are while it is used.
    template <typename Gatherer> XMLScan scan(Gatherer& gatherer)
    {
        return {
            .onStart =
                [this, &gatherer](std::string_view element, const XMLScan::Attributes& attributes) {
                    if (start(element))
                        gatherer.start(element, attributes);
                },
            .onEnd =
                [this, &gatherer](std::string_view element) {
                    if (end(element))
                        gatherer.end(element);
                },
            .onText =
                [this, &gatherer](std::string_view text) {
                    if (m_skipped == 0)
                        gatherer.text(text);
                },
        };
    }

private:
    bool start(std::string_view element);
    bool end(std::string_view element);

    std::vector<bool> m_taken; // Of each open mc:AlternateContent, whether a branch was taken.
    std::size_t m_skipped = 0; // Open elements of a branch that isn't taken.
};

// The xsd:boolean of an attribute.
bool isOn(std::optional<std::string_view> attribute);

// Decodes the escapes of ST_Xstring (ISO/IEC 29500-1, 22.9.2.19): "_x000D_" is a line
// break.
void decodeEscapes(std::string& text);

// Whether there is more in it than blanks.
bool hasText(std::string_view text);

// Adds a segment unless there is nothing but blanks in it.
void addSegment(std::vector<Segment>& segments, std::string_view text, Part part);

// Adds a note, once.
void addNote(Extracted& extracted, const std::optional<std::string>& note);

} // namespace Tamberlin
