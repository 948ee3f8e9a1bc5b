#include "platform/foundation/HeadlessMainLoop.h"
#include "platform/foundation/ScopedMainQueue.h"
#include "platform/foundation/ThreadPoolQueue.h"

#include <atomic>
#include <functional>
#include <gtest/gtest.h>
#include <latch>
#include <string>
#include <thread>

namespace sela {
namespace {

class HeadlessMainLoopTest : public testing::Test {
protected:
    HeadlessMainLoop loop;
    ScopedMainQueue scope{loop};
};

TEST_F(HeadlessMainLoopTest, RunsTasksInOrderOfTimeAndThenOfArrival) {
    std::string order;
    const double start = loop.now();
    double ranAt = 0;
    loop.asyncAfter(0.103, [&] { ranAt = loop.now(); });
    loop.asyncAfter(0.102, [&] { order += "f"; });
    loop.asyncAfter(0.101, [&] { order += "d"; });
    loop.asyncAfter(0.101, [&] { order += "e"; });
    loop.async([&] {
        order += "a";
        loop.async([&] { order += "c"; });
        order += "b";
    });
    EXPECT_EQ(order, "");
    loop.run();
    EXPECT_EQ(order, "abcdef");
    EXPECT_GE(ranAt - start, 0.103 - 1e-9);
}

TEST_F(HeadlessMainLoopTest, WaitsForWorkInTheBackground) {
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
    loop.async(answer);
    loop.run();
    EXPECT_EQ(rounds, 3);
}

TEST_F(HeadlessMainLoopTest, TakesTasksFromManyThreadsThatRunAtOnce) {
    int count = 0;
    {
        std::latch together(4);
        ThreadPoolQueue background(4);
        for (int i = 0; i < 1000; ++i)
            background.async([&, i] {
                if (i < 4)
                    together.arrive_and_wait();
                DispatchQueue::main().async([&] { ++count; });
            });
    }
    loop.run();
    EXPECT_EQ(count, 1000);
}

TEST_F(HeadlessMainLoopTest, ReleasesWhatATaskHolds) {
    auto held = std::make_shared<int>(0);
    loop.async([held] {});
    EXPECT_EQ(held.use_count(), 2);
    loop.run();
    EXPECT_EQ(held.use_count(), 1);
}

TEST(ThreadPoolQueue, ASuspendedQueueBeginsNothing) {
    std::atomic<int> ran = 0;
    std::latch begun(1), ends(1), second(1);
    ThreadPoolQueue queue(1);
    queue.async([&] {
        begun.count_down();
        ends.wait();
        ++ran;
    });
    begun.wait();
    queue.suspend();
    queue.async([&] {
        ++ran;
        second.count_down();
    });
    ends.count_down();
    while (ran == 0)
        std::this_thread::yield();
    std::this_thread::sleep_for(std::chrono::milliseconds(2));
    EXPECT_EQ(ran, 1);
    queue.resume();
    second.wait();
    EXPECT_EQ(ran, 2);
}

} // namespace
} // namespace sela
