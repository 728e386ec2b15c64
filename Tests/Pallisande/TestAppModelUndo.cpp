#include "Tests/Pallisande/ModelWorld.h"

#include <gtest/gtest.h>

using namespace Pallisande;
using ::Test::decimal;
using ::Test::id;
using ::Test::World;

namespace {

using IDs = std::vector<Base::Uuid>;

void setRate(AppModel& model, std::string_view rate)
{
    model.clients().edit(id(1), "Change Rate", [&](Client& client) { client.defaultRate = decimal(rate); });
}

Base::Uuid makeDraft(AppModel& model, const IDs& jobs)
{
    EXPECT_TRUE(model.invoices().makeDraft(jobs));
    return *model.selection(AppSection::invoices);
}

Base::Uuid issueOf(World& world, const IDs& jobs)
{
    const auto draft = makeDraft(*world.model, jobs);
    world.model->invoices().issue(draft, world.now, std::nullopt);
    EXPECT_TRUE(world.model->invoice(draft)->isIssued()) << world.problem();
    return draft;
}

} // namespace

// Every kind of edit, one after the other: taking all of them back gives the library of the start, doing them
// again that of the end. A record that an operation touched and didn't name would show.
TEST(AppModelUndo, everythingIsTakenBackAndDoneAgain)
{
    World world;
    auto library = ::Test::sampleLibrary();
    library.counting.cardClients[id(5)] = id(2);
    library.jobs.pop_back(); // So that client 2 can be deleted.
    const auto issued = ::Test::issued(library, { 12 }).id;
    auto& model = world.start(library);
    auto& jobs = model.jobs();
    auto& clients = model.clients();
    auto& invoices = model.invoices();
    const auto selected = [&](AppSection section) { return *model.selection(section); };
    const auto started = model.library();

    std::vector<std::pair<std::string, std::function<bool()>>> edits {
        { "Delete Client", [&] { return clients.remove(id(2)); } },
        { "Add Client", [&] { return clients.add(); } },
        { "Change Name",
            [&] {
                return clients.edit(selected(AppSection::clients), "Change Name",
                    [](Client& client) { client.name = "Second"; });
            } },
        { "Change Rate",
            [&] {
                return clients.edit(
                    id(1), "Change Rate", [](Client& client) { client.defaultRate = decimal("0.2"); }, true);
            } },
        { "Archive Client", [&] { return clients.setArchived(selected(AppSection::clients), true); } },
        { "Add Job", [&] { return jobs.add({ .title = "New", .clientID = id(1) }); } },
        { "Add Extra Line",
            [&] { return jobs.addExtra(selected(AppSection::jobs), { .title = "Review", .quantity = 2 }); } },
        { "Type Counts In",
            [&] {
                return jobs.typeCounts(
                    selected(AppSection::jobs), "", { .words = { { MatchBand::noMatch, 300 } } });
            } },
        { "Change Status",
            [&] {
                const IDs ids { selected(AppSection::jobs) };
                return jobs.setStatus(ids, JobStatus::inProgress)
                    && jobs.setStatus(ids, JobStatus::delivered);
            } },
        { "Duplicate Job", [&] { return jobs.duplicate(id(11)); } },
        { "Delete Job", [&] { return jobs.remove(IDs { selected(AppSection::jobs) }); } },
        { "Make Draft", [&] { return invoices.makeDraft(IDs { id(11) }); } },
        { "Change Draft",
            [&] {
                const auto draft = selected(AppSection::invoices);
                return invoices.addJobs(draft, invoices.otherDelivered(*model.invoice(draft)))
                    && invoices.addLine(draft)
                    && invoices.moveLine(draft, model.invoice(draft)->lines[0].id, 1)
                    && invoices.removeLine(draft, model.invoice(draft)->lines[0].id);
            } },
        { "Update Lines", [&] { return invoices.updateLines(selected(AppSection::invoices)); } },
        { "Delete Draft", [&] { return invoices.removeDraft(selected(AppSection::invoices)); } },
        { "Record Payment",
            [&] {
                return invoices.recordPayment(issued, { .date = world.now, .amount = 20 })
                    && invoices.payInFull(IDs { issued }, world.now);
            } },
        { "Remove Payment",
            [&] { return invoices.removePayment(issued, model.invoice(issued)->payments.front().id); } },
        { "Make Draft", [&] { return invoices.makeCreditNote(issued); } },
        { "Add Typed Rate",
            [&] {
                return invoices.typeRate(
                    { .from = "USD", .to = "EUR", .day = world.now }, decimal("0.9"), "");
            } },
        { "Change Settings",
            [&] {
                return model.profile().setNextNumber(Ledger::Series::quotes, 7)
                    && model.profile().edit(
                        "Change Settings", [](Profile& profile) { profile.sender.name = "Ada"; });
            } },
    };
    for (const auto& [name, edit] : edits) {
        world.now = world.now.plusMilliseconds(1000);
        ASSERT_TRUE(edit()) << name << ": " << world.problem();
        EXPECT_EQ(model.undoText(), "Undo " + name);
        model.endMerging();
    }
    const auto ended = model.library();
    int steps = 0;
    for (; model.undoName(); ++steps)
        model.undo();
    EXPECT_GE(steps, 25);
    EXPECT_EQ(model.library(), started);
    while (model.redoName())
        model.redo();
    EXPECT_EQ(model.library(), ended);
    EXPECT_EQ(world.problem(), "");
    world.settle();
    EXPECT_EQ(LibraryStore::decode(world.document(), ::Test::moment()), ended);
}

