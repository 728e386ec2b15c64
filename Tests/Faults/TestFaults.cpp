#include "PallisandeKit/Library/LibraryCheck.h"
#include "Tests/Support/Folders.h"
#include "Tests/Support/Sessions.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <fcntl.h>
#include <random>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

using namespace Pallisande;

namespace {

namespace fs = std::filesystem;

struct Fault {
    std::string mode;
    int error = 0;
};

const std::vector<Fault> kills { { "kill-before" }, { "kill-after" }, { "kill-half" } };
const std::vector<Fault> invisible { { "short" }, { "eintr" } };
const std::vector<Fault> errors { { "fail", ENOSPC }, { "fail", EIO }, { "fail", EDQUOT }, { "fail", EACCES },
    { "fail", EROFS }, { "fail-on", ENOSPC }, { "fail-on", EIO } };

// A library folder and the program that works on it.
class Stage {
public:
    Stage()
    {
        fs::create_directory(folder());
        auto library = Test::sampleLibrary();
        for (std::uint64_t number = 100; number < 160; ++number)
            library.jobs.push_back(Test::job(number, 1, static_cast<std::int64_t>(number)));
        LibraryStore(folder()).save(library);
        surroundings.open(folder()); // Makes the day's backup, so that every run takes the same way.
        fs::copy(folder(), m_template.path(), fs::copy_options::recursive);
    }

    fs::path folder() const { return m_folder.path() / "library"; }

    void reset()
    {
        fs::remove_all(folder());
        fs::copy(m_template.path(), folder(), fs::copy_options::recursive);
    }

    pid_t start(const std::vector<std::string>& arguments, const std::vector<std::string>& environment)
    {
        std::vector<std::string> words { PALLISANDE_PROGRAMS "/fault-actor" };
        words.insert(words.end(), arguments.begin(), arguments.end());
        std::vector<std::string> variables { "PATH=/usr/bin:/bin" };
        variables.insert(variables.end(), environment.begin(), environment.end());
        const auto pointers = [](std::vector<std::string>& texts) {
            std::vector<char*> list;
            for (auto& text : texts)
                list.push_back(text.data());
            list.push_back(nullptr);
            return list;
        };
        posix_spawn_file_actions_t actions;
        posix_spawn_file_actions_init(&actions);
        posix_spawn_file_actions_addopen(
            &actions, STDOUT_FILENO, output().c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
        pid_t child = 0;
        EXPECT_EQ(posix_spawn(&child, words[0].c_str(), &actions, nullptr, pointers(words).data(),
                      pointers(variables).data()),
            0);
        posix_spawn_file_actions_destroy(&actions);
        return child;
    }

    // Runs the program to its end; gives what it said.
    std::string run(const std::vector<std::string>& arguments, const Fault& fault = {}, int at = 0)
    {
        std::vector<std::string> environment { "LD_PRELOAD=" PALLISANDE_FAULT_SHIM,
            "FAULT_FOLDER=" + folder().string(), "FAULT_LOG=" + calls().string() };
        if (at > 0) {
            environment.push_back("FAULT_AT=" + std::to_string(at));
            environment.push_back("FAULT_MODE=" + fault.mode);
            environment.push_back("FAULT_ERRNO=" + std::to_string(fault.error));
        }
        fs::remove(calls());
        const auto child = start(arguments, environment);
        int status = 0;
        waitpid(child, &status, 0);
        return ::Test::fileText(output());
    }

    int callsOfLastRun() const
    {
        const auto log = ::Test::fileText(calls());
        return static_cast<int>(std::count(log.begin(), log.end(), '\n'));
    }

    LibrarySession reopen() { return surroundings.open(folder()); }

    bool hasLitter() const
    {
        for (const auto& entry : fs::recursive_directory_iterator(folder())) {
            if (entry.path().filename().string().ends_with(".pallisande-tmp"))
                return true;
        }
        return false;
    }

    Test::Surroundings surroundings;

private:
    fs::path output() const { return m_folder.path() / "output"; }
    fs::path calls() const { return m_folder.path() / "calls"; }

    Test::TemporaryFolder m_folder;
    Test::TemporaryFolder m_template;
};

// What must hold of a folder after its writer died or was refused: it opens, nothing is lost or doubled,
// nothing lies about, and the next document gets the next number.
void expectSound(Stage& stage)
{
    std::size_t documents = 0;
    std::string number;
    {
        auto session = stage.reopen();
        ASSERT_FALSE(session.isReadOnly()) << testing::PrintToString(session.takeMessages());
        EXPECT_FALSE(stage.hasLitter());
        const auto check = checkLibrary(session);
        EXPECT_TRUE(check.isClean()) << testing::PrintToString(check.findings)
                                     << testing::PrintToString(check.numbering);
        documents = static_cast<std::size_t>(check.documents);
        EXPECT_EQ(Base::Folder::make(stage.folder() / "Invoices").files().size(), documents);
        number = Ledger::series(session.library().profile, Ledger::Series::invoices).upcoming(2026).number;
        EXPECT_EQ(number, fmt::format("INV-2026-{:03}", documents + 1));
    }
    EXPECT_EQ(stage.run({ "issue", stage.folder().string() }), "issued " + number + "\n");
}

std::string refusalPattern(const std::string& verb)
{
    return verb == "save" ? "Pallisande couldn’t save your library: "
                          : "The invoice wasn’t issued, because its PDF couldn’t be stored: ";
}

// Every line that the program says must be one of its sentences.
void expectSentences(const std::string& said, const std::string& verb)
{
    std::stringstream lines(said);
    for (std::string line; std::getline(lines, line);) {
        const bool isKnown = line.starts_with("saved ") || line.starts_with("issued ")
            || line.starts_with("refused: " + refusalPattern(verb))
            || line.starts_with("refused: Pallisande couldn’t save your library: ")
            || line.starts_with("refused: Pallisande couldn’t open its library folder: ")
            || line.starts_with("told: Your library couldn’t be opened: ")
            || line.starts_with("told: The backup couldn’t be written: ") || line.starts_with("told: ");
        EXPECT_TRUE(isKnown) << line;
    }
}

class Faults : public testing::TestWithParam<std::string> {
protected:
    std::vector<std::string> arguments() const { return { GetParam(), stage.folder().string(), "Renamed" }; }

