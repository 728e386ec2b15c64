#include "PallisandeKit/Library/LibraryComparison.h"
#include "PallisandeKit/Library/LibraryFileName.h"
#include "Tests/Support/Folders.h"
#include "Tests/Support/Sessions.h"

#include <gtest/gtest.h>

using namespace Pallisande;

namespace {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;
using Kind = LibraryFileName::Kind;

Strings names(const std::vector<fs::path>& files)
{
    Strings names;
    for (const auto& file : files)
        names.push_back(file.filename().string());
    return names;
}

template <typename Records> Strings numbers(const Records& records)
{
    Strings found;
    for (const auto* record : records)
        found.push_back(record->id.toString().substr(33));
    return found;
}

struct Counts {
    Strings gone, added, changed;
    bool operator==(const Counts&) const = default;
};

template <typename Record> Counts counts(const LibraryComparison::Records<Record>& records)
{
    return { numbers(records.gone), numbers(records.added), numbers(records.changed) };
}

} // namespace

TEST(LibraryFileName, tellsBackupsFromWhatSyncProgramsSetAside)
{
    const struct {
        const char* name;
        Kind kind;
        const char *day, *time;
    } cases[] {
        { "Pallisande Library.json", Kind::document, "", "" },
        { "Pallisande Library (damaged 2026-03-09T14-05-31Z).json", Kind::damaged, "", "" },
        { "Pallisande Library (damaged 2026-03-09T14-05-31Z 2).json", Kind::damaged, "", "" },
        { "Pallisande Library 2026-03-09.json", Kind::dated, "2026-03-09", "" },
        { "Pallisande Library 2026-03-09 15-05-31.json", Kind::onDemand, "2026-03-09", "15-05-31" },
        { "Pallisande Library 2026-02-30.json", Kind::other, "", "" },
        { "Pallisande Library 2026-03-09 15:05:31.json", Kind::other, "", "" },
        { "Pallisande Library 2026-03-09 15-05.json", Kind::other, "", "" },
        { "Pallisande Library (conflicted copy 2026-03-09).json", Kind::conflict, "", "" },
        { "Pallisande Library (Ada’s conflicted copy 2026-03-09).json", Kind::conflict, "", "" },
        { "Pallisande Library (Case Conflict).json", Kind::conflict, "", "" },
        { "Pallisande Library (SFConflict ada@example.org 2026-03-09-14-05-31).json", Kind::conflict, "",
            "" },
        { "Pallisande Library.sync-conflict-20260309-140531-ABCDEFG.json", Kind::conflict, "", "" },
        { "Pallisande Library_conflict-20260309-140531.json", Kind::conflict, "", "" },
        { "Pallisande Library.Conflict.json", Kind::conflict, "", "" },
        { "Pallisande Library (1).json", Kind::conflict, "", "" },
        { "Pallisande Library(2).json", Kind::conflict, "", "" },
        { "Pallisande Library 2.json", Kind::conflict, "", "" },
        { "Pallisande Library-LAPTOP.json", Kind::conflict, "", "" },
        { "Pallisande Library-Adas-MacBook-2.json", Kind::conflict, "", "" },
        // A conflict of a backup is still no backup of its day.
        { "Pallisande Library 2026-03-09 (conflicted copy 2026-03-10).json", Kind::conflict, "", "" },
        { "Pallisande Library 2026.json", Kind::other, "", "" },
        { "Pallisande Library of a friend.json", Kind::other, "", "" },
        { "Pallisande Library - old.json", Kind::other, "", "" },
        { "Pallisande Library-.json", Kind::other, "", "" },
        { "Pallisande Library ().json", Kind::other, "", "" },
        { "Pallisande Library (1).json.tmp", Kind::other, "", "" },
        { ".Pallisande Library.json.a1b2c3.tmp", Kind::other, "", "" },
        { "Invoices (conflicted copy).json", Kind::other, "", "" },
        { "Pallisande Lib", Kind::other, "", "" },
        { "", Kind::other, "", "" },
    };
    for (const auto& [text, kind, day, time] : cases) {
        SCOPED_TRACE(text);
        const auto name = LibraryFileName::of(text);
        EXPECT_EQ(name.kind, kind);
        EXPECT_EQ(name.day ? name.day->toString() : "", day);
        EXPECT_EQ(name.time, time);
    }
}

