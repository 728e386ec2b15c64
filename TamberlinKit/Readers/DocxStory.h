#pragma once

#include "TamberlinKit/Markup/XMLScan.h"
#include "TamberlinKit/Readers/DocxElements.h"
#include "TamberlinKit/Readers/DocxStyles.h"
#include "TamberlinKit/Readers/NotCounted.h"
#include "TamberlinKit/Text/Extracted.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Tamberlin {

// What was met in the stories of a Word document besides their text.
struct DocxFindings {
    std::vector<std::string> headers; // Relationships of the headers and footers that sections use, in order.
    NotCounted notCounted;
    std::int64_t insertedFiles = 0;
    std::int64_t subdocuments = 0;
};

// Gathers the text of one story of a Word document (ISO/IEC 29500-1, 17): the main text, a header, all notes
// or all comments, as its events go by. Paragraphs nest, since a text box stands inside the paragraph that it
// is anchored to; each takes its place among the segments when it opens. Segments may stay empty.
class DocxStory {
public:
    // When fields are ignored, their codes still don't count, but nothing is lost where the end of one is
    // missing.
    enum class Fields { known, ignored };

    // `onDrawing` is given the relationship of a chart or diagram where it stands.
    using OnDrawing = std::function<void(DocxElement element, std::string_view relationship, Part part)>;
    DocxStory(Part part, Fields fields, const DocxStyles& styles, std::vector<Segment>& segments,
        DocxFindings& findings, OnDrawing onDrawing);

    bool isWordDocument() const { return m_isWordDocument; } // Known once the first element has opened.
    // Whether the code of a field goes on to the end, or to that of a text box or note, which may have cost
    // text.
    bool hasUnendedCode() const { return m_hasUnendedCode || m_fieldCodes > 0; }

    void start(std::string_view element, const XMLScan::Attributes& attributes);
    void end();
    void text(std::string_view text);

private:
    static constexpr std::size_t none = ~std::size_t { 0 };

    struct Open {
        DocxElement element;
        bool isBranchTaken = false; // Of alternate content.
    };
    struct Box { // Of text: the story itself or a text box in it.
        Part part = Part::body;
        std::size_t fields = 0, fieldCodes = 0; // Those open outside.
        std::size_t unended = none; // The segment of a paragraph whose end was deleted.
    };
    struct Field {
        std::string code; // Its beginning.
        bool isCode = true; // It is still going on.
        bool isShown() const;
    };
    struct Paragraph {
        std::size_t segment = none;
        std::size_t hiddenSegment = none; // While hidden text goes on.
        std::string style, runStyle;
        std::optional<bool> runVanish; // What the run itself says.
        bool isRunHidden = false;
        bool isEndDeleted = false;
        bool isBreakDue = false; // Between pieces of a formula that stand apart.
    };

    bool isIn(std::size_t above, DocxElement element) const;
    bool isLeftOut(DocxElement element, const XMLScan::Attributes& attributes);
    void startParagraph();
    void endParagraph();
    void startBox(Part part);
    Part partOfBox(Part part) const;
    void startField(std::string_view kind);
    void startProperty(DocxElement element, const XMLScan::Attributes& attributes);
    void find(DocxElement element, const XMLScan::Attributes& attributes);
    void breakFormula();
    void put(std::string_view text);
    void putSymbol(std::string_view code);

    const DocxStyles& m_styles;
    std::vector<Segment>& m_segments;
    DocxFindings& m_findings;
    OnDrawing m_onDrawing;
    bool m_ignoresFields;
    std::vector<Open> m_open;
    std::vector<Box> m_boxes;
    std::vector<Paragraph> m_paragraphs; // Those open, the innermost last.
    std::vector<Field> m_fields; // Those open.
    std::size_t m_fieldCodes = 0;
    std::size_t m_skipped = 0; // Open elements of what is left out.
    std::size_t m_objects = 0; // Open.
    bool m_isWordDocument = false;
    bool m_hasUnendedCode = false;
};

} // namespace Tamberlin
