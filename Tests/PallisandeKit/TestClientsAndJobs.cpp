#include "PallisandeKit/Ledger/Ledger.h"

#include "Tests/Support/Samples.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Pallisande;
using namespace Test;

namespace {

const std::string gone = "That item no longer exists.";

TEST(Clients, areAddedReplacedArchivedAndDeleted)
{
    auto library = sampleLibrary();
    auto& added = Ledger::addClient(library, client(3));
    EXPECT_EQ(&added, &library.clients.back());
    auto renamed = client(2);
    renamed.name = "Renamed";
    Ledger::replaceClient(library, renamed);
    EXPECT_EQ(library.clients[1], renamed) << "in the old one's place";
    const auto before = library;
    Ledger::replaceClient(library, client(99));
    EXPECT_EQ(library, before);
    for (const bool archived : { true, false }) {
        Ledger::archiveClient(library, id(2), archived);
        EXPECT_EQ(library.client(id(2))->archived, archived);
    }
    library.counting.cardClients = { { id(5), id(3) }, { id(6), id(1) } };
    Ledger::deleteClient(library, id(3));
    EXPECT_FALSE(library.client(id(3)));
    EXPECT_EQ(library.counting.cardClients, (std::map<Base::Uuid, Base::Uuid> { { id(6), id(1) } }));
}

TEST(Clients, refuseWhatTheirRecordsForbid)
{
    auto library = sampleLibrary();
    issued(library, { 21 });
    library.jobs.pop_back(); // Client 2 is left with an invoice and no job.
    auto odd = client(3);
    odd.currency = "Eur";
    const std::string currency = "“Eur” isn’t a currency code; use three capital letters such as EUR.";
    EXPECT_EQ(refusal(library, [&] { Ledger::addClient(library, odd); }), currency);
    odd.id = id(1);
    EXPECT_EQ(refusal(library, [&] { Ledger::replaceClient(library, odd); }), currency);
    EXPECT_EQ(refusal(library, [&] { Ledger::addClient(library, client(1)); }),
        "A client with this id is already there.");
    EXPECT_EQ(refusal(library, [&] { Ledger::archiveClient(library, id(99), true); }), gone);
    EXPECT_EQ(refusal(library, [&] { Ledger::deleteClient(library, id(99)); }), gone);
    EXPECT_EQ(refusal(library, [&] { Ledger::deleteClient(library, id(1)); }),
        "Nordlicht Verlag has jobs or invoices. Archive the client instead.");
    EXPECT_EQ(refusal(library, [&] { Ledger::deleteClient(library, id(2)); }),
        "Harbor Books has jobs or invoices. Archive the client instead.");
}

TEST(Jobs, changeTheirStatusByHandOnlyAsTheTableSays)
{
    // A row for each status now, a column for each new one.
    const std::string_view allowed[] { "yy...y", "yyy..y", ".yy..y", "...y..", "....y.", "yy...y" };
    const std::string_view names[] { "Quote", "In progress", "Delivered", "Invoiced", "Paid", "Cancelled" };
    const auto now = instant("2026-04-01T10:00:00Z");
    for (std::size_t from = 0; from < 6; ++from) {
        for (std::size_t to = 0; to < 6; ++to) {
            SCOPED_TRACE(std::string(names[from]) + " to " + std::string(names[to]));
            auto library = sampleLibrary();
            auto& job = library.jobs.front();
            job.status = static_cast<JobStatus>(from);
            job.deliveredAt.reset();
            const auto answer = refusal(
                library, [&] { Ledger::setStatus(library, job.id, static_cast<JobStatus>(to), now); });
            if (allowed[from][to] == 'y') {
                EXPECT_EQ(answer, "(not refused)");
                EXPECT_EQ(job.status, static_cast<JobStatus>(to));
                EXPECT_EQ(job.modified, now);
                EXPECT_EQ(job.deliveredAt.has_value(), to == 2 && from != 2);
            } else {
                EXPECT_EQ(answer,
                    "A job can’t go from " + std::string(names[from]) + " to " + std::string(names[to])
                        + " by hand.");
            }
        }
    }
    auto library = sampleLibrary();
    EXPECT_EQ(refusal(library, [&] { Ledger::setStatus(library, id(99), JobStatus::quote, now); }), gone);
}

TEST(Jobs, deliveredAgainKeepTheirFirstDelivery)
{
    auto library = sampleLibrary();
    const auto first = library.jobs[0].deliveredAt;
    Ledger::setStatus(library, id(11), JobStatus::inProgress, moment().now);
    EXPECT_EQ(library.jobs[0].deliveredAt, first);
    Ledger::setStatus(library, id(11), JobStatus::delivered, moment().now);
    EXPECT_EQ(library.jobs[0].deliveredAt, first);
}

TEST(Jobs, areAddedReplacedAndDeleted)
{
    auto library = sampleLibrary();
    auto added = job(13, 1, 10);
    added.status = JobStatus::cancelled;
    EXPECT_EQ(Ledger::addJob(library, added), added);
    auto& invoice = issued(library, { 11 });
    Ledger::giveQuoteNumber(library, id(11), moment());

    // What only other operations change stays as it was.
    auto edited = job(11, 1, 777);
    edited.title = "Edited";
    edited.status = JobStatus::quote;
    edited.created = {};
    const auto now = instant("2026-04-01T10:00:00Z");
    Ledger::replaceJob(library, edited, now);
    const auto& replaced = library.jobs.front();
    EXPECT_EQ(replaced.title, "Edited");
    EXPECT_EQ(replaced.status, JobStatus::invoiced);
    EXPECT_EQ(replaced.invoiceID, invoice.id);
    EXPECT_EQ(replaced.quoteNumber, "Q-2026-001");
    EXPECT_EQ(replaced.created, job(11, 1, 1).created);
    EXPECT_EQ(replaced.modified, now);
    auto before = library;
    Ledger::replaceJob(library, job(99, 1, 1), now);
    EXPECT_EQ(library, before);

    auto moved = *library.job(id(12));
    moved.clientID = id(2);
    Ledger::replaceJob(library, moved, now);
    EXPECT_EQ(library.job(id(12))->clientID, id(2)) << "a job on no invoice may change its client";
    Ledger::deleteJob(library, id(13));
    EXPECT_FALSE(library.job(id(13)));

    edited.clientID = id(2);
    EXPECT_EQ(refusal(library, [&] { Ledger::replaceJob(library, edited, now); }),
        "An invoice holds jobs for one client.");
    edited.clientID = id(99);
    EXPECT_EQ(refusal(library, [&] { Ledger::replaceJob(library, edited, now); }), gone);
    EXPECT_EQ(refusal(library, [&] { Ledger::deleteJob(library, id(99)); }), gone);
    EXPECT_EQ(refusal(library, [&] { Ledger::deleteJob(library, id(11)); }), "This job is on INV-2026-001.");
    draft(library, { 21 });
    EXPECT_EQ(
        refusal(library, [&] { Ledger::deleteJob(library, id(21)); }), "This job is on a draft invoice.");
}

TEST(Jobs, startUnbilled)
{
    auto library = sampleLibrary();
    const auto refused = [&](auto change) {
        auto fresh = job(13, 1, 10);
        change(fresh);
        return refusal(library, [&] { Ledger::addJob(library, fresh); });
    };
    const std::string early = "A new job has neither an invoice nor a quote number yet.";
    EXPECT_EQ(refused([](Job& job) { job.clientID = id(99); }), gone);
    EXPECT_EQ(refused([](Job& job) { job.id = id(12); }), "A job with this id is already there.");
    EXPECT_EQ(refused([](Job& job) { job.status = JobStatus::invoiced; }),
        "A job can’t go from Quote to Invoiced by hand.");
    EXPECT_EQ(refused([](Job& job) { job.status = JobStatus::paid; }),
        "A job can’t go from Quote to Paid by hand.");
    EXPECT_EQ(refused([](Job& job) { job.invoiceID = id(1); }), early);
    EXPECT_EQ(refused([](Job& job) { job.quoteNumber = "Q-1"; }), early);
}

TEST(Jobs, takeAnalysesWhileTheCountsStayRight)
{
    auto library = sampleLibrary();
    const auto now = instant("2026-04-01T10:00:00Z");
    const auto huge = analysis({ { MatchBand::noMatch, 9'007'199'254'740'991 - 3'500 } });
    Ledger::attachAnalysis(library, id(11), huge, now);
    EXPECT_EQ(library.jobs[0].analyses.size(), 2u);
    EXPECT_EQ(library.jobs[0].modified, now);
    const auto one = analysis({ { MatchBand::exact, 1 } });
    EXPECT_EQ(refusal(library, [&] { Ledger::attachAnalysis(library, id(12), one, now); }),
        "With this analysis the library’s counts would be too large to be right.");
    EXPECT_EQ(refusal(library, [&] { Ledger::attachAnalysis(library, id(99), one, now); }), gone);
}

} // namespace
