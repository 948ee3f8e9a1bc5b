#include "platform/foundation/HeadlessMainLoop.h"
#include "platform/foundation/ScopedMainQueue.h"
#include "platform/foundation/ThreadPoolQueue.h"
#include "platform/foundation/VirtualMainLoop.h"

#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <latch>
#include <string>
#include <thread>

namespace sela {
namespace {

void finish(auto& loop) {
    if constexpr (requires { loop.run(); })
        loop.run();
    else
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

TYPED_TEST(MainQueueContract, RunsTasksInOrderOfTimeAndThenOfArrival) {
    std::string order;
    const double start = this->loop.now();
    double ranAt = 0;
    this->loop.asyncAfter(0.103, [&] { ranAt = this->loop.now(); });
    this->loop.asyncAfter(0.102, [&] { order += "f"; });
    this->loop.asyncAfter(0.101, [&] { order += "d"; });
    this->loop.asyncAfter(0.101, [&] { order += "e"; });
    this->loop.async([&] {
        order += "a";
        this->loop.async([&] { order += "c"; });
        order += "b";
    });
    EXPECT_EQ(order, "");
    finish(this->loop);
    EXPECT_EQ(order, "abcdef");
    EXPECT_GE(ranAt - start, 0.103 - 1e-9);
}

TYPED_TEST(MainQueueContract, WaitsForWorkInTheBackground) {
    ThreadPoolQueue background(1);
    const std::thread::id mainThread = std::this_thread::get_id();
    int rounds = 0;
    const std::function<void()> answer = [&] {
        EXPECT_EQ(std::this_thread::get_id(), mainThread);
        if (++rounds < 3)
            background.async([&] {
                EXPECT_NE(std::this_thread::get_id(), mainThread);
                DispatchQueue::main().async(answer);
            });
    };
    this->loop.async(answer);
    finish(this->loop);
    EXPECT_EQ(rounds, 3);
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
    const std::pair<double, const char*> steps[] = {{0.999, ""}, {0.001, "a"}, {1.0, "ab"}};
    for (const auto& [step, expected] : steps) {
        loop.advance(step);
        EXPECT_EQ(order, expected);
    }
    EXPECT_DOUBLE_EQ(loop.now(), 2.0);
    EXPECT_FALSE(loop.isIdle());
    loop.runUntilIdle();
    EXPECT_EQ(order, "abc");
    EXPECT_DOUBLE_EQ(loop.now(), 3.0);
}

TEST(ThreadPoolQueue, ADelayedTaskRunsAndKeepsTheLoopWaiting) {
    HeadlessMainLoop loop;
    const ScopedMainQueue scope(loop);
    bool ran = false;
    DispatchQueue::global().asyncAfter(0.002, [&] { DispatchQueue::main().async([&] { ran = true; }); });
    loop.run();
    EXPECT_TRUE(ran);
}

TEST(ThreadPoolQueue, ASuspendedQueueBeginsNothing) {
    std::atomic<int> ran = 0;
    {
        ThreadPoolQueue queue(1);
        std::latch begun(1);
        std::latch ends(1);
        queue.async([&] {
            begun.count_down();
            ends.wait();
            ++ran;
        });
        begun.wait();
        queue.suspend();
        std::latch second(1);
        queue.async([&] {
            EXPECT_EQ(ran, 1);
            ++ran;
            second.count_down();
        });
        queue.asyncAfter(0, [&] { ++ran; });
        ends.count_down();
        while (ran == 0)
            std::this_thread::yield();
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        EXPECT_EQ(ran, 1);
        queue.resume();
        second.wait();
        queue.suspend();
    }
    EXPECT_EQ(ran, 3);
}

TEST(ThreadPoolQueue, TwoThreadsRunAtOnce) {
    std::latch together(2);
    std::atomic<int> met = 0;
    {
        ThreadPoolQueue queue(2);
        for (int i = 0; i < 2; ++i)
            queue.async([&] {
                together.arrive_and_wait();
                ++met;
            });
    }
    EXPECT_EQ(met, 2);
}

} // namespace
} // namespace sela
