#include "PallisandeKit/Samples/SampleLibrary.h"

#include "PallisandeKit/Analyses/FileCounting.h"
#include "PallisandeKit/Analyses/Importer.h"
#include "PallisandeKit/Ledger/Ledger.h"
#include "PallisandeKit/Samples/SampleRecords.h"
#include "PallisandeKit/Samples/SampleReport.h"
#include "PallisandeKit/Samples/SampleStage.h"
#include "TamberlinKit/Quotes/Money.h"

#include <fmt/format.h>

#include <functional>
#include <system_error>

namespace Pallisande {

namespace {

namespace fs = std::filesystem;
using Base::Decimal;
using Base::Uuid;

using Sample::Stage;

class Story {
public:
    explicit Story(Stage& stage)
        : m_stage(stage)
    {
    }

    std::vector<std::string> tell()
    {
        setUp();
        invoicesOfTheLastMonths();
        workInHand();
        deliveries();
        m_stage.clock = m_stage.today;
        m_stage.change([&](Library& library) { library.rates.lastFetched = at(-1, 16); });
        add("{}", Ledger::checkNumbering(m_stage.library()).front());
        return std::move(m_told);
    }

private:
    template <typename... Values> void add(fmt::format_string<Values...> sentence, Values&&... values)
    {
        m_told.push_back(fmt::format(sentence, std::forward<Values>(values)...));
    }

    Base::Day today() const { return m_stage.today.calendar.day(m_stage.today.now); }
    Base::Instant at(int day, int hour) const
    {
        return m_stage.today.calendar.instant(today().plusDays(day), hour, 0);
    }
    // The story goes on at that hour, but never after now.
    void goTo(int day, int hour = 10) { m_stage.clock.now = std::min(at(day, hour), m_stage.today.now); }

    static std::string money(const Decimal& amount, const std::string& currency)
    {
        return fmt::format("{} {}", amount.toString(Tamberlin::Money::minorDigits(currency)), currency);
    }

    void setUp()
    {
        goTo(-120);
        const auto now = m_stage.clock.now;
        const Client clients[] { Sample::publisher(now), Sample::shipping(now), Sample::software(now),
            Sample::museum(now) };
        m_publisher = clients[0].id;
        m_shipping = clients[1].id;
        m_software = clients[2].id;
        m_museum = clients[3].id;
        m_stage.change([&](Library& library) {
            Sample::fillIn(library.profile);
            for (const auto& client : clients)
                Ledger::addClient(library, client);
        });
        add("Clients were added: {}.", std::size(clients));
    }

    // --- Steps

    Uuid takeOn(const Uuid& client, const std::string& title, LanguagePair pair,
        std::optional<Base::Instant> deadline, const std::function<void(Job&)>& fill = {})
    {
        Job job { .id = Uuid::random(),
            .title = title,
            .clientID = client,
            .pair = std::move(pair),
            .received = m_stage.clock.now,
            .deadline = deadline,
            .created = m_stage.clock.now,
            .modified = m_stage.clock.now };
        if (fill)
            fill(job);
        m_stage.change([&](Library& library) { Ledger::addJob(library, job); });
        return job.id;
    }

    void setStatus(const Uuid& job, JobStatus status)
    {
        m_stage.change([&](Library& library) { Ledger::setStatus(library, job, status, m_stage.clock.now); });
    }

    // Begun, and delivered on a later day.
    void deliver(const Uuid& job, int day)
    {
        setStatus(job, JobStatus::inProgress);
        goTo(day, 15);
        setStatus(job, JobStatus::delivered);
    }

    void import(const Uuid& job, const std::string& file, const std::string& report,
        const std::function<void(ColumnMapping&)>& map = {})
    {
        auto result = Importer::import(report, file, m_stage.clock.now);
        if (auto* const asked = std::get_if<NeedsMapping>(&result)) {
            map(asked->table.guess);
            const auto mapping = asked->table.guess;
            result = Importer::importMapped(report, file, mapping, m_stage.clock.now);
        }
        const auto& analysis = std::get<Analysis>(result);
        m_stage.attach(job, analysis, report, file);
        add("“{}” was imported for the job “{}”: {} words.", file, m_stage.library().job(job)->title,
            sum(analysis.totals().words));
    }

