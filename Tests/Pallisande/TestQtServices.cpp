#include "Pallisande/Model/QtServices.h"
#include "Tests/Pallisande/Events.h"
#include "Tests/Pallisande/ModelWorld.h"

#include <gtest/gtest.h>

#include <QThread>

using namespace Pallisande;

TEST(QtServices, workIsDoneBesideTheMainThreadAndEndsOnIt)
{
    ThreadedBackground background;
    QThread *worked = nullptr, *ended = nullptr, *posted = nullptr;
    background.run(
        [&] {
            worked = QThread::currentThread();
            background.post([&] { posted = QThread::currentThread(); });
        },
        [&] { ended = QThread::currentThread(); });
    ASSERT_TRUE(::Test::waitUntil([&] { return ended && posted; }));
    EXPECT_NE(worked, QThread::currentThread());
    EXPECT_EQ(ended, QThread::currentThread());
    EXPECT_EQ(posted, QThread::currentThread());

    int rung = 0;
    std::unique_ptr<PendingTask> kept;
    kept = afterWait(std::chrono::milliseconds(1), [&] {
        ++rung;
        kept.reset(); // As a task does that puts itself off again.
    });
    auto dropped = afterWait(std::chrono::milliseconds(1), [&] { rung += 10; });
    dropped.reset();
    ::Test::pass(std::chrono::milliseconds(50));
    EXPECT_EQ(rung, 1);
}

TEST(QtServices, aModelMayGoWhileItsLibraryIsOpened)
{
    ::Test::World world;
    LibraryStore(world.library).save(::Test::sampleLibrary());
    std::optional<ThreadedBackground> background;
    const auto make = [&] {
        auto services = world.start().services();
        world.model.reset();
        services.background = &background.emplace(); // Waits for what the one before is doing.
        services.after = afterWait;
        return std::make_unique<AppModel>(std::move(services));
    };
    auto model = make();
    model->start();
    EXPECT_TRUE(model->isOpening());
    EXPECT_FALSE(model->clients().add());
    EXPECT_EQ(model->problem()->text, "The library is still being opened.");
    model.reset();
    model = make();
    model->start();
    ASSERT_TRUE(::Test::waitUntil([&] { return !model->isOpening(); }));
    EXPECT_TRUE(model->canEdit()) << model->readOnlyText();
    EXPECT_EQ(model->library(), ::Test::sampleLibrary());
}
