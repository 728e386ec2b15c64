// How fast libraries are loaded, written and saved, reports imported and jobs priced, each against a
// reference that is measured in turns with it:
//
//     library-benchmark [--repetitions N] [--folder FOLDER]
//
// RapidJSON and Expat do the least that could be done with the same bytes, Python what one would write
// without us. Only the ratios mean something; seconds differ from machine to machine. Saving is measured in a
// new folder inside FOLDER (the system's for temporary files), which should be on a real disk. Times are of
// the processor, those of saving by the clock on the wall. Exits with 1 when a ratio is worse than it must
// be.

#include "Benchmarks/AllocationCount.h"
#include "Benchmarks/MakeLibrary.h"
#include "Benchmarks/MakeReport.h"
#include "Benchmarks/Measure.h"
#include "PallisandeKit/Analyses/TradosXML.h"
#include "PallisandeKit/Ledger/Ledger.h"
#include "PallisandeKit/Library/LibrarySession.h"
#include "PallisandeKit/Pricing/JobPricing.h"

#include <expat.h>
#include <fmt/format.h>
#include <rapidjson/document.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/stringbuffer.h>

#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <stdexcept>
#include <unistd.h>

namespace Benchmarks {

namespace {

using namespace Pallisande;
namespace fs = std::filesystem;

constexpr std::size_t reportBytes = 45'000'000;
constexpr std::size_t pricesWanted = 20'000;

// A folder that is gone again afterwards.
class ScratchFolder {
public:
    explicit ScratchFolder(const fs::path& parent)
        : m_path((parent / "library-benchmark-XXXXXX").string())
    {
        if (!mkdtemp(m_path.data()))
            throw std::system_error(errno, std::generic_category(), parent.string());
    }
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;
    ~ScratchFolder()
    {
        std::error_code none;
        fs::remove_all(m_path, none);
    }

    fs::path path() const { return m_path; }

private:
    std::string m_path;
};

// Prints the rows as they come and remembers whether any is worse than it must be.
class Table {
public:
    Table()
    {
        fmt::print("{:4} {:44} {:>11} {:>13} {:>7} {:>6} {:>6}\n", "row", "what", "ours ms", "reference ms",
            "ratio", "must", "goal");
    }

    // A ratio of 0 for `must` or `goal`: there is none.
    void add(std::string_view number, std::string_view what, double ours, double reference, double must,
        double goal)
    {
        const auto ratio = ours / reference;
        const bool isMissed = must > 0 && ratio > must;
        const auto verdict = isMissed ? "MISSED" : goal == 0 ? "" : ratio <= goal ? "goal" : "above the goal";
        m_missed = m_missed || isMissed;
        fmt::print("{:4} {:44} {:11.4g} {:13.4g} {:7.3f} {:>6} {:>6}  {}\n", number, what, ours, reference,
            ratio, limit(must), limit(goal), verdict);
        std::fflush(stdout);
    }
    void note(std::string_view what, double milliseconds)
    {
        fmt::print("     {:44} {:11.4g}\n", what, milliseconds);
    }

    bool missed() const { return m_missed; }

private:
    static std::string limit(double ratio) { return ratio == 0 ? "–" : fmt::format("{:.3g}", ratio); }

