#include "platform/foundation/ThreadPoolQueue.h"
#include "support/VirtualMainLoop.h"

#include <atomic>
#include <gtest/gtest.h>
#include <latch>
#include <memory>
#include <sys/resource.h>
#include <thread>

namespace sela {
namespace {

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

TEST(ThreadPoolQueue, WorkIsOutstandingUntilWhatItsTaskHoldsIsDestroyed) {
    std::atomic<bool> isDestroyed = false;
    const auto destroySlowly = [&isDestroyed](const int* held) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
        delete held;
        isDestroyed = true;
    };
    VirtualMainLoop loop;
    ThreadPoolQueue queue(1);
    queue.async([held = std::shared_ptr<const int>(new int, destroySlowly)] {});
    loop.runPending();
    EXPECT_TRUE(isDestroyed.exchange(false));
    queue.asyncAfter(0, [held = std::shared_ptr<const int>(new int, destroySlowly)] {});
    loop.runPending();
    EXPECT_TRUE(isDestroyed);
}

#ifndef SELA_SANITIZED // sanitizers need room themselves
TEST(ThreadPoolQueueDeathTest, AQueueThatCanHaveNoThreadStopsTheProcess) {
    const auto makeQueueWithoutRoom = [] {
        const rlimit none = {0, 0};
        ::setrlimit(RLIMIT_AS, &none);
        const ThreadPoolQueue queue(1);
    };
    // In a process of its own: one with memory for threads that ended has room for another.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(makeQueueWithoutRoom(), "a queue can have no thread");
}
#endif

} // namespace
} // namespace sela
