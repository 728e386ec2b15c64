#pragma once

#include "TamberlinKit/Readers/NotCounted.h"
#include "TamberlinKit/Readers/RtfCodePage.h"
#include "TamberlinKit/Readers/RtfControls.h"
#include "TamberlinKit/Readers/RtfText.h"
#include "TamberlinKit/Text/Extracted.h"

#include <cstddef>
#include <cstdint>
#include <stop_token>
#include <string_view>
#include <vector>

namespace Tamberlin {

// Goes through a document in RTF 1.9.1: RtfReader.cpp takes it apart into groups, words and text,
// RtfActions.cpp does what the words mean.
class RtfParser {
public:
    RtfParser(std::string_view file, Extracted& extracted, const std::stop_token& cancel)
        : m_rest(file)
        , m_extracted(extracted)
        , m_cancel(cancel)
        , m_text(extracted.segments, m_now)
    {
    }

    void run();

private:
    using State = RtfState;
    using Destination = State::Destination;

    void openGroup();
    void closeGroup();
    void controlSymbol();
    void controlWord();
    void apply(RtfControl control, std::int32_t parameter, bool hasParameter);
    void enter(Destination destination)
    {
        m_text.flush();
        m_now.destination = destination;
    }
    void openContainer(Part part);

    void plainText();
    void byte(unsigned char byte);

    void skipBinary(std::int32_t count);
    char take()
    {
        const char next = m_rest.front();
        m_rest.remove_prefix(1);
        return next;
    }

    std::string_view m_rest;
    Extracted& m_extracted;
    const std::stop_token& m_cancel;
    NotCounted m_notCounted;
    RtfCodePages m_pages;

    State m_now;
    RtfText m_text;
    std::vector<State> m_outer;
    std::size_t m_untracked = 0; // Open groups beyond the deepest.
    bool m_starred = false; // The next control word may be skipped if it isn't known.
    bool m_isWordArt = false; // The property of a shape that was named last.
    bool m_cutOff = false;
    std::int32_t m_toSkip = 0; // Characters that stand in for a Unicode one.
};

} // namespace Tamberlin
