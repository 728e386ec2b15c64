#include "PallisandeKit/Samples/SampleReport.h"
#include "Tests/Pallisande/ModelWorld.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;
using namespace Pallisande;
using ::Test::decimal;
using ::Test::id;
using ::Test::World;

namespace {

using IDs = std::vector<Base::Uuid>;

constexpr std::string_view unknownTable = "Datei;Neue Einheiten\na.docx;100\nb.docx;50\n";

// A sparse file of that size: nothing of it is on disk.
fs::path fileOfSize(const World& world, std::uintmax_t size)
{
    const auto file = world.root / "report.csv";
    ::Test::writeFile(file, "");
    fs::resize_file(file, size);
    return file;
}

} // namespace

TEST(AppModelJobs, aJobNeedsAClient)
{
    World world;
    auto& model = world.start();
    model.jobs().openNewJob();
    EXPECT_EQ(
        world.problem(), "Add a client first: a job belongs to a client, whose rates and weights price it.");
    EXPECT_EQ(model.problem()->action, Problem::Action::newClient);
    EXPECT_FALSE(model.sheet());

    ASSERT_TRUE(model.clients().add());
    const auto report = world.root / "From a drop.xml";
    ::Test::writeFile(report, sampleTradosReport);
    model.jobs().openNewJob("From a drop", report);
    ASSERT_TRUE(model.sheet());
    auto entry = model.jobs().proposal();
    EXPECT_EQ(entry.clientID, model.library().clients.front().id);
    entry.title = "From a drop";
    ASSERT_TRUE(model.jobs().add(entry)); // The report is read once the job is there.
    ASSERT_TRUE(model.imports().pending());
    EXPECT_EQ(model.imports().pending()->jobID, model.selection(AppSection::jobs));
    EXPECT_TRUE(std::holds_alternative<ReviewSheet>(*model.sheet()));
}

TEST(AppModelJobs, statusIsSetForAllOrNone)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    ASSERT_TRUE(model.jobs().setStatus(IDs { id(11) }, JobStatus::inProgress));
    const auto before = model.library();
    EXPECT_FALSE(model.jobs().setStatus(IDs { id(12), id(11) }, JobStatus::quote));
    EXPECT_EQ(world.problem(), "A job can’t go from Delivered to Quote by hand.");
    EXPECT_EQ(model.library(), before);
    EXPECT_TRUE(model.jobs().mayHaveStatus(id(11), JobStatus::delivered));
    EXPECT_FALSE(model.jobs().mayHaveStatus(id(11), JobStatus::invoiced));
}

TEST(AppModelJobs, whatWasBilledIsLocked)
{
    for (const bool isIssued : { false, true }) {
        World world;
        auto& model = world.start(::Test::sampleLibrary());
        model.invoices().makeDraft(IDs { id(11) });
        if (isIssued)
            model.invoices().issue(*model.selection(AppSection::invoices), world.now, std::nullopt);
        const std::string lock
            = isIssued ? "This job is on INV-2026-001." : "This job is on a draft invoice.";
        const auto before = model.library();
        const std::vector<std::function<bool()>> refused {
            [&] { return model.jobs().edit(id(11), "a", [](Job& job) { job.surchargePercent = 5; }); },
            [&] { return model.jobs().edit(id(11), "b", [](Job& job) { job.clientID = id(2); }); },
            [&] { return model.jobs().edit(id(11), "c", [](Job& job) { job.deliveredAt.reset(); }); },
            [&] { return model.jobs().addExtra(id(11)); },
            [&] { return model.jobs().removeAnalysis(id(11), id(900)); },
            [&] {
                return model.jobs().typeCounts(id(11), "", { .words = { { MatchBand::exact, 1 } } });
            },
            [&] {
                return model.jobs().remove(IDs { id(12), id(11) });
            },
        };
        for (const auto& attempt : refused) {
            model.dismissProblem();
            EXPECT_FALSE(attempt());
            EXPECT_EQ(world.problem(), lock);
        }
        EXPECT_EQ(model.library(), before);
        EXPECT_TRUE(model.jobs().edit(id(11), "Change Notes", [](Job& job) { job.notes = "Still mine"; }));
    }
}

