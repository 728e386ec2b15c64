#include "Tests/Pallisande/SignedFeeds.h"
#include "Tests/Pallisande/WindowWorld.h"

#include <gtest/gtest.h>

#include <QMessageBox>
#include <QPushButton>

using namespace Pallisande;
using ::Test::feedDocument;
using ::Test::WindowWorld;

namespace {

using Strings = std::vector<std::string>;

// Version 1.2 at work, and a server that answers when it is told to.
struct UpdateWorld : WindowWorld {
    UpdateWorld()
    {
        updates = &check;
        open();
    }

    // The box on show, word for word; its buttons last. It is closed by the first of them.
    Strings box(const char* press = "OK") const
    {
        auto* box = window->findChild<QMessageBox*>("updateResult");
        if (!box)
            return {};
        Strings texts { box->text().toStdString(), box->informativeText().toStdString() };
        QAbstractButton* pressed = nullptr;
        for (auto* button : box->buttons()) {
            texts.push_back(button->text().toStdString());
            if (button->text() == QLatin1String(press))
                pressed = button;
        }
        EXPECT_EQ(box->textFormat(), Qt::PlainText) << "whatever a feed holds";
        if (pressed)
            pressed->click();
        settleEvents();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        return texts;
    }
    bool hasBox() const { return window->findChild<QMessageBox*>("updateResult"); }

    ::Test::Signer signer { 'o' };
    ::Test::FakeNetwork network;
    UpdateCheck check { { .network = network,
        .preferences = preferences,
        .now = [this] { return now; },
        .source = { "https://feed.example/", signer.publicKey() },
        .version = "1.2" } };
};

const char* const onItsOwn = "Pallisande also checks on its own about once a day.";

} // namespace

TEST(UpdateBox, saysHowACheckByHandCameOut)
{
    UpdateWorld world;
    world.action(Command::checkForUpdates)->trigger();
    EXPECT_FALSE(world.hasBox()) << "before there is an answer";
    world.network.answer(world.signer.signedFeed(feedDocument("1.2")));
    EXPECT_EQ(world.box(),
        (Strings { "You’re up to date",
            "Pallisande 1.2 is the newest version.\n\nPallisande checks for updates on its own and will let "
            "you "
            "know when there’s a new one.",
            "OK" }));
    EXPECT_FALSE(world.hasBox());

    world.window->showSettings(2); // The same from there.
    world.window->findChild<QPushButton*>("checkForUpdates")->click();
    std::exchange(world.network.waiting, {})({ .end = Base::DownloadResult::End::refused });
    EXPECT_EQ(world.box(),
        (Strings { "Couldn’t check for updates",
            std::string("Check your internet connection and try again.\n\n") + onItsOwn, "OK" }));

    const auto newer = world.signer.signedFeed(feedDocument("1.10"));
    const Strings words { "A new version is available",
        "Pallisande 1.10 is available; you have 1.2.\n\nFaster.\nCalmer.\n\nThe download page opens in your "
        "browser. Pallisande itself downloads and installs nothing.",
        "Open Download Page", "Later" };
    for (const char* answer : { "Later", "Open Download Page" }) {
        world.action(Command::checkForUpdates)->trigger();
        world.network.answer(newer);
        EXPECT_EQ(world.box(answer), words);
        EXPECT_EQ(world.openedAddresses,
            std::string(answer) == "Later" ? Strings() : Strings { "https://pallisande.example/download" });
    }
    EXPECT_EQ(world.notice(), "");
}

TEST(UpdateBox, staysAwayFromTheDailyCheck)
{
    UpdateWorld world;
    const auto answered = [&](const std::string& body) {
        world.window->checkForUpdatesIfDue();
        if (world.network.waiting)
            world.network.answer(body);
        world.now = world.now.plusMilliseconds(86'400'000);
        EXPECT_FALSE(world.hasBox());
        EXPECT_EQ(world.problem(), "");
        return world.notice();
    };
    EXPECT_EQ(answered("<html>Log in to this network</html>"), "");
    EXPECT_EQ(answered(world.signer.signedFeed(feedDocument("1.2"))), "");
    EXPECT_EQ(answered(world.signer.signedFeed(feedDocument("1.3"))),
        "Pallisande 1.3 is available; you have 1.2. Help › Check for Updates… opens its page.");
    world.model->dismissNotice();
    world.now = world.now.plusMilliseconds(-1);
    EXPECT_EQ(answered(world.signer.signedFeed(feedDocument("1.4"))), "") << "the day isn’t over";
    EXPECT_EQ(world.network.requests.size(), 3u);
}
