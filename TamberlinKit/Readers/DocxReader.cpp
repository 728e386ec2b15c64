#include "TamberlinKit/Readers/DocxStory.h"
#include "TamberlinKit/Readers/DrawingReader.h"
#include "TamberlinKit/Readers/OfficeMarkup.h"
#include "TamberlinKit/Readers/ProtectedPackage.h"
#include "TamberlinKit/Readers/Readers.h"

#include <fmt/format.h>

#include <set>

namespace Tamberlin {

namespace {

constexpr std::string_view kind = "Word (.docx)";

// Reads the stories of a Word document one after the other, each part once.
class DocxReader {
public:
    DocxReader(const Package& package, Extracted& extracted)
        : m_package(package)
        , m_extracted(extracted)
        , m_main(mainPart(package, "word/document.xml"))
        , m_drawings(package, extracted)
    {
    }

    void read()
    {
        for (const auto& path : m_package.related(m_main, "styles"))
            addNote(m_extracted, m_styles.read(m_package, path));
        const bool isWhole = readStory(m_main, Part::body);
        readHeaders(isWhole);
        for (const auto type : { "footnotes", "endnotes" })
            readRelated(type, Part::footnotes);
        readRelated("comments", Part::comments);
        std::erase_if(m_extracted.segments, [](const Segment& segment) { return segment.text.empty(); });
        addFindings();
    }

private:
    // Gives whether the part wasn’t damaged.
    bool readStory(const std::string& path, Part part)
    {
        if (!m_seen.insert(path).second)
            return true;
        const auto segments = m_extracted.segments.size(), drawings = m_drawings.partsRead();
        const auto findings = m_findings;
        const auto end = scanStory(path, part, DocxStory::Fields::known);
        if (end == End::unendedCode) {
            m_extracted.segments.resize(segments);
            m_findings = findings;
            m_drawings.forgetSince(drawings);
            scanStory(path, part, DocxStory::Fields::ignored);
        }
        return end != End::damaged;
    }

    enum class End { sound, damaged, unendedCode };
    End scanStory(const std::string& path, Part part, DocxStory::Fields fields)
    {
        std::optional<std::map<std::string, std::string>> targets; // Most stories refer to no drawings.
        const auto onDrawing = [&](DocxElement element, std::string_view relationship, Part place) {
            if (!targets)
                targets = m_package.relationships(path);
            const auto target = targets->find(std::string(relationship));
            if (target == targets->end())
                return;
            if (element == DocxElement::chart)
                m_drawings.readChart(target->second, place);
            else
                m_drawings.readDiagram(target->second, place);
        };
        DocxStory story(part, fields, m_styles, m_extracted.segments, m_findings, onDrawing);
        const auto damage = m_package.scan(path,
            {
                .onStart = [&](std::string_view element,
                               const XMLScan::Attributes& attributes) { story.start(element, attributes); },
                .onEnd = [&](std::string_view) { story.end(); },
                .onText = [&](std::string_view text) { story.text(text); },
            });
        if (part == Part::body && !story.isWordDocument() && !damage)
            throw ReadError(fmt::format(
                "“{}” isn’t a {} file that can be read (it has no main text).", m_package.name(), kind));
        addNote(m_extracted, damage);
        return damage ? End::damaged : story.hasUnendedCode() ? End::unendedCode : End::sound;
    }

    void readRelated(std::string_view type, Part part)
    {
        for (const auto& path : m_package.related(m_main, type))
            readStory(path, part);
    }

    // Those that sections use, in their order. The last section is told of at the end of the main part, so
    // when that is damaged, all that there are.
    void readHeaders(bool isMainWhole)
    {
        const auto targets = m_package.relationships(m_main);
        const auto used = std::move(m_findings.headers);
        for (const auto& relationship : used) {
            if (const auto target = targets.find(relationship); target != targets.end())
                readStory(target->second, Part::headersFooters);
        }
        if (isMainWhole)
            return;
        for (const auto type : { "header", "footer" })
            readRelated(type, Part::headersFooters);
    }

    void addFindings()
    {
        m_drawings.addNotes(m_findings.notCounted, false);
        struct {
            std::int64_t count;
            std::string_view one, several;
        } const sentences[] {
            { m_findings.insertedFiles, "A file that was inserted as a whole isn’t counted.",
                "{} files that were inserted as a whole aren’t counted." },
            { m_findings.subdocuments, "A subdocument isn’t counted; count its file too.",
                "{} subdocuments aren’t counted; count their files too." },
        };
        for (const auto& [count, one, several] : sentences) {
            if (count > 0)
                m_extracted.notes.push_back(
                    count == 1 ? std::string(one) : fmt::format(fmt::runtime(several), count));
        }
    }

    const Package& m_package;
    Extracted& m_extracted;
    std::string m_main;
    DocxStyles m_styles;
    DocxFindings m_findings;
    DrawingReader m_drawings;
    std::set<std::string> m_seen; // Stories that were read.
};

} // namespace

Extracted readDocx(std::string_view file, std::string name, const std::stop_token& cancel)
{
    const auto package = openPackage(file, name, kind, cancel);
    Extracted extracted { .name = std::move(name), .format = FileFormat::docx };
    DocxReader(package, extracted).read();
    return extracted;
}

} // namespace Tamberlin