    void typeIn(const Uuid& job, const BandCounts& counts)
    {
        const Analysis analysis { .id = Uuid::random(),
            .source = AnalysisSource::manual,
            .name = std::string(label(AnalysisSource::manual)),
            .importedAt = m_stage.clock.now,
            .rows = { { .id = Uuid::random(),
                .file = std::string(label(AnalysisSource::manual)),
                .counts = counts } } };
        m_stage.change(
            [&](Library& library) { Ledger::attachAnalysis(library, job, analysis, m_stage.clock.now); });
    }

    Uuid draft(const Uuid& job)
    {
        Uuid id;
        m_stage.change([&](Library& library) {
            const Uuid jobs[] { job };
            id = Ledger::draftInvoice(library, jobs, m_stage.clock, Tamberlin::DocumentLabels::of("en")).id;
        });
        return id;
    }

    Uuid invoice(const Uuid& job)
    {
        const auto id = draft(job);
        issue(id);
        return id;
    }

    void issue(const Uuid& id)
    {
        m_stage.issue(id);
        const auto& document = *m_stage.library().invoice(id);
        add("{} was issued: {}.", *document.number, money(document.total(), document.currency));
    }

    void pay(const Uuid& id, const Decimal& amount, const std::string& note,
        std::optional<Decimal> receivedHome = std::nullopt)
    {
        m_stage.change([&](Library& library) {
            Ledger::addPayment(library, id,
                { .id = Uuid::random(),
                    .date = m_stage.clock.now,
                    .amount = amount,
                    .receivedHome = receivedHome,
                    .note = note },
                m_stage.clock);
        });
        const auto& paid = *m_stage.library().invoice(id);
        add("{} arrived for {}: it is now “{}”.", money(amount, paid.currency), *paid.number,
            label(Ledger::status(m_stage.library(), paid, m_stage.clock)));
    }

    // --- What was invoiced, oldest first

    void invoicesOfTheLastMonths()
    {
        goTo(-80);
        const auto catalogue = takeOn(m_publisher, "Spring catalogue", { "de", "en" }, at(-71, 17),
            [](Job& job) { job.reference = "PO 4588"; });
        import(catalogue, "Spring catalogue.csv",
            sampleMemoQReport({ { "Catalogue.indd",
                                    { 0,
                                        310,
                                        228,
                                        154,
                                        96,
                                        140,
                                        61,
                                        88,
                                        2140 } },
                { "Cover.indd",
                    { 0,
                        0,
                        12,
                        4,
                        0,
                        9,
                        0,
                        0,
                        46 } } }));
        deliver(catalogue, -70);
        goTo(-69);
        const auto first = invoice(catalogue);
        goTo(-48);
        pay(first, m_stage.library().invoice(first)->total(), "Bank transfer");

        goTo(-60);
        const auto handbook = takeOn(m_shipping, "Crew handbook", { "en", "sv" }, at(-56, 12), [](Job& job) {
            job.reference = "HL-2209";
            job.targetUnits = 3120;
        });
        deliver(handbook, -56);
        m_stage.change([&](Library& library) {
            Ledger::addTypedRate(library,
                { .id = Uuid::random(),
                    .from = "GBP",
                    .to = "EUR",
                    .rate = Decimal::ofParts(11712, -4),
                    .date = m_stage.clock.calendar.noon(m_stage.clock.now),
                    .source = TypedByUser { "bank rate" },
                    .recordedAt = m_stage.clock.now });
        });
        goTo(-55);
        invoice(handbook); // Nobody has paid it.

        goTo(-44);
        const auto leaflet = takeOn(m_publisher, "Product leaflet", { "de", "en" }, at(-41, 17));
        typeIn(leaflet, { .words = { { MatchBand::repetitions, 40 }, { MatchBand::noMatch, 610 } } });
        deliver(leaflet, -41);
        goTo(-40);
        const auto credited = invoice(leaflet);
        goTo(-36);
        creditAll(credited, leaflet);

        goTo(-30);
        const auto guide = takeOn(m_museum, "Museum guide", { "ja", "de" }, at(-22, 9));
        typeIn(guide, { .characters = { { MatchBand::repetitions, 380 }, { MatchBand::noMatch, 9240 } } });
        deliver(guide, -22);
        goTo(-20);
        invoice(guide); // Before the first day that has rates.

        goTo(-16);
        m_stage.change([&](Library& library) {
            library.rates.merge(Sample::rates(today(), m_stage.today.calendar), m_stage.today);
        });
        const auto notes = takeOn(m_software, "Release notes 4.1", { "en-US", "de" }, at(-13, 18),
            [](Job& job) { job.surchargePercent = 10; });
        import(notes, "release-notes-4.1.csv",
            samplePhraseCSV({ { "notes-4.1.md | en_us>de_de",
                                  { 0,
                                      122,
                                      64,
                                      210,
                                      33,
                                      0,
                                      41,
                                      0,
                                      1385 } },
                { "known-issues.md | en_us>de_de",
                    { 0,
                        15,
                        8,
                        22,
                        0,
                        17,
                        0,
                        12,
                        402 } } }));
        deliver(notes, -13);
        goTo(-12);
        const auto partly = invoice(notes);
        goTo(-4);
        pay(partly, 150, "First instalment", Decimal::ofParts(13560, -2));
    }