TEST(AppModelJobs, addingALineAndFillingItInAreTwoSteps)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    ASSERT_TRUE(model.jobs().addExtra(id(11), { .quantity = 1 }));
    const auto line = model.job(id(11))->extras.front().id;
    for (const int price : { 4, 40 })
        ASSERT_TRUE(model.jobs().editExtra(id(11), line, [&](ExtraLine& extra) { extra.unitPrice = price; }));
    model.undo();
    EXPECT_EQ(model.job(id(11))->extras.front().unitPrice, Base::Decimal());
    model.undo();
    EXPECT_TRUE(model.job(id(11))->extras.empty());
}

TEST(AppModelJobs, aDuplicateStartsAsAQuote)
{
    World world;
    auto library = ::Test::sampleLibrary();
    library.jobs[0].deadline = world.now;
    library.jobs[0].targetUnits = 7;
    auto& model = world.start(library);
    model.jobs().giveQuoteNumber(id(11));
    ASSERT_TRUE(model.jobs().duplicate(id(11)));
    const auto copy = *model.job(*model.selection(AppSection::jobs));
    EXPECT_EQ(copy.status, JobStatus::quote);
    EXPECT_EQ(std::tuple(copy.deadline, copy.deliveredAt, copy.targetUnits, copy.quoteNumber, copy.invoiceID),
        std::tuple(std::nullopt, std::nullopt, std::nullopt, std::nullopt, std::nullopt));
    EXPECT_EQ(copy.title, "Job 11");
    EXPECT_EQ(copy.analyses.front().rows, library.jobs[0].analyses.front().rows);
    EXPECT_NE(copy.analyses.front().id, library.jobs[0].analyses.front().id);
}

TEST(AppModelImport, aReportIsReviewedAttachedAndItsCopyKept)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    const auto report = world.root / "Analyse Dateien.xml";
    ::Test::writeFile(report, sampleTradosReport);
    world.answer = { report };
    model.imports().choose(id(11));
    EXPECT_EQ(
        world.asked.message, "Choose a CAT analysis: Trados Studio XML, memoQ CSV, or Phrase CSV or JSON.");
    ASSERT_TRUE(model.imports().pending());
    EXPECT_FALSE(model.imports().pending()->isThereAlready);
    const auto added = *model.imports().priceWith(false), alone = *model.imports().priceWith(true);
    EXPECT_EQ(added - alone, decimal("100"));
    ASSERT_TRUE(model.imports().accept(false));
    EXPECT_FALSE(model.sheet());
    EXPECT_EQ(model.saveState(), SaveState::saved);
    ASSERT_EQ(model.job(id(11))->analyses.size(), 2u);
    const auto copy = *model.job(id(11))->analyses.back().storedCopy;
    EXPECT_EQ(::Test::fileText(world.library / copy), sampleTradosReport);
    EXPECT_NE(world.document().find("Analyse Dateien"), std::string::npos);

    fs::rename(report, world.root / "Renamed.xml"); // Its bytes are known.
    model.imports().read(id(11), { world.root / "Renamed.xml" });
    ASSERT_TRUE(model.imports().pending()->isThereAlready);
    ASSERT_TRUE(model.imports().accept(true));
    EXPECT_EQ(model.job(id(11))->analyses.size(), 1u);
    model.undo();
    EXPECT_EQ(model.job(id(11))->analyses.size(), 2u);
    model.undo();
    EXPECT_EQ(model.library(), ::Test::sampleLibrary());
    EXPECT_TRUE(fs::exists(world.library / copy)); // Files are not undone.
}

TEST(AppModelImport, refusalsAndTheirWords)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    model.imports().read(id(11), { fileOfSize(world, 52'428'801) });
    EXPECT_EQ(world.problem(), "“report.csv” is larger than 50 MB, which is too big for an analysis report.");
    EXPECT_FALSE(model.imports().pending());
    model.dismissProblem();
    model.imports().read(id(11), { fileOfSize(world, 52'428'800) });
    EXPECT_EQ(world.problem(), "");
    ASSERT_TRUE(model.imports().pending()); // It was read, and is no report.
    EXPECT_TRUE(std::holds_alternative<ImportFailed>(model.imports().pending()->result));
    EXPECT_FALSE(model.imports().accept(false));
    model.imports().discard();

    model.imports().read(id(11), { world.root / "gone.xml" });
    EXPECT_EQ(world.problem(), "“gone.xml” couldn’t be opened: No such file or directory");
    EXPECT_EQ(model.library(), ::Test::sampleLibrary());
}