    // The number of system calls on the folder that the operation makes when nothing goes wrong.
    int calls()
    {
        stage.run(arguments());
        const int count = stage.callsOfLastRun();
        EXPECT_GT(count, 10);
        return count;
    }

    template <typename Examine> void atEveryCall(const std::vector<Fault>& faults, Examine examine)
    {
        const int last = calls();
        for (const auto& fault : faults) {
            for (int at = 1; at <= last; ++at) {
                SCOPED_TRACE(fmt::format("{} {} at call {} of {}", fault.mode, fault.error, at, last));
                stage.reset();
                const auto said = stage.run(arguments(), fault, at);
                examine(said, fault);
                if (testing::Test::HasFailure())
                    return; // One is enough to look at.
            }
        }
    }

    Stage stage;
};

} // namespace

TEST_P(Faults, killedAtAnyCallLeaveAWholeLibraryAndTheNextNumber)
{
    const auto old
        = LibraryStore(stage.folder()).load(stage.surroundings.open(stage.folder()).moment()).library;
    atEveryCall(kills, [&](const std::string& said, const Fault&) {
        if (GetParam() == "save") {
            const auto now = stage.reopen().library();
            const bool isNew = now.clients.front().name == "Renamed";
            EXPECT_TRUE(isNew || now == old);
            EXPECT_TRUE(isNew || said.empty()) << "what was told as saved is there";
        }
        expectSound(stage);
    });
}

TEST_P(Faults, shortWritesAndInterruptionsAreInvisible)
{
    atEveryCall(invisible, [&](const std::string& said, const Fault&) {
        EXPECT_EQ(said, GetParam() == "save" ? "saved Renamed\n" : "issued INV-2026-001\n");
        expectSound(stage);
    });
}

TEST_P(Faults, errorsAtAnyCallAreToldAndLoseNothing)
{
    atEveryCall(errors, [&](const std::string& said, const Fault& fault) {
        expectSentences(said, GetParam());
        if (fault.mode
            == "fail") { // Once: the second try goes well, unless opening the folder itself failed.
            const bool wasOpened = said.find("couldn’t open") == std::string::npos
                && said.find("couldn’t be opened") == std::string::npos;
            EXPECT_TRUE(!wasOpened || said.find("saved ") != std::string::npos
                || said.find("issued ") != std::string::npos)
                << said;
        }
        expectSound(stage);
    });
}

INSTANTIATE_TEST_SUITE_P(
    OfBothPaths, Faults, testing::Values("save", "issue"), [](const auto& path) { return path.param; });

TEST(Faults, oneHundredRandomKillsLoseAndDoubleNothing)
{
    Stage stage;
    std::mt19937 random(20260309);
    std::uniform_int_distribution<int> microseconds(1000, 30'000);
    for (int round = 0; round < 100; ++round) {
        SCOPED_TRACE(round);
        if (round % 10 == 0)
            stage.reset();
        const auto child = stage.start({ round % 2 ? "issue-on" : "save-on", stage.folder().string() }, {});
        std::this_thread::sleep_for(std::chrono::microseconds(microseconds(random)));
        kill(child, SIGKILL);
        int status = 0;
        waitpid(child, &status, 0);
        expectSound(stage);
        if (testing::Test::HasFailure())
            return;
    }
}

// Taking the library elsewhere: whatever fails, the old folder stays whole and is still the library.
TEST(Faults, aFolderThatCannotBeReadIsNeverTakenForANewLibrary)
{
    Stage stage;
    const auto before = ::Test::fileText(stage.folder() / LibraryStore::documentName);
    for (int at = 1; at <= 6; ++at) {
        SCOPED_TRACE(at);
        stage.reset();
        const auto said = stage.run({ "save", stage.folder().string(), "Renamed" }, { "fail", EIO }, at);
        const auto after = ::Test::fileText(stage.folder() / LibraryStore::documentName);
        EXPECT_TRUE(after == before || said.ends_with("saved Renamed\n")) << said;
    }
}