    // The order was called off: the invoice is credited in full and the job cancelled.
    void creditAll(const Uuid& invoiceID, const Uuid& job)
    {
        Uuid id;
        m_stage.change([&](Library& library) {
            auto note = Ledger::makeCreditNote(
                library, invoiceID, m_stage.clock, Tamberlin::DocumentLabels::of("en"));
            note.notes = "The leaflet was called off.";
            Ledger::editDraft(library, note, m_stage.clock.now);
            id = note.id;
        });
        issue(id);
        setStatus(job, JobStatus::cancelled);
    }

    // --- What is still to be done

    void workInHand()
    {
        goTo(-9);
        const auto report
            = takeOn(m_publisher, "Annual report, part 2", { "de", "en" }, at(-3, 17), [](Job& job) {
                  job.reference = "PO 4711";
                  job.surchargePercent = 10;
                  job.extras.push_back({ .id = Uuid::random(),
                      .title = "Layout check",
                      .quantity = Decimal::ofParts(15, -1),
                      .unit = "hours",
                      .unitPrice = 45 });
                  job.notes = "Glossary follows; ask for the tables.";
              });
        import(report, "Analyze Files de-DE_en-GB.xml", std::string(sampleTradosReport));
        setStatus(report, JobStatus::inProgress);

        goTo(-4);
        const auto brochure = takeOn(m_publisher, "Trade fair brochure", { "de", "en" }, endOfToday());
        count(brochure);
        setStatus(brochure, JobStatus::inProgress);

        goTo(-3, 11);
        const auto notes = takeOn(m_software, "Release notes 4.2", { "en-US", "de" }, at(1, 17));
        import(notes, "release-notes-4.2.json",
            samplePhraseJSON({ "notes-4.2.md",
                { 0,
                    96,
                    40,
                    180,
                    22,
                    31,
                    0,
                    18,
                    930 } }));
        m_stage.change([&](Library& library) { Ledger::giveQuoteNumber(library, notes, m_stage.clock); });

        goTo(-2);
        const auto sheet = takeOn(m_shipping, "Safety data sheet", { "en", "sv" }, at(4, 12));
        import(sheet, "safety-data-sheet.csv",
            samplePhraseCSV(
                { { "sds-7.docx | en>sv",
                    { 0,
                        0,
                        44,
                        62,
                        0,
                        0,
                        0,
                        20,
                        780 } } }));
        setStatus(sheet, JobStatus::inProgress);

        goTo(-1);
        const auto store = takeOn(m_software, "App store texts", { "en-US", "de" }, at(20, 17));
        import(store, "store-texts.csv",
            sampleTable({ { "ios.txt", { 0, 20, 31, 60, 14, 0, 9, 0, 410 } },
                { "android.txt", { 0, 180, 12, 22, 0, 8, 0, 0, 95 } } }),
            [](ColumnMapping& mapping) {
                mapping.columns[1]
                    = { mapping.columns[1].heading, ColumnRole::band, MatchBand::context, CountMetric::words };
    });
    const auto labels = takeOn(m_museum, "Exhibition labels", { "ja", "de" }, std::nullopt);
    typeIn(labels, { .characters = { { MatchBand::noMatch, 2860 } } });
    setStatus(labels, JobStatus::inProgress);
}

// On time, whatever the hour is now.
Base::Instant
endOfToday() const
{
    const bool isLate = m_stage.today.now >= at(0, 18);
    return isLate ? m_stage.today.calendar.instant(today(), 23, 59) : at(0, 18);
}

void count(const Uuid& job)
{
    using Tamberlin::FileFormat;
    const Tamberlin::BatchCount batch { .files = { { .id = 0,
                                                       .name = "brochure.docx",
                                                       .format = FileFormat::docx,
                                                       .total = { 1840, 9890, 11720, 0, 141 },
                                                       .repeated = { 160, 860, 1020, 0, 14 } },
                                            { .id = 1,
                                                .name = "map.pdf",
                                                .format = FileFormat::pdf,
                                                .total = { 96, 540, 630, 0, 31 },
                                                .repeated = {},
                                                .approximate = true } } };
    m_stage.change([&](Library& library) {
        Ledger::attachAnalysis(
            library, job, FileCounting::analysis(batch, m_stage.clock.now), m_stage.clock.now);
    });
}

// --- What was delivered lately

void deliveries()
{
    const auto website = takeOn(m_software, "Website, about us", { "en-US", "de" }, at(0, 9));
    typeIn(website, { .words = { { MatchBand::exact, 120 }, { MatchBand::noMatch, 1460 } } });
    deliver(website, -1);
    const auto terms = takeOn(m_publisher, "Warranty terms", { "de", "en" }, at(0, 12));
    import(terms, "Warranty terms.csv",
        sampleMemoQReport({ { "Terms.docx", { 0, 60, 42, 118, 35, 22, 0, 41, 702 }, 1 },
            { "Annex.docx",
                { 0,
                    0,
                    18,
                    0,
                    0,
                    12,
                    9,
                    0,
                    240 } } }));
    deliver(terms, 0);
    const auto release = takeOn(m_publisher, "Press release", { "de", "en" }, at(0, 15));
    typeIn(release, { .words = { { MatchBand::noMatch, 240 } } });
    deliver(release, 0);
    draft(release);
    add("A draft was made for the job “Press release”.");
}

Stage& m_stage;
std::vector<std::string> m_told;
Uuid m_publisher, m_shipping, m_software, m_museum;
}; // namespace

} // namespace Pallisande

Library sampleLibrary(const Base::Moment& moment)
{
    Sample::MemoryStage stage(moment);
    Story(stage).tell();
    return std::move(stage.made);
}

std::vector<std::string> makeSampleFolder(const fs::path& folder, const SessionServices& services)
{
    std::error_code none;
    if (fs::exists(folder, none) && !fs::is_empty(folder, none))
        throw SessionError(
            fmt::format("“{}” already holds something; choose a new folder.", folder.string()));
    try {
        Base::Folder::make(folder);
    } catch (const std::system_error& error) {
        throw SessionError(fmt::format("Pallisande couldn’t open its library folder: {}", error.what()));
    }
    Sample::FolderStage stage(folder, services);
    auto told = Story(stage).tell();
    stage.session().save();
    told.insert(told.begin(), fmt::format("The library is in “{}”.", folder.string()));
    return told;
}

std::string SampleRenderer::render(const Tamberlin::PrintedDocument& document)
{
    constexpr std::string_view mark = "Sample, not a real document";
    auto marked = document;
    marked.subtitle = marked.subtitle.empty() ? mark : fmt::format("{} · {}", marked.subtitle, mark);
    marked.footerRight = marked.footerRight.empty() ? mark : fmt::format("{} · {}", mark, marked.footerRight);
    return m_renderer.render(marked);
}

} // namespace Pallisande
