#include "TamberlinKit/Readers/DrawingReader.h"

#include "TamberlinKit/Readers/DrawingText.h"
#include "TamberlinKit/Readers/OfficeMarkup.h"

#include <fmt/format.h>

#include <algorithm>

namespace Tamberlin {

namespace {

// Gathers what a chart says itself: titles and other texts, and series or categories that were typed into it.
// The names that it takes from its data are left out, as in PowerPoint's own count.
class ChartText {
public:
    ChartText(std::vector<Segment>& segments, Part part)
        : m_segments(segments)
        , m_part(part)
    {
    }

    bool hasData() const { return m_hasData; }

    void start(std::string_view element, const XMLScan::Attributes&)
    {
        // Series and categories that were filtered out are kept in a chart, but not shown.
        if (m_leftOut > 0 || element.starts_with("filtered"))
            ++m_leftOut;
        else if (isData(element)) {
            ++m_dataDepth;
            m_hasData |= element == "strCache" || element == "multiLvlStrCache" || element == "strDim";
        } else if (element == "rich") {
            m_inRich = true;
        } else if (element == "tx" || element == "txData" || element == "strLit") {
            m_isLinked = false;
        } else if (element == "f") { // The value beside a reference to a cell is a copy of it.
            m_isLinked = true;
        } else if (element == "trendline") {
            m_inTrendline = true;
        } else if (isText(element)) {
            m_text.clear();
            m_inText = element != "p";
        } else if (element == "t") {
            m_inText = m_inRich;
        } else if (element == "br") {
            m_text += '\n';
        } else if (element == "fld") { // Names and values of the data.
            m_inField = true;
        }
    }

    void end(std::string_view element)
    {
        if (m_leftOut > 0)
            --m_leftOut;
        else if (isData(element)) {
            --m_dataDepth;
            m_isLinked = false;
        } else if (element == "rich") {
            m_inRich = false;
        } else if (element == "trendline") {
            m_inTrendline = false;
        } else if (isText(element)) {
            if (element != "v" || !m_isLinked)
                addSegment(m_segments, m_text, m_part);
            m_text.clear();
            m_inText = false;
        } else if (element == "t") {
            m_inText = false;
        } else if (element == "fld") {
            m_inField = false;
        }
    }

    void text(std::string_view text)
    {
        if (m_inText && m_leftOut == 0 && m_dataDepth == 0 && !m_inField)
            m_text += text;
    }

private:
    static bool isData(std::string_view element)
    {
        constexpr std::string_view kinds[] { "strCache", "numCache", "multiLvlStrCache", "dlblRangeCache",
            "numLit", "strDim", "numDim" };
        return std::find(std::begin(kinds), std::end(kinds), element) != std::end(kinds);
    }

    bool isText(std::string_view element) const
    {
        return element == "p" || element == "v" || (element == "name" && m_inTrendline);
    }

    std::vector<Segment>& m_segments;
    Part m_part;
    std::size_t m_leftOut = 0, m_dataDepth = 0; // Elements open.
    bool m_hasData = false, m_inRich = false, m_inText = false, m_inField = false;
    bool m_inTrendline = false, m_isLinked = false;
    std::string m_text;
};

} // namespace

bool DrawingReader::read(const std::string& path, const Places& places)
{
    if (!isNew(path))
        return false;
    if (!m_package.has(path)) {
        addNote(
            m_extracted, fmt::format("Part of {} couldn’t be read ({} is missing).", m_package.name(), path));
        return false;
    }
    // Found when needed: most drawings refer to nothing that has text.
    std::optional<std::map<std::string, std::string>> targets;
    const auto target = [&](std::string_view relationship) {
        if (!targets)
            targets = m_package.relationships(path);
        const auto found = targets->find(std::string(relationship));
        return found == targets->end() ? std::string() : found->second;
    };
    DrawingText text(m_extracted.segments, places);
    text.onDiagram = [&](std::string_view id, Part part) { readDiagram(target(id), part); };
    text.onChart = [&](std::string_view id, Part part) { readChart(target(id), part); };
    OneBranch branches;
    addNote(m_extracted, m_package.scan(path, branches.scan(text)));
    m_notCounted.pictures += text.pictures();
    m_notCounted.objects += text.objects();
    return text.isHiddenSlide();
}

// The data of a diagram (SmartArt) has each text once; its drawing may repeat some and leave out others.
void DrawingReader::readDiagram(const std::string& path, Part part)
{
    if (!isNew(path))
        return;
    DrawingText text(m_extracted.segments, { part, part, part });
    OneBranch branches;
    addNote(m_extracted, m_package.scan(path, branches.scan(text)));
}

void DrawingReader::readChart(const std::string& path, Part part)
{
    if (!isNew(path))
        return;
    ChartText text(m_extracted.segments, part);
    OneBranch branches;
    addNote(m_extracted, m_package.scan(path, branches.scan(text)));
    m_read.back().isChartWithData = text.hasData();
    for (const auto& shapes : m_package.related(path, "chartUserShapes"))
        readDiagram(shapes, part);
}

bool DrawingReader::isNew(const std::string& path)
{
    const auto [place, isNew] = m_seen.insert(path);
    if (isNew)
        m_read.push_back({ place });
    return isNew;
}

void DrawingReader::forgetSince(std::size_t partsRead)
{
    for (; m_read.size() > partsRead; m_read.pop_back())
        m_seen.erase(m_read.back().path);
}

void DrawingReader::addNotes(NotCounted elsewhere, bool isWorkbook)
{
    const auto charts
        = std::count_if(m_read.begin(), m_read.end(), [](const Read& read) { return read.isChartWithData; });
    if (charts > 0 && !isWorkbook)
        addNote(m_extracted,
            fmt::format("The names of series and categories in {} belong to the data and aren’t counted.",
                charts == 1 ? "1 chart" : fmt::format("{} charts", charts)));
    elsewhere.pictures += m_notCounted.pictures;
    elsewhere.objects += m_notCounted.objects;
    elsewhere.tell(m_extracted.notes);
}

} // namespace Tamberlin
