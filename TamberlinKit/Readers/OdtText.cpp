#include "TamberlinKit/Readers/OdtText.h"

#include <algorithm>
#include <charconv>
#include <unordered_map>
#include <utility>

namespace Tamberlin {

namespace {

// Elements by what they mean for the text; all others are only gone through.
enum class Meaning {
    other,
    paragraph,
    span,
    spaces,
    tab,
    lineBreak,
    note,
    annotation,
    shape,
    frame,
    image,
    object,
    foreign,
    math,
    control,
    section,
    header,
    hiddenText,
    hiddenParagraph,
    coveredCell,
    field,
    outside,
    styles,
    body
};

Meaning meaningOf(std::string_view element)
{
    using enum Meaning;
    static const std::unordered_map<std::string_view, Meaning> meanings { { "p", paragraph },
        { "h", paragraph }, { "span", span }, { "a", span }, { "s", spaces }, { "tab", tab },
        { "line-break", lineBreak }, { "note", note }, { "annotation", annotation }, { "frame", frame },
        { "text-box", shape }, { "custom-shape", shape }, { "rect", shape }, { "line", shape },
        { "polyline", shape }, { "polygon", shape }, { "regular-polygon", shape }, { "path", shape },
        { "circle", shape }, { "ellipse", shape }, { "connector", shape }, { "caption", shape },
        { "g", shape }, { "image", image }, { "object", object }, { "object-ole", foreign },
        { "plugin", foreign }, { "applet", foreign }, { "floating-frame", foreign }, { "math", math },
        { "control", control }, { "section", section }, { "header", header }, { "header-left", header },
        { "header-first", header }, { "footer", header }, { "footer-left", header },
        { "footer-first", header }, { "hidden-text", hiddenText }, { "hidden-paragraph", hiddenParagraph },
        { "covered-table-cell", coveredCell }, { "variable-set", field }, { "variable-get", field },
        { "variable-input", field }, { "user-field-get", field }, { "user-field-input", field },
        { "expression", field },
        // Deleted text, list labels as text, the citations of notes, the gloss of ruby, programs, forms' own
        // data.
        { "tracked-changes", outside }, { "number", outside }, { "note-citation", outside },
        { "ruby-text", outside }, { "script", outside }, { "forms", outside }, { "styles", styles },
        { "automatic-styles", styles }, { "body", body } };
    const auto found = meanings.find(element);
    return found == meanings.end() ? other : found->second;
}

bool isBlank(char character)
{
    return character == ' ' || character == '\n' || character == '\t' || character == '\r';
}

} // namespace

XMLScan OdtText::scan()
{
    return { .onStart
        = [this](std::string_view element, const auto& attributes) { start(element, attributes); },
        .onEnd = [this](std::string_view element) { end(element); },
        .onText = [this](std::string_view piece) { text(piece); } };
}

void OdtText::beginPart()
{
    m_styles.beginPart();
    m_writer.leaveAll();
    m_now = {};
    m_outer.clear();
    m_blankDue.clear();
}

void OdtText::start(std::string_view element, const XMLScan::Attributes& attributes)
{
    m_outer.push_back(m_now);
    m_now.ends = Ends::nothing;
    m_styles.start(element, attributes);
    if (m_now.left)
        return;
    if (std::exchange(m_beforeBodyKind, false))
        m_bodyKind = element;
    switch (meaningOf(element)) {
    case Meaning::paragraph:
        return startParagraph(attributes);
    case Meaning::span:
        if (const auto hides = m_styles.hides(OdtStyles::Family::text, attributes.valueOr("style-name", "")))
            m_now.hidden = *hides;
        return;
    case Meaning::spaces: {
        const auto count = attributes.valueOr("c", "1");
        std::size_t spaces = 1;
        std::from_chars(count.data(), count.data() + count.size(), spaces);
        const auto more = std::min(spaces > 0 ? spaces - 1 : 0, m_spacesLeft);
        m_spacesLeft -= more;
        return put(std::string(more + 1, ' '));
    }
    case Meaning::tab:
        return put("\t");
    case Meaning::lineBreak:
        return put("\n");
    case Meaning::note:
        return enterContainer(Part::footnotes);
    case Meaning::annotation:
        return enterContainer(Part::comments);
    case Meaning::frame:
        m_now.ends = Ends::frame;
        m_now.sawPicture = m_now.sawObject = false;
        [[fallthrough]];
    case Meaning::shape:
        if (attributes.find("draw:display") == "none")
            m_now.hiddenWhole = true;
        return enterContainer(Part::textBoxes);
    case Meaning::image:
        m_outer.back().sawPicture = true;
        return;
    case Meaning::object:
        return startObject(attributes);
    case Meaning::foreign:
        m_outer.back().sawObject = true;
        ++m_notCounted.objects;
        return;
    case Meaning::math:
        ++m_notCounted.formulas;
        m_now.left = true;
        return;
    case Meaning::control:
        ++m_notCounted.formFields;
        return;
    case Meaning::section:
        m_now.hiddenWhole = m_now.hiddenWhole || attributes.find("display") == "none"
            || (attributes.find("display") == "condition" && attributes.find("is-hidden") == "true");
        return;
    case Meaning::header:
        m_now.hiddenWhole = m_now.hiddenWhole || attributes.find("display") == "false";
        return enterContainer(Part::headersFooters);
    case Meaning::hiddenText:
        return startHiddenText(attributes);
    case Meaning::hiddenParagraph:
        if (m_now.inParagraph && attributes.find("is-hidden") == "true") {
            m_writer.hideParagraph();
            m_outer.back().hiddenWhole = true;
        }
        return;
    case Meaning::coveredCell: // Cells that were joined keep what stood in the ones that don't show.
        m_now.hiddenWhole = true;
        return;
    case Meaning::field:
        m_now.left = attributes.find("display") == "none";
        return;
    case Meaning::outside:
    case Meaning::styles:
        m_now.left = true;
        return;
    case Meaning::body:
        m_beforeBodyKind = true;
        return;
    case Meaning::other:
        return;
    }
}

void OdtText::end(std::string_view element)
{
    m_styles.end(element);
    switch (m_now.ends) {
    case Ends::paragraph:
        m_writer.leave();
        m_blankDue.pop_back();
        break;
    case Ends::frame: // An object has a picture of itself beside it, for programs that don't know its kind.
        m_notCounted.pictures += m_now.sawPicture && !m_now.sawObject ? 1 : 0;
        break;
    case Ends::hiddenText:
        put(std::exchange(m_hiddenText, {}));
        break;
    case Ends::nothing:
        break;
    }
    m_now = m_outer.back();
    m_outer.pop_back();
}

void OdtText::text(std::string_view text)
{
    if (!m_now.inParagraph || m_now.left)
        return;
    m_hiddenText.clear();
    // White space as written is one blank, and none at the start of a paragraph (ISO/IEC 26300 6.1.2).
    bool blankDue = m_blankDue.back();
    std::size_t from = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (static_cast<unsigned char>(text[at]) > ' ') { // No blank: most are none.
            blankDue = false;
            continue;
        }
        const bool blank = isBlank(text[at]);
        if (blank && (blankDue || text[at] != ' ')) {
            m_writer.append(text.substr(from, at - from), m_now.hidden);
            if (!blankDue)
                m_writer.append(" ", m_now.hidden);
            from = at + 1;
        }
        blankDue = blank;
    }
    m_writer.append(text.substr(from), m_now.hidden);
    m_blankDue.back() = blankDue;
}

