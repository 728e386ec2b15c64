#include "Tests/Pallisande/ModelWorld.h"

#include <gtest/gtest.h>

namespace fs = std::filesystem;
using namespace Pallisande;
using ::Test::id;
using ::Test::World;

// What the user is told, letter for letter, by whatever leads to it. (The sentences of the start stand in a
// table of their own.)
TEST(AppModelWords, areThoseThatWereSettled)
{
    using IDs = std::vector<Base::Uuid>;
    const auto draft = [](World& world) {
        world.model->invoices().makeDraft(IDs { id(11) });
        return *world.model->selection(AppSection::invoices);
    };
    const auto problem = [](World& world) { return world.problem(); };
    const auto notice = [](World& world) { return world.notice(); };
    const auto question = [](World& world) { return world.asked.message; };
    const struct {
        std::string expected; // "{}" stands for the test's own folder.
        std::function<std::string(World&)> told;
        std::function<void(World&)> lead;
    } cases[] {
        { "Choose a CAT analysis: Trados Studio XML, memoQ CSV, or Phrase CSV or JSON.", question,
            [](World& world) { world.model->imports().choose(id(11)); } },
        { "“big.csv” is larger than 50 MB, which is too big for an analysis report.", problem,
            [](World& world) {
                ::Test::writeFile(world.root / "big.csv", "");
                fs::resize_file(world.root / "big.csv", 52'428'801);
                world.model->imports().read(id(11), { world.root / "big.csv" });
            } },
        { "“report.xml” couldn’t be opened: No such file or directory", problem,
            [](World& world) { world.model->imports().read(id(11), { world.root / "report.xml" }); } },
        { "Choose the documents to count (Word, PowerPoint, Excel, OpenDocument, PDF, HTML, RTF, text, "
          "subtitles), "
          "or folders of them.",
            question,
            [](World& world) { world.model->counts().choose(DocumentCounts::Purpose::attach, id(11)); } },
        { "None of the chosen files could be counted.", problem,
            [](World& world) {
                world.model->counts().count({ world.root.path() }, DocumentCounts::Purpose::attach, id(11));
            } },
        { "A job can’t go from Delivered to Paid by hand.", problem,
            [](World& world) { world.model->jobs().setStatus(IDs { id(11) }, JobStatus::paid); } },
        { "The invoice wasn’t issued, because its PDF couldn’t be stored: no paper", problem,
            [&](World& world) {
                world.renderer.refusal = "no paper";
                world.model->invoices().issue(draft(world), world.now, std::nullopt);
            } },
        { "The stored PDF for INV-2026-001 is missing from the library folder. Restore it from a backup of "
          "the "
          "folder; Pallisande doesn’t make a new one, so the issued document stays as issued.",
            problem,
            [&](World& world) {
                const auto invoice = draft(world);
                world.model->invoices().issue(invoice, world.now, std::nullopt);
                fs::remove(world.library / "Invoices" / "INV-2026-001.pdf");
                world.model->invoices().showStoredPDF(invoice);
            } },
        { "The PDF couldn’t be saved: no paper", problem,
            [&](World& world) {
                world.renderer.refusal = "no paper";
                world.answer = { world.root / "Draft.pdf" };
                world.model->invoices().saveDraftPDF(draft(world));
            } },
        { "Backed up as “Pallisande Library 2026-03-09 15-05-31.json”.", notice,
            [](World& world) { world.model->backUpNow(); } },
        { "The backup couldn’t be written: Not a directory", problem,
            [](World& world) {
                fs::remove_all(world.library / "Backups");
                ::Test::writeFile(world.library / "Backups", "");
                world.model->backUpNow();
            } },
        { "Choose a folder for your Pallisande library. Your records, report copies, issued PDFs and backups "
          "move "
          "there.",
            question, [](World& world) { world.model->chooseLibraryFolder(); } },
        { "The library is now in “{}/Moved”. The old copy was left where it was.", notice,
            [](World& world) { world.model->moveLibrary(world.root / "Moved"); } },
        { "The library couldn’t be moved: Not a directory", problem,
            [](World& world) { world.model->moveLibrary("/dev/null/Moved"); } },
        { "Choose a PNG or JPEG under 2 MB for the logo.", problem,
            [](World& world) { world.model->profile().setLogo(world.root / "none.png"); } },
        { "Pallisande couldn’t save your library: not a regular file", problem,
            [](World& world) {
                fs::remove(world.library / "Pallisande Library.json");
                fs::create_directory(world.library / "Pallisande Library.json");
                world.model->clients().add();
                world.settle();
            } },
    };
    for (const auto& [expected, told, lead] : cases) {
        World world;
        world.start(::Test::sampleLibrary());
        lead(world);
        auto wanted = expected;
        if (const auto at = wanted.find("{}"); at != std::string::npos)
            wanted.replace(at, 2, world.root.path().string());
        EXPECT_EQ(told(world), wanted);
    }
}
