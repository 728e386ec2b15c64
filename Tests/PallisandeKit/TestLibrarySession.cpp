#include "PallisandeKit/Library/LibrarySession.h"

#include "PallisandeKit/Library/LibraryCheck.h"
#include "Tests/Support/Folders.h"
#include "Tests/Support/Sessions.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <fstream>
#include <sys/file.h>
#include <unistd.h>

using namespace Pallisande;

namespace {

namespace fs = std::filesystem;
using Access = LibrarySession::Access;

const std::string document(LibraryStore::documentName);

// Every file below a folder with its contents.
std::map<std::string, std::string> snapshot(const fs::path& folder)
{
    std::map<std::string, std::string> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.is_regular_file())
            files[fs::relative(entry.path(), folder).string()] = ::Test::fileText(entry.path());
    }
    return files;
}

template <typename Operation> std::string failure(Operation operation)
{
    try {
        operation();
        return "(done)";
    } catch (const std::exception& error) {
        return error.what();
    }
}

// A folder with the sample library, and its surroundings.
class LibrarySessionTest : public testing::Test {
protected:
    LibrarySessionTest() { LibraryStore(folder.path()).save(::Test::sampleLibrary()); }

    LibrarySession open(Access access = Access::writing) { return surroundings.open(folder.path(), access); }

    static Base::Uuid draft(LibrarySession& session, std::uint64_t job)
    {
        return session.change([&](Library& library) {
            const Base::Uuid jobs[] { ::Test::id(job) };
            return Ledger::draftInvoice(library, jobs, session.moment(), ::Test::labels()).id;
        });
    }

    static void rename(LibrarySession& session, const std::string& name)
    {
        session.change([&](Library& library) { library.clients.front().name = name; });
    }

    Library onDisk() const { return LibraryStore(folder.path()).load(::Test::moment()).library; }

    ::Test::TemporaryFolder folder;
    ::Test::Surroundings surroundings;
};

} // namespace

TEST_F(LibrarySessionTest, savesChangesAndTheDaysBackup)
{
    auto session = open();
    EXPECT_FALSE(session.isReadOnly());
    EXPECT_TRUE(fs::exists(folder / "Backups/Pallisande Library 2026-03-09.json"))
        << "made when it was opened";
    rename(session, "Renamed");
    EXPECT_TRUE(session.hasUnsavedChanges());
    EXPECT_NE(onDisk(), session.library());
    session.save();
    EXPECT_FALSE(session.hasUnsavedChanges());
    EXPECT_EQ(onDisk(), session.library());
    surroundings.now = ::Test::instant("2026-03-10T08:00:00Z");
    session.save();
    EXPECT_EQ(::Test::fileText(folder / "Backups/Pallisande Library 2026-03-10.json"),
        ::Test::fileText(folder / document));
    EXPECT_TRUE(session.takeMessages().empty());
}

TEST_F(LibrarySessionTest, copiesIntoTheSecondFolderOnceADay)
{
    auto session = open();
    SecondBackup second { folder / "stick", "" };
    second.lastDay = session.saveSecondBackup(second).value();
    EXPECT_EQ(second.lastDay, "2026-03-09");
    EXPECT_FALSE(session.saveSecondBackup(second));
    EXPECT_TRUE(fs::exists(folder / "stick/Pallisande Library 2026-03-09 15-05-31.json"));
}

TEST_F(LibrarySessionTest, letsOnlyOneWriteAndEveryoneRead)
{
    auto first = open();
    auto second = open();
    EXPECT_EQ(second.readOnlyReason(), ReadOnlyReason::inUse);
    EXPECT_EQ(failure([&] { rename(second, "x"); }),
        "Your library couldn’t be opened: another Pallisande is using it");
    second.save();
    EXPECT_EQ(onDisk(), ::Test::sampleLibrary());
    const auto reader = open(Access::reading);
    EXPECT_EQ(reader.library(), first.library());
    {
        const auto moved = std::move(first);
    }
    EXPECT_FALSE(open().isReadOnly()) << "the lock goes with the session";
}