    bool m_missed = false;
};

void require(bool condition, const char* what)
{
    if (!condition)
        throw std::runtime_error(what);
}

// What Python needs for the same, in milliseconds; 0 where it can't be asked.
double pythonTime(const std::string& arguments)
{
    const std::string python = PALLISANDE_PYTHON;
    if (python.empty())
        return 0;
    const auto command
        = fmt::format("'{}' '{}/python_references.py' {}", python, PALLISANDE_BENCHMARKS, arguments);
    std::FILE* const pipe = popen(command.c_str(), "r");
    if (!pipe)
        return 0;
    char answer[64] {};
    const auto length = std::fread(answer, 1, sizeof answer - 1, pipe);
    pclose(pipe);
    double time = 0;
    std::from_chars(answer, answer + length, time);
    return time;
}

// --- The document

using Document = rapidjson::Document;

Document parsed(const std::string& document)
{
    Document parsed;
    parsed.Parse(document.data(), document.size());
    require(!parsed.HasParseError(), "The reference can’t read the document.");
    return parsed;
}

void loadAndEncode(Table& table, const Library& library, const std::string& document, const fs::path& folder,
    int repetitions)
{
    const auto [load, parse] = alternating(
        Clock::processor, repetitions, [&] { return LibraryStore::decode(document, libraryMoment()); },
        [&] { return parsed(document); });
    table.add("16", "load, against RapidJSON's DOM", load, parse, 2.0, 1.3);
    const auto file = folder / "document.json";
    LibraryStore(folder).save(document);
    fs::rename(folder / LibraryStore::documentName, file);
    if (const auto python = pythonTime(fmt::format("json '{}'", file.string())); python > 0)
        table.add("16b", "load, against Python's json", load, python, 1.0 / 2, 1.0 / 4);

    const auto dom = parsed(document);
    const auto [encode, write] = alternating(
        Clock::processor, repetitions, [&] { return LibraryStore::encode(library); },
        [&] {
            rapidjson::StringBuffer text;
            rapidjson::PrettyWriter writer(text);
            writer.SetIndent(' ', 2);
            dom.Accept(writer);
            return text;
        });
    table.add("17", "encode, against RapidJSON's PrettyWriter", encode, write, 1.5, 0.9);
}

void writeRaw(const std::string& document, const fs::path& folder)
{
    const auto temporary = folder / "raw.tmp";
    const int file = open(temporary.c_str(), O_CREAT | O_TRUNC | O_WRONLY, 0600);
    require(file >= 0, "The folder can’t be written to.");
    for (std::size_t done = 0; done < document.size();) {
        const auto count = write(file, document.data() + done, document.size() - done);
        require(count > 0, "The folder can’t be written to.");
        done += static_cast<std::size_t>(count);
    }
    require(fsync(file) == 0 && close(file) == 0, "The folder can’t be written to.");
    fs::rename(temporary, folder / "raw.json");
}

void save(Table& table, const Library& library, const std::string& document, const fs::path& folder,
    int repetitions)
{
    const LibraryStore store(folder);
    store.save(library);
    auto session = LibrarySession::open(folder, LibrarySession::Access::writing,
        { .now = [] { return libraryMoment().now; }, .calendar = libraryMoment().calendar });
    require(!session.isReadOnly(), "The library can’t be opened for writing.");

    std::vector<double> encodes, writes, saves, sessionSaves;
    for (int repetition = 0; repetition < repetitions; ++repetition) {
        encodes.push_back(timed(Clock::wall, [&] { return LibraryStore::encode(library); }));
        writes.push_back(timed(Clock::wall, [&] { return writeRaw(document, folder), 0; }));
        session.change([](Library&) {});
        sessionSaves.push_back(timed(Clock::wall, [&] { return session.save(), 0; }));
    }
    for (int repetition = 0; repetition < repetitions; ++repetition) {
        writes.push_back(timed(Clock::wall, [&] { return writeRaw(document, folder), 0; }));
        saves.push_back(timed(Clock::wall, [&] { return store.save(library), 0; }));
    }
    const auto allowed = median(encodes) + 1.2 * median(writes);
    table.add("17b", "save (store), against encode + 1.2 raw writes", median(saves), allowed, 0, 1.0);
    table.add("17b", "save (session: hash, checks), against the same", median(sessionSaves), allowed, 0, 1.0);
}

// --- The report

void XMLCALL nothingAtStart(void*, const XML_Char*, const XML_Char**) { }
void XMLCALL nothingAtEnd(void*, const XML_Char*) { }

bool parseReport(const std::string& report)
{
    constexpr std::size_t piece = 64 * 1024;
    const auto parser = XML_ParserCreate(nullptr);
    XML_SetElementHandler(parser, &nothingAtStart, &nothingAtEnd);
    bool isFine = true;
    for (std::size_t at = 0; at < report.size() && isFine; at += piece) {
        const auto count = std::min(piece, report.size() - at);
        isFine = XML_Parse(parser, report.data() + at, static_cast<int>(count), at + count == report.size())
            == XML_STATUS_OK;
    }
    XML_ParserFree(parser);
    return isFine;
}

void importReport(Table& table, const fs::path& folder, int repetitions)
{
    const auto report = makeReport(reportBytes);
    const auto read = [&] { return TradosXML::read(report, "report.xml", libraryMoment().now); };
    require(read().mismatchCount() == 0 && parseReport(report), "The report doesn’t add up.");
    const auto [ours, expat]
        = alternating(Clock::processor, repetitions, read, [&] { return parseReport(report); });
    table.add("18", "report import, against Expat alone", ours, expat, 1.25, 0.5);
    writeRaw(report, folder);
    if (const auto python = pythonTime(fmt::format("xml '{}'", (folder / "raw.json").string())); python > 0)
        table.add("18b", "report import, against Python's iterparse", ours, python, 1.0 / 2, 1.0 / 5);
}

// --- Prices

// The library's jobs with a report, each with one file of it, a surcharge and one extra or none.
std::vector<Job> pricedJobs(const Library& library, bool withExtra)
{
    std::vector<Job> jobs;
    for (const auto& job : library.jobs) {
        if (job.analyses.empty() || job.analyses.front().source != AnalysisSource::tradosXML)
            continue;
        auto& priced = jobs.emplace_back(job);
        auto& report = priced.analyses.front();
        report.rows.resize(1);
        report.statedTotalWords = report.rows.front().statedWords;
        priced.surchargePercent = 25;
        priced.extras.clear();
        if (withExtra)
            priced.extras.push_back({ job.id, "Formatting", Base::Decimal::ofParts(25, -1), "hours",
                Base::Decimal::ofParts(4550, -2) });
    }
    return jobs;
}

std::size_t mostAllocations(const std::vector<Job>& jobs, const std::vector<const Client*>& clients)
{
    std::size_t most = 0;
    for (std::size_t place = 0; place < jobs.size(); ++place) {
        const auto before = allocationCount();
        const auto price = JobPricing::price(jobs[place], *clients[place]);
        most = std::max(most, allocationCount() - before);
    }
    return most;
}

std::vector<const Client*> clientsOf(const Library& library, const std::vector<Job>& jobs)
{
    std::vector<const Client*> clients;
    for (const auto& job : jobs)
        clients.push_back(library.client(job.clientID));
    return clients;
}

void prices(Table& table, const Library& library, int repetitions)
{
    const auto jobs = pricedJobs(library, true);
    const auto clients = clientsOf(library, jobs);
    std::vector<double> times;
    for (int repetition = 0; repetition < repetitions; ++repetition)
        times.push_back(timed(Clock::processor, [&] {
            Base::Decimal total;
            for (std::size_t price = 0; price < pricesWanted; ++price) {
                const auto place = price % jobs.size();
                total += JobPricing::price(jobs[place], *clients[place]).total;
            }
            return total;
        }));
    const auto one = median(times) / static_cast<double>(pricesWanted);
    if (const auto python = pythonTime("price"); python > 0)
        table.add("19", "price of one job, against Python's decimal", one, python, 1.0 / 8, 1.0 / 15);
    fmt::print("     {:44} {:11.0f}\n", "price of one job, in nanoseconds", one * 1e6);

    const auto withExtra = mostAllocations(jobs, clients);
    const auto without = mostAllocations(pricedJobs(library, false), clients);
    fmt::print("     {:44} {:>11}\n", "allocations of a price, with and without extra",
        fmt::format("{}, {}", withExtra, without));
    require(withExtra <= 1 && without == 0, "A price allocates more than it must.");

    const auto all = clientsOf(library, library.jobs);
    table.note("price of every job of the library", timed(Clock::processor, [&] {
        Base::Decimal total;
        for (std::size_t place = 0; place < all.size(); ++place)
            total += JobPricing::price(library.jobs[place], *all[place]).total;
        return total;
    }));
    table.note("status of every invoice", timed(Clock::processor, [&] {
        const auto moment = libraryMoment();
        const Ledger::CreditedAmounts credited(library);
        int open = 0;
        for (const auto& invoice : library.invoices)
            open += Ledger::status(invoice, credited.of(invoice.id), moment.now, moment.calendar)
                == InvoiceStatus::open;
        return open;
    }));
    table.note("numbering check", timed(Clock::processor, [&] { return Ledger::checkNumbering(library); }));
}

bool run(int repetitions, const fs::path& parent)
{
    const auto library = makeLibrary();
    const auto document = LibraryStore::encode(library);
    require(
        LibraryStore::decode(document, libraryMoment()) == library, "The library isn’t read back as it was.");
    require(Ledger::checkNumbering(library).front() == "Numbering checked: no gaps, no repeats.",
        "Numbers are wrong.");
    fmt::print("{} jobs, {} documents, {} bytes; medians of {}\n", library.jobs.size(),
        library.invoices.size(), document.size(), repetitions);

    const ScratchFolder folder(parent);
    Table table;
    loadAndEncode(table, library, document, folder.path(), repetitions);
    save(table, library, document, folder.path(), repetitions);
    importReport(table, folder.path(), repetitions);
    prices(table, library, repetitions);
    return !table.missed();
}

} // namespace

} // namespace Benchmarks

int main(int argumentCount, char** arguments)
{
    int repetitions = 7;
    std::filesystem::path folder = std::filesystem::temp_directory_path();
    const std::vector<std::string_view> words(arguments + 1, arguments + argumentCount);
    for (std::size_t place = 0; place + 1 < words.size(); place += 2) {
        const auto value = words[place + 1];
        if (words[place] == "--repetitions")
            std::from_chars(value.data(), value.data() + value.size(), repetitions);
        else if (words[place] == "--folder")
            folder = value;
    }
    if (words.size() % 2 != 0 || repetitions < 1) {
        fmt::print(stderr, "library-benchmark [--repetitions N] [--folder FOLDER]\n");
        return 2;
    }
    try {
        return Benchmarks::run(repetitions, folder) ? 0 : 1;
    } catch (const std::exception& error) {
        fmt::print(stderr, "{}\n", error.what());
        return 1;
    }
}
