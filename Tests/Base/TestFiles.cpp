#include "Base/DurableFile.h"
#include "Base/Folder.h"
#include "Base/Sha256.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <future>
#include <optional>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>
#include <vector>

namespace fs = std::filesystem;

namespace {

// A folder of its own for each test.
class Files : public testing::Test {
protected:
    Files() { EXPECT_NE(::mkdtemp(m_path.data()), nullptr); }
    ~Files() override { fs::remove_all(m_path); }

    Base::Folder folder() const { return Base::Folder::open(m_path); }
    fs::path path(const std::string& name) const { return fs::path(m_path) / name; }
    std::string bytes(const std::string& name) const { return Base::readFile(folder(), name).bytes; }

    unsigned mode(const std::string& name) const
    {
        struct stat status { };
        EXPECT_EQ(::lstat(path(name).c_str(), &status), 0);
        return status.st_mode & 07777;
    }

private:
    std::string m_path = testing::TempDir() + "pallisande-files-XXXXXX";
};

using Names = std::vector<std::string>;

// Nothing behind this place of a file can be written, as on a full disk.
class FullDisk {
public:
    explicit FullDisk(rlim_t bytes)
        : m_handler(std::signal(SIGXFSZ, SIG_IGN))
    {
        ::getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit limit { bytes, m_before.rlim_max };
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FullDisk()
    {
        ::setrlimit(RLIMIT_FSIZE, &m_before);
        std::signal(SIGXFSZ, m_handler);
    }

private:
    void (*m_handler)(int);
    rlimit m_before {};
};

template <typename Operation> std::string reason(Operation operation)
{
    try {
        operation();
        return "(no failure)";
    } catch (const std::system_error& error) {
        return error.what();
    } catch (const Base::NotARegularFile& error) {
        return error.what();
    }
}

TEST_F(Files, areReplacedWithTheirMode)
{
    const auto first = Base::writeDurably(folder(), "a.json", "old");
    EXPECT_EQ(mode("a.json"), 0600u);
    fs::permissions(path("a.json"), fs::perms(0640));
    const auto second = Base::writeDurably(folder(), "a.json", "new");
    EXPECT_EQ(mode("a.json"), 0640u);
    EXPECT_EQ(bytes("a.json"), "new");
    EXPECT_NE(first, second);
    EXPECT_EQ(Base::fileIdentity(folder(), "a.json"), second);
    EXPECT_EQ(Base::readFile(path("a.json")).identity, second);
    EXPECT_EQ(Base::fileIdentity(folder(), "b.json"), std::nullopt);
    EXPECT_EQ(folder().files(), Names { "a.json" });
}

TEST_F(Files, areReplacedWithTheirAccessList)
{
    // Version 2; owner rw, user 1 rw, group nothing, mask rw, others nothing; as the kernel writes it.
    const std::string_view list("\2\0\0\0\1\0\6\0\xFF\xFF\xFF\xFF\2\0\6\0\1\0\0\0\4\0\0\0\xFF\xFF\xFF\xFF"
                                "\20\0\6\0\xFF\xFF\xFF\xFF \0\0\0\xFF\xFF\xFF\xFF",
        44);
    Base::writeDurably(folder(), "a", "old");
    const char* const attribute = "system.posix_acl_access";
    if (::setxattr(path("a").c_str(), attribute, list.data(), list.size(), 0) != 0)
        GTEST_SKIP() << "no access lists here";
    Base::writeDurably(folder(), "a", "new");
    std::string kept(100, '\0');
    kept.resize(static_cast<std::size_t>(
        std::max<ssize_t>(0, ::getxattr(path("a").c_str(), attribute, kept.data(), kept.size()))));
    EXPECT_EQ(kept, list);
}

TEST_F(Files, areNotReplacedAgainstTheirMode)
{
    if (::getuid() == 0)
        GTEST_SKIP() << "the administrator may write everything";
    Base::writeDurably(folder(), "a", "old");
    fs::permissions(path("a"), fs::perms(0400));
    EXPECT_EQ(reason([&] { Base::writeDurably(folder(), "a", "new"); }), "Permission denied");
    EXPECT_EQ(bytes("a"), "old");
}

TEST_F(Files, replaceALinkAndNotItsTarget)
{
    Base::writeDurably(folder(), "target", "old");
    fs::create_symlink("target", path("link"));
    Base::writeDurably(folder(), "link", "new");
    EXPECT_EQ(bytes("target"), "old");
    EXPECT_EQ(bytes("link"), "new");
    EXPECT_FALSE(fs::is_symlink(path("link")));
}

TEST_F(Files, areAsBeforeWhenWritingFails)
{
    Base::writeDurably(folder(), "a", "old");
    const std::string large(100'000, 'x');
    {
        const FullDisk full(50'000);
        EXPECT_EQ(reason([&] { Base::writeDurably(folder(), "a", large); }), "File too large");
        EXPECT_EQ(reason([&] { Base::writeIfAbsent(folder(), "b", large); }), "File too large");
        EXPECT_EQ(reason([&] { Base::appendDurably(folder(), "a", large); }), "File too large");
    }
    EXPECT_EQ(reason([&] { Base::writeDurably(folder(), "missing/a", "new"); }), "No such file or directory");
    EXPECT_EQ(reason([&] { Base::writeIfAbsent(folder(), "a/b", "new"); }), "Not a directory");
    EXPECT_EQ(bytes("a"), "old");
    EXPECT_EQ(std::distance(fs::directory_iterator(path("")), {}), 1);
}

TEST_F(Files, areMadeOnlyOnce)
{
    EXPECT_TRUE(Base::writeIfAbsent(folder(), "a.pdf", "first"));
    EXPECT_FALSE(Base::writeIfAbsent(folder(), "a.pdf", "second"));
    EXPECT_EQ(bytes("a.pdf"), "first");
    EXPECT_EQ(mode("a.pdf"), 0444u);
    fs::create_symlink("nowhere", path("link.pdf"));
    EXPECT_FALSE(Base::writeIfAbsent(folder(), "link.pdf", "third"));

    std::vector<std::future<bool>> racers;
    for (char name = '0'; name <= '9'; ++name)
        racers.push_back(std::async(std::launch::async,
            [this, name] { return Base::writeIfAbsent(folder(), "b.pdf", std::string(10'000, name)); }));
    std::string won;
    for (auto& racer : racers)
        won += racer.get() ? 'x' : '-';
    EXPECT_EQ(std::count(won.begin(), won.end(), 'x'), 1);
    EXPECT_EQ(bytes("b.pdf"), std::string(10'000, static_cast<char>('0' + won.find('x'))));
    EXPECT_EQ(folder().files(), (Names { "a.pdf", "b.pdf" }));
}

TEST_F(Files, growAndAreCutBack)
{
    Base::appendDurably(folder(), "log", "one\n");
    Base::appendDurably(folder(), "log", "two\n");
    EXPECT_EQ(bytes("log"), "one\ntwo\n");
    EXPECT_EQ(mode("log"), 0600u);
    Base::truncateDurably(folder(), "log", 4);
    EXPECT_EQ(bytes("log"), "one\n");
    Base::truncateDurably(folder(), "log", 100);
    EXPECT_EQ(bytes("log"), "one\n");
}

TEST_F(Files, areReadOnlyWhenRegularAndWithinTheLimit)
{
    Base::writeDurably(folder(), "ten", "0123456789");
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    ASSERT_TRUE(fs::create_directory(path("folder")));
    struct {
        fs::path path;
        std::int64_t limit;
        std::string reason;
    } const cases[] {
        { path("ten"), 10, "(no failure)" },
        { path("ten"), 9, "File too large" },
        { path("missing"), 10, "No such file or directory" },
        { path("pipe"), 10, "not a regular file" },
        { path("folder"), 10, "not a regular file" },
        { "/dev/zero", 10, "not a regular file" },
        { "/proc/self/status", 10'000, "not a regular file" },
    };
    for (const auto& [path, limit, expected] : cases)
        EXPECT_EQ(reason([&, &path = path, &limit = limit] { Base::readFile(path, limit); }), expected)
            << path;
    EXPECT_EQ(Base::fileSize(path("ten")), 10);
    EXPECT_EQ(reason([&] { Base::fileSize(path("pipe")); }), "not a regular file");
    EXPECT_EQ(reason([&] { Base::appendDurably(folder(), "pipe", "x"); }), "not a regular file");
}

TEST_F(Files, ofAKilledProcessAreCleanedAwayAndNoOthers)
{
    const Names foreign { ".a.0123456789aX.pallisande-tmp", ".a.0123456789ab.tmp",
        ".a.123456789ab.pallisande-tmp", ".pallisande-tmp", "a.0123456789ab.pallisande-tmp", "a.pdf" };
    for (const auto& name : foreign)
        Base::writeDurably(folder(), name, "x");
    Base::writeDurably(folder(), ".a.pdf.0123456789ab.pallisande-tmp", "x");
    fs::create_directory(path(".b.0123456789ab.pallisande-tmp"));
    Base::removeLeftovers(folder());
    EXPECT_EQ(folder().files(), foreign);
    EXPECT_TRUE(fs::exists(path(".b.0123456789ab.pallisande-tmp")));
}

TEST_F(Files, mayHaveTheLongestNames)
{
    std::string name = "x";
    while (name.size() < 250)
        name += "訳";
    Base::writeDurably(folder(), name, "a");
    EXPECT_FALSE(Base::writeIfAbsent(folder(), name, "b"));
    EXPECT_TRUE(Base::writeIfAbsent(folder(), name + ".pdf", "c"));
    EXPECT_EQ(folder().files(), (Names { name, name + ".pdf" }));
}

TEST_F(Files, staySomewhereBelowTheirFolder)
{
    const auto root = folder();
    EXPECT_EQ(root.makeInside("Invoices/2026").path(), path("Invoices/2026"));
    EXPECT_EQ(mode("Invoices"), 0700u);
    Base::writeDurably(root, "Invoices/2026/a", "x");
    EXPECT_TRUE(Base::writeIfAbsent(root, "Invoices/2026/b", "y"));
    Base::appendDurably(root, "Invoices/2026/b2", "z");
    EXPECT_EQ(root.openInside("Invoices/2026").files(), (Names { "a", "b", "b2" }));

    for (const std::string name : { "", ".", "..", "/etc/passwd", "a/", "../a", "a/../b", "a//b", "./a" }) {
        EXPECT_THROW(Base::writeDurably(root, name, "x"), std::invalid_argument) << name;
        EXPECT_THROW(Base::readFile(root, name), std::invalid_argument) << name;
        EXPECT_THROW(root.makeInside(name), std::invalid_argument) << name;
    }
    EXPECT_THROW(root.exists(std::string("a\0b", 3)), std::invalid_argument);
}

TEST_F(Files, areListedAndRenamedButNeverOverwritten)
{
    const auto root = folder();
    for (const std::string name : { "b", "a", "Z" })
        Base::writeDurably(root, name, name);
    fs::create_directory(path("folder"));
    fs::create_symlink("a", path("linked"));
    fs::create_symlink("nowhere", path("broken"));
    fs::create_symlink("folder", path("linked folder"));
    EXPECT_EQ(root.files(), (Names { "Z", "a", "b", "linked" }));
    EXPECT_TRUE(root.exists("broken"));
    EXPECT_FALSE(root.exists("missing"));

    EXPECT_EQ(reason([&] { root.rename("a", "b"); }), "File exists");
    EXPECT_EQ(bytes("b"), "b");
    root.rename("a", "c");
    EXPECT_EQ(bytes("c"), "a");
    root.remove("c");
    EXPECT_EQ(reason([&] { root.remove("c"); }), "No such file or directory");
}

TEST_F(Files, standInAFolderThatIsMadeHeldAndLocked)
{
    const auto held = Base::Folder::make(path("one/two/three/"));
    EXPECT_EQ(mode("one"), 0700u);
    EXPECT_EQ(mode("one/two/three"), 0700u);
    const auto other = Base::Folder::make(path("one/two/three"));
    EXPECT_TRUE(held.lock());
    EXPECT_TRUE(held.lock());
    EXPECT_FALSE(other.lock());
    {
        const auto moved = Base::Folder::make(path("free"));
        EXPECT_TRUE(moved.lock());
    }
    EXPECT_TRUE(Base::Folder::open(path("free")).lock());

    EXPECT_TRUE(held.isStillThere());
    fs::rename(path("one/two"), path("one/moved"));
    EXPECT_FALSE(held.isStillThere());
    fs::create_directories(path("one/two/three"));
    EXPECT_FALSE(held.isStillThere());
    Base::writeDurably(held, "a", "x"); // In the folder that was opened, wherever it is now.
    EXPECT_TRUE(fs::exists(path("one/moved/three/a")));
}

TEST(Sha256, agreesWithThePublishedExamples)
{
    EXPECT_EQ(Base::sha256(""), "e3b0c44298fc1c149afbf4c8996fb92427ae41e4649b934ca495991b7852b855");
    EXPECT_EQ(Base::sha256("abc"), "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad");
    EXPECT_EQ(Base::sha256(std::string(1'000'000, 'a')),
        "cdc76e5c9914fb9281a1c7e284d73e67f1809a48a497200e046d39ccc7112cd0");
}

} // namespace