TEST_F(LibrarySessionTest, neverWritesOverWhatAnotherProgramWrote)
{
    auto session = open();
    rename(session, "Ours");
    auto theirs = ::Test::sampleLibrary();
    theirs.clients.front().name = "Theirs";
    LibraryStore(folder.path()).save(theirs);

    const auto sentence = failure([&] { session.save(); });
    EXPECT_TRUE(sentence.starts_with(
        "Pallisande couldn’t save your library: the file was changed by another program"))
        << sentence;
    EXPECT_EQ(onDisk(), theirs);
    EXPECT_EQ(session.readOnlyReason(), ReadOnlyReason::changedElsewhere);
    const auto kept = LibraryStore::decode(
        ::Test::fileText(folder / "Backups/Pallisande Library 2026-03-09 15-05-31.json"), ::Test::moment());
    EXPECT_EQ(kept.clients.front().name, "Ours");
    session.save();
    EXPECT_EQ(onDisk(), theirs);
}

TEST_F(LibrarySessionTest, isNotAlarmedByATouchOrACopyOfTheSameBytes)
{
    auto session = open();
    const auto bytes = ::Test::fileText(folder / document);
    for (const bool replaces : { false, true }) {
        if (replaces)
            fs::remove(folder / document);
        ::Test::writeFile(folder / document, bytes);
        fs::last_write_time(folder / document, fs::file_time_type::clock::now() + std::chrono::hours(1));
        rename(session, "Ours");
        session.save();
        EXPECT_EQ(onDisk().clients.front().name, "Ours");
        rename(session, ::Test::sampleLibrary().clients.front().name);
        session.save();
    }
}

TEST_F(LibrarySessionTest, leavesANewerLibraryByteForByte)
{
    ::Test::writeFile(folder / document, "{\"version\": 2, \"jobs\": 7}");
    const auto before = snapshot(folder.path());
    for (const auto access : { Access::reading, Access::writing }) {
        auto session = open(access);
        EXPECT_EQ(session.readOnlyReason(), ReadOnlyReason::newerVersion);
        const std::string sentence
            = "Your library was saved by a newer version of Pallisande. Update Pallisande to "
              "open it; nothing was changed.";
        EXPECT_EQ(session.takeMessages(), std::vector<std::string> { sentence });
        EXPECT_EQ(failure([&] { rename(session, "x"); }), sentence);
        EXPECT_EQ(failure([&] { session.backUpNow(); }), sentence);
        session.save();
    }
    EXPECT_EQ(snapshot(folder.path()), before);
}

TEST_F(LibrarySessionTest, startsANewLibraryForADamagedOneAndSaysSo)
{
    ::Test::writeFile(folder / document, "damaged");
    EXPECT_TRUE(open(Access::reading).isReadOnly());
    EXPECT_EQ(::Test::fileText(folder / document), "damaged") << "reading moves nothing";
    {
        auto session = open();
        EXPECT_EQ(session.takeMessages().front(),
            "Your library couldn’t be read, so Pallisande started a new one. The old file was kept as "
            "“Pallisande "
            "Library (damaged 2026-03-09T14-05-31Z).json”, and the dated copies are in the Backups folder.");
        EXPECT_FALSE(session.library().holdsRecords());
    }
    EXPECT_FALSE(onDisk().holdsRecords()) << "written at once";
    EXPECT_FALSE(open().isReadOnly()) << "and so the next start finds it";
}

TEST_F(LibrarySessionTest, readsAgainWhatASyncProgramIsStillWriting)
{
    const auto whole = ::Test::fileText(folder / document);
    ::Test::writeFile(folder / document, whole.substr(0, whole.size() / 2));
    surroundings.now = Base::Instant::now();
    auto services = surroundings.services();
    int waits = 0;
    services.wait = [&](std::chrono::milliseconds) {
        if (++waits == 2)
            ::Test::writeFile(folder / document, whole);
    };
    const auto session = LibrarySession::open(folder.path(), Access::writing, services);
    EXPECT_EQ(waits, 2);
    EXPECT_EQ(session.library(), ::Test::sampleLibrary());
}

