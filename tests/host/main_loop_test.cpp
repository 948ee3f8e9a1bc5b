#include "host/QtMainLoop.h"
#include "platform/foundation/BackgroundWork.h"
#include "platform/foundation/ScopedMainQueue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

namespace sela {

using testing::ElementsAre;

TEST(QtMainLoop, RunsTasksInOrderOfTimeAndThenOfArrival) {
    QtMainLoop loop;
    std::vector<int> ran;
    const double start = loop.now();
    loop.asyncAfter(0.03, [&] {
        ran.push_back(4);
        EXPECT_GE(loop.now(), start + 0.03);
        loop.finish();
    });
    loop.asyncAfter(0.01, [&] { ran.push_back(3); });
    loop.async([&] {
        ran.push_back(1);
        loop.async([&] { ran.push_back(2); });
        EXPECT_EQ(ran.back(), 1);
    });
    loop.run();
    EXPECT_THAT(ran, ElementsAre(1, 2, 3, 4));
}

TEST(QtMainLoop, FinishesWhatIsUnderWayOnOtherThreadsAndLeavesTheRest) {
    QtMainLoop loop;
    const ScopedMainQueue scoped(loop);
    const std::thread::id mainThread = std::this_thread::get_id();
    int ran = 0;
    loop.asyncAfter(60, [&] { ADD_FAILURE() << "in a minute"; });
    loop.async([&] {
        DispatchQueue::global().async([&] {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
            for (int task = 0; task < 100; ++task)
                DispatchQueue::main().async([&] {
                    EXPECT_EQ(std::this_thread::get_id(), mainThread);
                    ++ran;
                });
        });
        loop.finish();
    });
    loop.run();
    EXPECT_EQ(ran, 100);
}

} // namespace sela
