#include "PallisandeKit/Samples/Demonstration.h"

#include "PallisandeKit/Analyses/Importer.h"
#include "PallisandeKit/Ledger/Ledger.h"
#include "PallisandeKit/Pricing/JobPricing.h"
#include "PallisandeKit/Rates/ECBFeed.h"
#include "PallisandeKit/Samples/SampleReport.h"
#include "TamberlinKit/Quotes/Money.h"

#include <fmt/format.h>

#include <system_error>

namespace Pallisande {

namespace {

constexpr std::int64_t dayMilliseconds = 86'400'000;

Client nordwind(const Base::Moment& moment)
{
    return { .id = Base::Uuid::random(),
        .name = "Nordwind Verlag GmbH",
        .contact = "Frauke Albers",
        .email = "albers@nordwind.example",
        .address = "Speicherstraße 14\n20457 Hamburg\nGermany",
        .taxID = "DE811234567",
        .timeZone = "Europe/Berlin",
        .currency = "EUR",
        .defaultRate = Base::Decimal::ofParts(12, -2),
        .rates
        = { { .id = Base::Uuid::random(), .pair = { "de", "en" }, .rate = Base::Decimal::ofParts(135, -3) } },
        .weights = BandWeights::of(BandWeights::Preset::graduated),
        .minimumFee = 40,
        .taxPercent = 19,
        .taxLabel = "VAT",
        .paymentDays = 30,
        .created = moment.now };
}

Client harbourLine(const Base::Moment& moment)
{
    return { .id = Base::Uuid::random(),
        .name = "Harbour Line Shipping Ltd",
        .contact = "Accounts payable",
        .email = "accounts@harbourline.example",
        .address = "8 Quay Street\nBristol BS1 4DJ\nUnited Kingdom",
        .taxID = "GB123456789",
        .timeZone = "Europe/London",
        .currency = "GBP",
        .defaultRate = Base::Decimal::ofParts(11, -2),
        .minimumFee = 35,
        .taxNote = "Reverse charge: VAT is to be accounted for by the recipient.",
        .paymentDays = 14,
        .created = moment.now };
}

Job job(const Client& client, std::string title, LanguagePair pair, std::string reference,
    const Base::Moment& moment)
{
    return { .id = Base::Uuid::random(),
        .title = std::move(title),
        .clientID = client.id,
        .pair = std::move(pair),
        .reference = std::move(reference),
        .status = JobStatus::inProgress,
        .received = moment.now,
        .deadline = moment.now.plusMilliseconds(3 * dayMilliseconds),
        .created = moment.now,
        .modified = moment.now };
}

// The demonstration as it goes on, and what it has told so far.
class Demonstration {
public:
    Demonstration(LibrarySession& session)
        : m_session(session)
        , m_moment(session.moment())
    {
    }

    std::vector<std::string> run()
    {
        setUpBusiness();
        const auto report = addReportJob();
        const auto review = addHourlyJob();
        const auto invoice = invoiceJob(report);
        const auto foreign = invoiceJob(review);
        pay(invoice, Base::Decimal::ofParts(20000, -2), "First instalment");
        pay(foreign, m_session.library().invoice(foreign)->total(), "Bank transfer");
        credit(invoice);
        tell("{}", Ledger::checkNumbering(m_session.library()).front());
        return std::move(m_told);
    }

private:
    template <typename... Values> void tell(fmt::format_string<Values...> sentence, Values&&... values)
    {
        m_told.push_back(fmt::format(sentence, std::forward<Values>(values)...));
    }

    std::string money(const Base::Decimal& amount, const std::string& currency) const
    {
        return fmt::format("{} {}", amount.toString(Tamberlin::Money::minorDigits(currency)), currency);
    }

    std::string statusOf(const Invoice& invoice) const
    {
        return std::string(label(Ledger::status(m_session.library(), invoice, m_moment)));
    }

    void setUpBusiness()
    {
        m_session.change([&](Library& library) {
            auto& profile = library.profile;
            profile.sender.name = "Mira Lindqvist Translations";
            profile.sender.address = "Rosenweg 3\n04109 Leipzig\nGermany";
            profile.sender.email = "mira@lindqvist.example";
            profile.sender.taxID = "DE299999999";
            profile.bankDetails = "IBAN DE02 1203 0000 0000 2020 51";
            library.rates.typed.push_back({ .id = Base::Uuid::random(),
                .from = "GBP",
                .to = "EUR",
                .rate = Base::Decimal::ofParts(11712, -4),
                .date = m_moment.calendar.noon(m_moment.now),
                .source = TypedByUser { "bank rate" },
                .recordedAt = m_moment.now });
        });
        tell("The library is in “{}”.", m_session.store().folder().string());
    }