TEST(LibraryStore, listsOtherVersionsAndNeverTakesThemForBackups)
{
    const ::Test::TemporaryFolder folder;
    const LibraryStore store(folder.path());
    const Strings conflicts { "Pallisande Library (conflicted copy 2026-03-09).json",
        "Pallisande Library-LAPTOP.json" };
    ::Test::Surroundings surroundings;
    store.save(::Test::sampleLibrary());
    for (const auto& name : conflicts)
        ::Test::writeFile(folder / name, "another version");
    ::Test::writeFile(folder / "Pallisande Library of a friend.json", "{}");
    fs::create_directory(folder / "Backups");
    // In Backups, one that is named like a day's copy and a bit more isn't that day's.
    const auto stray = folder / "Backups/Pallisande Library 2026-01-01 (conflicted copy 2026-01-02).json";
    ::Test::writeFile(stray, "{}");
    EXPECT_EQ(names(store.conflictCopies()), conflicts);
    for (int day = 0; day < 62; ++day)
        store.dailyBackup(
            ::Test::sampleLibrary(), ::Test::momentOn(::Test::day("2026-01-01").plusDays(day).toString()));
    EXPECT_EQ(store.backups().size(), 61u) << "sixty days and the stray one";
    EXPECT_TRUE(fs::exists(stray));
    {
        auto session = surroundings.open(folder.path());
        EXPECT_FALSE(session.isReadOnly());
        EXPECT_EQ(session.takeMessages(),
            Strings {
                "A sync program left 2 other versions of your library in its folder. Compare them with your "
                "library; they are never read in its place." });
        session.save();
    }
    for (const auto& name : conflicts)
        EXPECT_EQ(::Test::fileText(folder / name), "another version");
}

TEST(LibraryComparison, saysWhatOnlyOneHasAndWhatIsDifferent)
{
    auto present = ::Test::sampleLibrary();
    const auto first = ::Test::issued(present, { 11 }).id;
    auto other = present;
    const Counts none;
    {
        const auto same = compare(present, other, 2026);
        EXPECT_TRUE(same.isSame());
        EXPECT_EQ(same.nextNumbers.size(), 3u);
        EXPECT_EQ(same.nextNumbers.front().other, "INV-2026-002");
    }
    // Since the copy: a client named anew, a job gone, another added and one merely touched, a payment
    // changed and one more, a document issued.
    const auto paid = [](Library& library, const Base::Uuid& id, const char* amount) {
        return Ledger::addPayment(library, id,
            { .date = ::Test::noon("2026-03-09"), .amount = ::Test::decimal(amount) }, ::Test::moment())
            .id;
    };
    const auto payment = paid(other, first, "10");
    present = other;
    present.clients[1].name = "Harbour Books";
    Ledger::deleteJob(present, ::Test::id(12));
    Ledger::addJob(present, ::Test::job(14, 2, 10));
    present.job(::Test::id(21))->modified = ::Test::instant("2026-03-09T12:00:00.000Z");
    auto changed = present.invoice(first)->payments.front();
    changed.amount = ::Test::decimal("20");
    Ledger::editPayment(present, first, changed, ::Test::moment());
    paid(present, first, "5");
    {
        const auto found = compare(present, other, 2026);
        EXPECT_EQ(counts(found.clients), (Counts { {}, {}, { "002" } }));
        ASSERT_EQ(found.clients.changed.size(), 1u);
        EXPECT_EQ(found.clients.changed.front()->name, "Harbor Books") << "as the copy has it";
        EXPECT_EQ(counts(found.jobs), (Counts { { "00E" }, { "00C" }, {} }))
            << "a job’s last change alone is no difference";
        EXPECT_EQ(counts(found.documents), none) << "payments stand for themselves";
        ASSERT_EQ(found.payments.changed.size(), 1u);
        EXPECT_EQ(found.payments.changed.front().payment->id, payment);
        EXPECT_EQ(found.payments.changed.front().payment->amount, ::Test::decimal("10"));
        EXPECT_EQ(found.payments.gone.size(), 1u);
        EXPECT_EQ(found.payments.gone.front().invoice->number, "INV-2026-001");
        EXPECT_TRUE(found.payments.added.empty());
        EXPECT_FALSE(found.hasOtherProfile || found.hasOtherRates || found.hasOtherCounting);
    }
    const auto second = ::Test::issued(present, { 21 }).id;
    paid(present, second, "1");
    present.profile.bankDetails = "Another bank";
    present.counting.rateCards.front().name = "Another card";
    {
        const auto found = compare(present, other, 2026);
        ASSERT_EQ(found.documents.gone.size(), 1u);
        EXPECT_EQ(found.documents.gone.front()->id, second);
        EXPECT_EQ(found.payments.gone.size(), 2u) << "that of a document that goes goes too";
        EXPECT_EQ(found.nextNumbers.front().present, "INV-2026-003");
        EXPECT_EQ(found.nextNumbers.front().other, "INV-2026-002");
        EXPECT_TRUE(found.hasOtherProfile && found.hasOtherCounting);
        EXPECT_FALSE(found.hasOtherRates);
    }
    // Seen from the other side, what was gone is added.
    EXPECT_EQ(counts(compare(other, present, 2026).jobs), (Counts { { "00C" }, { "00E" }, { "015" } }));
}

