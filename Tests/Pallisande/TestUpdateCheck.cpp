#include "Base/Base64.h"
#include "Base/Json.h"
#include "Tests/Pallisande/SignedFeeds.h"
#include "Tests/Support/Folders.h"
#include "Tests/Support/Samples.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cstdlib>

namespace {

using namespace Pallisande;
using ::Test::feedDocument;
using ::Test::instant;
using ::Test::Signer;
using Case = UpdateResult::Case;

const Signer ours('o'), theirs('t');

bool isBelieved(const std::string& file)
{
    try {
        UpdateFeed::read(file, ours.publicKey());
        return true;
    } catch (const UpdateFeedError&) {
        return false;
    }
}

TEST(UpdateFeed, isBelievedOnlyAsItWasSigned)
{
    const auto file = ours.signedFeed(feedDocument("1.2"));
    const auto feed = UpdateFeed::read(file, ours.publicKey());
    EXPECT_EQ(feed.version, "1.2");
    EXPECT_EQ(feed.notes, "Faster.\nCalmer.");
    EXPECT_EQ(feed.page, "https://pallisande.example/download");
    for (std::size_t place = 0; place < file.size(); ++place) {
        for (int bit = 0; bit < 8; ++bit) {
            auto altered = file;
            altered[place] = static_cast<char>(altered[place] ^ (1 << bit));
            ASSERT_FALSE(isBelieved(altered)) << place << "." << bit;
        }
        ASSERT_FALSE(isBelieved(file.substr(0, place))) << place;
    }
    EXPECT_FALSE(isBelieved(file + "\n"));
    EXPECT_FALSE(isBelieved(theirs.signedFeed(feedDocument("1.2"))));
    EXPECT_FALSE(isBelieved(feedDocument("1.2")));
    for (const std::string key : { "", "AAAA", "no Base64" })
        EXPECT_THROW(UpdateFeed::read(file, key), UpdateFeedError) << key;
}

TEST(UpdateFeed, mustBeOneOfOursEvenWhenSigned)
{
    const auto with = [](std::string key, std::string value) {
        auto text = feedDocument("1.2");
        const auto start = text.find("\"" + key + "\":\"") + key.size() + 4;
        return ours.signedFeed(text.replace(start, text.find('"', start) - start, value));
    };
    EXPECT_TRUE(isBelieved(with("notes", "")));
    EXPECT_FALSE(isBelieved(with("product", "Another")));
    for (const std::string version :
        { "", "1.", ".1", "1..2", "01", "1.02", "-1", "+1", "1.2 ", "1.2b", "1.2.3.4.5", "1234567890" })
        EXPECT_FALSE(isBelieved(with("version", version))) << version;
    EXPECT_FALSE(isBelieved(with("published", "soon")));
    for (const std::string page : { "http://pallisande.example", "https://", "file:///bin/sh",
             "javascript:alert(1)", "https://a b", "https://a\\u0000b", "https://a\\nb", "https://a/<b>" })
        EXPECT_FALSE(isBelieved(with("page", page))) << page;
    EXPECT_FALSE(isBelieved(with("page", "https://a/" + std::string(2000, 'a'))));
    EXPECT_FALSE(isBelieved(with("notes", std::string(UpdateFeed::largest, 'a'))));
    EXPECT_FALSE(isBelieved(ours.signedFeed("{}")));
    EXPECT_FALSE(isBelieved(ours.signedFeed("")));
    EXPECT_FALSE(isBelieved(ours.signedFeed(std::string(60'000, '['))));
}

TEST(AppVersion, isComparedNumberByNumber)
{
    const char* const rising[] { "0", "0.0.0.1", "0.1", "0.9", "0.10", "1", "1.0.1", "1.2", "1.10", "2.0",
        "999999999" };
    for (std::size_t place = 1; place < std::size(rising); ++place)
        EXPECT_LT(AppVersion::parse(rising[place - 1]), AppVersion::parse(rising[place])) << rising[place];
    EXPECT_EQ(AppVersion::parse("1.2"), AppVersion::parse("1.2.0.0"));
}

class UpdateCheckTest : public testing::Test {
protected:
    std::unique_ptr<UpdateCheck> makeCheck(
        const std::string& version, UpdateSource source = { "https://feed.example/", ours.publicKey() })
    {
        return std::make_unique<UpdateCheck>(UpdateCheck::Services { .network = network,
            .preferences = preferences,
            .now = [this] { return now; },
            .source = source,
            .version = version });
    }
    // What a check by hand comes to when the server answers like this.
    UpdateResult answered(const std::string& body, const std::string& version = "1.2")
    {
        const auto check = makeCheck(version);
        UpdateResult result;
        check->checkByHand([&](const UpdateResult& given) { result = given; });
        network.answer(body);
        return result;
    }
    Case answeredFeed(std::string_view version, std::string_view published)
    {
        return answered(ours.signedFeed(feedDocument(version, published))).kind;
    }
    bool isFetchedWhenDue()
    {
        const auto before = network.requests.size();
        makeCheck("1.2")->checkIfDue([](const UpdateResult&) {});
        return network.requests.size() > before;
    }

    Base::Instant now = instant("2026-03-09T12:00:00Z");
    MemoryPreferences preferences;
    ::Test::FakeNetwork network;
};

TEST_F(UpdateCheckTest, byHandAlwaysSaysHowItCameOut)
{
    const auto feed = ours.signedFeed(feedDocument("1.2"));
    const auto current = answered(feed);
    EXPECT_EQ(current.kind, Case::upToDate);
    EXPECT_EQ(current.title, "You’re up to date");
    EXPECT_EQ(current.text, "Pallisande 1.2 is the newest version.");
    EXPECT_EQ(current.addition,
        "Pallisande checks for updates on its own and will let you know when there’s a new one.");
    EXPECT_EQ(answered(feed, "1.10").kind, Case::upToDate);

    const auto older = answered(feed, "1.1.9");
    EXPECT_EQ(older.kind, Case::found);
    EXPECT_EQ(older.text, "Pallisande 1.2 is available; you have 1.1.9.");
    EXPECT_EQ(older.feed.page, "https://pallisande.example/download");
    EXPECT_EQ(network.requests.back().address, "https://feed.example/");
    EXPECT_EQ(network.requests.back().largest, UpdateFeed::largest);

    const auto failed = answered("<html>Log in to this network</html>");
    EXPECT_EQ(failed.kind, Case::failed);
    EXPECT_EQ(failed.title, "Couldn’t check for updates");
    EXPECT_EQ(failed.text, "Check your internet connection and try again.");
    EXPECT_EQ(failed.addition, "Pallisande also checks on its own about once a day.");

    const auto check = makeCheck("1.2");
    Case unreachable = Case::found;
    check->checkByHand([&](const UpdateResult& result) { unreachable = result.kind; });
    network.waiting({ .end = Base::DownloadResult::End::refused, .body = feed });
    EXPECT_EQ(unreachable, Case::failed);
}

TEST_F(UpdateCheckTest, anOldFeedBroughtBackIsNotBelieved)
{
    EXPECT_EQ(answeredFeed("1.4", "2026-03-01T00:00:00Z"), Case::found);
    EXPECT_EQ(answeredFeed("1.4", "2026-03-01T00:00:00Z"), Case::found);
    EXPECT_EQ(answeredFeed("1.3", "2026-02-01T00:00:00Z"), Case::failed);
    EXPECT_EQ(answeredFeed("1.3", "2026-03-02T00:00:00Z"), Case::failed);
    EXPECT_EQ(answeredFeed("1.4", "2026-02-28T00:00:00Z"), Case::failed);
    EXPECT_EQ(answered(theirs.signedFeed(feedDocument("9", "2027-01-01T00:00:00Z"))).kind, Case::failed);
    EXPECT_EQ(answeredFeed("1.5", "2026-03-02T00:00:00Z"), Case::found);
    preferences.texts["updates"] = "{damaged";
    EXPECT_EQ(answeredFeed("1.2", "2026-01-01T00:00:00Z"), Case::upToDate);
}

TEST_F(UpdateCheckTest, comesOnItsOwnOnceADay)
{
    EXPECT_TRUE(isFetchedWhenDue());
    EXPECT_FALSE(isFetchedWhenDue()); // Though nothing came of it.
    now = instant("2026-03-10T11:59:59Z");
    EXPECT_FALSE(isFetchedWhenDue());
    now = instant("2026-03-10T12:00:00Z");
    EXPECT_TRUE(isFetchedWhenDue());
    now = instant("1970-01-02T00:00:00Z"); // A clock that lost its battery.
    EXPECT_TRUE(isFetchedWhenDue());
    EXPECT_FALSE(isFetchedWhenDue());
}

TEST_F(UpdateCheckTest, onItsOwnTellsOnlyOfANewerVersion)
{
    const auto check = makeCheck("1.2");
    std::vector<std::string> told;
    for (const std::string& body : { std::string("garbage"), ours.signedFeed(feedDocument("1.2")),
             ours.signedFeed(feedDocument("1.3")) }) {
        check->checkIfDue([&](const UpdateResult& result) { told.push_back(result.feed.version); });
        network.answer(body);
        now = now.plusMilliseconds(86'400'000);
    }
    EXPECT_EQ(told, std::vector<std::string> { "1.3" });
}

TEST_F(UpdateCheckTest, withoutAKeyFetchesNothing)
{
    const auto check = makeCheck("1.2", { .address = "https://feed.example/" });
    check->checkIfDue([](const UpdateResult&) { FAIL(); });
    Case kind = Case::found;
    check->checkByHand([&](const UpdateResult& result) { kind = result.kind; });
    EXPECT_EQ(kind, Case::failed);
    EXPECT_TRUE(network.requests.empty());
}

TEST_F(UpdateCheckTest, isForgottenWithTheCheck)
{
    auto check = makeCheck("1.2");
    check->checkByHand([](const UpdateResult&) { FAIL(); });
    check.reset();
    EXPECT_TRUE(network.requests.back().cancel.stop_requested());
    network.answer(ours.signedFeed(feedDocument("1.3")));
}

TEST(SignUpdateFeed, makesFeedsThatAreBelieved)
{
    if (std::system("command -v python3 openssl >/dev/null 2>&1") != 0)
        GTEST_SKIP() << "python3 or openssl isn't installed.";
    const ::Test::TemporaryFolder folder;
    const auto run = [&](const std::string& arguments) {
        return std::system(("cd '" + folder.path().string()
            + "' && '" PALLISANDE_TEST_SOURCES "/../tools/sign-update-feed' " + arguments)
                               .c_str());
    };
    ASSERT_EQ(run("make-key key.pem > public"), 0);
    EXPECT_NE(run("make-key key.pem > /dev/null 2>&1"), 0) << "A key was overwritten.";
    ::Test::writeFile(folder / "notes.txt", "“Faster”,\nand calmer.\n");
    ASSERT_EQ(run("sign key.pem 1.3 https://pallisande.example/download notes.txt > feed"), 0);
    auto publicKey = ::Test::fileText(folder / "public");
    publicKey.pop_back(); // The end of the line.
    const auto feed = UpdateFeed::read(::Test::fileText(folder / "feed"), publicKey);
    EXPECT_EQ(feed.version, "1.3");
    EXPECT_EQ(feed.notes, "“Faster”,\nand calmer.\n");
}

} // namespace