TEST(AppModelUndo, editsOfOneFieldAreOneStepWhileTheFocusStays)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    const auto before = model.library();
    setRate(model, "0.11");
    setRate(model, "0.12");
    setRate(model, "0.12"); // Nothing changes, so it is no step.
    model.endMerging(); // The focus goes and comes back.
    setRate(model, "0.13");
    model.undo();
    EXPECT_EQ(model.client(id(1))->defaultRate, decimal("0.12"));
    EXPECT_EQ(model.redoText(), "Redo Change Rate");
    setRate(model, "0.14"); // What is done anew can't be redone.
    EXPECT_EQ(model.redoName(), std::nullopt);
    model.undo();
    model.undo();
    EXPECT_EQ(model.library(), before);
    EXPECT_EQ(model.undoText(), "Undo");
}

TEST(AppModelUndo, whatChangedIsSelectedAndTold)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    std::vector<LibraryChanges> told;
    QObject::connect(&model, &AppModel::libraryChanged, &model,
        [&](const LibraryChanges& changes) { told.push_back(changes); });
    model.setSection(AppSection::jobs);
    model.select(AppSection::jobs, id(12));
    ASSERT_TRUE(model.jobs().remove(IDs { id(12) }));
    EXPECT_EQ(world.notice(), "“Job 12” was deleted.");
    EXPECT_EQ(model.notice()->action, Notice::Action::undo);
    EXPECT_NE(model.selection(AppSection::jobs), std::nullopt);
    model.setSection(AppSection::clients);
    model.undo();
    EXPECT_EQ(model.section(), AppSection::jobs);
    EXPECT_EQ(model.selection(AppSection::jobs), id(12));
    EXPECT_EQ(model.library(), ::Test::sampleLibrary()); // In its old place among the others.
    ASSERT_EQ(told.size(), 2u);
    EXPECT_EQ(told[0].removed, (std::vector<RecordID> { { RecordKind::job, id(12) } }));
    EXPECT_EQ(told[1].added, told[0].removed);
    EXPECT_TRUE(told[1].changed.empty());
}

TEST(AppModelUndo, issuingDropsTheStepsOfItsRecordsAndNoOthers)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    setRate(model, "0.2"); // Of a client of the issued job, but not an issued record.
    model.jobs().edit(id(11), "Change Title", [](Job& job) { job.title = "Issued later"; });
    ASSERT_TRUE(model.jobs().remove(IDs { id(12) }));
    const auto invoice = issueOf(world, { id(11) });
    EXPECT_EQ(model.undoName(), "Delete Job");
    model.undo();
    EXPECT_NE(model.job(id(12)), nullptr);
    EXPECT_EQ(model.undoName(), "Change Rate");
    model.undo();
    EXPECT_EQ(model.undoText(), "Can’t Undo Issuing");
    EXPECT_EQ(model.job(id(11))->title, "Issued later");
    EXPECT_EQ(model.job(id(11))->invoiceID, invoice);
    EXPECT_EQ(model.library().profile.invoiceSeries.upcoming(2026).sequence, 2);

    model.profile().edit("Change Settings", [](Profile& profile) { profile.invoiceSeries.prefix = "R-"; });
    issueOf(world, { id(12) });
    model.undo(); // The prefix comes back, the number that was given since stays given.
    EXPECT_EQ(model.library().profile.invoiceSeries.prefix, "INV-");
    EXPECT_EQ(model.library().profile.invoiceSeries.upcoming(2026).sequence, 3);
    EXPECT_EQ(model.invoices().numbering().front(), "Numbering checked: no gaps, no repeats.");
}

