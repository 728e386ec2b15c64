#include "TamberlinKit/Readers/DocxStory.h"

#include "Base/Text.h"
#include "TamberlinKit/Readers/SegmentWriter.h"

#include <unicode/utf.h>

#include <algorithm>
#include <charconv>
#include <utility>

namespace Tamberlin {

DocxStory::DocxStory(Part part, Fields fields, const DocxStyles& styles, std::vector<Segment>& segments,
    DocxFindings& findings, OnDrawing onDrawing)
    : m_styles(styles)
    , m_segments(segments)
    , m_findings(findings)
    , m_onDrawing(std::move(onDrawing))
    , m_ignoresFields(fields == Fields::ignored)
    , m_boxes { { .part = part } }
{
}

// Whether the element that stands so far above the innermost one is such a one.
bool DocxStory::isIn(std::size_t above, DocxElement element) const
{
    return above < m_open.size() && m_open[m_open.size() - 1 - above].element == element;
}

void DocxStory::start(std::string_view name, const XMLScan::Attributes& attributes)
{
    if (m_open.empty())
        m_isWordDocument = name == "document";
    const auto element = m_skipped > 0 ? DocxElement::leftOut : docxElementNamed(name);
    if (isLeftOut(element, attributes)) {
        ++m_skipped;
        return;
    }
    const bool isInRun = isIn(0, DocxElement::run);
    switch (element) {
    case DocxElement::paragraph:
        startParagraph();
        break;
    case DocxElement::box:
    case DocxElement::note:
        startBox(element == DocxElement::box ? Part::textBoxes : m_boxes.back().part);
        break;
    case DocxElement::table:
        m_boxes.back().unended = none;
        break;
    case DocxElement::run:
    case DocxElement::paragraphStyle:
    case DocxElement::runStyle:
    case DocxElement::vanish:
        startProperty(element, attributes);
        break;
    case DocxElement::field:
        startField(attributes.valueOr("fldCharType", ""));
        break;
    case DocxElement::endOfLine:
        put("\n");
        break;
    case DocxElement::tab:
        if (isInRun) // Otherwise it sets a tab stop.
            put(" ");
        break;
    case DocxElement::tabOfParagraph:
        put(" ");
        break;
    case DocxElement::noBreakHyphen:
        put("\u2011");
        break;
    case DocxElement::softHyphen:
        put("\u00AD");
        break;
    case DocxElement::symbol:
        if (isInRun || isIn(0, DocxElement::branch)) // Otherwise it names a font.
            putSymbol(attributes.valueOr("char", ""));
        break;
    case DocxElement::pieceOfFormula:
        breakFormula();
        break;
    case DocxElement::pieceOfRow:
        if (isIn(0, DocxElement::rowOfFormula))
            breakFormula();
        break;
    default:
        find(element, attributes);
    }
    m_open.push_back({ element });
}

// Whether what an element holds isn't in the document as it stands.
bool DocxStory::isLeftOut(DocxElement element, const XMLScan::Attributes& attributes)
{
    switch (element) {
    case DocxElement::leftOut:
        return true;
    case DocxElement::deletion:
        if (isIn(0, DocxElement::runProperties) && isIn(1, DocxElement::paragraphProperties)
            && !m_paragraphs.empty())
            m_paragraphs.back().isEndDeleted = true;
        return true;
    case DocxElement::branch: // Of alternate content, the first is the one that it was written for.
        return isIn(0, DocxElement::alternateContent) && std::exchange(m_open.back().isBranchTaken, true);
    case DocxElement::note: // Separators are notes of other types.
        return attributes.valueOr("type", "normal") != "normal";
    default:
        return false;
    }
}

void DocxStory::end()
{
    if (m_skipped > 0) {
        --m_skipped;
        return;
    }
    const auto element = m_open.back().element;
    m_open.pop_back();
    switch (element) {
    case DocxElement::paragraph:
        endParagraph();
        break;
    case DocxElement::box:
    case DocxElement::note: // A field that began in it can't go on outside.
        m_hasUnendedCode |= m_fieldCodes > m_boxes.back().fieldCodes;
        m_fields.resize(m_boxes.back().fields);
        m_fieldCodes = m_boxes.back().fieldCodes;
        m_boxes.pop_back();
        break;
    case DocxElement::table:
        m_boxes.back().unended = none;
        break;
    case DocxElement::object:
        --m_objects;
        break;
    case DocxElement::pieceOfFormula:
        breakFormula();
        break;
    case DocxElement::pieceOfRow:
        if (isIn(0, DocxElement::rowOfFormula))
            breakFormula();
        break;
    default:
        break;
    }
}

void DocxStory::text(std::string_view text)
{
    if (m_skipped > 0)
        return;
    if (isIn(0, DocxElement::text))
        put(text);
    else if (isIn(0, DocxElement::fieldCode) && !m_fields.empty() && m_fields.back().code.size() < 16)
        m_fields.back().code += text.substr(0, 16);
}

// Fields that set the text of a bookmark don't show it; others do that.
bool DocxStory::Field::isShown() const
{
    const auto word = std::string_view(code).substr(std::min(code.find_first_not_of(' '), code.size()));
    return !word.starts_with("SET ") && !word.starts_with("ASK ");
}

// What isn't text: it is counted for the notes, or read elsewhere.
void DocxStory::find(DocxElement element, const XMLScan::Attributes& attributes)
{
    switch (element) {
    case DocxElement::headerOrFooter:
        if (m_boxes.front().part == Part::body)
            m_findings.headers.emplace_back(attributes.valueOr("id", ""));
        break;
    case DocxElement::insertedFile:
        ++m_findings.insertedFiles;
        break;
    case DocxElement::subdocument:
        ++m_findings.subdocuments;
        break;
    case DocxElement::formField: // A list to choose from keeps its choice as a number.
        ++m_findings.notCounted.formFields;
        break;
    case DocxElement::picture:
        ++m_findings.notCounted.pictures;
        break;
    case DocxElement::image: // Of an object, it only shows what that looks like.
        m_findings.notCounted.pictures += m_objects == 0;
        break;
    case DocxElement::object:
        ++m_findings.notCounted.objects;
        ++m_objects;
        break;
    case DocxElement::chart:
    case DocxElement::diagram:
        if (m_fieldCodes == 0)
            m_onDrawing(element, attributes.valueOr(element == DocxElement::chart ? "id" : "dm", ""),
                partOfBox(Part::textBoxes));
        break;
    case DocxElement::wordArt:
        if (const auto text = attributes.find("string"); text && m_fieldCodes == 0)
            m_segments.push_back({ .text = std::string(*text), .part = partOfBox(Part::textBoxes) });
        break;
    default:
        break;
    }
}

void DocxStory::startBox(Part part)
{
    m_boxes.push_back({ .part = partOfBox(part), .fields = m_fields.size(), .fieldCodes = m_fieldCodes });
}

// A box is hidden with the run that it is anchored in.
Part DocxStory::partOfBox(Part part) const
{
    const bool isHidden = !m_paragraphs.empty() && m_paragraphs.back().isRunHidden;
    return SegmentWriter::nested(m_boxes.back().part, isHidden ? Part::hidden : part);
}

void DocxStory::startParagraph()
{
    auto& box = m_boxes.back();
    const auto segment = std::exchange(box.unended, none);
    m_paragraphs.push_back({ .segment = segment != none ? segment : m_segments.size() });
    if (segment == none)
        m_segments.push_back({ .text = "", .part = box.part });
}

void DocxStory::endParagraph()
{
    const auto& paragraph = m_paragraphs.back();
    if (m_segments[paragraph.segment].text.empty() && paragraph.segment + 1 == m_segments.size())
        m_segments.pop_back();
    else if (paragraph.isEndDeleted)
        m_boxes.back().unended = paragraph.segment;
    m_paragraphs.pop_back();
}

void DocxStory::startProperty(DocxElement element, const XMLScan::Attributes& attributes)
{
    if (m_paragraphs.empty())
        return;
    auto& paragraph = m_paragraphs.back();
    const bool isOfRun = isIn(0, DocxElement::runProperties) && isIn(1, DocxElement::run);
    if (element == DocxElement::run) {
        paragraph.runStyle.clear();
        paragraph.runVanish.reset();
    } else if (element == DocxElement::paragraphStyle && isIn(0, DocxElement::paragraphProperties)) {
        paragraph.style = attributes.valueOr("val", "");
    } else if (element == DocxElement::runStyle && isOfRun) {
        paragraph.runStyle = attributes.valueOr("val", "");
    } else if (element == DocxElement::vanish && isOfRun) {
        paragraph.runVanish = DocxStyles::isOn(attributes);
    } else {
        return;
    }
    paragraph.isRunHidden
        = paragraph.runVanish.value_or(m_styles.isHidden(paragraph.style, paragraph.runStyle));
}

void DocxStory::startField(std::string_view kind)
{
    if (m_ignoresFields)
        return;
    if (kind == "begin") {
        m_fields.emplace_back();
        ++m_fieldCodes;
        return;
    }
    if (m_fields.size() <= m_boxes.back().fields)
        return;
    auto& field = m_fields.back();
    if (kind == "separate" && !field.isShown())
        return;
    if (field.isCode) // The code ends with the field when there is no result.
        --m_fieldCodes;
    field.isCode = false;
    if (kind == "end")
        m_fields.pop_back();
}

void DocxStory::breakFormula()
{
    if (!m_paragraphs.empty())
        m_paragraphs.back().isBreakDue = true;
}

void DocxStory::put(std::string_view text)
{
    if (m_paragraphs.empty() || m_fieldCodes > 0)
        return;
    auto& paragraph = m_paragraphs.back();
    const bool isApart = paragraph.isRunHidden && m_boxes.back().part != Part::comments;
    if (!isApart) {
        paragraph.hiddenSegment = none;
    } else if (paragraph.hiddenSegment == none) {
        paragraph.hiddenSegment = m_segments.size();
        m_segments.push_back({ .text = "", .part = Part::hidden });
    }
    auto& segment = m_segments[isApart ? paragraph.hiddenSegment : paragraph.segment].text;
    if (std::exchange(paragraph.isBreakDue, false) && !segment.empty())
        segment += "\n";
    segment += text;
}

// A character given by its number. Symbol fonts have theirs in the private area.
void DocxStory::putSymbol(std::string_view code)
{
    std::uint32_t character = 0;
    const auto end = code.data() + code.size();
    const auto [rest, error] = std::from_chars(code.data(), end, character, 16);
    if (error != std::errc {} || rest != end || character < 0x20 || U_IS_SURROGATE(character))
        return;
    std::string text;
    Base::appendUtf8(text, character);
    put(text);
}

} // namespace Tamberlin
