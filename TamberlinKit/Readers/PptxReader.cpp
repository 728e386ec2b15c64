#include "TamberlinKit/Readers/DrawingReader.h"
#include "TamberlinKit/Readers/OfficeMarkup.h"
#include "TamberlinKit/Readers/ProtectedPackage.h"
#include "TamberlinKit/Readers/Readers.h"

#include <fmt/format.h>

#include <set>

namespace Tamberlin {

namespace {

constexpr std::string_view kind = "PowerPoint (.pptx)";

// The slides in the order in which they are shown.
std::vector<std::string> slides(const Package& package, Extracted& extracted)
{
    const auto path = mainPart(package, "ppt/presentation.xml");
    const auto targets = package.relationships(path);
    std::vector<std::string> slides;
    std::set<std::string_view> seen; // Views of `targets`.
    bool isPresentation = false;
    const auto damage = package.scan(
        path, { .onStart = [&](std::string_view element, const XMLScan::Attributes& attributes) {
            isPresentation |= element == "presentation";
            if (element != "sldId")
                return;
            const auto target = targets.find(std::string(attributes.valueOr("r:id", "")));
            if (target != targets.end() && seen.insert(target->second).second)
                slides.push_back(target->second);
        } });
    if (!isPresentation)
        throw ReadError(fmt::format(
            "“{}” isn’t a {} file that can be read (it has no presentation).", package.name(), kind));
    addNote(extracted, damage);
    return slides.empty() ? package.related(path, "slide") : slides;
}

} // namespace

Extracted readPptx(std::string_view file, std::string name, const std::stop_token& cancel)
{
    const auto package = openPackage(file, name, kind, cancel);
    Extracted extracted { .name = std::move(name), .format = FileFormat::pptx };
    DrawingReader drawings(package, extracted);
    const auto paths = slides(package, extracted);
    extracted.pages = static_cast<std::int64_t>(paths.size());
    for (const auto& slide : paths) {
        // Text boxes are as much the slide’s main text as its placeholders are: nothing else is on a slide.
        const bool isHidden = drawings.read(slide, {});
        const auto notes = isHidden ? Part::hidden : Part::slideNotes;
        for (const auto& page : package.related(slide, "notesSlide"))
            drawings.read(page,
                { .text = notes,
                    .margins = isHidden ? Part::hidden : Part::headersFooters,
                    .graphics = notes,
                    .hasOwnNumber = false });
        for (const auto& comments : package.related(slide, "comments")) // Of the old and of the new kind.
            drawings.read(comments, { .text = Part::comments, .graphics = Part::comments });
    }
    drawings.addNotes({}, false);
    return extracted;
}

} // namespace Tamberlin