void OdtText::put(std::string_view text)
{
    if (!m_now.inParagraph || m_now.left)
        return;
    m_writer.append(text, m_now.hidden);
    m_blankDue.back() = false;
}

void OdtText::enterContainer(Part part)
{
    m_now.part = SegmentWriter::nested(m_now.part, part);
    m_now.hiddenWhole = m_now.hiddenWhole || m_now.hidden;
    m_now.hidden = m_now.inParagraph = false;
}

void OdtText::startParagraph(const XMLScan::Attributes& attributes)
{
    enterContainer(m_now.part);
    m_now.inParagraph = true;
    m_now.ends = Ends::paragraph;
    m_now.hidden
        = m_styles.hides(OdtStyles::Family::paragraph, attributes.valueOr("style-name", "")).value_or(false);
    m_writer.enter(m_now.hiddenWhole && m_now.part != Part::comments ? Part::hidden : m_now.part);
    m_blankDue.push_back(true);
}

void OdtText::startHiddenText(const XMLScan::Attributes& attributes)
{
    m_now.hidden = m_now.hidden || attributes.find("is-hidden") == "true";
    m_now.ends = Ends::hiddenText;
    m_hiddenText = attributes.valueOr("string-value", "");
}

void OdtText::startObject(const XMLScan::Attributes& attributes)
{
    m_outer.back().sawObject = true;
    auto folder = attributes.find("href");
    if (!folder)
        return; // It stands here itself: a formula.
    if (folder->starts_with("./"))
        folder->remove_prefix(2);
    const auto type = m_mediaType(*folder);
    if (type.ends_with("opendocument.chart"))
        ++m_notCounted.charts;
    else if (type.ends_with("opendocument.formula"))
        ++m_notCounted.formulas;
    else
        ++m_notCounted.objects;
}

} // namespace Tamberlin
