#include "TamberlinKit/Readers/DrawingReader.h"
#include "TamberlinKit/Readers/OfficeMarkup.h"
#include "TamberlinKit/Readers/ProtectedPackage.h"
#include "TamberlinKit/Readers/Readers.h"
#include "TamberlinKit/Readers/XlsxSheet.h"
#include "TamberlinKit/Readers/XlsxStrings.h"

#include <fmt/format.h>

#include <charconv>

namespace Tamberlin {

namespace {

constexpr std::string_view kind = "Excel (.xlsx)";

struct Sheet {
    std::string path;
    bool isHidden = false;
};

// The sheets in the order of their tabs.
std::vector<Sheet> sheets(const Package& package, const std::string& workbook, Extracted& extracted)
{
    const auto targets = package.relationships(workbook);
    std::vector<Sheet> sheets;
    bool isWorkbook = false;
    const auto damage = package.scan(
        workbook, { .onStart = [&](std::string_view element, const XMLScan::Attributes& attributes) {
            isWorkbook |= element == "workbook";
            if (element != "sheet")
                return;
            const auto target = targets.find(std::string(attributes.valueOr("id", "")));
            if (target != targets.end())
                sheets.push_back({ target->second, attributes.valueOr("state", "visible") != "visible" });
        } });
    if (!isWorkbook)
        throw ReadError(
            fmt::format("“{}” isn’t a {} file that can be read (it has no workbook).", package.name(), kind));
    addNote(extracted, damage);
    if (sheets.empty()) {
        for (auto& path : package.related(workbook, "worksheet"))
            sheets.push_back({ std::move(path) });
    }
    return sheets;
}

// Adds the comments of the old kind. For each thread of comments there is one that tells older programs of
// it; those are left out where the threads are there themselves.
void readComments(const Package& package, const std::string& path, bool hasThreads, Extracted& extracted)
{
    std::vector<bool> isOfThread; // By author.
    RunText run;
    bool isOpen = false, isLeftOut = false;
    std::string text;
    const auto damage = package.scan(path,
        {
            .onStart =
                [&](std::string_view element, const XMLScan::Attributes& attributes) {
                    run.start(element);
                    if (element == "author" || element == "comment")
                        text.clear();
                    if (element == "comment") {
                        const auto author = attributes.valueOr("authorId", "");
                        std::size_t index = isOfThread.size();
                        std::from_chars(author.data(), author.data() + author.size(), index);
                        isLeftOut = hasThreads && index < isOfThread.size() && isOfThread[index];
                    }
                    isOpen = element == "author" || run.isOpen();
                },
            .onEnd =
                [&](std::string_view element) {
                    run.end(element);
                    isOpen = false;
                    if (element == "author")
                        isOfThread.push_back(text.starts_with("tc="));
                    if (element != "comment" || isLeftOut)
                        return;
                    decodeEscapes(text);
                    addSegment(extracted.segments, text, Part::comments);
                },
            .onText =
                [&](std::string_view piece) {
                    if (isOpen)
                        text += piece;
                },
        });
    addNote(extracted, damage);
}

} // namespace

Extracted readXlsx(std::string_view file, std::string name, const std::stop_token& cancel)
{
    const auto package = openPackage(file, name, kind, cancel);
    Extracted extracted { .name = std::move(name), .format = FileFormat::xlsx };
    const auto workbook = mainPart(package, "xl/workbook.xml");
    const auto inOrder = sheets(package, workbook, extracted);
    SharedStrings strings;
    if (const auto paths = package.related(workbook, "sharedStrings"); !paths.empty())
        addNote(extracted, strings.read(package, paths.front()));
    extracted.source.kept = strings.kept();

    DrawingReader drawings(package, extracted);
    WorkbookCounts counts;
    std::set<std::string> seen;
    for (const auto& [path, isHidden] : inOrder) {
        if (!seen.insert(path).second)
            continue;
        if (!package.has(path))
            addNote(
                extracted, fmt::format("Part of {} couldn’t be read ({} is missing).", extracted.name, path));
        SheetText text(extracted.segments, counts, strings, isHidden, extracted.name);
        OneBranch branches;
        addNote(extracted, package.scan(path, branches.scan(text)));
        const auto shapes = isHidden ? Part::hidden : Part::textBoxes;
        for (const auto& drawing : package.related(path, "drawing"))
            drawings.read(drawing, { .text = shapes, .graphics = shapes });
        const auto threads = package.related(path, "threadedComment");
        for (const auto& comments : package.related(path, "comments")) {
            if (seen.insert(comments).second)
                readComments(package, comments, !threads.empty(), extracted);
        }
        for (const auto& comments : threads)
            drawings.read(comments, { .text = Part::comments, .graphics = Part::comments });
    }
    if (counts.otherCells > 0)
        addNote(extracted,
            counts.otherCells == 1
                ? "1 cell with a number, date, truth value or error isn’t counted."
                : fmt::format("{} cells with numbers, dates, truth values or errors aren’t counted.",
                    counts.otherCells));
    drawings.addNotes({ .objects = counts.objects }, true);
    return extracted;
}

} // namespace Tamberlin