TEST_F(LibrarySessionTest, takesAMissingDocumentOfAUsedFolderForNothingNew)
{
    const struct {
        std::string leftover, text;
        bool isUsed;
    } cases[] {
        { "Invoices/INV-2026-001.pdf", "pdf", true },
        { "Reports/report.xml", "xml", true },
        { "Backups/Pallisande Library 2026-03-08.json", LibraryStore::encode(::Test::sampleLibrary()), true },
        { "Backups/Pallisande Library 2026-03-08.json", "unreadable", true },
        { "Backups/Pallisande Library 2026-03-08.json", LibraryStore::encode(Library::makeNew()), false },
        { "notes.txt", "", false },
    };
    for (const auto& [leftover, text, isUsed] : cases) {
        SCOPED_TRACE(leftover);
        const ::Test::TemporaryFolder used;
        fs::create_directories((used / leftover).parent_path());
        ::Test::writeFile(used / leftover, text);
        const auto before = snapshot(used.path());
        auto session = surroundings.open(used.path());
        if (!isUsed) {
            EXPECT_FALSE(session.isReadOnly());
            continue;
        }
        EXPECT_EQ(session.readOnlyReason(), ReadOnlyReason::missingFile);
        EXPECT_EQ(failure([&] { session.requireWritable(); }),
            "Your library couldn’t be opened: the library file is missing");
        session.save();
        EXPECT_EQ(snapshot(used.path()), before);
        session.startAnew();
        EXPECT_TRUE(LibraryStore(used.path()).exists());
    }
}

TEST_F(LibrarySessionTest, restoresABackupAndKeepsWhatWasThere)
{
    const auto backup = folder / "Backups/Pallisande Library 2026-03-09.json";
    {
        auto session = open();
        rename(session, "Later");
        session.save();
        session.restore(backup);
        EXPECT_EQ(onDisk(), ::Test::sampleLibrary());
        EXPECT_EQ(LibraryStore::decode(::Test::fileText(session.store().backups().at(1)), ::Test::moment())
                      .clients.front()
                      .name,
            "Later");
        ::Test::writeFile(folder / "broken.json", "[");
        EXPECT_TRUE(failure([&] {
            session.restore(folder / "broken.json");
        }).starts_with("“broken.json” couldn’t be restored: "));
    }
    fs::remove(folder / document);
    auto session = open();
    EXPECT_EQ(session.readOnlyReason(), ReadOnlyReason::missingFile);
    session.restore(backup);
    EXPECT_EQ(onDisk(), ::Test::sampleLibrary());
}

TEST_F(LibrarySessionTest, doesNotMakeAFolderAgainThatWentAway)
{
    const ::Test::TemporaryFolder parent;
    const auto path = parent / "drive/library";
    LibraryStore(path).save(::Test::sampleLibrary());
    auto session = surroundings.open(path);
    fs::rename(parent / "drive", parent / "gone");
    rename(session, "Ours");
    EXPECT_EQ(failure([&] { session.save(); }),
        "Pallisande couldn’t save your library: the library folder isn’t there any more");
    EXPECT_FALSE(fs::exists(path));
    EXPECT_EQ(failure([&] { surroundings.open(path); }),
        "Pallisande couldn’t open its library folder: " + std::generic_category().message(ENOENT));
    fs::rename(parent / "gone", parent / "drive");
    session.save();
    EXPECT_EQ(LibraryStore(path).load(::Test::moment()).library, session.library());
}

TEST_F(LibrarySessionTest, doesNotWriteWhereSomethingElseHasTheDocumentsName)
{
    auto session = open();
    fs::rename(folder / document, folder / "elsewhere");
    fs::create_directory(folder / document);
    rename(session, "Ours");
    const auto why = failure([&] { session.save(); });
    EXPECT_TRUE(why.starts_with("Pallisande couldn’t save your library: ")) << why;
    fs::remove(folder / document);
    fs::rename(folder / "elsewhere", folder / document);
    session.save();
    EXPECT_EQ(onDisk(), session.library());
}

TEST_F(LibrarySessionTest, keepsEditsWhenAFolderCannotBeWritten)
{
    if (geteuid() == 0)
        GTEST_SKIP() << "root may write everywhere";
    auto session = open();
    const auto before = ::Test::fileText(folder / document);
    fs::permissions(folder.path(), fs::perms::owner_read | fs::perms::owner_exec);
    rename(session, "Ours");
    EXPECT_EQ(failure([&] { session.save(); }),
        "Pallisande couldn’t save your library: " + std::generic_category().message(EACCES));
    EXPECT_EQ(::Test::fileText(folder / document), before);
    fs::permissions(folder.path(), fs::perms::owner_all);
    session.save();
    EXPECT_EQ(onDisk(), session.library());
}

