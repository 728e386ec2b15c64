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

AnalysisReport report(const Analysis& analysis)
{
    AnalysisReport report { analysis, {} };
    for (const auto& check : analysis.mismatches())
        report.mismatches.push_back({ check.file.value_or("report"), check.bandWords, check.statedWords });
    return report;
}

void readAnalysis(Command& command, const std::string& file, const std::string& job)
{
    const auto fail = [&](const std::string& message) {
        if (command.json)
            Command::put(Base::toJson(FailedReport { message }));
        throw Refusal(message);
    };
    std::string bytes;
    try {
        bytes = Importer::load(file);
    } catch (const ImportError& error) {
        fail(error.what());
    }
    const auto name = Importer::displayName(file);
    const auto result = Importer::import(bytes, name, Base::Instant::now());
    if (const auto* const failed = std::get_if<ImportFailed>(&result))
        fail(failed->message);
    auto analysis = std::get<Analysis>(result);
    if (!job.empty()) {
        auto session = command.writing();
        const auto id = findJob(session.library(), job).id;
        session.attachAnalysis(id, analysis, bytes, name);
        Command::tell(session);
        analysis = session.library().job(id)->analyses.back();
    }
    command.print(report(analysis), analysisText(analysis));
}

} // namespace

void addAnalysisVerbs(CLI::App& app, Command& command)
{
    auto* const analysis = app.add_subcommand("analysis", "Read the analysis report of a CAT tool");
    const auto file = std::make_shared<std::string>(), job = std::make_shared<std::string>();
    analysis->add_option("FILE", *file, "The report")->required();
    analysis->add_option("--attach", *job, "Keep it, with a copy of the report, with this job");
    analysis->callback([&command, file, job] { readAnalysis(command, *file, *job); });
}

} // namespace Pallisande::CommandLine
