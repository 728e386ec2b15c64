#include "Benchmarks/MakeLibrary.h"

#include "Benchmarks/Dice.h"
#include "PallisandeKit/Ledger/Ledger.h"
#include "PallisandeKit/Pricing/JobPricing.h"

#include <fmt/format.h>

#include <algorithm>
#include <optional>

namespace Benchmarks {

namespace {

using namespace Pallisande;
using Base::Decimal;
using Base::Instant;

constexpr std::int64_t hourLength = 3'600'000, dayLength = 24 * hourLength;
constexpr Instant start { 1'388'577'600'000 }; // 2014-01-01 12:00 UTC
constexpr Instant today { 1'773'054'000'000 }; // 2026-03-09 11:00 UTC
constexpr std::size_t creditedEvery = 50, creditedAfter = 10; // One in fifty, ten invoices after it.

constexpr std::string_view languages[] { "de", "en-GB", "en-US", "fr", "es", "it", "nl", "pl", "ja",
    "Français" };
constexpr std::string_view currencies[] { "EUR", "EUR", "EUR", "EUR", "USD", "GBP", "CHF", "JPY" };
constexpr std::string_view quotedCurrencies[] { "AUD", "BGN", "BRL", "CAD", "CHF", "CNY", "CZK", "DKK", "GBP",
    "HKD", "HUF", "IDR", "ILS", "INR", "ISK", "JPY", "KRW", "MXN", "MYR", "NOK", "NZD", "PHP", "PLN", "RON",
    "SEK", "SGD", "THB", "TRY", "USD", "ZAR" };

// Jobs that wait for their client's next invoice.
struct Waiting {
    std::vector<std::size_t> jobs;
    std::size_t wanted = 1;
};

class LibraryMaker {
public:
    LibraryMaker(const LibrarySize& size, std::uint64_t seed)
        : m_size(size)
        , m_dice(seed)
        , m_waiting(size.clients)
    {
    }

    Library make()
    {
        makeProfile();
        makeRates();
        for (std::size_t place = 0; place < m_size.clients; ++place)
            m_library.clients.push_back(client());
        m_library.jobs.reserve(m_size.jobs);
        m_library.invoices.reserve(m_size.invoices + m_size.invoices / creditedEvery);
        const auto between
            = (today.milliseconds - start.milliseconds) / static_cast<std::int64_t>(m_size.jobs);
        for (std::size_t place = 0; place < m_size.jobs; ++place) {
            const auto client = static_cast<std::size_t>(m_dice.next() % m_size.clients);
            const auto received = start.plusMilliseconds(static_cast<std::int64_t>(place) * between);
            m_library.jobs.push_back(job(m_library.clients[client], received));
            bill(client, received.plusMilliseconds(15 * dayLength));
        }
        return std::move(m_library);
    }

private:
    Decimal cents(std::int64_t low, std::int64_t high)
    {
        return Decimal::ofParts(m_dice.between(low, high), -2);
    }
    Instant later(Instant time, std::int64_t fewestHours, std::int64_t mostHours)
    {
        return time.plusMilliseconds(
            m_dice.between(fewestHours, mostHours) * hourLength + m_dice.between(0, 999));
    }
    LanguagePair pair()
    {
        return { std::string(m_dice.pick(languages)), std::string(m_dice.pick(languages)) };
    }

    void makeProfile()
    {
        auto& profile = m_library.profile;
        profile.sender = { .name = "Ines Galàn, Traductions",
            .address = "12 rue des Érables\n69003 Lyon\nFrance",
            .email = "ines@example.org",
            .phone = "+33 4 00 00 00 00",
            .website = "https://example.org",
            .taxID = "FR00 123456789" };
        profile.bankDetails = "IBAN FR76 3000 0000 0000 0000 0000 000\nBIC EXAMFRPP";
        m_library.counting.rateCards.push_back({ .id = m_dice.uuid() });
    }

