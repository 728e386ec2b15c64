#pragma once

#include "TamberlinKit/Markup/ExpatXML.h"

#include <deque>
#include <string>
#include <vector>

namespace Tamberlin {

// Goes through documents as office programs write them (XML 1.0, fifth edition): in UTF-8, without a document
// type and processing instructions, with names in ASCII. It checks all that makes such a document well-formed
// and calls back only what it has checked; in front of anything else it stops.
class PlainXML {
public:
    PlainXML(std::string_view document, const XMLLimits& limits, const XMLHandlers& handlers,
        const std::stop_token& cancel);

    // Whether the document was gone through to its end.
    bool read();
    const XMLProgress& progress() const { return m_progress; }

private:
    bool startsWith(std::string_view mark) const { return rest().starts_with(mark); }
    std::string_view rest() const { return { m_at, static_cast<std::size_t>(m_end - m_at) }; }
    void skipBlanks();
    bool readDeclaration();
    bool readAround(); // What may stand before and behind the outermost element.
    bool readElement();
    bool readMarkup();
    bool readText();
    bool readName(XMLName& name);
    bool readStartTag();
    bool readEndTag();
    bool readAttribute();
    bool readValue(std::string_view& value);
    bool decodeValue(const char* from, char quote, std::string_view& value);
    bool readComment();
    bool readCData();
    bool readReference(std::string& into);
    bool passCharacter();
    bool areDistinct() const;
    void tell(const char* from, const char* to);
    void tellText(std::string_view text);
    void tellEnd(const XMLName& name);

    const char *m_at, *m_end;
    const XMLLimits& m_limits;
    const XMLHandlers& m_handlers;
    const std::stop_token& m_cancel;
    std::vector<XMLName> m_open;
    std::vector<XMLAttribute> m_attributes;
    std::deque<std::string> m_decoded; // Values that stand otherwise in the document.
    std::string m_reference;
    std::size_t m_elements = 0;
    XMLProgress m_progress;
};

} // namespace Tamberlin