TEST(AppModelImport, severalReportsAreReviewedOneAfterTheOther)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    const auto first = world.root / "1.xml", second = world.root / "2.xml";
    ::Test::writeFile(first, sampleTradosReport);
    ::Test::writeFile(second, sampleTradosReport);
    model.imports().read(id(11), { first, world.root / "gone.xml", second });
    EXPECT_EQ(model.imports().pending()->fileName, "1.xml");
    EXPECT_EQ(model.imports().pending()->count, 3u);
    model.imports().accept(false);
    EXPECT_EQ(model.imports().pending()->fileName, "2.xml");
    EXPECT_EQ(model.imports().pending()->number, 3u);
    EXPECT_TRUE(model.imports().pending()->isThereAlready);
    model.imports().discard();
    EXPECT_FALSE(model.imports().pending());
    EXPECT_EQ(model.job(id(11))->analyses.size(), 2u);
}

TEST(AppModelImport, anUnknownTableIsMappedAndMappedAgain)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    ::Test::writeFile(world.root / "table.csv", unknownTable);
    model.imports().read(id(11), { world.root / "table.csv" });
    ASSERT_TRUE(model.imports().pending());
    const auto* needed = std::get_if<NeedsMapping>(&model.imports().pending()->result);
    ASSERT_TRUE(needed);
    auto mapping = needed->table.guess;
    ASSERT_EQ(mapping.columns.size(), 2u);
    for (auto& column : mapping.columns)
        column.role = ColumnRole::ignore;
    model.imports().map(mapping);
    EXPECT_TRUE(model.problem() && model.problem()->isInSheet); // It says why, and waits for another.
    mapping.columns[0].role = ColumnRole::file;
    mapping.columns[1]
        = { mapping.columns[1].heading, ColumnRole::band, MatchBand::noMatch, CountMetric::words };
    model.imports().map(mapping);
    ASSERT_TRUE(model.imports().accept(true)) << world.problem();
    EXPECT_EQ(model.job(id(11))->analyses.front().totals().words.valueOr(MatchBand::noMatch, 0), 150);

    const auto mapped = model.job(id(11))->analyses.front().id;
    model.imports().mapAgain(id(11), mapped);
    ASSERT_TRUE(model.imports().pending());
    mapping.columns[1].band = MatchBand::exact;
    model.imports().map(mapping);
    ASSERT_TRUE(model.imports().accept(false));
    ASSERT_EQ(model.job(id(11))->analyses.size(), 1u); // In the place of the first.
    EXPECT_EQ(model.job(id(11))->analyses.front().totals().words.valueOr(MatchBand::exact, 0), 150);
}

// What can't be stored is neither attached, nor does it replace what was there.
TEST(AppModelImport, aReportWhoseCopyCantBeStoredChangesNothing)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    ::Test::writeFile(world.root / "report.xml", sampleTradosReport);
    ::Test::writeFile(world.library / "Reports", "a file where the folder should be");
    model.imports().read(id(11), { world.root / "report.xml" });
    EXPECT_FALSE(model.imports().accept(true));
    EXPECT_EQ(model.library(), ::Test::sampleLibrary());
    EXPECT_TRUE(model.problem()->isInSheet);
    EXPECT_EQ(model.undoName(), std::nullopt);
}