TEST(LibraryComparison, countsWhatALibraryHolds)
{
    auto library = ::Test::sampleLibrary();
    EXPECT_EQ(LibraryContents::of(library), (LibraryContents { 2, 3, 0, "" }));
    // The number given last, whatever day is printed on the document.
    ::Test::issue(library, ::Test::draft(library, { 11 }).id, ::Test::momentOn("2026-03-01"));
    ::Test::issue(library, ::Test::draft(library, { 12 }).id, ::Test::momentOn("2026-03-05"),
        ::Test::noon("2026-02-01"));
    ::Test::draft(library, { 21 });
    EXPECT_EQ(LibraryContents::of(library), (LibraryContents { 2, 3, 2, "INV-2026-002" }));
}

TEST(UnrecordedDocuments, areThoseWhoseStoredPDFIsTheOneThatWasIssued)
{
    const ::Test::TemporaryFolder folder;
    ::Test::Surroundings surroundings;
    LibraryStore(folder.path()).save(::Test::sampleLibrary());
    auto session = surroundings.open(folder.path());
    for (const std::uint64_t job : { 11, 12, 21 }) {
        const std::vector<Base::Uuid> jobs { ::Test::id(job) };
        const auto draft = session.change([&](Library& library) {
            return Ledger::draftInvoice(library, jobs, ::Test::moment(), ::Test::labels()).id;
        });
        session.issue(draft);
    }
    const auto found = [&](std::set<std::string> recorded) {
        Strings numbers;
        for (const auto& plan : unrecordedDocuments(session.store(), std::move(recorded), session.moment()))
            numbers.push_back(plan.document.number.value_or(""));
        return numbers;
    };
    EXPECT_EQ(found(issuedNumbers(session.library())), Strings());
    EXPECT_EQ(found({ "INV-2026-002" }), (Strings { "INV-2026-001", "INV-2026-003" }));
    fs::remove(folder / "Invoices/INV-2026-001.pdf");
    fs::permissions(folder / "Invoices/INV-2026-003.pdf", fs::perms::owner_all);
    ::Test::writeFile(folder / "Invoices/INV-2026-003.pdf", "another");
    EXPECT_EQ(found({}), Strings { "INV-2026-002" });
    // What has a record by the time it is taken over isn't taken twice.
    const auto plans = unrecordedDocuments(session.store(), {}, session.moment());
    EXPECT_EQ(session.takeOver(plans), Strings());
    EXPECT_EQ(session.library().invoices.size(), 3u);
}
