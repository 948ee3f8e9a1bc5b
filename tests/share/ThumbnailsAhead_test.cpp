#include "share/ThumbnailsAhead.h"

#include "platform/foundation/NSLog.h"
#include "support/LogCapture.h"

#include <chrono>
#include <future>
#include <gmock/gmock.h>
#include <memory>
#include <string>

namespace sela {
namespace {

/// A picture of that width, done once `mayEnd` is ready; absent when that takes half a minute.
ThumbnailsAhead::Maker maker(int width, const std::shared_ptr<std::promise<void>>& begun,
                             const std::shared_future<void>& mayEnd) {
    return [=]() -> std::optional<UIImage> {
        NSLog("making " + std::to_string(width));
        begun->set_value();
        if (mayEnd.wait_for(std::chrono::seconds(30)) != std::future_status::ready)
            return std::nullopt;
        return UIImage::fromPixels(
            {width, 1, std::vector<std::uint8_t>(std::size_t{4} * static_cast<std::size_t>(width))});
    };
}

TEST(ThumbnailsAhead, TwoAreMadeAtOnceAndTakenWithTheirLinesInTheOrderOfTheWalk) {
    if (!ThumbnailsAhead::canMakeTwo())
        GTEST_SKIP() << "one processor, or little memory";
    LogCapture log;
    ThumbnailsAhead ahead;
    const auto first = std::make_shared<std::promise<void>>();
    const auto second = std::make_shared<std::promise<void>>();
    const std::shared_future<void> firstBegan = first->get_future();
    const std::shared_future<void> secondBegan = second->get_future();
    // The first can end only when another thread makes the second meanwhile.
    ahead.add(1, maker(1, first, secondBegan));
    ahead.add(2, maker(2, second, firstBegan));
    ahead.add(3, maker(3, std::make_shared<std::promise<void>>(), firstBegan));
    for (int place = 1; place <= 3; ++place) {
        ASSERT_TRUE(ahead.has(place));
        const std::optional<UIImage> image = ahead.take(place);
        ASSERT_TRUE(image) << place;
        EXPECT_EQ(image->width(), place);
        EXPECT_FALSE(ahead.has(place));
        EXPECT_EQ(log.lines().size(), static_cast<std::size_t>(place));
        EXPECT_EQ(log.lines().back(), "making " + std::to_string(place));
    }
}

} // namespace
} // namespace sela