TEST(AppModelCounts, documentsBecomeAJobAnAnalysisOrATargetCount)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    fs::create_directory(world.root / "Texts");
    ::Test::writeFile(world.root / "Texts" / "a.txt", "One two three. Four five.");
    ::Test::writeFile(world.root / "Texts" / "b.txt", "One two three. Six.");
    ::Test::writeFile(world.root / "Texts" / "c.docx", "not a package");
    const auto newWords
        = [&](const Base::Uuid& job) { return sum(model.job(job)->analyses.back().totals().words); };

    world.answer = { world.root / "Texts" };
    model.counts().choose(DocumentCounts::Purpose::newJob);
    EXPECT_EQ(world.asked.message,
        "Choose the documents to count (Word, PowerPoint, Excel, OpenDocument, PDF, HTML, RTF, text, "
        "subtitles), or "
        "folders of them.");
    ASSERT_TRUE(model.counts().finished());
    EXPECT_TRUE(std::holds_alternative<MakeJobSheet>(*model.sheet()));
    ASSERT_EQ(model.counts().finished()->paths.size(), 2u);
    EXPECT_EQ(model.counts().finished()->batch.failures.size(), 1u);
    EXPECT_EQ(model.counts().finished()->batch.files[1].repeated.words, 3);
    model.counts().take({ world.root / "Texts" / "b.txt" }); // Without the other nothing repeats.
    EXPECT_EQ(model.counts().finished()->batch.files[0].repeated.words, 0);
    EXPECT_EQ(model.counts().priceFor({ .clientID = id(2) }), decimal("0.40"));
    ASSERT_TRUE(model.counts().makeJob({ .title = "Texts", .clientID = id(1) }));
    EXPECT_EQ(newWords(*model.selection(AppSection::jobs)), 4);
    EXPECT_FALSE(model.sheet());
    model.undo();
    EXPECT_EQ(model.library(), ::Test::sampleLibrary()); // Job and counts were one step.

    model.counts().count({ world.root / "Texts" / "a.txt" }, DocumentCounts::Purpose::attach, id(11));
    ASSERT_TRUE(model.counts().attach(id(11)));
    EXPECT_EQ(newWords(id(11)), 5);
    model.counts().count({ world.root / "Texts" / "a.txt" }, DocumentCounts::Purpose::target, id(11));
    EXPECT_EQ(model.job(id(11))->targetUnits, 5);
    EXPECT_FALSE(model.sheet());

    model.counts().count({ world.root / "Texts" / "c.docx" }, DocumentCounts::Purpose::newJob);
    EXPECT_EQ(world.problem(), "None of the chosen files could be counted.");
    EXPECT_FALSE(model.sheet());
}

TEST(AppModelCounts, aCancelledCountLeavesNothing)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    ::Test::writeFile(world.root / "a.txt", "One two three.");
    world.background.isHeld = true;
    model.counts().count({ world.root / "a.txt" }, DocumentCounts::Purpose::newJob);
    ASSERT_TRUE(model.counts().progress());
    EXPECT_EQ(model.counts().progress()->done, 1u);
    model.counts().cancel();
    world.background.letGo();
    EXPECT_FALSE(model.counts().progress());
    EXPECT_FALSE(model.counts().finished());
    EXPECT_FALSE(model.sheet());
    EXPECT_EQ(world.problem(), "");
}

TEST(AppModelClients, keepingRatesAndRefusals)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    model.jobs().giveQuoteNumber(id(12));
    const auto dearer = [](Client& client) { client.defaultRate = decimal("0.2"); };
    const auto effect = model.clients().priceEffect(id(1), dearer);
    EXPECT_EQ(effect.jobs, (IDs { id(11), id(12) }));
    EXPECT_EQ(effect.quoted, 1);
    EXPECT_TRUE(effect.canKeepRates);
    EXPECT_FALSE(
        model.clients()
            .priceEffect(id(1), [](Client& client) { client.weights.percent[MatchBand::noMatch] = 50; })
            .canKeepRates);
    ASSERT_TRUE(model.clients().edit(id(1), "Change Rate", dearer, true));
    EXPECT_EQ(model.job(id(11))->rateOverride, decimal("0.1"));
    EXPECT_EQ(model.jobs().row(id(11)).price, "100.00\u00A0EUR");

    EXPECT_FALSE(model.clients().remove(id(1)));
    EXPECT_EQ(world.problem(), "Nordlicht Verlag has jobs or invoices. Archive the client instead.");
    EXPECT_EQ(model.problem()->action, Problem::Action::archiveClient);
    EXPECT_FALSE(
        model.clients().edit(id(1), "Change Currency", [](Client& client) { client.currency = "euro"; }));
    EXPECT_EQ(world.problem(), "“euro” isn’t a currency code; use three capital letters such as EUR.");
}

TEST(AppModelProfile, logosAreUnderTwoMegabytes)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    const auto logo = world.root / "logo.png";
    ::Test::writeFile(logo, "\x89PNG\r\n\x1A\n");
    fs::resize_file(logo, 2'097'152);
    EXPECT_FALSE(model.profile().setLogo(logo));
    EXPECT_EQ(world.problem(), "Choose a PNG or JPEG under 2 MB for the logo.");
    fs::resize_file(logo, 2'097'151);
    EXPECT_TRUE(model.profile().setLogo(logo));
    ::Test::writeFile(logo, "GIF89a");
    EXPECT_FALSE(model.profile().setLogo(logo));
    EXPECT_TRUE(model.library().profile.sender.logo);
    EXPECT_FALSE(model.profile().setNextNumber(Ledger::Series::invoices, 0));
    EXPECT_EQ(world.problem(), "Numbers start at 1.");
}
