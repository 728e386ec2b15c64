#include "CommandLine/CountVerbs.h"

#include "CommandLine/Table.h"

#include "TamberlinKit/Batch/DocumentList.h"
#include "TamberlinKit/Counting/Counter.h"
#include "TamberlinKit/Quotes/CountCSV.h"
#include "TamberlinKit/Text/ReadError.h"

#include <condition_variable>
#include <csignal>
#include <mutex>
#include <thread>

namespace Pallisande::CommandLine {

namespace {

using Tamberlin::BatchCount;
using Tamberlin::CountOptions;
using Tamberlin::FileCount;
using Tamberlin::Part;
using Tamberlin::RepetitionScope;
using Tamberlin::TextStats;

// What scripts read of a batch.
struct CountReport {
    std::vector<FileCount> files;
    TextStats total;
    TextStats repeated;
    std::vector<Tamberlin::ReadFailure> failures;

    static constexpr auto fields()
    {
        return std::tuple {
            Base::field("files", &CountReport::files),
            Base::field("total", &CountReport::total),
            Base::field("repeated", &CountReport::repeated),
            Base::field("failures", &CountReport::failures),
        };
    }
};

// Ctrl-C asks counting to stop; everything else about signals stays as it is.
class Interruption {
public:
    Interruption()
    {
        s_interrupted = 0;
        std::signal(SIGINT, [](int) { s_interrupted = 1; });
    }
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;
    ~Interruption()
    {
        m_watcher.request_stop();
        m_watcher.join();
        std::signal(SIGINT, SIG_DFL);
    }

    std::stop_token token() const { return m_source.get_token(); }

private:
    static inline volatile std::sig_atomic_t s_interrupted = 0;