    void makeRates()
    {
        for (std::size_t place = m_size.rateDays; place > 0; --place) {
            ECBDay rates {
                m_calendar.noon(today.plusMilliseconds(-static_cast<std::int64_t>(place) * dayLength)), {}
            };
            for (const auto currency : quotedCurrencies)
                rates.perEuro[std::string(currency)] = Decimal::ofParts(m_dice.between(5'000, 2'000'000), -4);
            m_library.rates.ecb.push_back(std::move(rates));
        }
        m_library.rates.lastFetched = today;
    }

    Client client()
    {
        Client client { .id = m_dice.uuid(),
            .name = m_dice.words(2) + " GmbH",
            .contact = m_dice.words(2),
            .email = fmt::format("office{}@example.org", m_library.clients.size()),
            .address = m_dice.words(2) + " 7\n10115 Berlin\nDeutschland",
            .taxID = fmt::format("DE{}", m_dice.between(100'000'000, 999'999'999)),
            .timeZone = "Europe/Berlin" };
        client.currency = m_dice.pick(currencies);
        client.defaultRate = Decimal::ofParts(m_dice.between(60, 220), -3);
        for (auto rates = m_dice.between(0, 3); rates > 0; --rates)
            client.rates.push_back(
                { m_dice.uuid(), pair(), Decimal::ofParts(m_dice.between(60, 220), -3), std::nullopt });
        client.weights = BandWeights::of(BandWeights::Preset::graduated);
        client.minimumFee = m_dice.between(0, 4) * 10;
        client.taxPercent = m_dice.chance(60) ? Decimal(20) : Decimal();
        client.taxLabel = "VAT";
        client.taxNote
            = client.taxPercent.isZero() ? "Reverse charge: Article 196 of Directive 2006/112/EC." : "";
        client.notes = m_dice.words(12);
        client.created = start;
        return client;
    }

    BandCounts counts()
    {
        BandCounts counts;
        for (const auto band : allMatchBands) {
            const auto words = m_dice.between(0, 3000);
            counts.words[band] = words;
            counts.segments[band] = words / 11;
            counts.characters[band] = words * 6 + m_dice.between(0, 9);
        }
        return counts;
    }

    // One of a tool: every band of every file, with the totals that the report states.
    Analysis report(Instant at)
    {
        Analysis analysis { .id = m_dice.uuid(),
            .source = AnalysisSource::tradosXML,
            .name = "Analyze Files.xml",
            .importedAt = at,
            .targetLanguage = "German (Germany)" };
        for (auto rows = std::min(m_dice.between(1, 6), m_dice.between(1, 6)); rows > 0; --rows) {
            AnalysisRow row { .id = m_dice.uuid(), .file = m_dice.words(3) + ".docx", .counts = counts() };
            row.statedWords
                = sum(row.counts.words) + (m_dice.chance(1) ? 3 : 0); // Some reports don't add up.
            row.statedSegments = sum(row.counts.segments);
            row.statedCharacters = sum(row.counts.characters);
            analysis.rows.push_back(std::move(row));
        }
        analysis.statedTotalWords = sum(analysis.totals().words);
        analysis.notes.push_back(UnverifiedLayout { "Trados Studio" });
        if (m_dice.chance(20))
            analysis.notes.push_back(MergedCategory { "Locked", MatchBand::perfect, m_dice.between(1, 900) });
        analysis.storedCopy = fmt::format("Reports/{} {}", analysis.id.toString(), analysis.name);
        return analysis;
    }

    // One of the user: words alone, in a few bands.
    Analysis typedIn(Instant at)
    {
        Analysis analysis { .id = m_dice.uuid(), .source = AnalysisSource::manual, .importedAt = at };
        AnalysisRow row { .id = m_dice.uuid() };
        row.counts.words[MatchBand::noMatch] = m_dice.between(50, 5000);
        if (m_dice.chance(50))
            row.counts.words[MatchBand::repetitions] = m_dice.between(1, 900);
        analysis.rows.push_back(std::move(row));
        return analysis;
    }

    Job job(const Client& client, Instant received)
    {
        Job job { .id = m_dice.uuid(),
            .title = m_dice.words(4),
            .clientID = client.id,
            .pair = pair(),
            .reference = fmt::format("PO-{}", m_dice.between(10'000, 99'999)),
            .received = received };
        if (!client.rates.empty() && m_dice.chance(50))
            job.pair = client.rates.front().pair;
        job.created = received;
        job.modified = later(received, 1, 14 * 24);
        job.deadline = later(received, 24, 14 * 24);
        const auto age = (today.milliseconds - received.milliseconds) / dayLength;
        if (age >= 14) {
            job.deliveredAt = later(received, 12, 14 * 24);
            job.status = age >= 60 && m_dice.chance(3) ? JobStatus::cancelled : JobStatus::delivered;
        } else {
            job.status = m_dice.chance(30) ? JobStatus::quote : JobStatus::inProgress;
        }
        if (m_dice.chance(20))
            job.analyses.push_back(report(received));
        else if (m_dice.chance(50))
            job.analyses.push_back(typedIn(received));
        if (job.analyses.empty() || m_dice.chance(15))
            job.extras.push_back(
                { m_dice.uuid(), m_dice.words(2), cents(50, 800), "hours", cents(3500, 8000) });
        if (m_dice.chance(10))
            job.surchargePercent = 25;
        if (m_dice.chance(30))
            job.notes = m_dice.words(15) + "\n“" + m_dice.words(5) + "”";
        return job;
    }

    // Puts the newest job on its client's list, which becomes an invoice when it is long enough.
    void bill(std::size_t clientPlace, Instant at)
    {
        auto& waiting = m_waiting[clientPlace];
        if (m_library.jobs.back().status != JobStatus::delivered || at > today || m_made == m_size.invoices)
            return;
        waiting.jobs.push_back(m_library.jobs.size() - 1);
        if (waiting.jobs.size() < waiting.wanted)
            return;
        makeInvoice(m_library.clients[clientPlace], waiting.jobs, at);
        waiting.jobs.clear();
        waiting.wanted = static_cast<std::size_t>(m_dice.between(1, 6));
        if (++m_made % creditedEvery == creditedAfter)
            makeCreditNote(m_library.invoices[m_library.invoices.size() - creditedAfter], at);
    }

    void issue(Invoice& document, NumberSeries& series, Instant at)
    {
        document.id = m_dice.uuid();
        document.issueDate = m_calendar.noon(at);
        auto [sequence, number] = series.issue(m_calendar.day(at).year);
        document.sequence = sequence;
        document.pdfFile = Ledger::pdfPath(number);
        document.number = std::move(number);
        document.homeCurrency = m_library.profile.homeCurrency;
        document.homeRate = homeRate(document.currency, *document.issueDate);
        document.issuedAt = document.created = at;
    }

    ExchangeRate homeRate(const std::string& currency, Instant date)
    {
        const bool isHome = currency == m_library.profile.homeCurrency;
        return { .id = m_dice.uuid(),
            .from = currency,
            .to = m_library.profile.homeCurrency,
            .rate = isHome ? Decimal(1) : Decimal::ofParts(m_dice.between(500'000, 1'500'000), -6),
            .date = date,
            .source = isHome ? RateSource(TypedByUser { "same currency" }) : RateSource(FromECB {}),
            .recordedAt = date };
    }

    void makeInvoice(const Client& client, const std::vector<std::size_t>& jobs, Instant at)
    {
        Invoice invoice { .clientID = client.id,
            .client = { client.name, client.contact, client.address, client.email, client.taxID },
            .dueDate = m_calendar.noon(at.plusMilliseconds(client.paymentDays * dayLength)),
            .currency = client.currency,
            .taxPercent = client.taxPercent,
            .taxLabel = client.taxLabel,
            .taxNote = client.taxNote,
            .paymentTerms = m_library.profile.defaultPaymentTerms };
        issue(invoice, m_library.profile.invoiceSeries, at);
        for (const auto place : jobs)
            addLines(invoice, m_library.jobs[place], client);
        const bool isOld = today.milliseconds - at.milliseconds > 45 * dayLength;
        const bool isPaid = isOld && m_dice.chance(97);
        if (isPaid && invoice.total() > Decimal())
            addPayments(invoice);
        for (const auto place : jobs) {
            m_library.jobs[place].status = isPaid ? JobStatus::paid : JobStatus::invoiced;
            m_library.jobs[place].invoiceID = invoice.id;
        }
        m_library.invoices.push_back(std::move(invoice));
    }

    void addLines(Invoice& invoice, const Job& job, const Client& client)
    {
        const auto price = JobPricing::price(job, client);
        const auto add
            = [&](std::string title, Decimal quantity, std::string unit, Decimal unitPrice, Decimal amount) {
                  if (!amount.isZero())
                      invoice.lines.push_back({ m_dice.uuid(), job.id, std::move(title), {}, quantity,
                          std::move(unit), unitPrice, amount });
              };
        const auto before = invoice.lines.size();
        add(job.title, price.weightedUnits, "words", price.rate, price.translation);
        add("Surcharge 25%", 1, "", price.surcharge, price.surcharge);
        for (const auto& [extra, amount] : price.extras)
            add(extra.title, extra.quantity, extra.unit, extra.unitPrice, amount);
        add("Minimum fee", 1, "", price.minimumAdjustment, price.minimumAdjustment);
        if (invoice.lines.size() > before)
            invoice.lines[before].detail
                = fmt::format("{}, {} words, {}", job.pair.text(), price.units, job.reference);
    }

    void addPayments(Invoice& invoice)
    {
        auto left = invoice.total();
        const auto add = [&](Decimal amount, std::int64_t days) {
            const auto date = m_calendar.noon(invoice.issueDate->plusMilliseconds(days * dayLength));
            invoice.payments.push_back(
                { m_dice.uuid(), date, amount, std::nullopt, homeRate(invoice.currency, date), "" });
            left -= amount;
        };
        if (m_dice.chance(8))
            add((left * Decimal::ofParts(5, -1)).rounded(0), 20);
        add(left, 31);
    }

    // For all of an invoice, which loses its payments; its jobs are free again.
    void makeCreditNote(Invoice& invoice, Instant at)
    {
        invoice.payments.clear();
        for (auto& job : m_library.jobs) {
            if (job.invoiceID == invoice.id) {
                job.invoiceID.reset();
                job.status = JobStatus::delivered;
            }
        }
        auto note = invoice;
        note.kind = DocumentKind::creditNote;
        note.dueDate.reset();
        note.creditsInvoiceID = invoice.id;
        note.creditsNumber = invoice.number;
        issue(note, m_library.profile.creditSeries, at);
        for (auto& line : note.lines) {
            line.id = m_dice.uuid();
            line.unitPrice = -line.unitPrice;
            line.amount = -line.amount;
        }
        m_library.invoices.push_back(std::move(note));
    }

    const LibrarySize m_size;
    Dice m_dice;
    const Base::Calendar m_calendar = Base::Calendar::utc();
    Library m_library;
    std::vector<Waiting> m_waiting; // Of each client.
    std::size_t m_made = 0; // Invoices so far.
};

} // namespace

Library makeLibrary(const LibrarySize& size, std::uint64_t seed) { return LibraryMaker(size, seed).make(); }

Base::Moment libraryMoment() { return { today, Base::Calendar::utc() }; }

} // namespace Benchmarks
