#include "ui/CommonUIViewController.h"

#include "platform/foundation/ScopedMainQueue.h"
#include "platform/foundation/VirtualMainLoop.h"
#include "platform/uikit/UINavigationController.h"
#include "platform/uikit/UIWindow.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <string>

namespace sela {
namespace {

struct Screen : CommonUIViewController {
    using CommonUIViewController::CommonUIViewController;
    using CommonUIViewController::report;
};

class CommonUIViewControllerTest : public testing::Test {
protected:
    CommonUIViewControllerTest() {
        window_.setRootViewController(navigation_);
        window_.prepareFrame();
        screen_->setCallback([this](std::optional<bool> result) {
            events_ += !result ? "none " : *result ? "true " : "false ";
        });
    }

    void settle() {
        window_.prepareFrame();
        loop_.runUntilIdle();
    }

    void present() {
        navigation_->present(screen_, false);
        settle();
        ASSERT_EQ(navigation_->presentedViewController(), screen_.get());
    }

    void push() {
        navigation_->pushViewController(screen_, false);
        settle();
    }

    void goBack() {
        UIBarButtonItem item(std::nullopt, UIBarButtonItem::Style::plain, screen_.get(),
                             &CommonUIViewController::onBackButtonTouched);
        item.performAction();
        settle();
    }

    UIViewController::Completion completion() {
        return [this] { events_ += "completion "; };
    }

    VirtualMainLoop loop_;
    ScopedMainQueue mainQueue_{loop_};
    UIWindow window_{CGSize{375, 667}};
    std::shared_ptr<UINavigationController> navigation_ =
        std::make_shared<UINavigationController>(std::make_shared<UIViewController>());
    std::shared_ptr<Screen> screen_ = std::make_shared<Screen>();
    std::string events_;
};

TEST_F(CommonUIViewControllerTest, StartsWithNothingToReport) {
    for (const auto& screen :
         {std::make_shared<Screen>(), std::make_shared<Screen>("Nib"), std::make_shared<Screen>(NSCoder{})}) {
        EXPECT_FALSE(screen->callback());
        EXPECT_FALSE(screen->ifDismissed());
    }
}

TEST_F(CommonUIViewControllerTest, ADismissalReportsAfterTheCallersCompletionAndOnce) {
    for (const bool animated : {false, true}) {
        screen_ = std::make_shared<Screen>();
        screen_->setCallback([this](std::optional<bool> result) { events_ += result ? "value " : "none "; });
        present();
        events_.clear();
        screen_->dismiss(animated, completion());
        settle();
        EXPECT_EQ(events_, "completion none ");
        EXPECT_TRUE(screen_->ifDismissed());
        EXPECT_FALSE(screen_->callback());

        screen_->setCallback([this](std::optional<bool>) { events_ += "again "; });
        present();
        screen_->dismiss(animated, completion());
        settle();
        EXPECT_EQ(events_, "completion none completion ");
    }
}

TEST_F(CommonUIViewControllerTest, ADismissalReportsWhenItIsOver) {
    present();
    screen_->dismiss(true);
    window_.prepareFrame();
    loop_.advance(UIViewController::presentationDuration / 2);
    EXPECT_EQ(events_, "");
    EXPECT_FALSE(screen_->ifDismissed());
    settle();
    EXPECT_EQ(events_, "none ");
}

TEST_F(CommonUIViewControllerTest, ADismissedScreenThatNobodyElseHoldsReports) {
    present();
    const std::weak_ptr<Screen> weak = screen_;
    screen_->dismiss(true);
    screen_.reset();
    settle();
    EXPECT_EQ(events_, "none ");
    EXPECT_TRUE(weak.expired());
}

TEST_F(CommonUIViewControllerTest, GoingBackPopsAndReportsOnce) {
    push();
    goBack();
    EXPECT_EQ(navigation_->viewControllers().size(), 1u);
    EXPECT_EQ(events_, "none ");
    push();
    goBack();
    EXPECT_EQ(events_, "none ");
}

TEST_F(CommonUIViewControllerTest, GoingBackOutsideANavigationControllerDoesNothing) {
    goBack();
    EXPECT_EQ(events_, "");
    EXPECT_TRUE(screen_->callback());
}

TEST_F(CommonUIViewControllerTest, TheFirstWayOutIsTheOnlyOneThatReports) {
    push();
    screen_->report(true);
    goBack();
    screen_->dismiss(false, completion());
    settle();
    EXPECT_EQ(events_, "true completion ");
}

TEST_F(CommonUIViewControllerTest, AReportThatReportsAgainIsHeardOnce) {
    screen_->setCallback([this](std::optional<bool>) {
        events_ += "reported ";
        screen_->report(false);
    });
    screen_->report(true);
    EXPECT_EQ(events_, "reported ");
}

} // namespace
} // namespace sela
