#include "platform/foundation/HeadlessMainLoop.h"
#include "platform/foundation/ScopedMainQueue.h"
#include "platform/foundation/ThreadPoolQueue.h"
#include "platform/foundation/VirtualMainLoop.h"

#include <gtest/gtest.h>
#include <latch>
#include <string>
#include <thread>

namespace sela {
namespace {

void finish(HeadlessMainLoop& loop) {
    loop.run();
}

void finish(VirtualMainLoop& loop) {
    loop.runUntilIdle();
}

/// What every loop behind the main queue must do.
template<class Loop>
class MainQueueContract : public testing::Test {
protected:
    Loop loop;
    ScopedMainQueue scope{loop};
};

using Loops = testing::Types<HeadlessMainLoop, VirtualMainLoop>;
TYPED_TEST_SUITE(MainQueueContract, Loops);

TYPED_TEST(MainQueueContract, RunsTasksInOrderAndNeverAtOnce) {
    std::string order;
    this->loop.async([&] {
        order += "a";
        this->loop.async([&] { order += "c"; });
        order += "b";
    });
    EXPECT_EQ(order, "");
    finish(this->loop);
    EXPECT_EQ(order, "abc");
}

TYPED_TEST(MainQueueContract, RunsDelayedTasksByDueTime) {
    std::string order;
    const double start = this->loop.now();
    double ranAt = 0;
    this->loop.asyncAfter(0.002, [&] { order += "c"; });
    this->loop.asyncAfter(0.001, [&] { order += "a"; });
    this->loop.asyncAfter(0.001, [&] { order += "b"; });
    this->loop.asyncAfter(0.003, [&] { ranAt = this->loop.now(); });
    finish(this->loop);
    EXPECT_EQ(order, "abc");
    EXPECT_GE(ranAt - start, 0.003 - 1e-9);
}

TYPED_TEST(MainQueueContract, WaitsForWorkInTheBackground) {
    ThreadPoolQueue background(1);
    const std::thread::id mainThread = std::this_thread::get_id();
    std::thread::id backgroundThread;
    std::thread::id answeredOn;
    background.async([&] {
        backgroundThread = std::this_thread::get_id();
        DispatchQueue::main().async([&] {
            answeredOn = std::this_thread::get_id();
            background.async(
                [&] { DispatchQueue::main().async([&] { answeredOn = std::this_thread::get_id(); }); });
        });
    });
    finish(this->loop);
    EXPECT_NE(backgroundThread, mainThread);
    EXPECT_EQ(answeredOn, mainThread);
}

TYPED_TEST(MainQueueContract, TakesTasksFromManyThreads) {
    int count = 0;
    {
        ThreadPoolQueue background(4);
        for (int i = 0; i < 1000; ++i)
            background.async([&] { DispatchQueue::main().async([&] { ++count; }); });
    }
    finish(this->loop);
    EXPECT_EQ(count, 1000);
}

TYPED_TEST(MainQueueContract, ReleasesWhatATaskHolds) {
    auto held = std::make_shared<int>(0);
    this->loop.async([held] {});
    EXPECT_EQ(held.use_count(), 2);
    finish(this->loop);
    EXPECT_EQ(held.use_count(), 1);
}

TEST(VirtualMainLoop, TheClockMovesOnlyWithTheTest) {
    VirtualMainLoop loop;
    std::string order;
    loop.asyncAfter(1.0, [&] {
        order += "a";
        EXPECT_DOUBLE_EQ(loop.now(), 1.0);
        loop.asyncAfter(0.5, [&] { order += "b"; });
    });
    loop.asyncAfter(3.0, [&] { order += "c"; });
    loop.advance(0.999);
    EXPECT_EQ(order, "");
    loop.advance(0.001);
    EXPECT_EQ(order, "a");
    loop.advance(1.0);
    EXPECT_EQ(order, "ab");
    EXPECT_DOUBLE_EQ(loop.now(), 2.0);
    EXPECT_FALSE(loop.isIdle());
    loop.runUntilIdle();
    EXPECT_EQ(order, "abc");
    EXPECT_DOUBLE_EQ(loop.now(), 3.0);
    EXPECT_TRUE(loop.isIdle());
}

TEST(ThreadPoolQueue, ADelayedTaskRunsAndKeepsTheLoopWaiting) {
    HeadlessMainLoop loop;
    const ScopedMainQueue scope(loop);
    bool ran = false;
    DispatchQueue::global().asyncAfter(0.002, [&] { DispatchQueue::main().async([&] { ran = true; }); });
    loop.run();
    EXPECT_TRUE(ran);
}

TEST(ThreadPoolQueue, TwoThreadsRunAtOnce) {
    std::latch together(2);
    ThreadPoolQueue queue(2);
    queue.async([&] { together.arrive_and_wait(); });
    queue.async([&] { together.arrive_and_wait(); });
}

TEST(DispatchQueueDeathTest, ThereIsNoMainQueueBeforeOneIsChosen) {
    EXPECT_DEATH(DispatchQueue::main(), "there is no main queue yet");
}

} // namespace
} // namespace sela
