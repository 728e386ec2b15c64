#include "Base/Json.h"
#include "PallisandeKit/Pricing/JobPricing.h"
#include "Tests/Support/Samples.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <map>
#include <random>
#include <regex>
#include <set>
#include <string>
#include <vector>

using namespace Pallisande;
using namespace Test;
using Base::Decimal;

namespace {

// A document without what may still change after it was issued.
Invoice lockedPart(Invoice document)
{
    document.payments.clear();
    document.homeRate.reset();
    return document;
}

// A library under random operations, sensible and senseless ones. After each, everything that must hold is
// checked by rules written down here once more.
class History {
public:
    explicit History(unsigned seed)
        : m_random(seed)
        , m_library(sampleLibrary())
    {
        m_library.clients[0].taxPercent = decimal(m_random() % 2 ? "19" : "7.7");
        m_library.clients[1].minimumFee = 60;
        m_library.profile.invoiceSeries.resetEachYear = m_random() % 3 != 0;
        m_library.profile.creditSeries.includeYear = m_random() % 3 != 0;
        for (std::uint64_t number = 30; number < 36; ++number)
            m_library.jobs.push_back(job(number, 1 + number % 2, static_cast<std::int64_t>(below(2'000))));
    }

    // Takes one step; false when something no longer holds.
    bool step(std::map<std::string, int>& outcomes)
    {
        const auto before = m_library;
        std::string outcome = "(done)";
        try {
            operate();
        } catch (const LedgerError& error) {
            EXPECT_EQ(m_library, before) << "refused, yet changed: " << error.what();
            outcome = std::regex_replace(error.what(), m_names, "*");
        }
        ++outcomes[outcome];
        issuedDocumentsStay(before);
        numbersHaveNoGaps(before);
        jobsAreBilledOnce();
        jobsAgreeWithTheirInvoices();
        creditsStayWithinTotals();
        return !testing::Test::HasFailure();
    }

    void readsBack() const
    {
        EXPECT_EQ(Base::fromJson<Library>(Base::toJson(m_library), { moment().now, "UTC" }), m_library);
    }

private:
    std::size_t below(std::size_t limit) { return m_random() % limit; }
    bool chance(std::size_t outOf) { return below(outOf) == 0; }

    // A record's id, as often as not one of the newest; now and then that of none.
    template <typename Records> Base::Uuid any(const Records& records)
    {
        if (records.empty() || chance(40))
            return id(999);
        const auto place = below(chance(2) ? std::min<std::size_t>(records.size(), 3) : records.size());
        return records[records.size() - 1 - place].id;
    }
    // Mostly a draft, or mostly an issued document.
    Base::Uuid anyDocument(bool issued)
    {
        Base::Uuid found;
        for (int tries = 0; tries < 3; ++tries) {
            found = any(m_library.invoices);
            if (const auto* const document = m_library.invoice(found);
                document && document->isIssued() == issued)
                break;
        }
        return found;
    }
    Base::Instant anyDay()
    {
        return m_moment.calendar.noon(
            m_moment.calendar.day(m_moment.now).plusDays(static_cast<std::int64_t>(below(900)) - 450));
    }
    Decimal anyAmount() { return Decimal::ofParts(static_cast<std::int64_t>(below(30'000)) - 2'000, -2); }

    void operate()
    {
        m_moment.now = m_moment.now.plusMilliseconds(static_cast<std::int64_t>(below(200'000'000)));
        switch (below(18)) {
        case 0:
            Ledger::addJob(m_library, job(40 + below(20), 1 + below(2), 400));
            break;
        case 1:
            Ledger::setStatus(m_library, any(m_library.jobs), static_cast<JobStatus>(below(6)), m_moment.now);
            break;
        case 2:
            return replaceJob();
        case 3:
            return Ledger::deleteJob(m_library, any(m_library.jobs));
        case 4:
            return changeClient();
        case 5:
        case 6:
            return draftInvoice();
        case 7:
            return editDraft();
        case 8:
            return Ledger::deleteDraft(m_library, anyDocument(chance(3)), moment().now);
        case 9:
        case 10:
        case 11:
            return issueDraft();
        case 12:
        case 13:
            Ledger::makeCreditNote(m_library, anyDocument(true), m_moment, labels());
            break;
        case 14:
        case 15:
            return changePayments();
        case 16:
            return changeRates();
        default:
            if (chance(2))
                setNextNumber();
            else
                Ledger::giveQuoteNumber(m_library, any(m_library.jobs), m_moment);
        }
    }

    void changeRates()
    {
        const ExchangeRate rate { .id = id(70),
            .from = "USD",
            .to = "EUR",
            .rate = anyAmount(),
            .date = anyDay(),
            .recordedAt = m_moment.now };
        if (chance(4))
            Ledger::addTypedRate(m_library, rate);
        else
            Ledger::setHomeRate(m_library, anyDocument(true), rate);
    }

    using Counter = std::pair<Ledger::Series, std::int64_t>;
    Counter counter(Ledger::Series which, std::int64_t year) const
    {
        const auto& series = Ledger::series(m_library.profile, which);
        return { which, series.includeYear && series.resetEachYear ? year : 0 };
    }

    void setNextNumber()
    {
        const auto which = chance(2) ? Ledger::Series::invoices : Ledger::Series::creditNotes;
        const auto year = m_moment.calendar.day(anyDay()).year;
        const auto next = static_cast<std::int64_t>(below(50));
        Ledger::setNextNumber(m_library, which, year, next);
        EXPECT_TRUE(!m_used.contains(counter(which, year)) || next == m_next[counter(which, year)]);
        m_next[counter(which, year)] = next;
    }

    void replaceJob()
    {
        const auto* const old = m_library.job(any(m_library.jobs));
        auto edited = old ? *old : job(99, 1, 1);
        edited.surchargePercent = static_cast<int>(below(50)) - 10;
        edited.clientID = id(1 + below(3));
        edited.status = static_cast<JobStatus>(below(6));
        edited.invoiceID = id(800);
        Ledger::replaceJob(m_library, edited, m_moment.now);
    }

    void changeClient()
    {
        const auto clientID = any(m_library.clients);
        if (chance(2))
            return Ledger::deleteClient(m_library, clientID);
        Ledger::archiveClient(m_library, clientID, chance(2));
        auto edited = *m_library.client(clientID);
        edited.defaultRate = anyAmount().shifted(-3);
        edited.paymentDays = static_cast<std::int64_t>(below(60));
        Ledger::replaceClient(m_library, edited);
    }

    void draftInvoice()
    {
        std::vector<Base::Uuid> ids;
        for (auto count = chance(20) ? 0 : 1 + below(3); count > 0; --count)
            ids.push_back(any(m_library.jobs));
        const auto& draft = Ledger::draftInvoice(m_library, ids, m_moment, labels());
        Decimal price;
        for (const auto& jobID : std::set(ids.begin(), ids.end())) {
            const auto& job = *m_library.job(jobID);
            const auto parts = JobPricing::price(job, *m_library.client(job.clientID));
            price += parts.subtotal + parts.minimumAdjustment;
        }
        EXPECT_EQ(draft.subtotal(), price);
    }

    void editDraft()
    {
        const auto* const document = m_library.invoice(anyDocument(false));
        auto edited = document ? *document : Invoice { .id = id(999) };
        if (!edited.lines.empty() && chance(2))
            edited.lines.erase(edited.lines.begin());
        if (chance(2)) {
            edited.lines.push_back({ .id = Base::Uuid::random(), .quantity = 1, .amount = anyAmount() });
            if (chance(2))
                edited.lines.back().jobID = any(m_library.jobs);
        }
        if (!edited.lines.empty() && chance(2)) // Makes a credit note partial, or too large.
            edited.lines[0].amount += anyAmount() - 150;
        if (chance(10))
            edited.currency = "CHF";
        edited.issueDate = anyDay();
        Ledger::editDraft(m_library, edited, moment().now);
    }

    void issueDraft()
    {
        const auto day = chance(2) ? std::optional(anyDay()) : std::nullopt;
        issue(m_library, anyDocument(false), m_moment, day);
    }

    void changePayments()
    {
        const auto* const document = m_library.invoice(anyDocument(true));
        const auto documentID = document ? document->id : id(999);
        Payment payment { .date = anyDay(), .amount = anyAmount() };
        if (!document || document->payments.empty() || chance(2)) {
            Ledger::addPayment(m_library, documentID, payment, m_moment);
            return;
        }
        payment.id = any(document->payments);
        if (chance(2))
            Ledger::editPayment(m_library, documentID, payment, m_moment);
        else
            Ledger::removePayment(m_library, documentID, payment.id, m_moment);
    }

    void issuedDocumentsStay(const Library& before) const
    {
        for (const auto& old : before.invoices) {
            if (!old.isIssued())
                continue;
            const auto* const document = m_library.invoice(old.id);
            ASSERT_TRUE(document) << *old.number << " is gone";
            EXPECT_EQ(lockedPart(*document), lockedPart(old));
            const bool hadRateAtIssue = old.homeRate && old.homeRate->recordedAt <= *old.issuedAt;
            EXPECT_TRUE(!hadRateAtIssue || document->homeRate == old.homeRate) << *old.number;
        }
    }

    // Follows every counter by itself: each new document takes the value after the last.
    void numbersHaveNoGaps(const Library& before)
    {
        std::set<std::string> numbers;
        for (const auto& document : m_library.invoices) {
            if (!document.isIssued())
                continue;
            EXPECT_TRUE(numbers.insert(*document.number).second) << *document.number << " is there twice";
            if (before.invoice(document.id)->isIssued())
                continue;
            const auto which = document.kind == DocumentKind::invoice ? Ledger::Series::invoices
                                                                      : Ledger::Series::creditNotes;
            const auto& series = Ledger::series(m_library.profile, which);
            const auto year = m_moment.calendar.day(*document.issueDate).year;
            m_used.insert(counter(which, year));
            auto& next = m_next.try_emplace(counter(which, year), 1).first->second;
            EXPECT_EQ(document.sequence, next);
            const auto digits = fmt::format("{:03}", next++);
            EXPECT_EQ(document.number,
                series.prefix + (series.includeYear ? std::to_string(year) + "-" : "") + digits);
        }
        EXPECT_EQ(Ledger::checkNumbering(m_library),
            std::vector<std::string> { "Numbering checked: no gaps, no repeats." });
    }

    // What issued credit notes take off it, and whether that is all of it.
    Decimal creditedOf(const Invoice& invoice) const
    {
        Decimal sum;
        for (const auto& note : m_library.invoices) {
            if (note.kind == DocumentKind::creditNote && note.isIssued()
                && note.creditsInvoiceID == invoice.id)
                sum -= note.total();
        }
        return sum;
    }
    bool isCredited(const Invoice& invoice) const
    {
        const auto sum = creditedOf(invoice);
        return sum > Decimal() && sum == invoice.total();
    }

    void jobsAreBilledOnce() const
    {
        std::map<Base::Uuid, Base::Uuid> billedBy;
        for (const auto& invoice : m_library.invoices) {
            if (invoice.kind != DocumentKind::invoice || isCredited(invoice))
                continue;
            for (const auto& line : invoice.lines) {
                if (!line.jobID)
                    continue;
                EXPECT_EQ(billedBy.emplace(*line.jobID, invoice.id).first->second, invoice.id)
                    << "billed twice";
                const auto* const job = m_library.job(*line.jobID);
                ASSERT_TRUE(job);
                EXPECT_EQ(job->invoiceID, invoice.id);
                EXPECT_EQ(job->clientID, invoice.clientID);
            }
        }
    }

    void jobsAgreeWithTheirInvoices() const
    {
        std::set<std::string> quotes;
        for (const auto& job : m_library.jobs) {
            EXPECT_TRUE(!job.quoteNumber || quotes.insert(*job.quoteNumber).second) << job.title;
            const bool isBilled = job.status == JobStatus::invoiced || job.status == JobStatus::paid;
            if (!job.invoiceID) {
                EXPECT_FALSE(isBilled) << job.title;
                continue;
            }
            const auto* const invoice = m_library.invoice(*job.invoiceID);
            ASSERT_TRUE(invoice) << job.title;
            EXPECT_EQ(isBilled, invoice->isIssued()) << job.title;
            EXPECT_FALSE(isCredited(*invoice)) << job.title;
            const auto left = invoice->total() - creditedOf(*invoice) - invoice->paid();
            const bool isSettled = invoice->total() > Decimal() && left <= Decimal();
            EXPECT_EQ(job.status == JobStatus::paid, invoice->isIssued() && isSettled) << job.title;
        }
    }

    void creditsStayWithinTotals() const
    {
        for (const auto& invoice : m_library.invoices) {
            const auto sum = creditedOf(invoice);
            EXPECT_EQ(Ledger::credited(m_library, invoice.id), sum);
            EXPECT_LE(sum, std::max(Decimal(), invoice.total()));
            const bool isCredit = invoice.kind == DocumentKind::creditNote;
            EXPECT_TRUE(!invoice.isIssued() || invoice.total().isNegative() == isCredit);
        }
    }

    std::mt19937 m_random;
    Library m_library;
    Base::Moment m_moment = moment();
    std::map<Counter, std::int64_t> m_next; // Absent: 1.
    std::set<Counter> m_used;
    // What differs between sentences of one kind.
    const std::regex m_names { "(INV|CN)-[0-9-]+|Quote|In progress|Delivered|Invoiced|Paid|Cancelled" };
};

TEST(LedgerHistory, neverBreaksARule)
{
    std::map<std::string, int> outcomes;
    for (unsigned seed = 1; seed <= 400; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        History history(seed);
        for (int number = 1; number <= 80; ++number)
            ASSERT_TRUE(history.step(outcomes)) << "step " << number;
        history.readsBack();
    }
    EXPECT_GE(outcomes.size(), 26u) << "refusals of every kind were met";
    EXPECT_GT(outcomes["(done)"], 13'000);
}

} // namespace