    std::stop_source m_source;
    std::mutex m_mutex;
    std::condition_variable_any m_ended; // So that a short count needn't wait until the watcher wakes up.
    std::jthread m_watcher { [this](const std::stop_token& end) {
        std::unique_lock lock(m_mutex);
        while (!end.stop_requested() && !s_interrupted)
            m_ended.wait_for(lock, end, std::chrono::milliseconds(20), [] { return s_interrupted != 0; });
        if (s_interrupted)
            m_source.request_stop();
    } };
};

template <typename Case> Case caseOf(const std::string& text, const char* kind)
{
    for (std::size_t place = 0; place < caseNames(Case {}).size(); ++place) {
        if (caseNames(Case {})[place] == text)
            return static_cast<Case>(place);
    }
    throw Refusal(
        fmt::format("“{}” isn’t a {}; there are {}.", text, kind, fmt::join(caseNames(Case {}), ", ")));
}

CountOptions chosen(const CountArguments& arguments, CountOptions options)
{
    if (!arguments.included.empty())
        options.included = { Part::body };
    for (const auto& part : arguments.included)
        options.included.insert(caseOf<Part>(part, "part of a document"));
    options.countNumbers = options.countNumbers && !arguments.noNumbers;
    options.countMarks = options.countMarks && !arguments.noMarks;
    options.ocrScannedPDFs = options.ocrScannedPDFs || arguments.reads;
    if (!arguments.repetitions.empty())
        options.repetitions = caseOf<RepetitionScope>(arguments.repetitions, "scope of repetitions");
    return options;
}

void putSegments(const Tamberlin::Extracted& file)
{
    std::string text = fmt::format("{} ({})\n", printable(file.name), title(file.format));
    for (const auto& segment : file.segments)
        text += fmt::format("  {:<14} {}\n", Base::caseName(segment.part), printable(segment.text));
    for (const auto& note : file.notes)
        text += fmt::format("  Note: {}\n", printable(note));
    Command::put(text);
}

void count(Command& command, const CountArguments& arguments)
{
    const auto batch = counted(arguments, {});
    if (command.json)
        Command::put(Base::toJson(CountReport { batch.files, Tamberlin::Counter::total(batch.files),
            Tamberlin::Counter::repeated(batch.files), batch.failures }));
    else if (arguments.asCSV)
        Command::put(Tamberlin::countCSV(batch.files));
    else if (!arguments.showsSegments && !batch.files.empty())
        Command::put(countTable(batch));
    tellFailures(batch);
    if (!batch.failures.empty())
        throw Refusal(batch.failures.size() == 1
                ? "One file wasn’t counted."
                : fmt::format("{} files weren’t counted.", batch.failures.size()));
}

} // namespace

void addCountOptions(CLI::App& verb, CountArguments& arguments)
{
    verb.add_option("PATH", arguments.paths, "Documents, and folders of them")->required();
    verb.add_option("--include", arguments.included, "Count these parts beside the main text")
        ->delimiter(',');
    verb.add_flag("--no-numbers", arguments.noNumbers, "Numbers are no words");
    verb.add_flag("--no-marks", arguments.noMarks, "Symbols standing alone are no words");
    verb.add_option("--repetitions", arguments.repetitions, "withinFile, acrossFiles or off");
    verb.add_flag("--ocr", arguments.reads, "Read scanned pages of PDFs with text recognition");
    verb.add_option("--threads", arguments.threads, "How many files are read at once (one a core)");
}

BatchCount counted(const CountArguments& arguments, CountOptions options)
{
    std::vector<std::filesystem::path> paths(arguments.paths.begin(), arguments.paths.end());
    const auto files = Tamberlin::documentsIn(paths);
    if (files.empty())
        throw Refusal("There are no documents to count.");
    Tamberlin::BatchOptions batch { .counting = chosen(arguments, std::move(options)),
        .threads = arguments.threads };
    if (arguments.showsSegments)
        batch.onRead = &putSegments;
    const Interruption interruption;
    try {
        return Tamberlin::countBatch(files, batch, interruption.token());
    } catch (const Tamberlin::Cancelled&) {
        throw Refusal("Counting was stopped.");
    }
}

std::string countTable(const BatchCount& batch)
{
    using Align = Table::Align;
    Table table(
        { { "File" }, { "Words", Align::right }, { "Repeated", Align::right }, { "Characters", Align::right },
            { "With spaces", Align::right }, { "CJK", Align::right }, { "Segments", Align::right } });
    const auto add = [&](const std::string& name, const TextStats& total, const TextStats& repeated,
                         bool isAbout) {
        table.add({ name, (isAbout ? "≈ " : "") + std::to_string(total.words), std::to_string(repeated.words),
            std::to_string(total.charactersNoSpaces), std::to_string(total.charactersWithSpaces),
            std::to_string(total.cjkCharacters), std::to_string(total.segments) });
    };
    bool isAbout = false;
    for (const auto& file : batch.files) {
        add(file.name, file.total, file.repeated, file.approximate);
        isAbout = isAbout || file.approximate;
    }
    if (batch.files.size() != 1)
        add("Total", Tamberlin::Counter::total(batch.files), Tamberlin::Counter::repeated(batch.files),
            isAbout);
    auto text = table.text();
    for (const auto& file : batch.files) {
        for (const auto& note : file.notes)
            text += fmt::format("\n{}: {}", printable(file.name), printable(note));
    }
    return text.ends_with('\n') ? text : text + "\n";
}

void tellFailures(const BatchCount& batch)
{
    for (const auto& failure : batch.failures)
        fmt::print(stderr, "{}\n", printable(failure.message));
}

void addCountVerb(CLI::App& app, Command& command)
{
    auto* const verb = app.add_subcommand("count", "Count the words of documents");
    const auto arguments = std::make_shared<CountArguments>();
    addCountOptions(*verb, *arguments);
    verb->add_flag("--segments", arguments->showsSegments, "Show the text that was counted, by part");
    verb->add_flag("--csv", arguments->asCSV, "Print comma-separated values");
    verb->callback([&command, arguments] { count(command, *arguments); });
}

} // namespace Pallisande::CommandLine