TEST_F(LibrarySessionTest, storesAReportBesideItsAnalysis)
{
    auto session = open();
    auto analysis = ::Test::analysis({ { MatchBand::exact, 10 } });
    session.attachAnalysis(::Test::id(11), analysis, "<task/>", "report.xml");
    const auto saved = onDisk();
    const auto& attached = saved.job(::Test::id(11))->analyses.back();
    EXPECT_EQ(attached.storedCopy, "Reports/" + analysis.id.toString() + " report.xml");
    EXPECT_EQ(::Test::fileText(folder / *attached.storedCopy), "<task/>");
    EXPECT_EQ(failure([&] { session.attachAnalysis(::Test::id(99), analysis, "x", "y.xml"); }),
        "That item no longer exists.");
    EXPECT_EQ(Base::Folder::open(folder / "Reports").files().size(), 1u);
}

TEST_F(LibrarySessionTest, issuesNumberPDFAndRecordTogether)
{
    auto session = open();
    const auto id = draft(session, 11);
    EXPECT_EQ(session.issue(id), "INV-2026-001");
    EXPECT_EQ(onDisk(), session.library()) << "saved at once";
    const auto& invoice = *session.library().invoice(id);
    EXPECT_EQ(invoice.pdfFile, "Invoices/INV-2026-001.pdf");
    EXPECT_NE(::Test::fileText(session.storedPDF(id)).find("INV-2026-001"), std::string::npos);
    EXPECT_TRUE(checkLibrary(session).isClean()) << testing::PrintToString(checkLibrary(session).findings);
    fs::remove(session.storedPDF(id));
    EXPECT_EQ(failure([&] { session.storedPDF(id); }),
        "The stored PDF for INV-2026-001 is missing from the library folder. Restore it from a backup of the "
        "folder; "
        "Pallisande doesn’t make a new one, so the issued document stays as issued.");
}

TEST_F(LibrarySessionTest, leavesEverythingAsItWasWhenIssuingFails)
{
    auto session = open();
    const auto id = draft(session, 11);
    session.save();
    const auto before = session.library();
    const std::string wrapped = "The invoice wasn’t issued, because its PDF couldn’t be stored: ";

    surroundings.renderer.refusal
        = "No installed font has the characters “☃”; they would print as empty boxes.";
    EXPECT_EQ(failure([&] { session.issue(id); }), wrapped + surroundings.renderer.refusal);
    surroundings.renderer.refusal.clear();
    fs::create_directory(folder / "Invoices");
    ::Test::writeFile(folder / "Invoices/INV-2026-001.pdf", "from elsewhere");
    EXPECT_EQ(failure([&] { session.issue(id); }),
        wrapped + "A PDF for INV-2026-001 is already stored; an issued PDF is never replaced.");
    EXPECT_EQ(session.library(), before);
    EXPECT_EQ(onDisk(), before);
    EXPECT_EQ(::Test::fileText(folder / "Invoices/INV-2026-001.pdf"), "from elsewhere");
    fs::remove(folder / "Invoices/INV-2026-001.pdf");
    EXPECT_EQ(session.issue(id), "INV-2026-001") << "no number was lost";
    EXPECT_EQ(failure([&] { session.issue(id); }), "Only a draft can be changed.");
}

