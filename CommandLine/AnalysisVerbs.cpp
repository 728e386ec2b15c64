#include "CommandLine/Command.h"
#include "CommandLine/Table.h"

#include "PallisandeKit/Analyses/Importer.h"

#include <algorithm>

namespace Pallisande::CommandLine {

namespace {

// A failed sum check as scripts read it.
struct Mismatch {
    std::string scope;
    std::int64_t bandWords = 0;
    std::int64_t statedWords = 0;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("scope", &Mismatch::scope),
            Base::field("bandWords", &Mismatch::bandWords),
            Base::field("statedWords", &Mismatch::statedWords),
        };
    }
};

struct AnalysisReport {
    Analysis analysis;
    std::vector<Mismatch> mismatches;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("analysis", &AnalysisReport::analysis),
            Base::field("mismatches", &AnalysisReport::mismatches),
        };
    }
};

struct FailedReport {
    std::string failed;

    static constexpr auto fields() { return std::tuple { Base::field("failed", &FailedReport::failed) }; }
};

struct MappingNeeded {
    NeedsMapping needsMapping;

    static constexpr auto fields()
    {
        return std::tuple { Base::field("needsMapping", &MappingNeeded::needsMapping) };
    }
};

std::string countText(std::optional<std::int64_t> count) { return count ? std::to_string(*count) : "–"; }

std::string bandTable(const Analysis& analysis)
{
    std::vector<Table::Column> columns { { "File" } };
    for (const auto band : allMatchBands)
        columns.push_back({ std::string(label(band)), Table::Align::right });
    columns.push_back({ "Sum", Table::Align::right });
    columns.push_back({ "Report", Table::Align::right });
    Table table(std::move(columns));
    const auto addRow
        = [&](const std::string& name, const BandCounts& counts, std::optional<std::int64_t> stated) {
              std::vector<std::string> row { name };
              for (const auto band : allMatchBands)
                  row.push_back(std::to_string(counts.words.valueOr(band, 0)));
              row.push_back(std::to_string(sum(counts.words)));
              row.push_back(countText(stated));
              table.add(std::move(row));
          };
    for (const auto& row : analysis.rows)
        addRow(row.file, row.counts, row.statedWords);
    addRow("Whole report", analysis.totals(), analysis.statedTotalWords);
    return table.text();
}

std::string analysisText(const Analysis& analysis)
{
    Properties properties;
    properties.add("Analysis", analysis.name);
    properties.add(
        "Source", fmt::format("{} – {}", label(analysis.source), label(verification(analysis.source))));
    properties.add("Target language", analysis.targetLanguage);
    const auto totals = analysis.totals();
    properties.add("Totals",
        fmt::format("{} words, {} segments, {} characters", sum(totals.words), sum(totals.segments),
            sum(totals.characters)));
    auto text = properties.text() + "\n" + bandTable(analysis);
    for (const auto& check : analysis.mismatches())
        text += fmt::format("\nWarning: {}", printable(check.sentence()));
    for (const auto& note : analysis.notes)
        text += fmt::format("\nNote: {}", printable(sentence(note)));
    return text + "\n";
}

AnalysisReport report(Analysis&& analysis)
{
    AnalysisReport report { std::move(analysis), {} };
    for (const auto& check : report.analysis.mismatches())
        report.mismatches.push_back({ check.file.value_or("report"), check.bandWords, check.statedWords });
    return report;
}

// What is guessed of each column, and of each label where the bands stand below each other.
std::string guessText(const ColumnMapping& guess)
{
    const auto meaning = [](ColumnRole role, std::optional<MatchBand> band) {
        return band ? fmt::format("{}: {}", Base::caseName(role), label(*band))
                    : std::string(Base::caseName(role));
    };
    Table columns({ { "Column" }, { "Guess" }, { "Metric" } });
    for (const auto& column : guess.columns)
        columns.add({ column.heading, meaning(column.role, column.band),
            std::string(column.metric ? Base::caseName(*column.metric) : "") });
    auto text = columns.text();
    if (!guess.labels.empty()) {
        Table labels({ { "Label" }, { "Guess" } });
        for (const auto& mapped : guess.labels)
            labels.add({ mapped.label, meaning(mapped.role, mapped.band) });
        text += "\n" + labels.text();
    }
    return text;
}

struct AnalysisOptions {
    std::string file, job, mapping;
    bool isGuess = false;
};

std::optional<ColumnMapping> mappingOf(const AnalysisOptions& options)
{
    if (options.mapping.empty())
        return std::nullopt;
    try {
        return Base::fromJson<ColumnMapping>(Importer::load(options.mapping), {});
    } catch (const Base::DecodingError& error) {
        throw ImportError(fmt::format(
            "“{}” isn’t a mapping of columns: {}", Importer::displayName(options.mapping), error.what()));
    }
}

ImportResult imported(const std::string& bytes, const std::string& name, const AnalysisOptions& options)
{
    const auto now = Base::Instant::now();
    const auto mapping = mappingOf(options);
    return mapping ? Importer::importMapped(bytes, name, *mapping, now) : Importer::import(bytes, name, now);
}

void askForMapping(const Command& command, const NeedsMapping& needed, const AnalysisOptions& options)
{
    if (!options.job.empty())
        throw Refusal(needed.reason);
    command.print(MappingNeeded { needed },
        fmt::format("{}\n\n{}\nSave the guess with --guess, correct it, and read the file with --map.\n",
            printable(needed.reason), guessText(needed.table.guess)));
}

void readAnalysis(Command& command, const AnalysisOptions& options)
{
    const auto name = Importer::displayName(options.file);
    try {
        const auto bytes = Importer::load(options.file);
        if (options.isGuess) {
            const auto reading = mappingOf(options).value_or(ColumnMapping()).reading;
            return Command::put(Base::toJson(Importer::guess(bytes, name, reading).guess));
        }
        auto result = imported(bytes, name, options);
        if (const auto* const failed = std::get_if<ImportFailed>(&result))
            throw ImportError(failed->message);
        if (const auto* const needed = std::get_if<NeedsMapping>(&result))
            return askForMapping(command, *needed, options);
        auto analysis = std::get<Analysis>(std::move(result));
        if (!options.job.empty()) {
            auto session = command.writing();
            const auto id = findJob(session.library(), options.job).id;
            session.attachAnalysis(id, analysis, bytes, name);
            Command::tell(session);
            analysis = session.library().job(id)->analyses.back();
        }
        if (command.json)
            Command::put(Base::toJson(report(std::move(analysis))));
        else
            Command::put(analysisText(analysis));
    } catch (const ImportError& error) {
        if (command.json)
            Command::put(Base::toJson(FailedReport { error.what() }));
        throw Refusal(error.what());
    }
}

} // namespace

void addAnalysisVerbs(CLI::App& app, Command& command)
{
    auto* const analysis = app.add_subcommand("analysis", "Read the analysis report of a CAT tool");
    const auto options = std::make_shared<AnalysisOptions>();
    analysis->add_option("FILE", options->file, "The report")->required();
    auto* const attach
        = analysis->add_option("--attach", options->job, "Keep it, with a copy of the report, with this job");
    analysis->add_option(
        "--map", options->mapping, "Read a table whose columns this file (JSON, as --guess prints it) tells");
    analysis
        ->add_flag("--guess", options->isGuess,
            "Print a guess at the table’s columns, for --map; with --map, by the “reading” that it tells")
        ->excludes(attach);
    analysis->callback([&command, options] { readAnalysis(command, *options); });
}

} // namespace Pallisande::CommandLine