    Base::Uuid addReportJob()
    {
        const auto client = nordwind(m_moment);
        auto annualReport = job(client, "Annual report, part 2", { "de", "en" }, "PO 4711", m_moment);
        annualReport.surchargePercent = 10;
        annualReport.extras.push_back({ .id = Base::Uuid::random(),
            .title = "Layout check",
            .quantity = Base::Decimal::ofParts(15, -1),
            .unit = "hours",
            .unitPrice = 45 });
        m_session.change([&](Library& library) {
            Ledger::addClient(library, client);
            Ledger::addJob(library, annualReport);
        });
        const std::string file = "Analyze Files de-DE_en-GB.xml";
        const auto result = Importer::import(sampleTradosReport, file, m_moment.now);
        const auto& analysis = std::get<Analysis>(result);
        m_session.attachAnalysis(annualReport.id, analysis, sampleTradosReport, file);
        tell("“{}” was imported for the job “{}”: {} words in {} files.", file, annualReport.title,
            sum(analysis.totals().words), analysis.rows.size());
        return annualReport.id;
    }

    Base::Uuid addHourlyJob()
    {
        const auto client = harbourLine(m_moment);
        auto review = job(client, "Safety manual, review", { "en", "sv" }, "HL-2209", m_moment);
        review.extras.push_back({ .id = Base::Uuid::random(),
            .title = "Review",
            .quantity = 4,
            .unit = "hours",
            .unitPrice = 42 });
        m_session.change([&](Library& library) {
            Ledger::addClient(library, client);
            Ledger::addJob(library, review);
        });
        return review.id;
    }

    Base::Uuid invoiceJob(const Base::Uuid& jobID)
    {
        const auto& job = *m_session.library().job(jobID);
        const auto price = JobPricing::price(job, *m_session.library().client(job.clientID));
        tell("“{}” costs {} with tax.", job.title, money(price.total, price.currency));
        const auto id = m_session.change([&](Library& library) {
            Ledger::setStatus(library, jobID, JobStatus::delivered, m_moment.now);
            const Base::Uuid jobs[] { jobID };
            return Ledger::draftInvoice(library, jobs, m_moment, Tamberlin::DocumentLabels::of("en")).id;
        });
        tellIssued(id);
        return id;
    }

    void tellIssued(const Base::Uuid& id)
    {
        m_session.issue(id);
        const auto& document = *m_session.library().invoice(id);
        tell("{} was issued: {}. Its PDF lies in “{}”.", *document.number,
            money(document.total(), document.currency), m_session.storedPDF(id).string());
    }

    void pay(const Base::Uuid& id, const Base::Decimal& amount, const std::string& note)
    {
        m_session.change([&](Library& library) {
            Ledger::addPayment(library, id,
                { .id = Base::Uuid::random(), .date = m_moment.now, .amount = amount, .note = note },
                m_moment);
        });
        m_session.save();
        const auto& invoice = *m_session.library().invoice(id);
        tell("{} arrived for {}: it is now “{}”.", money(amount, invoice.currency), *invoice.number,
            statusOf(invoice));
    }

    // Takes the layout check off the invoice again.
    void credit(const Base::Uuid& invoiceID)
    {
        const auto id = m_session.change([&](Library& library) {
            auto note
                = Ledger::makeCreditNote(library, invoiceID, m_moment, Tamberlin::DocumentLabels::of("en"));
            std::erase_if(note.lines, [](const InvoiceLine& line) { return line.title != "Layout check"; });
            note.notes = "The layout check was not needed.";
            Ledger::editDraft(library, note, m_moment.now);
            return note.id;
        });
        tellIssued(id);
        const auto& invoice = *m_session.library().invoice(invoiceID);
        tell("{} is still due on {}.",
            money(Ledger::stillDue(invoice, Ledger::credited(m_session.library(), invoiceID)),
                invoice.currency),
            *invoice.number);
    }

    LibrarySession& m_session;
    Base::Moment m_moment;
    std::vector<std::string> m_told;
};

} // namespace

std::vector<std::string> makeDemonstration(
    const std::filesystem::path& folder, const SessionServices& services)
{
    std::error_code none;
    if (std::filesystem::exists(folder, none) && !std::filesystem::is_empty(folder, none))
        throw SessionError(
            fmt::format("“{}” already holds something; choose a new folder.", folder.string()));
    try {
        Base::Folder::make(folder);
    } catch (const std::system_error& error) {
        throw SessionError(fmt::format("Pallisande couldn’t open its library folder: {}", error.what()));
    }
    auto session = LibrarySession::open(folder, LibrarySession::Access::writing, services);
    return Demonstration(session).run();
}

} // namespace Pallisande