// A step that is dropped takes along older ones of its records: what they would bring back is lost.
TEST(AppModelUndo, olderStepsOfDroppedRecordsGoToo)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    setRate(model, "0.2");
    model.clients().edit(
        id(1), "Change Rate", [](Client& client) { client.defaultRate = decimal("0.3"); }, true);
    model.endMerging();
    model.clients().edit(id(1), "Change Name", [](Client& client) { client.name = "Renamed"; });
    issueOf(world, { id(11) });
    EXPECT_EQ(model.undoName(), "Change Name");
    model.undo();
    EXPECT_EQ(model.undoName(), std::nullopt);
    EXPECT_EQ(model.client(id(1))->defaultRate, decimal("0.3"));
}

TEST(AppModelUndo, aRecordThatOthersNeedByNowStays)
{
    World world;
    auto& model = world.start();
    ASSERT_TRUE(model.clients().add());
    const auto client = *model.selection(AppSection::clients);
    ASSERT_TRUE(model.jobs().add({ .title = "Job", .clientID = client }));
    const auto job = *model.selection(AppSection::jobs);
    model.jobs().addExtra(job, { .title = "Fee", .quantity = 1, .unitPrice = 50 });
    model.jobs().setStatus(IDs { job }, JobStatus::inProgress);
    model.jobs().setStatus(IDs { job }, JobStatus::delivered);
    issueOf(world, { job });
    ASSERT_EQ(model.undoName(), "Add Client"); // All of the job's steps are gone.
    model.undo();
    EXPECT_EQ(world.problem(), "New client has jobs or invoices. Archive the client instead.");
    EXPECT_NE(model.client(client), nullptr);
    EXPECT_EQ(model.undoName(), std::nullopt);
}

TEST(AppModelUndo, paymentsAreTakenBackInEveryStateOfTheInvoice)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    const auto invoice = issueOf(world, { id(11) }); // 119.00
    ASSERT_TRUE(model.invoices().recordPayment(invoice, { .date = world.now, .amount = 19 }));
    ASSERT_TRUE(model.invoices().makeCreditNote(invoice));
    const auto note = *model.selection(AppSection::invoices);
    ASSERT_TRUE(model.invoices().edit(note, "Change Draft", [](Invoice& draft) {
        draft.taxPercent = 0;
        draft.lines
            = { { .id = id(70), .title = "Credit", .quantity = -1, .unitPrice = 100, .amount = -100 } };
    }));
    model.invoices().issue(note, world.now, std::nullopt);
    ASSERT_EQ(model.job(id(11))->status, JobStatus::paid); // 19 paid and 100 credited.
    EXPECT_EQ(model.undoName(), "Record Payment");
    model.undo();
    EXPECT_EQ(
        model.job(id(11))->status, JobStatus::invoiced); // Not as it was before the credit: as it is due.
    EXPECT_EQ(model.invoices().stillDue(*model.invoice(invoice)), decimal("19"));
    model.redo();
    EXPECT_EQ(model.job(id(11))->status, JobStatus::paid);
}

TEST(AppModelUndo, givingAQuoteNumberIsFinal)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    model.jobs().edit(id(11), "Change Title", [](Job& job) { job.title = "Quoted"; });
    EXPECT_EQ(model.jobs().giveQuoteNumber(id(11)), "Q-2026-001");
    EXPECT_EQ(model.undoName(), std::nullopt);
    EXPECT_EQ(model.undoText(), "Can’t Undo Giving a Quote Number");
    EXPECT_NE(world.document().find("Q-2026-001"), std::string::npos); // Saved at once.
    EXPECT_EQ(model.jobs().giveQuoteNumber(id(11)), "Q-2026-001");
}

TEST(AppModelUndo, keepsTheLastTwoHundredSteps)
{
    World world;
    auto& model = world.start(::Test::sampleLibrary());
    for (int step = 0; step < 250; ++step) {
        model.endMerging();
        setRate(model, std::to_string(step + 1));
    }
    int undone = 0;
    for (; model.undoName(); ++undone)
        model.undo();
    EXPECT_EQ(undone, 200);
    EXPECT_EQ(model.client(id(1))->defaultRate, Base::Decimal(50));
}
