#include "PallisandeKit/Analyses/Importer.h"

#include "Base/DurableFile.h"
#include "Base/Text.h"
#include "PallisandeKit/Analyses/MemoQReport.h"
#include "PallisandeKit/Analyses/PhraseJSON.h"
#include "PallisandeKit/Analyses/PhraseReport.h"
#include "PallisandeKit/Analyses/TradosXML.h"

#include <fmt/format.h>

#include <system_error>

namespace Pallisande::Importer {

namespace {

constexpr std::size_t headBytes = 600;

bool isOneOf(std::string_view extension, std::initializer_list<std::string_view> list)
{
    return std::find(list.begin(), list.end(), extension) != list.end();
}

// A table is a report of a tool that is known, or the user is asked.
ImportResult readTable(std::string_view data, const std::string& name, Base::Instant now)
{
    const DelimitedTable table(data);
    if (PhraseReport::recognizes(table))
        return PhraseReport::read(table, name, now);
    if (MemoQReport::recognizes(table))
        return MemoQReport::read(table, name, now);
    return NeedsMapping { guessMapping(table, name),
        fmt::format(
            "The columns of “{}” aren’t those of a report that Pallisande knows. Say what each of them "
            "holds.",
            name) };
}

// By extension first, so that a spreadsheet or PDF is refused whatever its first bytes look like.
ImportResult read(std::string_view data, const std::string& name, Base::Instant now)
{
    const auto extension = Base::asciiLowered(
        std::filesystem::path(name).extension().string()); // With its full stop, or empty.
    if (isOneOf(extension, { ".xlsx", ".xls", ".xlsm" }))
        throw ImportError(
            fmt::format("Pallisande reads spreadsheets saved as CSV. Open “{}” in Excel or Numbers, "
                        "export it as CSV, and import that file.",
                name));
    if (isOneOf(extension, { ".htm", ".html", ".mht", ".mhtml" }))
        throw ImportError(
            fmt::format("“{}” is a report for reading, not for importing. In Trados save the analysis "
                        "as XML; in memoQ or Phrase export it as CSV.",
                name));
    if (extension == ".pdf")
        throw ImportError(
            "A PDF report can’t be imported. Export the analysis as XML (Trados), CSV (memoQ, Phrase) "
            "or JSON (Phrase).");
    const auto start = Base::validUtf8(data.substr(0, headBytes));
    const auto head = Base::trimmedOfMarks(start);
    if (isOneOf(extension, { ".xml", ".sdlxml" }) || head.starts_with('<'))
        return TradosXML::read(data, name, now);
    if (extension == ".json" || head.starts_with('{') || head.starts_with('['))
        return PhraseJSON::read(data, name, now);
    return readTable(data, name, now);
}

} // namespace

std::string displayName(const std::filesystem::path& file)
{
    return Base::validUtf8(file.filename().string());
}

std::string load(const std::filesystem::path& file)
{
    const auto name = displayName(file);
    try {
        if (Base::fileSize(file) > largestReport)
            throw ImportError(
                fmt::format("“{}” is larger than 50 MB, which is too big for an analysis report.", name));
        return Base::readFile(file, largestReport).bytes;
    } catch (const std::system_error& error) {
        throw ImportError(fmt::format("“{}” couldn’t be opened: {}", name, error.what()));
    } catch (const Base::NotARegularFile& error) {
        throw ImportError(fmt::format("“{}” couldn’t be opened: {}", name, error.what()));
    }
}

ImportResult import(std::string_view data, const std::string& fileName, Base::Instant now)
{
    try {
        return read(data, fileName, now);
    } catch (const ImportError& error) {
        return ImportFailed { error.what() };
    }
}

MappingTable guess(std::string_view data, const std::string& fileName, const TableReading& reading)
{
    return guessMapping(DelimitedTable(data, reading.delimiterMark()), fileName, reading);
}

std::vector<MappedLabel> labelsOf(std::string_view data, const ColumnMapping& mapping)
{
    return Pallisande::labelsOf(DelimitedTable(data, mapping.reading.delimiterMark()), mapping);
}

ImportResult importMapped(
    std::string_view data, const std::string& fileName, const ColumnMapping& mapping, Base::Instant now)
{
    try {
        return readMapped(DelimitedTable(data, mapping.reading.delimiterMark()), mapping, fileName, now);
    } catch (const ImportError& error) {
        return ImportFailed { error.what() };
    }
}

} // namespace Pallisande::Importer
