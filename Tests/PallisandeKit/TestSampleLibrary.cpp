#include "PallisandeKit/Samples/SampleLibrary.h"

#include "PallisandeKit/Ledger/Deadlines.h"
#include "PallisandeKit/Pricing/JobPricing.h"
#include "Tests/Support/Folders.h"
#include "Tests/Support/Sessions.h"

#include <set>

using namespace Pallisande;

namespace {

// Whenever and wherever it is looked at, it shows everything that the program can show.
TEST(SampleLibrary, holdsEveryLaneStatusAndSourceOnAnyDay)
{
    const Base::Moment moments[] { ::Test::moment(), // A Monday afternoon.
        { ::Test::instant("2026-01-01T00:10:00Z"), ::Test::calendar("Pacific/Kiritimati") },
        { ::Test::instant("2027-03-28T21:58:30Z"), ::Test::calendar("Europe/Berlin") },
        { ::Test::instant("2028-02-29T11:00:00Z"), ::Test::calendar("America/St_Johns") } };
    for (const auto& moment : moments) {
        SCOPED_TRACE(moment.now.toString());
        const auto library = sampleLibrary(moment);
        EXPECT_EQ(library.clients.size(), 4u);
        EXPECT_EQ(library.jobs.size(), 14u);
        const auto board = Deadlines::board(library, moment);
        for (const auto& jobs : board.lanes)
            EXPECT_FALSE(jobs.empty()) << &jobs - board.lanes.data();

        std::set<JobStatus> jobs;
        std::set<AnalysisSource> sources;
        std::int64_t failedSums = 0;
        std::set<JobPrice::Problem::Kind> problems;
        for (const auto& job : library.jobs) {
            jobs.insert(job.status);
            EXPECT_LE(job.modified, moment.now);
            for (const auto& analysis : job.analyses) {
                sources.insert(analysis.source);
                failedSums += analysis.mismatchCount() > 0;
            }
            for (const auto& problem : JobPricing::price(job, *library.client(job.clientID)).problems)
                problems.insert(problem.kind);
        }
        EXPECT_EQ(jobs.size(), caseNames(JobStatus {}).size());
        EXPECT_EQ(sources.size(), caseNames(AnalysisSource {}).size());
        EXPECT_EQ(failedSums, 1);
        EXPECT_TRUE(problems.contains(JobPrice::Problem::Kind::noTargetCount));

        std::set<InvoiceStatus> invoices;
        std::int64_t withoutRate = 0, bankFees = 0;
        for (const auto& invoice : library.invoices) {
            invoices.insert(Ledger::status(library, invoice, moment));
            withoutRate += invoice.isIssued() && invoice.currency != "EUR" && !invoice.homeRate;
            for (const auto& payment : invoice.payments)
                bankFees += payment.receivedHome && payment.rate
                    && *payment.receivedHome < payment.amount * payment.rate->rate;
        }
        EXPECT_EQ(invoices.size(), caseNames(InvoiceStatus {}).size());
        EXPECT_EQ(withoutRate, 1);
        EXPECT_EQ(bankFees, 1);
        EXPECT_EQ(Ledger::checkNumbering(library),
            std::vector<std::string> { "Numbering checked: no gaps, no repeats." });
    }
}

TEST(SampleLibrary, aFolderOfItIsLikeAnyOther)
{
    ::Test::TemporaryFolder root;
    ::Test::Surroundings around;
    const auto folder = root / "Sample";
    const auto told = makeSampleFolder(folder, around.services());
    EXPECT_EQ(told.back(), "Numbering checked: no gaps, no repeats.");
    auto session = around.open(folder);
    EXPECT_FALSE(session.isReadOnly());
    EXPECT_TRUE(session.takeMessages().empty());
    EXPECT_EQ(session.library().jobs.size(), 14u);
    for (const auto& invoice : session.library().invoices) {
        if (!invoice.isIssued())
            continue;
        const auto pdf = ::Test::fileText(session.storedPDF(invoice.id));
        EXPECT_NE(pdf.find("Sample, not a real document"), std::string::npos) << *invoice.number;
    }
    for (const auto& job : session.library().jobs) {
        for (const auto& analysis : job.analyses) {
            if (analysis.storedCopy) {
                EXPECT_TRUE(std::filesystem::exists(session.store().resolve(*analysis.storedCopy)));
            }
        }
    }
    EXPECT_THROW(makeSampleFolder(folder, around.services()), SessionError);
}

} // namespace
