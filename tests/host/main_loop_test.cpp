#include "host/OffscreenEnvironment.h"
#include "host/QtMainLoop.h"
#include "platform/foundation/HeadlessMainLoop.h"
#include "platform/foundation/ScopedMainQueue.h"
#include "platform/foundation/ThreadPoolQueue.h"

#include <gtest/gtest.h>

#include <latch>
#include <string>
#include <thread>

namespace sela {
namespace {

/// The behaviour that all main loops share.
template<typename Loop>
class MainLoopTest : public testing::Test {
protected:
    /// Runs until the tasks of the next 0.2 seconds, and those that they cause, have run.
    void run() {
        if constexpr (std::is_same_v<Loop, QtMainLoop>)
            queue.asyncAfter(0.2, [this] { queue.finish(); });
        queue.run();
    }

    Loop queue;
    ScopedMainQueue scope{queue};
};

using Loops = testing::Types<HeadlessMainLoop, QtMainLoop>;
TYPED_TEST_SUITE(MainLoopTest, Loops);

TYPED_TEST(MainLoopTest, RunsTasksInOrderOfTimeAndThenOfArrival) {
    TypeParam& loop = this->queue;
    std::string order;
    const double start = loop.now();
    double ranAt = 0;
    loop.asyncAfter(0.16, [&] { ranAt = loop.now(); });
    loop.asyncAfter(0.15, [&] { order += "f"; });
    loop.asyncAfter(0.101, [&] { order += "d"; });
    loop.asyncAfter(0.101, [&] { order += "e"; });
    loop.async([&] {
        order += "a";
        loop.async([&] { order += "c"; });
        order += "b";
    });
    EXPECT_EQ(order, "");
    this->run();
    EXPECT_EQ(order, "abcdef");
    EXPECT_GE(ranAt - start, 0.103 - 1e-9);
}

TYPED_TEST(MainLoopTest, TakesTasksFromManyThreadsAndWaitsForThem) {
    const std::thread::id mainThread = std::this_thread::get_id();
    std::latch together(4);
    ThreadPoolQueue background(4);
    int count = 0;
    this->queue.asyncAfter(0.19, [&] {
        for (int i = 0; i < 1000; ++i)
            background.async([&, i] {
                if (i < 4)
                    together.arrive_and_wait();
                EXPECT_NE(std::this_thread::get_id(), mainThread);
                std::this_thread::sleep_for(std::chrono::microseconds(100));
                DispatchQueue::main().async([&] {
                    EXPECT_EQ(std::this_thread::get_id(), mainThread);
                    ++count;
                });
            });
    });
    this->run();
    EXPECT_EQ(count, 1000);
}

TYPED_TEST(MainLoopTest, ReleasesWhatATaskHolds) {
    auto held = std::make_shared<int>(0);
    this->queue.async([held] {});
    EXPECT_EQ(held.use_count(), 2);
    this->run();
    EXPECT_EQ(held.use_count(), 1);
}

TEST(QtMainLoop, LeavesWhatIsDueLaterThanItsEnd) {
    QtMainLoop loop;
    loop.asyncAfter(60, [] { ADD_FAILURE() << "in a minute"; });
    loop.async([&] { loop.finish(); });
    loop.run();
}

} // namespace
} // namespace sela
