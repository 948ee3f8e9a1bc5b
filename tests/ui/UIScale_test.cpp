#include "ui/UIScale.h"

#include "platform/uikit/UIViewController.h"

#include <gtest/gtest.h>

#include <memory>

namespace sela {
namespace {

TEST(UIScale, FollowsTheShorterSideAndJumpsAtATabletsWidth) {
    const struct {
        CGSize size;
        double scale;
    } cases[] = {
        {{320, 568}, 320.0 / 375},
        {{375, 667}, 1.0},
        {{414, 896}, 414.0 / 375},
        {{667, 375}, 1.0},
        {{450, 900}, 1.2},
        {{765, 1024}, 2.04},
        {{767, 2000}, 767.0 / 375},
        {{768, 1024}, 1.0},
        {{1024, 768}, 1.0},
        {{1024, 1366}, 1024.0 / 768},
        {{0, 667}, 0.0},
    };
    for (const auto& [size, scale] : cases) {
        const auto controller = std::make_shared<UIViewController>();
        controller->view().setFrame({{10, 20}, size});
        EXPECT_DOUBLE_EQ(getUIScale(*controller), scale) << size.width << " x " << size.height;
    }
}

} // namespace
} // namespace sela
