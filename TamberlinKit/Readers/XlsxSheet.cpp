#include "TamberlinKit/Readers/XlsxSheet.h"

#include "TamberlinKit/Readers/OfficeMarkup.h"
#include "TamberlinKit/Text/ReadError.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>

namespace Tamberlin {

namespace {

constexpr std::size_t mostColumns = 16'384; // Excel's own limit.
constexpr std::uint64_t mostBytes = 300'000'000; // Of segments from cells, their text included.

std::size_t columnAttribute(std::optional<std::string_view> attribute)
{
    std::size_t column = 0;
    if (attribute)
        std::from_chars(attribute->data(), attribute->data() + attribute->size(), column);
    return std::min(column, mostColumns);
}

// The column of a reference such as "BC7", counted from 1.
std::optional<std::size_t> columnOf(std::string_view reference)
{
    std::size_t column = 0;
    for (const char letter : reference) {
        if (letter < 'A' || letter > 'Z' || column > mostColumns)
            break;
        column = column * 26 + static_cast<std::size_t>(letter - 'A') + 1;
    }
    return column > 0 && column <= mostColumns ? std::optional(column) : std::nullopt;
}

bool isDigit(char letter) { return letter >= '0' && letter <= '9'; }

} // namespace

std::array<std::string, 3> headerSections(std::string_view written)
{
    std::array<std::string, 3> sections;
    std::size_t section = 1; // What stands before any code is in the middle.
    const auto drop = [&](auto accept) {
        while (!written.empty() && accept(written.front()))
            written.remove_prefix(1);
    };
    while (!written.empty()) {
        const char letter = written.front();
        written.remove_prefix(1);
        if (letter != '&') {
            sections[section] += letter;
            continue;
        }
        if (written.empty())
            break;
        const char code = written.front();
        written.remove_prefix(1);
        if (code == '&') {
            sections[section] += '&';
        } else if (code == 'L' || code == 'C' || code == 'R') {
            section = code == 'L' ? 0 : code == 'C' ? 1 : 2;
        } else if (code == '"') { // A font and its style.
            const auto end = written.find('"');
            written.remove_prefix(end == written.npos ? written.size() : end + 1);
        } else if (code == 'K') { // A colour: six digits, or one of the theme and its tint.
            written.remove_prefix(std::min<std::size_t>(6, written.size()));
        } else if (isDigit(code)) { // A size.
            drop(&isDigit);
        } else if (code == 'P' && written.size() > 1 && (written[0] == '+' || written[0] == '-')
            && isDigit(written[1])) { // The page's number and what is added to it.
            written.remove_prefix(1);
            drop(&isDigit);
        }
    }
    return sections;
}

SheetText::SheetText(std::vector<Segment>& segments, WorkbookCounts& counts, const SharedStrings& strings,
    bool isHidden, std::string_view workbook)
    : m_segments(segments)
    , m_counts(counts)
    , m_strings(strings)
    , m_isHidden(isHidden)
    , m_workbook(workbook)
{
}

void SheetText::start(std::string_view element, const XMLScan::Attributes& attributes)
{
    if (element == "c") {
        startCell(attributes);
    } else if (m_cell != Cell::none) {
        m_run.start(element);
        m_isOpen = m_cell == Cell::inlined ? m_run.isOpen() : element == "v";
    } else if (element == "row") {
        m_column = 0;
        m_isRowHidden = isOn(attributes.find("hidden"));
    } else if (element == "col") {
        if (isOn(attributes.find("hidden")))
            hideColumns(attributes);
    } else if (element == "headerFooter") {
        m_hasEven = isOn(attributes.find("differentOddEven"));
        m_hasFirst = isOn(attributes.find("differentFirst"));
    } else if (element == "customSheetViews") { // They have headers and footers of their own, for one user.
        m_isCustomView = true;
    } else if ((element.ends_with("Header") || element.ends_with("Footer")) && !m_isCustomView) {
        m_text.clear();
        m_isOpen = true;
    } else if (element == "oleObject") {
        ++m_counts.objects;
    }
}

void SheetText::startCell(const XMLScan::Attributes& attributes)
{
    m_column = columnOf(attributes.valueOr("r", "")).value_or(std::min(m_column + 1, mostColumns));
    const auto type = attributes.valueOr("t", "n");
    m_cell = type == "s"      ? Cell::shared
        : type == "str"       ? Cell::text
        : type == "inlineStr" ? Cell::inlined
                              : Cell::number;
    m_text.clear();
}

void SheetText::hideColumns(const XMLScan::Attributes& attributes)
{
    const auto first = columnAttribute(attributes.find("min")),
               last = columnAttribute(attributes.find("max"));
    if (last >= m_hiddenColumns.size())
        m_hiddenColumns.resize(last + 1);
    if (first <= last)
        std::fill(m_hiddenColumns.begin() + static_cast<std::ptrdiff_t>(first),
            m_hiddenColumns.begin() + static_cast<std::ptrdiff_t>(last) + 1, true);
}

void SheetText::end(std::string_view element)
{
    if (element == "c") {
        endCell();
    } else if (m_cell != Cell::none) {
        m_run.end(element);
        m_isOpen = false;
    } else if (m_isOpen) {
        endHeader(element);
        m_isOpen = false;
    } else if (element == "customSheetViews") {
        m_isCustomView = false;
    }
}

void SheetText::endCell()
{
    std::string_view text = m_text;
    if (m_cell == Cell::number)
        m_counts.otherCells += !text.empty();
    if (m_cell == Cell::shared)
        text = m_strings.find(text).value_or("");
    else
        decodeEscapes(m_text);
    if (m_cell != Cell::number && !text.empty()) {
        m_counts.bytes += text.size() + sizeof(Segment);
        if (m_counts.bytes > mostBytes)
            throw ReadError(
                fmt::format("“{}” has more than 300 MB of text, which no workbook needs.", m_workbook));
        const bool isHidden
            = m_isHidden || m_isRowHidden || (m_column < m_hiddenColumns.size() && m_hiddenColumns[m_column]);
        const auto part = isHidden ? Part::hidden : Part::body;
        if (m_cell == Cell::shared) // Its bytes may be far away and aren't looked at yet.
            m_segments.push_back({ SegmentText::standing(text), part });
        else
            addSegment(m_segments, text, part);
    }
    m_cell = Cell::none;
    m_isOpen = false;
}

void SheetText::endHeader(std::string_view element)
{
    if ((element.starts_with("even") && !m_hasEven) || (element.starts_with("first") && !m_hasFirst))
        return;
    decodeEscapes(m_text);
    for (const auto& section : headerSections(m_text))
        addSegment(m_segments, section, m_isHidden ? Part::hidden : Part::headersFooters);
}

} // namespace Tamberlin