TEST_F(LibrarySessionTest, takesOverDocumentsThatARestoredBackupLacks)
{
    const auto backup = folder / "Backups/Pallisande Library 2026-03-09.json";
    {
        auto session = open();
        const auto first = draft(session, 11), second = draft(session, 21);
        session.issue(first);
        session.issue(second);
        session.restore(backup);
        EXPECT_EQ(session.library().invoices.size(), 0u);
        const auto id = draft(session, 12);
        EXPECT_EQ(failure([&] { session.issue(id); }),
            "The invoice wasn’t issued, because its PDF couldn’t be stored: A PDF for INV-2026-001 is "
            "already stored; "
            "an issued PDF is never replaced.");
        EXPECT_EQ(checkLibrary(session).findings.size(), 2u);
        EXPECT_EQ(
            session.recoverFromIssueLog(), (std::vector<std::string> { "INV-2026-001", "INV-2026-002" }));
        EXPECT_EQ(session.issue(id), "INV-2026-003");
        EXPECT_TRUE(checkLibrary(session).isClean())
            << testing::PrintToString(checkLibrary(session).findings);
    }
    EXPECT_EQ(onDisk().job(::Test::id(21))->status, JobStatus::invoiced);
}

TEST_F(LibrarySessionTest, movesToANewFolderAndAdoptsALibraryThatIsThere)
{
    auto session = open();
    session.issue(draft(session, 11));
    session.attachAnalysis(::Test::id(12), ::Test::analysis({}), "<task/>", "report.xml");
    const auto before = snapshot(folder.path());
    const ::Test::TemporaryFolder target;
    session.moveTo(target / "new/place");
    EXPECT_EQ(session.takeMessages().back(),
        "The library is now in “" + (target / "new/place").string()
            + "”. The old copy was left where it was.");
    EXPECT_EQ(snapshot(folder.path()), before);
    EXPECT_TRUE(checkLibrary(session).isClean()) << testing::PrintToString(checkLibrary(session).findings);
    rename(session, "In the new place");
    session.save();
    EXPECT_EQ(snapshot(folder.path()), before);

    session.moveTo(folder.path());
    EXPECT_EQ(session.library().clients.front().name, ::Test::sampleLibrary().clients.front().name)
        << "adopted, not written over";
    EXPECT_EQ(failure([&] { session.moveTo(folder.path()); }),
        "The library couldn’t be moved: it is in that folder already");

    const ::Test::TemporaryFolder damaged;
    ::Test::writeFile(damaged / document, "{");
    EXPECT_EQ(failure([&] { session.moveTo(damaged.path()); }),
        "The library couldn’t be moved: The library file couldn’t be read; it was kept as “Pallisande Library "
        "(damaged 2026-03-09T14-05-31Z).json”.");
    EXPECT_FALSE(fs::exists(damaged / document)) << "an empty one in its place";
}

TEST_F(LibrarySessionTest, findsWhatIsWrongInAFolder)
{
    auto session = open();
    const auto first = draft(session, 11), second = draft(session, 21);
    session.issue(first);
    session.issue(second);
    fs::permissions(folder / "Invoices/INV-2026-001.pdf", fs::perms::owner_all);
    std::ofstream(folder / "Invoices/INV-2026-001.pdf", std::ios::app) << "x";
    fs::remove(folder / "Invoices/INV-2026-002.pdf");
    ::Test::writeFile(folder / "Invoices/stray.pdf", "");
    ::Test::writeFile(folder / "stray.txt", "");
    session.change([](Library& library) {
        library.job(::Test::id(12))->status = JobStatus::paid;
        library.job(::Test::id(21))->invoiceID.reset();
        library.invoices.front().lines.front().amount = 1;
        library.profile.invoiceSeries.next[2026] = 9;
    });
    const auto check = checkLibrary(session);
    EXPECT_FALSE(check.isClean());
    EXPECT_EQ(check.numbering,
        std::vector<std::string> { "Invoices 2026: the next number (9) doesn’t follow INV-2026-002" });
    const std::vector<std::string> expected {
        "The job “Job 12” is Paid but on no invoice.",
        "The job “Job 21” is Invoiced but on no invoice.",
        "INV-2026-002 bills the job “Job 21”, which doesn’t know of it.",
        "The stored PDF for INV-2026-001 isn’t the file that was stored when it was issued.",
        "The record of INV-2026-001 isn’t the one that was issued.",
        "The stored PDF for INV-2026-002 is missing from the library folder. Restore it from a backup of the "
        "folder; "
        "Pallisande doesn’t make a new one, so the issued document stays as issued.",
        "“Invoices/stray.pdf” belongs to no record.",
        "“stray.txt” isn’t a file of the library.",
    };
    EXPECT_EQ(check.findings, expected);
}
